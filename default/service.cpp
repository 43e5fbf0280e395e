/*
 * The device's service host: publishes the passthrough implementation as "default".
 */
#define LOG_TAG "vesk.hardware.veskdevicemanager@1.0-service"

#include <hidl/LegacySupport.h>
#include <vesk/hardware/veskdevicemanager/1.0/IVeskDeviceManager.h>

using ::android::hardware::defaultPassthroughServiceImplementation;
using ::vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceManager;

int main() {
    return defaultPassthroughServiceImplementation<IVeskDeviceManager>();
}
