/*
 * Power and the other devices: fans, the OPS slot, USB switching and OTG mode, the factory tool
 * and PC control switches, the network, power modes, the access point, audio and video-input
 * levels, the board's ADC readings, LoRa, infrared, factory reset, the 4G module, headphone and
 * power amplifier. Nothing here checks a range; the board library decides.
 */
#include <vesksdk.h>

#include "DeviceManagerCore.h"
#include "ServiceTrace.h"
#include "TraceLines.h"

namespace vesk::hardware::veskdevicemanager::core {

using implementation::kTag;
using implementation::trace;

int32_t DeviceManagerCore::setSimpleFanState(int32_t /* state */) {
    trace("setSimpleFanState", VESK_TRACE_LINE("setSimpleFanState"));
    return -1;  // no fan on this board: kept as a stub that always fails
}

int32_t DeviceManagerCore::getSimPleFanState() {
    trace("getSimPleFanState", VESK_TRACE_LINE("getSimPleFanState"));
    return -1;  // no fan on this board: kept as a stub that always fails
}

int32_t DeviceManagerCore::setFanSpeedLevel(int32_t /* state */) {
    trace("setFanSpeedLevel", VESK_TRACE_LINE("setFanSpeedLevel"));
    return -1;  // no fan on this board: kept as a stub that always fails
}

int32_t DeviceManagerCore::getFanSpeedLevel() {
    trace("getFanSpeedLevel", VESK_TRACE_LINE("getFanSpeedLevel"));
    return -1;  // no fan on this board: kept as a stub that always fails
}

int32_t DeviceManagerCore::getFanSpeedPRM() {
    trace("getFanSpeedPRM", VESK_TRACE_LINE("getFanSpeedPRM"));
    return -1;  // no fan on this board: kept as a stub that always fails
}

int32_t DeviceManagerCore::setOpsUsbPort(int32_t state) {
    trace("setOpsUsbPort", VESK_TRACE_LINE("setOpsUsbPort"));
    return bi_ops_set_usb_port(state);
}

int32_t DeviceManagerCore::getOpsUsbPort() {
    trace("getOpsUsbPort", VESK_TRACE_LINE("getOpsUsbPort"));
    return bi_ops_get_usb_port();
}

int32_t DeviceManagerCore::setOpsSwitchState(int32_t state) {
    vesk::log::debug(kTag, "%s %d, state = %d\n", "setOpsSwitchState",
                     VESK_TRACE_LINE("setOpsSwitchState"), state);
    return bi_ops_switch_control(state);
}

int32_t DeviceManagerCore::getOpsSwitchState() {
    trace("getOpsSwitchState", VESK_TRACE_LINE("getOpsSwitchState"));
    return bi_ops_get_switch_state();
}

int32_t DeviceManagerCore::setOpsOnState(int32_t state) {
    vesk::log::debug(kTag, "%s %d, state = %d\n", "setOpsOnState", VESK_TRACE_LINE("setOpsOnState"),
                     state);
    return bi_ops_on_set_state(state);
}

int32_t DeviceManagerCore::getOpsOnState() {
    trace("getOpsOnState", VESK_TRACE_LINE("getOpsOnState"));
    return bi_ops_on_get_state();
}

int32_t DeviceManagerCore::setOpsControlState(int32_t state) {
    vesk::log::debug(kTag, "%s %d, state = %d\n", "setOpsControlState",
                     VESK_TRACE_LINE("setOpsControlState"), state);
    return bi_ops_control_set_state(state);
}

int32_t DeviceManagerCore::getOpsControlState() {
    trace("getOpsControlState", VESK_TRACE_LINE("getOpsControlState"));
    return bi_ops_control_get_state();
}

int32_t DeviceManagerCore::getOpsDetectState() {
    trace("getOpsDetectState", VESK_TRACE_LINE("getOpsDetectState"));
    return bi_ops_detect_get_state();
}

int32_t DeviceManagerCore::getOtgMode() {
    trace("getOtgMode", VESK_TRACE_LINE("getOtgMode"));
    return bi_otg_get_mode();
}

int32_t DeviceManagerCore::setOtgMode(uint32_t mode) {
    trace("setOtgMode", VESK_TRACE_LINE("setOtgMode"));
    return bi_otg_set_mode(mode);
}

int32_t DeviceManagerCore::setFactoryToolStatus(int32_t enable) {
    vesk::log::debug(kTag, "%s %d, enable = %d\n", "setFactoryToolStatus",
                     VESK_TRACE_LINE("setFactoryToolStatus"), enable);
    return bi_factory_tools_enable(enable);
}

int32_t DeviceManagerCore::getFactoryToolStatus() {
    trace("getFactoryToolStatus", VESK_TRACE_LINE("getFactoryToolStatus"));
    return bi_factory_tools_get_status();
}

int32_t DeviceManagerCore::setPcControlStatus(int32_t enable) {
    vesk::log::debug(kTag, "%s %d, enable = %d\n", "setPcControlStatus",
                     VESK_TRACE_LINE("setPcControlStatus"), enable);
    return bi_pc_ctrl_enable(enable);
}

int32_t DeviceManagerCore::getPcControlStatus() {
    trace("getPcControlStatus", VESK_TRACE_LINE("getPcControlStatus"));
    return bi_pc_ctrl_get_status();
}

int32_t DeviceManagerCore::getNetWorkState() {
    trace("getNetWorkState", VESK_TRACE_LINE("getNetWorkState"));
    int state = bi_network_detection();
    if (state < 0) {
        // Every failure reaches the client as -1, whatever the board's code.
        vesk::log::debug(kTag, "error return %d\n", state);
        return -1;
    }
    return state;
}

int32_t DeviceManagerCore::setUsbSwitchEnable(uint32_t enable) {
    trace("setUsbSwitchEnable", VESK_TRACE_LINE("setUsbSwitchEnable"));
    return bi_usb_set_switch_enable(enable);
}

int32_t DeviceManagerCore::getUsbSwitchEnable() {
    trace("getUsbSwitchEnable", VESK_TRACE_LINE("getUsbSwitchEnable"));
    return bi_usb_get_switch_enable();
}

int32_t DeviceManagerCore::setUsbState(uint32_t index, uint32_t enable) {
    vesk::log::debug(kTag, "%s %d index = %d, enable = %d\n", "setUsbState",
                     VESK_TRACE_LINE("setUsbState"), index, enable);
    return bi_set_usb_state(index, enable);
}

int32_t DeviceManagerCore::getUsbState(uint32_t index) {
    vesk::log::debug(kTag, "%s %d index = %d\n", "getUsbState", VESK_TRACE_LINE("getUsbState"),
                     index);
    return bi_get_usb_state(index);
}

int32_t DeviceManagerCore::getAdcBoardId() {
    trace("getAdcBoardId", VESK_TRACE_LINE("getAdcBoardId"));
    return bi_adc_get_board_id();
}

int32_t DeviceManagerCore::setLowPowerMode() {
    trace("setLowPowerMode", VESK_TRACE_LINE("setLowPowerMode"));
    return bi_power_low_power_mode();
}

int32_t DeviceManagerCore::setNormalPowerMode() {
    trace("setNormalPowerMode", VESK_TRACE_LINE("setNormalPowerMode"));
    return bi_power_normal_mode();
}

int32_t DeviceManagerCore::getApNetworkInsulation() {
    trace("getApNetworkInsulation", VESK_TRACE_LINE("getApNetworkInsulation"));
    return bi_network_get_ap_insulation();
}

int32_t DeviceManagerCore::setApNetworkInsulation(uint32_t enable) {
    trace("setApNetworkInsulation", VESK_TRACE_LINE("setApNetworkInsulation"));
    return bi_network_set_ap_insulation(enable);
}

int32_t DeviceManagerCore::getApChannel() {
    trace("getApChannel", VESK_TRACE_LINE("getApChannel"));
    return bi_network_get_ap_channel();
}

int32_t DeviceManagerCore::setAudioEnable(uint8_t channel, uint8_t enable) {
    vesk::log::debug(kTag, "%s %d, enable = %u\n", "setAudioEnable",
                     VESK_TRACE_LINE("setAudioEnable"), enable);
    return bi_i2c_set_audio_enable(channel, enable);
}

int32_t DeviceManagerCore::getAudioEnable(uint8_t channel) {
    trace("getAudioEnable", VESK_TRACE_LINE("getAudioEnable"));
    return bi_i2c_get_audio_enable(channel);
}

int32_t DeviceManagerCore::setVideoInputSrcVolume(uint8_t source, uint8_t volume) {
    vesk::log::debug(kTag, "%s %d, enable = %u\n", "setVideoInputSrcVolume",
                     VESK_TRACE_LINE("setVideoInputSrcVolume"), volume);
    return bi_i2c_set_video_inputsrc_volume(source, volume);
}

int32_t DeviceManagerCore::getVideoInputSrcVolume(uint8_t source) {
    trace("getVideoInputSrcVolume", VESK_TRACE_LINE("getVideoInputSrcVolume"));
    return bi_i2c_get_video_inputsrc_volume(source);
}

float DeviceManagerCore::getBoardVoltage() {
    trace("getBoardVoltage", VESK_TRACE_LINE("getBoardVoltage"));
    return bi_adc_get_board_voltage();
}

float DeviceManagerCore::getBoardTemperature() {
    trace("getBoardTemperature", VESK_TRACE_LINE("getBoardTemperature"));
    return bi_adc_get_board_temperature();
}

int32_t DeviceManagerCore::getLoraState() {
    trace("getLoraState", VESK_TRACE_LINE("getLoraState"));
    return bi_lora_get_state();
}

int32_t DeviceManagerCore::setInfrared() {
    trace("setInfrared", VESK_TRACE_LINE("setInfrared"));
    return bi_infrared_write();
}

int32_t DeviceManagerCore::setRestoreFactorySetting(int32_t mode) {
    trace("setRestoreFactorySetting", VESK_TRACE_LINE("setRestoreFactorySetting"));
    return bi_restore_factory_setting(mode);
}

int32_t DeviceManagerCore::set4gModuleState(int32_t state) {
    trace("set4gModuleState", VESK_TRACE_LINE("set4gModuleState"));
    return bi_4g_module_set_state(state);
}

int32_t DeviceManagerCore::get4gModuleState() {
    trace("get4gModuleState", VESK_TRACE_LINE("get4gModuleState"));
    return bi_4g_module_get_state();
}

int32_t DeviceManagerCore::set4gPowerState(int32_t state) {
    trace("set4gPowerState", VESK_TRACE_LINE("set4gPowerState"));
    return bi_4g_power_set_state(state);
}

int32_t DeviceManagerCore::get4gPowerState() {
    trace("get4gPowerState", VESK_TRACE_LINE("get4gPowerState"));
    return bi_4g_power_get_state();
}

int32_t DeviceManagerCore::setHeadphonePowerState(int32_t state) {
    trace("setHeadphonePowerState", VESK_TRACE_LINE("setHeadphonePowerState"));
    return bi_headphone_power_set_state(state);
}

int32_t DeviceManagerCore::getHeadphonePowerState() {
    trace("getHeadphonePowerState", VESK_TRACE_LINE("getHeadphonePowerState"));
    return bi_headphone_power_get_state();
}

int32_t DeviceManagerCore::setPowerAmplifierState(int32_t state) {
    trace("setPowerAmplifierState", VESK_TRACE_LINE("setPowerAmplifierState"));
    return bi_power_amplifier_set_state(state);
}

int32_t DeviceManagerCore::getPowerAmplifierState() {
    trace("getPowerAmplifierState", VESK_TRACE_LINE("getPowerAmplifierState"));
    return bi_power_amplifier_get_state();
}

}  // namespace vesk::hardware::veskdevicemanager::core
