/*
 * The simple methods: trace, one board call with the arguments unchanged, its result returned
 * unchanged. Nothing here checks a range; the board library decides. A time shorter than the
 * board reads is padded with zeros (BoardInput.h).
 */
#include <vesksdk.h>
#include <vesksdk_records.h>

#include "BoardInput.h"
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

Return<int32_t> VeskDeviceManager::startWatchDog(const hidl_string& device, uint32_t timeout) {
    trace("startWatchDog", 728);
    return bi_watchdog_open(device.c_str(), timeout);
}

Return<int32_t> VeskDeviceManager::feedWatchDog(const hidl_string& device) {
    trace("feedWatchDog", 733);
    return bi_watchdog_feed(device.c_str());
}

Return<int32_t> VeskDeviceManager::stopWatchDog(const hidl_string& device) {
    trace("stopWatchDog", 738);
    return bi_watchdog_close(device.c_str());
}

Return<int32_t> VeskDeviceManager::setRelayState(int32_t state) {
    trace("setRelayState", 743);
    return bi_relay_set_state(state);
}

Return<int32_t> VeskDeviceManager::getRelayState() {
    trace("getRelayState", 748);
    return bi_relay_get_state();
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

Return<int32_t> VeskDeviceManager::getProcessNum(const hidl_string& name, int32_t flag) {
    trace("getProcessNum", 940);
    return bi_kill_get_process_num(name.c_str(), flag);
}

Return<int32_t> VeskDeviceManager::killProcessNum(int32_t pid) {
    trace("killProcessNum", 990);
    return bi_kill_process_num(pid);
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

Return<int32_t> VeskDeviceManager::setPeripheralRelayStatus(uint32_t dev_num, int32_t enable) {
    vesk::log::debug(kTag, "%s %d, dev_num = %d, enable = %d\n", "setPeripheralRelayStatus", 1101,
                     dev_num, enable);
    return bi_peripheral_relay_enable(dev_num, enable);
}

Return<int32_t> VeskDeviceManager::getPeripheralRelayStatus(uint32_t dev_num) {
    vesk::log::debug(kTag, "%s %d, dev_num = %d\n", "getPeripheralRelayStatus", 1107, dev_num);
    return bi_peripheral_relay_get_status(dev_num);
}

Return<int32_t> VeskDeviceManager::setPcControlStatus(int32_t enable) {
    vesk::log::debug(kTag, "%s %d, enable = %d\n", "setPcControlStatus", 1113, enable);
    return bi_pc_ctrl_enable(enable);
}

Return<int32_t> VeskDeviceManager::getPcControlStatus() {
    trace("getPcControlStatus", 1119);
    return bi_pc_ctrl_get_status();
}

Return<int32_t> VeskDeviceManager::setUsbSubCardLedStatus(int32_t enable) {
    vesk::log::debug(kTag, "%s %d, enable = %d\n", "setUsbSubCardLedStatus", 1125, enable);
    return bi_usb_sub_card_led_enable(enable);
}

Return<int32_t> VeskDeviceManager::getUsbSubCardLedStatus() {
    trace("getUsbSubCardLedStatus", 1131);
    return bi_usb_sub_card_led_get_status();
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

Return<int32_t> VeskDeviceManager::compressVeskLog(const hidl_string& source,
                                                   const hidl_string& target) {
    trace("compressVeskLog", 1457);
    return bi_vesk_logd_compress(source.c_str(), target.c_str());
}

Return<int32_t> VeskDeviceManager::clearVeskLog(const hidl_string& path) {
    trace("clearVeskLog", 1462);
    return bi_vesk_logd_clear(path.c_str());
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

Return<int32_t> VeskDeviceManager::setRtcBootEnable(uint32_t enable) {
    trace("setRtcBootEnable", 1163);
    return bi_rtc_set_boot_enable(enable);
}

Return<int32_t> VeskDeviceManager::setRtcWakeEnable(uint32_t enable) {
    trace("setRtcWakeEnable", 1169);
    return bi_rtc_set_wake_enable(enable);
}

Return<int32_t> VeskDeviceManager::setRtcBootTime(const hidl_vec<uint32_t>& time) {
    trace("setRtcBootTime", 1175);
    return bi_rtc_set_boot_time(BoardInput<uint32_t>(time, VESK_RTC_SET_WORDS).data());
}

Return<int32_t> VeskDeviceManager::setRtcWakeTime(const hidl_vec<uint32_t>& time) {
    trace("setRtcWakeTime", 1181);
    return bi_rtc_set_wake_time(BoardInput<uint32_t>(time, VESK_RTC_SET_WORDS).data());
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

Return<int32_t> VeskDeviceManager::setScreenModeState(int32_t state) {
    trace("setScreenModeState", 1575);
    return bi_resolution_screen_mode_set_state(state);
}

Return<int32_t> VeskDeviceManager::getScreenModeState() {
    trace("getScreenModeState", 1580);
    return bi_resolution_screen_mode_get_state();
}

Return<int32_t> VeskDeviceManager::setHeadphonePowerState(int32_t state) {
    trace("setHeadphonePowerState", 1585);
    return bi_headphone_power_set_state(state);
}

Return<int32_t> VeskDeviceManager::getHeadphonePowerState() {
    trace("getHeadphonePowerState", 1590);
    return bi_headphone_power_get_state();
}

Return<int32_t> VeskDeviceManager::getPQEnable() {
    trace("getPQEnable", 1606);
    return bi_get_pq_state();
}

Return<int32_t> VeskDeviceManager::getHdmiInStatus(int32_t port) {
    trace("getHdmiInStatus", 1611);
    return bi_display_get_hdmi_in_state(port);
}

Return<int32_t> VeskDeviceManager::getHdmiOutStatus(int32_t port) {
    trace("getHdmiOutStatus", 1616);
    return bi_display_get_hdmi_out_state(port);
}

Return<int32_t> VeskDeviceManager::fpgaFirmwareUpdate(const hidl_string& path) {
    trace("fpgaFirmwareUpdate", 1621);
    return bi_fpga_firmware_update(path.c_str());
}

Return<int32_t> VeskDeviceManager::schedUnbindPidFromCore(int32_t pid) {
    trace("schedUnbindPidFromCore", 1626);
    return bi_sched_unbind_pid_from_main_core(pid);
}

Return<int32_t> VeskDeviceManager::schedBindPidFromCore(int32_t pid) {
    trace("schedBindPidFromCore", 1631);
    return bi_sched_bind_pid_to_main_core(pid);
}

Return<int32_t> VeskDeviceManager::schedAdjustCpuFreq(const hidl_string& mode) {
    trace("schedAdjustCpuFreq", 1636);
    return bi_sched_adjust_cpu_freq(mode.c_str());
}

Return<int32_t> VeskDeviceManager::checkBlock(const hidl_string& path) {
    trace("checkBlock", 1641);
    return bi_block_check(path.c_str());
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
