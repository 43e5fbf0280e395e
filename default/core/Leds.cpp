/*
 * LEDs and relays: the status and colour LEDs, the USB sub-card LED, the relay and the
 * peripheral relays.
 */
#include <vesksdk.h>

#include "DeviceManagerCore.h"
#include "ServiceTrace.h"
#include "TraceLines.h"

namespace vesk::hardware::veskdevicemanager::core {

using implementation::kTag;
using implementation::trace;

int32_t DeviceManagerCore::setSysLedState(int32_t state) {
    trace("setSysLedState", VESK_TRACE_LINE("setSysLedState"));
    return bi_sysled_set_state(state);
}

int32_t DeviceManagerCore::getSysLedState() {
    trace("getSysLedState", VESK_TRACE_LINE("getSysLedState"));
    return bi_sysled_get_state();
}

int32_t DeviceManagerCore::setNetLedState(int32_t state) {
    trace("setNetLedState", VESK_TRACE_LINE("setNetLedState"));
    return bi_netled_set_state(state);
}

int32_t DeviceManagerCore::getNetLedState() {
    trace("getNetLedState", VESK_TRACE_LINE("getNetLedState"));
    return bi_netled_get_state();
}

int32_t DeviceManagerCore::setColorLedState(int32_t red, int32_t green, int32_t blue) {
    trace("setColorLedState", VESK_TRACE_LINE("setColorLedState"));
    vesk::log::debug(kTag, "red_state:%d green_state:%d blue_state:%d", red, green, blue);
    return bi_triled_set_state(red, green, blue);
}

int32_t DeviceManagerCore::getColorLedState() {
    trace("getColorLedState", VESK_TRACE_LINE("getColorLedState"));
    return bi_triled_get_state();
}

int32_t DeviceManagerCore::set4gLedState(int32_t state) {
    trace("set4gLedState", VESK_TRACE_LINE("set4gLedState"));
    return bi_4gled_set_state(state);
}

int32_t DeviceManagerCore::get4gLedState() {
    trace("get4gLedState", VESK_TRACE_LINE("get4gLedState"));
    return bi_4gled_get_state();
}

int32_t DeviceManagerCore::setPositionLedState(int32_t state) {
    trace("setPositionLedState", VESK_TRACE_LINE("setPositionLedState"));
    return bi_position_led_set_state(state);
}

int32_t DeviceManagerCore::getPositionLedState() {
    trace("getPositionLedState", VESK_TRACE_LINE("getPositionLedState"));
    return bi_position_led_get_state();
}

int32_t DeviceManagerCore::setSwitchLedState(int32_t state) {
    trace("setSwitchLedState", VESK_TRACE_LINE("setSwitchLedState"));
    return bi_switchled_set_state(state);
}

int32_t DeviceManagerCore::getSwitchLedState() {
    trace("getSwitchLedState", VESK_TRACE_LINE("getSwitchLedState"));
    return bi_switchled_get_state();
}

int32_t DeviceManagerCore::setRunningLedState(int32_t state) {
    trace("setRunningLedState", VESK_TRACE_LINE("setRunningLedState"));
    return bi_runningled_set_state(state);
}

int32_t DeviceManagerCore::getRunningLedState() {
    trace("getRunningLedState", VESK_TRACE_LINE("getRunningLedState"));
    return bi_runningled_get_state();
}

int32_t DeviceManagerCore::setCloudLedState(int32_t state) {
    trace("setCloudLedState", VESK_TRACE_LINE("setCloudLedState"));
    return bi_cloudled_set_state(state);
}

int32_t DeviceManagerCore::getCloudLedState() {
    trace("getCloudLedState", VESK_TRACE_LINE("getCloudLedState"));
    return bi_cloudled_get_state();
}

int32_t DeviceManagerCore::setRelayState(int32_t state) {
    trace("setRelayState", VESK_TRACE_LINE("setRelayState"));
    return bi_relay_set_state(state);
}

int32_t DeviceManagerCore::getRelayState() {
    trace("getRelayState", VESK_TRACE_LINE("getRelayState"));
    return bi_relay_get_state();
}

int32_t DeviceManagerCore::setPeripheralRelayStatus(uint32_t dev_num, int32_t enable) {
    vesk::log::debug(kTag, "%s %d, dev_num = %d, enable = %d\n", "setPeripheralRelayStatus",
                     VESK_TRACE_LINE("setPeripheralRelayStatus"), dev_num, enable);
    return bi_peripheral_relay_enable(dev_num, enable);
}

int32_t DeviceManagerCore::getPeripheralRelayStatus(uint32_t dev_num) {
    vesk::log::debug(kTag, "%s %d, dev_num = %d\n", "getPeripheralRelayStatus",
                     VESK_TRACE_LINE("getPeripheralRelayStatus"), dev_num);
    return bi_peripheral_relay_get_status(dev_num);
}

int32_t DeviceManagerCore::setUsbSubCardLedStatus(int32_t enable) {
    vesk::log::debug(kTag, "%s %d, enable = %d\n", "setUsbSubCardLedStatus",
                     VESK_TRACE_LINE("setUsbSubCardLedStatus"), enable);
    return bi_usb_sub_card_led_enable(enable);
}

int32_t DeviceManagerCore::getUsbSubCardLedStatus() {
    trace("getUsbSubCardLedStatus", VESK_TRACE_LINE("getUsbSubCardLedStatus"));
    return bi_usb_sub_card_led_get_status();
}

}  // namespace vesk::hardware::veskdevicemanager::core
