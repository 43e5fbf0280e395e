/*
 * A native system client of the device manager service: reads the system LED's state and logs it.
 * Started by init (vesk_panel_client.rc) in a domain that the policy makes a client of the HAL.
 */
#include <android/log.h>
#include <vesk/hardware/veskdevicemanager/1.0/IVeskDeviceManager.h>

using ::android::sp;
using ::android::hardware::Return;
using ::vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceManager;

namespace {
constexpr char kTag[] = "vesk_panel_client";
}  // namespace

int main() {
    // Waits for the instance "default", which the device manifest declares. Without the policy's
    // grant (adb shell) the lookup is refused and the result is null.
    sp<IVeskDeviceManager> manager = IVeskDeviceManager::getService();
    if (manager == nullptr) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "no IVeskDeviceManager/default");
        return 1;
    }
    // A transport error (the service died, the call was refused) is in the Return, not thrown.
    Return<int32_t> state = manager->getSysLedState();
    if (!state.isOk()) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "getSysLedState: %s",
                            state.description().c_str());
        return 1;
    }
    __android_log_print(ANDROID_LOG_INFO, kTag, "system LED state: %d", static_cast<int32_t>(state));
    return 0;
}
