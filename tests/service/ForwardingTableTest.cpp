// Every forwarding method: its trace line, its board call with the arguments unchanged and its
// result returned unchanged. The expected table is written from the method table, apart from
// the service's own. setColorLedState (a second line) and getNetWorkState (failures become -1)
// have their own tests beside the fan stubs and the float readings.
#include <cmath>

#include "ServiceTest.h"

namespace vesk::test {
namespace {

const hidl_vec<uint32_t> rtcTime = {2026, 11, 22, 9, 30, 15, 0, 0};
const json rtcWords = json::array({2026, 11, 22, 9, 30, 15});

struct Row {
    const char* method;
    int32_t (*call)(IVeskDeviceManager& service);
    const char* board;
    json args;
    std::string trace;  // the whole debug line under "D"
};

const std::vector<Row>& forwardingTable() {
    static const std::vector<Row> rows = {
            {"setSysLedState", [](IVeskDeviceManager& s) { return int32_t(s.setSysLedState(-7)); },
             "bi_sysled_set_state", json::array({-7}), traced("setSysLedState") + "\n"},
            {"getSysLedState", [](IVeskDeviceManager& s) { return int32_t(s.getSysLedState()); },
             "bi_sysled_get_state", json::array({}), traced("getSysLedState") + "\n"},
            {"setNetLedState", [](IVeskDeviceManager& s) { return int32_t(s.setNetLedState(-7)); },
             "bi_netled_set_state", json::array({-7}), traced("setNetLedState") + "\n"},
            {"getNetLedState", [](IVeskDeviceManager& s) { return int32_t(s.getNetLedState()); },
             "bi_netled_get_state", json::array({}), traced("getNetLedState") + "\n"},
            {"getColorLedState", [](IVeskDeviceManager& s) { return int32_t(s.getColorLedState()); },
             "bi_triled_get_state", json::array({}), traced("getColorLedState") + "\n"},
            {"set4gLedState", [](IVeskDeviceManager& s) { return int32_t(s.set4gLedState(-7)); },
             "bi_4gled_set_state", json::array({-7}), traced("set4gLedState") + "\n"},
            {"get4gLedState", [](IVeskDeviceManager& s) { return int32_t(s.get4gLedState()); },
             "bi_4gled_get_state", json::array({}), traced("get4gLedState") + "\n"},
            {"setPositionLedState",
             [](IVeskDeviceManager& s) { return int32_t(s.setPositionLedState(-7)); },
             "bi_position_led_set_state", json::array({-7}), traced("setPositionLedState") + "\n"},
            {"getPositionLedState",
             [](IVeskDeviceManager& s) { return int32_t(s.getPositionLedState()); },
             "bi_position_led_get_state", json::array({}), traced("getPositionLedState") + "\n"},
            {"setSwitchLedState",
             [](IVeskDeviceManager& s) { return int32_t(s.setSwitchLedState(-7)); },
             "bi_switchled_set_state", json::array({-7}), traced("setSwitchLedState") + "\n"},
            {"getSwitchLedState",
             [](IVeskDeviceManager& s) { return int32_t(s.getSwitchLedState()); },
             "bi_switchled_get_state", json::array({}), traced("getSwitchLedState") + "\n"},
            {"setRunningLedState",
             [](IVeskDeviceManager& s) { return int32_t(s.setRunningLedState(-7)); },
             "bi_runningled_set_state", json::array({-7}), traced("setRunningLedState") + "\n"},
            {"getRunningLedState",
             [](IVeskDeviceManager& s) { return int32_t(s.getRunningLedState()); },
             "bi_runningled_get_state", json::array({}), traced("getRunningLedState") + "\n"},
            {"setCloudLedState",
             [](IVeskDeviceManager& s) { return int32_t(s.setCloudLedState(-7)); },
             "bi_cloudled_set_state", json::array({-7}), traced("setCloudLedState") + "\n"},
            {"getCloudLedState", [](IVeskDeviceManager& s) { return int32_t(s.getCloudLedState()); },
             "bi_cloudled_get_state", json::array({}), traced("getCloudLedState") + "\n"},
            {"startWatchDog",
             [](IVeskDeviceManager& s) {
                 return int32_t(s.startWatchDog("/dev/watchdog0", 4294967295u));
             },
             "bi_watchdog_open", json::array({"/dev/watchdog0", 4294967295u}),
             traced("startWatchDog") + "\n"},
            {"feedWatchDog",
             [](IVeskDeviceManager& s) { return int32_t(s.feedWatchDog("/dev/watchdog0")); },
             "bi_watchdog_feed", json::array({"/dev/watchdog0"}), traced("feedWatchDog") + "\n"},
            {"stopWatchDog",
             [](IVeskDeviceManager& s) { return int32_t(s.stopWatchDog("/dev/watchdog0")); },
             "bi_watchdog_close", json::array({"/dev/watchdog0"}), traced("stopWatchDog") + "\n"},
            {"setRelayState", [](IVeskDeviceManager& s) { return int32_t(s.setRelayState(-7)); },
             "bi_relay_set_state", json::array({-7}), traced("setRelayState") + "\n"},
            {"getRelayState", [](IVeskDeviceManager& s) { return int32_t(s.getRelayState()); },
             "bi_relay_get_state", json::array({}), traced("getRelayState") + "\n"},
            {"setOpsUsbPort", [](IVeskDeviceManager& s) { return int32_t(s.setOpsUsbPort(-7)); },
             "bi_ops_set_usb_port", json::array({-7}), traced("setOpsUsbPort") + "\n"},
            {"getOpsUsbPort", [](IVeskDeviceManager& s) { return int32_t(s.getOpsUsbPort()); },
             "bi_ops_get_usb_port", json::array({}), traced("getOpsUsbPort") + "\n"},
            {"setOpsSwitchState",
             [](IVeskDeviceManager& s) { return int32_t(s.setOpsSwitchState(-7)); },
             "bi_ops_switch_control", json::array({-7}),
             traced("setOpsSwitchState") + ", state = -7\n"},
            {"getOpsSwitchState",
             [](IVeskDeviceManager& s) { return int32_t(s.getOpsSwitchState()); },
             "bi_ops_get_switch_state", json::array({}), traced("getOpsSwitchState") + "\n"},
            {"setOpsOnState", [](IVeskDeviceManager& s) { return int32_t(s.setOpsOnState(-7)); },
             "bi_ops_on_set_state", json::array({-7}), traced("setOpsOnState") + ", state = -7\n"},
            {"getOpsOnState", [](IVeskDeviceManager& s) { return int32_t(s.getOpsOnState()); },
             "bi_ops_on_get_state", json::array({}), traced("getOpsOnState") + "\n"},
            {"setOpsControlState",
             [](IVeskDeviceManager& s) { return int32_t(s.setOpsControlState(-7)); },
             "bi_ops_control_set_state", json::array({-7}),
             traced("setOpsControlState") + ", state = -7\n"},
            {"getOpsControlState",
             [](IVeskDeviceManager& s) { return int32_t(s.getOpsControlState()); },
             "bi_ops_control_get_state", json::array({}), traced("getOpsControlState") + "\n"},
            {"getOpsDetectState",
             [](IVeskDeviceManager& s) { return int32_t(s.getOpsDetectState()); },
             "bi_ops_detect_get_state", json::array({}), traced("getOpsDetectState") + "\n"},
            {"getProcessNum",
             [](IVeskDeviceManager& s) { return int32_t(s.getProcessNum("/dev/watchdog0", -7)); },
             "bi_kill_get_process_num", json::array({"/dev/watchdog0", -7}),
             traced("getProcessNum") + "\n"},
            {"killProcessNum", [](IVeskDeviceManager& s) { return int32_t(s.killProcessNum(-7)); },
             "bi_kill_process_num", json::array({-7}), traced("killProcessNum") + "\n"},
            {"getOtgMode", [](IVeskDeviceManager& s) { return int32_t(s.getOtgMode()); },
             "bi_otg_get_mode", json::array({}), traced("getOtgMode") + "\n"},
            {"setOtgMode", [](IVeskDeviceManager& s) { return int32_t(s.setOtgMode(4294967295u)); },
             "bi_otg_set_mode", json::array({4294967295u}), traced("setOtgMode") + "\n"},
            {"setFactoryToolStatus",
             [](IVeskDeviceManager& s) { return int32_t(s.setFactoryToolStatus(-7)); },
             "bi_factory_tools_enable", json::array({-7}),
             traced("setFactoryToolStatus") + ", enable = -7\n"},
            {"getFactoryToolStatus",
             [](IVeskDeviceManager& s) { return int32_t(s.getFactoryToolStatus()); },
             "bi_factory_tools_get_status", json::array({}), traced("getFactoryToolStatus") + "\n"},
            {"setPeripheralRelayStatus",
             [](IVeskDeviceManager& s) {
                 return int32_t(s.setPeripheralRelayStatus(4294967295u, -7));
             },
             "bi_peripheral_relay_enable", json::array({4294967295u, -7}),
             traced("setPeripheralRelayStatus") + ", dev_num = -1, enable = -7\n"},
            {"getPeripheralRelayStatus",
             [](IVeskDeviceManager& s) { return int32_t(s.getPeripheralRelayStatus(4294967295u)); },
             "bi_peripheral_relay_get_status", json::array({4294967295u}),
             traced("getPeripheralRelayStatus") + ", dev_num = -1\n"},
            {"setPcControlStatus",
             [](IVeskDeviceManager& s) { return int32_t(s.setPcControlStatus(-7)); },
             "bi_pc_ctrl_enable", json::array({-7}),
             traced("setPcControlStatus") + ", enable = -7\n"},
            {"getPcControlStatus",
             [](IVeskDeviceManager& s) { return int32_t(s.getPcControlStatus()); },
             "bi_pc_ctrl_get_status", json::array({}), traced("getPcControlStatus") + "\n"},
            {"setUsbSubCardLedStatus",
             [](IVeskDeviceManager& s) { return int32_t(s.setUsbSubCardLedStatus(-7)); },
             "bi_usb_sub_card_led_enable", json::array({-7}),
             traced("setUsbSubCardLedStatus") + ", enable = -7\n"},
            {"getUsbSubCardLedStatus",
             [](IVeskDeviceManager& s) { return int32_t(s.getUsbSubCardLedStatus()); },
             "bi_usb_sub_card_led_get_status", json::array({}),
             traced("getUsbSubCardLedStatus") + "\n"},
            {"compressVeskLog",
             [](IVeskDeviceManager& s) {
                 return int32_t(s.compressVeskLog("/dev/watchdog0", "second"));
             },
             "bi_vesk_logd_compress", json::array({"/dev/watchdog0", "second"}),
             traced("compressVeskLog") + "\n"},
            {"clearVeskLog",
             [](IVeskDeviceManager& s) { return int32_t(s.clearVeskLog("/dev/watchdog0")); },
             "bi_vesk_logd_clear", json::array({"/dev/watchdog0"}), traced("clearVeskLog") + "\n"},
            {"setUsbSwitchEnable",
             [](IVeskDeviceManager& s) { return int32_t(s.setUsbSwitchEnable(4294967295u)); },
             "bi_usb_set_switch_enable", json::array({4294967295u}),
             traced("setUsbSwitchEnable") + "\n"},
            {"getUsbSwitchEnable",
             [](IVeskDeviceManager& s) { return int32_t(s.getUsbSwitchEnable()); },
             "bi_usb_get_switch_enable", json::array({}), traced("getUsbSwitchEnable") + "\n"},
            {"setUsbState",
             [](IVeskDeviceManager& s) { return int32_t(s.setUsbState(4294967295u, 7u)); },
             "bi_set_usb_state", json::array({4294967295u, 7u}),
             traced("setUsbState") + " index = -1, enable = 7\n"},
            {"getUsbState",
             [](IVeskDeviceManager& s) { return int32_t(s.getUsbState(4294967295u)); },
             "bi_get_usb_state", json::array({4294967295u}),
             traced("getUsbState") + " index = -1\n"},
            {"setRtcBootEnable",
             [](IVeskDeviceManager& s) { return int32_t(s.setRtcBootEnable(4294967295u)); },
             "bi_rtc_set_boot_enable", json::array({4294967295u}),
             traced("setRtcBootEnable") + "\n"},
            {"setRtcWakeEnable",
             [](IVeskDeviceManager& s) { return int32_t(s.setRtcWakeEnable(4294967295u)); },
             "bi_rtc_set_wake_enable", json::array({4294967295u}),
             traced("setRtcWakeEnable") + "\n"},
            {"setRtcBootTime",
             [](IVeskDeviceManager& s) { return int32_t(s.setRtcBootTime(rtcTime)); },
             "bi_rtc_set_boot_time", json::array({rtcWords}), traced("setRtcBootTime") + "\n"},
            {"setRtcWakeTime",
             [](IVeskDeviceManager& s) { return int32_t(s.setRtcWakeTime(rtcTime)); },
             "bi_rtc_set_wake_time", json::array({rtcWords}), traced("setRtcWakeTime") + "\n"},
            {"getAdcBoardId", [](IVeskDeviceManager& s) { return int32_t(s.getAdcBoardId()); },
             "bi_adc_get_board_id", json::array({}), traced("getAdcBoardId") + "\n"},
            {"setLowPowerMode", [](IVeskDeviceManager& s) { return int32_t(s.setLowPowerMode()); },
             "bi_power_low_power_mode", json::array({}), traced("setLowPowerMode") + "\n"},
            {"setNormalPowerMode",
             [](IVeskDeviceManager& s) { return int32_t(s.setNormalPowerMode()); },
             "bi_power_normal_mode", json::array({}), traced("setNormalPowerMode") + "\n"},
            {"getApNetworkInsulation",
             [](IVeskDeviceManager& s) { return int32_t(s.getApNetworkInsulation()); },
             "bi_network_get_ap_insulation", json::array({}),
             traced("getApNetworkInsulation") + "\n"},
            {"setApNetworkInsulation",
             [](IVeskDeviceManager& s) { return int32_t(s.setApNetworkInsulation(4294967295u)); },
             "bi_network_set_ap_insulation", json::array({4294967295u}),
             traced("setApNetworkInsulation") + "\n"},
            {"getApChannel", [](IVeskDeviceManager& s) { return int32_t(s.getApChannel()); },
             "bi_network_get_ap_channel", json::array({}), traced("getApChannel") + "\n"},
            {"setAudioEnable",
             [](IVeskDeviceManager& s) { return int32_t(s.setAudioEnable(255, 3)); },
             "bi_i2c_set_audio_enable", json::array({255, 3}),
             traced("setAudioEnable") + ", enable = 3\n"},
            {"getAudioEnable", [](IVeskDeviceManager& s) { return int32_t(s.getAudioEnable(255)); },
             "bi_i2c_get_audio_enable", json::array({255}), traced("getAudioEnable") + "\n"},
            {"setVideoInputSrcVolume",
             [](IVeskDeviceManager& s) { return int32_t(s.setVideoInputSrcVolume(255, 3)); },
             "bi_i2c_set_video_inputsrc_volume", json::array({255, 3}),
             traced("setVideoInputSrcVolume") + ", enable = 3\n"},
            {"getVideoInputSrcVolume",
             [](IVeskDeviceManager& s) { return int32_t(s.getVideoInputSrcVolume(255)); },
             "bi_i2c_get_video_inputsrc_volume", json::array({255}),
             traced("getVideoInputSrcVolume") + "\n"},
            {"getLoraState", [](IVeskDeviceManager& s) { return int32_t(s.getLoraState()); },
             "bi_lora_get_state", json::array({}), traced("getLoraState") + "\n"},
            {"setInfrared", [](IVeskDeviceManager& s) { return int32_t(s.setInfrared()); },
             "bi_infrared_write", json::array({}), traced("setInfrared") + "\n"},
            {"setRestoreFactorySetting",
             [](IVeskDeviceManager& s) { return int32_t(s.setRestoreFactorySetting(-7)); },
             "bi_restore_factory_setting", json::array({-7}),
             traced("setRestoreFactorySetting") + "\n"},
            {"set4gModuleState",
             [](IVeskDeviceManager& s) { return int32_t(s.set4gModuleState(-7)); },
             "bi_4g_module_set_state", json::array({-7}), traced("set4gModuleState") + "\n"},
            {"get4gModuleState", [](IVeskDeviceManager& s) { return int32_t(s.get4gModuleState()); },
             "bi_4g_module_get_state", json::array({}), traced("get4gModuleState") + "\n"},
            {"set4gPowerState", [](IVeskDeviceManager& s) { return int32_t(s.set4gPowerState(-7)); },
             "bi_4g_power_set_state", json::array({-7}), traced("set4gPowerState") + "\n"},
            {"get4gPowerState", [](IVeskDeviceManager& s) { return int32_t(s.get4gPowerState()); },
             "bi_4g_power_get_state", json::array({}), traced("get4gPowerState") + "\n"},
            {"setScreenModeState",
             [](IVeskDeviceManager& s) { return int32_t(s.setScreenModeState(-7)); },
             "bi_resolution_screen_mode_set_state", json::array({-7}),
             traced("setScreenModeState") + "\n"},
            {"getScreenModeState",
             [](IVeskDeviceManager& s) { return int32_t(s.getScreenModeState()); },
             "bi_resolution_screen_mode_get_state", json::array({}),
             traced("getScreenModeState") + "\n"},
            {"setHeadphonePowerState",
             [](IVeskDeviceManager& s) { return int32_t(s.setHeadphonePowerState(-7)); },
             "bi_headphone_power_set_state", json::array({-7}),
             traced("setHeadphonePowerState") + "\n"},
            {"getHeadphonePowerState",
             [](IVeskDeviceManager& s) { return int32_t(s.getHeadphonePowerState()); },
             "bi_headphone_power_get_state", json::array({}),
             traced("getHeadphonePowerState") + "\n"},
            {"getPQEnable", [](IVeskDeviceManager& s) { return int32_t(s.getPQEnable()); },
             "bi_get_pq_state", json::array({}), traced("getPQEnable") + "\n"},
            {"getHdmiInStatus", [](IVeskDeviceManager& s) { return int32_t(s.getHdmiInStatus(-7)); },
             "bi_display_get_hdmi_in_state", json::array({-7}), traced("getHdmiInStatus") + "\n"},
            {"getHdmiOutStatus",
             [](IVeskDeviceManager& s) { return int32_t(s.getHdmiOutStatus(-7)); },
             "bi_display_get_hdmi_out_state", json::array({-7}), traced("getHdmiOutStatus") + "\n"},
            {"fpgaFirmwareUpdate",
             [](IVeskDeviceManager& s) { return int32_t(s.fpgaFirmwareUpdate("/dev/watchdog0")); },
             "bi_fpga_firmware_update", json::array({"/dev/watchdog0"}),
             traced("fpgaFirmwareUpdate") + "\n"},
            {"schedUnbindPidFromCore",
             [](IVeskDeviceManager& s) { return int32_t(s.schedUnbindPidFromCore(-7)); },
             "bi_sched_unbind_pid_from_main_core", json::array({-7}),
             traced("schedUnbindPidFromCore") + "\n"},
            {"schedBindPidFromCore",
             [](IVeskDeviceManager& s) { return int32_t(s.schedBindPidFromCore(-7)); },
             "bi_sched_bind_pid_to_main_core", json::array({-7}),
             traced("schedBindPidFromCore") + "\n"},
            {"schedAdjustCpuFreq",
             [](IVeskDeviceManager& s) { return int32_t(s.schedAdjustCpuFreq("/dev/watchdog0")); },
             "bi_sched_adjust_cpu_freq", json::array({"/dev/watchdog0"}),
             traced("schedAdjustCpuFreq") + "\n"},
            {"checkBlock",
             [](IVeskDeviceManager& s) { return int32_t(s.checkBlock("/dev/watchdog0")); },
             "bi_block_check", json::array({"/dev/watchdog0"}), traced("checkBlock") + "\n"},
            {"setPowerAmplifierState",
             [](IVeskDeviceManager& s) { return int32_t(s.setPowerAmplifierState(-7)); },
             "bi_power_amplifier_set_state", json::array({-7}),
             traced("setPowerAmplifierState") + "\n"},
            {"getPowerAmplifierState",
             [](IVeskDeviceManager& s) { return int32_t(s.getPowerAmplifierState()); },
             "bi_power_amplifier_get_state", json::array({}),
             traced("getPowerAmplifierState") + "\n"},
    };
    return rows;
}

class ForwardingTest : public ServiceTest, public ::testing::WithParamInterface<Row> {};

TEST_P(ForwardingTest, TracesUnderDCallsTheBoardOnceAndReturnsItsResult) {
    const Row& row = GetParam();
    setLevel("D");
    script({{row.board, {{"return", -123456}}}});
    EXPECT_EQ(-123456, row.call(*service));
    EXPECT_EQ(LogLines{debugLine(row.trace)}, capturedLogWithTag(kServiceTag));
    auto board = callsOf(row.board);
    ASSERT_EQ(1u, board.size());
    EXPECT_EQ(row.args, board[0]["args"]);
    EXPECT_EQ(1u, calls().size()) << "no other board call";
}

TEST_P(ForwardingTest, PassesLargeAndZeroResultsUnchanged) {
    const Row& row = GetParam();
    script({{row.board, json::array({{{"return", 2147483647}}, {{"return", 0}}})}});
    EXPECT_EQ(2147483647, row.call(*service));
    EXPECT_EQ(0, row.call(*service));
}

TEST_P(ForwardingTest, WritesNoLineUnlessTheLevelStartsWithUpperCaseD) {
    const Row& row = GetParam();
    for (const char* level : {"", "E", "d", "I", "W", "debug"}) {
        if (level[0] != '\0') setLevel(level);
        vesk::host::clearCapturedLog();
        row.call(*service);
        EXPECT_TRUE(capturedLogWithTag(kServiceTag).empty()) << "level " << level;
    }
    setLevel("Debug");
    vesk::host::clearCapturedLog();
    row.call(*service);
    EXPECT_EQ(1u, capturedLogWithTag(kServiceTag).size());
}

INSTANTIATE_TEST_SUITE_P(Table, ForwardingTest, ::testing::ValuesIn(forwardingTable()),
                         [](const auto& info) { return std::string(info.param.method); });

}  // namespace
}  // namespace vesk::test
