/*
 * A native system client of the device manager's stable-AIDL front end: reads the system LED's
 * state and logs it. Started by init (vesk_panel_client_aidl.rc) in a domain that the policy
 * makes a client of the HAL.
 */
#include <aidl/vesk/hardware/veskdevicemanager/IVeskDeviceManager.h>
#include <android/binder_manager.h>
#include <android/log.h>

#include <cstdint>
#include <memory>
#include <string>

using ::aidl::vesk::hardware::veskdevicemanager::IVeskDeviceManager;

namespace {
constexpr char kTag[] = "vesk_panel_client_aidl";
}  // namespace

int main() {
    const std::string instance = std::string(IVeskDeviceManager::descriptor) + "/default";
    // A board whose vendor image lacks the service does not declare it (the framework matrix
    // asks for it optionally): waiting for it would never end.
    if (!AServiceManager_isDeclared(instance.c_str())) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "%s is not declared", instance.c_str());
        return 1;
    }
    // Waits until the service has registered.
    ndk::SpAIBinder binder(AServiceManager_waitForService(instance.c_str()));
    std::shared_ptr<IVeskDeviceManager> manager = IVeskDeviceManager::fromBinder(binder);
    if (manager == nullptr) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "no %s", instance.c_str());
        return 1;
    }
    // A refused call (EX_ILLEGAL_ARGUMENT, a policy denial) or a dead service is in the status.
    int32_t state = 0;
    ndk::ScopedAStatus status = manager->getSysLedState(&state);
    if (!status.isOk()) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "getSysLedState: %s",
                            status.getDescription().c_str());
        return 1;
    }
    __android_log_print(ANDROID_LOG_INFO, kTag, "system LED state: %d", state);
    return 0;
}
