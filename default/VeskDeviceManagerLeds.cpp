/*
 * LEDs and relays: the status and colour LEDs, the USB sub-card LED, the relay and the
 * peripheral relays.
 */
#include <vesksdk.h>

#include "ServiceTrace.h"
#include "VeskDeviceManager.h"

namespace vesk::hardware::veskdevicemanager::implementation {

Return<int32_t> VeskDeviceManager::setSysLedState(int32_t state) {
    trace("setSysLedState", 48);
    return bi_sysled_set_state(state);
}

Return<int32_t> VeskDeviceManager::getSysLedState() {
    trace("getSysLedState", 54);
    return bi_sysled_get_state();
}

Return<int32_t> VeskDeviceManager::setNetLedState(int32_t state) {
    trace("setNetLedState", 60);
    return bi_netled_set_state(state);
}

Return<int32_t> VeskDeviceManager::getNetLedState() {
    trace("getNetLedState", 66);
    return bi_netled_get_state();
}

Return<int32_t> VeskDeviceManager::setColorLedState(int32_t red, int32_t green, int32_t blue) {
    trace("setColorLedState", 72);
    vesk::log::debug(kTag, "red_state:%d green_state:%d blue_state:%d", red, green, blue);
    return bi_triled_set_state(red, green, blue);
}

Return<int32_t> VeskDeviceManager::getColorLedState() {
    trace("getColorLedState", 79);
    return bi_triled_get_state();
}

Return<int32_t> VeskDeviceManager::set4gLedState(int32_t state) {
    trace("set4gLedState", 85);
    return bi_4gled_set_state(state);
}

Return<int32_t> VeskDeviceManager::get4gLedState() {
    trace("get4gLedState", 91);
    return bi_4gled_get_state();
}

Return<int32_t> VeskDeviceManager::setPositionLedState(int32_t state) {
    trace("setPositionLedState", 97);
    return bi_position_led_set_state(state);
}

Return<int32_t> VeskDeviceManager::getPositionLedState() {
    trace("getPositionLedState", 103);
    return bi_position_led_get_state();
}

Return<int32_t> VeskDeviceManager::setSwitchLedState(int32_t state) {
    trace("setSwitchLedState", 109);
    return bi_switchled_set_state(state);
}

Return<int32_t> VeskDeviceManager::getSwitchLedState() {
    trace("getSwitchLedState", 115);
    return bi_switchled_get_state();
}

Return<int32_t> VeskDeviceManager::setRunningLedState(int32_t state) {
    trace("setRunningLedState", 121);
    return bi_runningled_set_state(state);
}

Return<int32_t> VeskDeviceManager::getRunningLedState() {
    trace("getRunningLedState", 127);
    return bi_runningled_get_state();
}

Return<int32_t> VeskDeviceManager::setCloudLedState(int32_t state) {
    trace("setCloudLedState", 133);
    return bi_cloudled_set_state(state);
}

Return<int32_t> VeskDeviceManager::getCloudLedState() {
    trace("getCloudLedState", 139);
    return bi_cloudled_get_state();
}

Return<int32_t> VeskDeviceManager::setRelayState(int32_t state) {
    trace("setRelayState", 743);
    return bi_relay_set_state(state);
}

Return<int32_t> VeskDeviceManager::getRelayState() {
    trace("getRelayState", 748);
    return bi_relay_get_state();
}

Return<int32_t> VeskDeviceManager::setPeripheralRelayStatus(uint32_t dev_num, int32_t enable) {
    vesk::log::debug(kTag, "%s %d, dev_num = %d, enable = %d\n", "setPeripheralRelayStatus", 1101,
                     dev_num, enable);
    return bi_peripheral_relay_enable(dev_num, enable);
}

Return<int32_t> VeskDeviceManager::getPeripheralRelayStatus(uint32_t dev_num) {
    vesk::log::debug(kTag, "%s %d, dev_num = %d\n", "getPeripheralRelayStatus", 1107, dev_num);
    return bi_peripheral_relay_get_status(dev_num);
}

Return<int32_t> VeskDeviceManager::setUsbSubCardLedStatus(int32_t enable) {
    vesk::log::debug(kTag, "%s %d, enable = %d\n", "setUsbSubCardLedStatus", 1125, enable);
    return bi_usb_sub_card_led_enable(enable);
}

Return<int32_t> VeskDeviceManager::getUsbSubCardLedStatus() {
    trace("getUsbSubCardLedStatus", 1131);
    return bi_usb_sub_card_led_get_status();
}

}  // namespace vesk::hardware::veskdevicemanager::implementation
