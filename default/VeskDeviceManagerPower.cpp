/*
 * Power and the other devices: fans, the OPS slot, USB switching and OTG mode, the factory tool
 * and PC control switches, the network, power modes, the access point, audio and video-input
 * levels, the board's ADC readings, LoRa, infrared, factory reset, the 4G module, headphone and
 * power amplifier. Nothing here checks a range; the board library decides.
 */
#include <vesksdk.h>

#include "ServiceTrace.h"
#include "VeskDeviceManager.h"

namespace vesk::hardware::veskdevicemanager::implementation {

Return<int32_t> VeskDeviceManager::setSimpleFanState(int32_t /* state */) {
    trace("setSimpleFanState", 676);
    return -1;  // no fan on this board: kept as a stub that always fails
}

Return<int32_t> VeskDeviceManager::getSimPleFanState() {
    trace("getSimPleFanState", 682);
    return -1;  // no fan on this board: kept as a stub that always fails
}

Return<int32_t> VeskDeviceManager::setFanSpeedLevel(int32_t /* state */) {
    trace("setFanSpeedLevel", 688);
    return -1;  // no fan on this board: kept as a stub that always fails
}

Return<int32_t> VeskDeviceManager::getFanSpeedLevel() {
    trace("getFanSpeedLevel", 694);
    return -1;  // no fan on this board: kept as a stub that always fails
}

Return<int32_t> VeskDeviceManager::getFanSpeedPRM() {
    trace("getFanSpeedPRM", 700);
    return -1;  // no fan on this board: kept as a stub that always fails
}

Return<int32_t> VeskDeviceManager::setOpsUsbPort(int32_t state) {
    trace("setOpsUsbPort", 885);
    return bi_ops_set_usb_port(state);
}

Return<int32_t> VeskDeviceManager::getOpsUsbPort() {
    trace("getOpsUsbPort", 891);
    return bi_ops_get_usb_port();
}

Return<int32_t> VeskDeviceManager::setOpsSwitchState(int32_t state) {
    vesk::log::debug(kTag, "%s %d, state = %d\n", "setOpsSwitchState", 897, state);
    return bi_ops_switch_control(state);
}

Return<int32_t> VeskDeviceManager::getOpsSwitchState() {
    trace("getOpsSwitchState", 903);
    return bi_ops_get_switch_state();
}

Return<int32_t> VeskDeviceManager::setOpsOnState(int32_t state) {
    vesk::log::debug(kTag, "%s %d, state = %d\n", "setOpsOnState", 910, state);
    return bi_ops_on_set_state(state);
}

Return<int32_t> VeskDeviceManager::getOpsOnState() {
    trace("getOpsOnState", 916);
    return bi_ops_on_get_state();
}

Return<int32_t> VeskDeviceManager::setOpsControlState(int32_t state) {
    vesk::log::debug(kTag, "%s %d, state = %d\n", "setOpsControlState", 922, state);
    return bi_ops_control_set_state(state);
}

Return<int32_t> VeskDeviceManager::getOpsControlState() {
    trace("getOpsControlState", 928);
    return bi_ops_control_get_state();
}

Return<int32_t> VeskDeviceManager::getOpsDetectState() {
    trace("getOpsDetectState", 934);
    return bi_ops_detect_get_state();
}

Return<int32_t> VeskDeviceManager::getOtgMode() {
    trace("getOtgMode", 996);
    return bi_otg_get_mode();
}

Return<int32_t> VeskDeviceManager::setOtgMode(uint32_t mode) {
    trace("setOtgMode", 1002);
    return bi_otg_set_mode(mode);
}

Return<int32_t> VeskDeviceManager::setFactoryToolStatus(int32_t enable) {
    vesk::log::debug(kTag, "%s %d, enable = %d\n", "setFactoryToolStatus", 1088, enable);
    return bi_factory_tools_enable(enable);
}

Return<int32_t> VeskDeviceManager::getFactoryToolStatus() {
    trace("getFactoryToolStatus", 1095);
    return bi_factory_tools_get_status();
}

Return<int32_t> VeskDeviceManager::setPcControlStatus(int32_t enable) {
    vesk::log::debug(kTag, "%s %d, enable = %d\n", "setPcControlStatus", 1113, enable);
    return bi_pc_ctrl_enable(enable);
}

Return<int32_t> VeskDeviceManager::getPcControlStatus() {
    trace("getPcControlStatus", 1119);
    return bi_pc_ctrl_get_status();
}

Return<int32_t> VeskDeviceManager::getNetWorkState() {
    trace("getNetWorkState", 1367);
    int state = bi_network_detection();
    if (state < 0) {
        // Every failure reaches the client as -1, whatever the board's code.
        vesk::log::debug(kTag, "error return %d\n", state);
        return -1;
    }
    return state;
}

Return<int32_t> VeskDeviceManager::setUsbSwitchEnable(uint32_t enable) {
    trace("setUsbSwitchEnable", 1138);
    return bi_usb_set_switch_enable(enable);
}

Return<int32_t> VeskDeviceManager::getUsbSwitchEnable() {
    trace("getUsbSwitchEnable", 1144);
    return bi_usb_get_switch_enable();
}

Return<int32_t> VeskDeviceManager::setUsbState(uint32_t index, uint32_t enable) {
    vesk::log::debug(kTag, "%s %d index = %d, enable = %d\n", "setUsbState", 1151, index, enable);
    return bi_set_usb_state(index, enable);
}

Return<int32_t> VeskDeviceManager::getUsbState(uint32_t index) {
    vesk::log::debug(kTag, "%s %d index = %d\n", "getUsbState", 1157, index);
    return bi_get_usb_state(index);
}

Return<int32_t> VeskDeviceManager::getAdcBoardId() {
    trace("getAdcBoardId", 1467);
    return bi_adc_get_board_id();
}

Return<int32_t> VeskDeviceManager::setLowPowerMode() {
    trace("setLowPowerMode", 1472);
    return bi_power_low_power_mode();
}

Return<int32_t> VeskDeviceManager::setNormalPowerMode() {
    trace("setNormalPowerMode", 1477);
    return bi_power_normal_mode();
}

Return<int32_t> VeskDeviceManager::getApNetworkInsulation() {
    trace("getApNetworkInsulation", 1482);
    return bi_network_get_ap_insulation();
}

Return<int32_t> VeskDeviceManager::setApNetworkInsulation(uint32_t enable) {
    trace("setApNetworkInsulation", 1487);
    return bi_network_set_ap_insulation(enable);
}

Return<int32_t> VeskDeviceManager::getApChannel() {
    trace("getApChannel", 1492);
    return bi_network_get_ap_channel();
}

Return<int32_t> VeskDeviceManager::setAudioEnable(uint8_t channel, uint8_t enable) {
    vesk::log::debug(kTag, "%s %d, enable = %u\n", "setAudioEnable", 1504, enable);
    return bi_i2c_set_audio_enable(channel, enable);
}

Return<int32_t> VeskDeviceManager::getAudioEnable(uint8_t channel) {
    trace("getAudioEnable", 1510);
    return bi_i2c_get_audio_enable(channel);
}

Return<int32_t> VeskDeviceManager::setVideoInputSrcVolume(uint8_t source, uint8_t volume) {
    vesk::log::debug(kTag, "%s %d, enable = %u\n", "setVideoInputSrcVolume", 1517, volume);
    return bi_i2c_set_video_inputsrc_volume(source, volume);
}

Return<int32_t> VeskDeviceManager::getVideoInputSrcVolume(uint8_t source) {
    trace("getVideoInputSrcVolume", 1523);
    return bi_i2c_get_video_inputsrc_volume(source);
}

Return<float> VeskDeviceManager::getBoardVoltage() {
    trace("getBoardVoltage", 1528);
    return bi_adc_get_board_voltage();
}

Return<float> VeskDeviceManager::getBoardTemperature() {
    trace("getBoardTemperature", 1533);
    return bi_adc_get_board_temperature();
}

Return<int32_t> VeskDeviceManager::getLoraState() {
    trace("getLoraState", 1544);
    return bi_lora_get_state();
}

Return<int32_t> VeskDeviceManager::setInfrared() {
    trace("setInfrared", 1538);
    return bi_infrared_write();
}

Return<int32_t> VeskDeviceManager::setRestoreFactorySetting(int32_t mode) {
    trace("setRestoreFactorySetting", 1550);
    return bi_restore_factory_setting(mode);
}

Return<int32_t> VeskDeviceManager::set4gModuleState(int32_t state) {
    trace("set4gModuleState", 1555);
    return bi_4g_module_set_state(state);
}

Return<int32_t> VeskDeviceManager::get4gModuleState() {
    trace("get4gModuleState", 1560);
    return bi_4g_module_get_state();
}

Return<int32_t> VeskDeviceManager::set4gPowerState(int32_t state) {
    trace("set4gPowerState", 1565);
    return bi_4g_power_set_state(state);
}

Return<int32_t> VeskDeviceManager::get4gPowerState() {
    trace("get4gPowerState", 1570);
    return bi_4g_power_get_state();
}

Return<int32_t> VeskDeviceManager::setHeadphonePowerState(int32_t state) {
    trace("setHeadphonePowerState", 1585);
    return bi_headphone_power_set_state(state);
}

Return<int32_t> VeskDeviceManager::getHeadphonePowerState() {
    trace("getHeadphonePowerState", 1590);
    return bi_headphone_power_get_state();
}

Return<int32_t> VeskDeviceManager::setPowerAmplifierState(int32_t state) {
    trace("setPowerAmplifierState", 1664);
    return bi_power_amplifier_set_state(state);
}

Return<int32_t> VeskDeviceManager::getPowerAmplifierState() {
    trace("getPowerAmplifierState", 1670);
    return bi_power_amplifier_get_state();
}

}  // namespace vesk::hardware::veskdevicemanager::implementation
