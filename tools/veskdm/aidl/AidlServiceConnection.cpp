// The client side of --via aidl (AidlService.h): a session with the service's socket through
// the host's registration seam, and the HIDL interface over its proxy.
#include <android/binder_auto_utils.h>
#include <android/log.h>

#include <string>

#include "AidlDeviceManagerClient.h"
#include "AidlService.h"
#include "ImplLoader.h"
#include "vesk/rpc_binder_host.h"

namespace veskdm {

namespace {

// The platform's lines (libbinder's, inside its own library) into this process's log, where
// the run's log options and stderr's one-line rule apply to them as to the service's own.
void toProcessLog(int priority, const char* tag, const char* message) {
    __android_log_write(priority, tag, message);
}

}  // namespace

::android::sp<::vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceManager> connectAidlService(
        const std::string& socketPath) {
    vesk_rpc_set_platform_logger(toProcessLog);
    VeskRpcSession* session = nullptr;
    // One incoming thread: a callback this process registers is served by it.
    if (vesk_rpc_session_connect(socketPath.c_str(), 1, kAidlConnectTimeoutMs, &session) !=
        VESK_RPC_OK) {
        throw LoadError(std::string("cannot reach the service: ") + vesk_rpc_last_error());
    }
    ::ndk::SpAIBinder binder(vesk_rpc_session_root(session));
    auto proxy = ::aidl::vesk::hardware::veskdevicemanager::IVeskDeviceManager::fromBinder(binder);
    binder = ::ndk::SpAIBinder();
    if (proxy == nullptr) {
        vesk_rpc_session_close(session);
        throw LoadError("cannot reach the service: " + socketPath +
                        " serves no vesk.hardware.veskdevicemanager.IVeskDeviceManager");
    }
    return new aidlclient::AidlDeviceManagerClient(std::move(proxy), socketPath,
                                                   [session] { vesk_rpc_session_close(session); });
}

}  // namespace veskdm
