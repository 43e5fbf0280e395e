/*
 * The stable-AIDL service: one front end object over the service's core, offered to clients as
 * vesk.hardware.veskdevicemanager.IVeskDeviceManager/default (ServiceRegistration.h: by the
 * service manager on a board, on a socket below the device root on a host).
 */
#include <memory>
#include <string>

#include "AidlVeskDeviceManager.h"
#include "ServiceRegistration.h"

using ::aidl::vesk::hardware::veskdevicemanager::VeskDeviceManager;

namespace {

// A blocking serial read holds its thread for up to its time-out: the others serve calls
// meanwhile.
constexpr uint32_t kThreads = 4;

}  // namespace

int main() {
    std::shared_ptr<VeskDeviceManager> service = ndk::SharedRefBase::make<VeskDeviceManager>();
    const std::string instance = std::string(VeskDeviceManager::descriptor) + "/default";
    return vesk::platform::serveService(service->asBinder().get(), instance.c_str(), kThreads);
}
