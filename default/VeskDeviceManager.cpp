/*
 * The facade's entry: the passthrough factory, the forwarders of HidlForwarders.h and the two
 * generic entry points.
 */
#include "VeskDeviceManager.h"

#include "HidlConversions.h"

namespace vesk::hardware::veskdevicemanager::implementation {

#define VESK_DEFINE_FORWARDER(Result, method, params, args) \
    Return<Result> VeskDeviceManager::method params {       \
        return mCore.method args;                           \
    }
VESK_HIDL_FORWARDERS(VESK_DEFINE_FORWARDER)
#undef VESK_DEFINE_FORWARDER

// Reserved: the core only traces it, and the callback is never called.
Return<void> VeskDeviceManager::hwInvoke(const hidl_string& command, hwInvoke_cb /* _hidl_cb */) {
    mCore.hwInvoke(command);
    return Void();
}

// Notifications are not sent to clients: the callback is neither kept nor called, and it does
// not reach the core.
Return<int32_t> VeskDeviceManager::hwRegistCallback(const sp<IVeskDeviceCallback>& /* callback */) {
    return mCore.hwRegistCallback();
}

// The instance name is ignored: every fetch makes a new service object, and with it its core.
IVeskDeviceManager* HIDL_FETCH_IVeskDeviceManager(const char* /* name */) {
    return new VeskDeviceManager();
}

}  // namespace vesk::hardware::veskdevicemanager::implementation
