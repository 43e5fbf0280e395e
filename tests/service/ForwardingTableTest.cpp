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
    const char* trace;  // the whole debug line under "D"
};

const std::vector<Row>& forwardingTable() {
    static const std::vector<Row> rows = {
            {"setSysLedState", [](IVeskDeviceManager& s) { return int32_t(s.setSysLedState(-7)); },
             "bi_sysled_set_state", json::array({-7}), "setSysLedState 48\n"},
            {"getSysLedState", [](IVeskDeviceManager& s) { return int32_t(s.getSysLedState()); },
             "bi_sysled_get_state", json::array({}), "getSysLedState 54\n"},
            {"setNetLedState", [](IVeskDeviceManager& s) { return int32_t(s.setNetLedState(-7)); },
             "bi_netled_set_state", json::array({-7}), "setNetLedState 60\n"},
            {"getNetLedState", [](IVeskDeviceManager& s) { return int32_t(s.getNetLedState()); },
             "bi_netled_get_state", json::array({}), "getNetLedState 66\n"},
            {"getColorLedState", [](IVeskDeviceManager& s) { return int32_t(s.getColorLedState()); },
             "bi_triled_get_state", json::array({}), "getColorLedState 79\n"},
            {"set4gLedState", [](IVeskDeviceManager& s) { return int32_t(s.set4gLedState(-7)); },
             "bi_4gled_set_state", json::array({-7}), "set4gLedState 85\n"},
            {"get4gLedState", [](IVeskDeviceManager& s) { return int32_t(s.get4gLedState()); },
             "bi_4gled_get_state", json::array({}), "get4gLedState 91\n"},
            {"setPositionLedState",
             [](IVeskDeviceManager& s) { return int32_t(s.setPositionLedState(-7)); },
             "bi_position_led_set_state", json::array({-7}), "setPositionLedState 97\n"},
            {"getPositionLedState",
             [](IVeskDeviceManager& s) { return int32_t(s.getPositionLedState()); },
             "bi_position_led_get_state", json::array({}), "getPositionLedState 103\n"},
            {"setSwitchLedState",
             [](IVeskDeviceManager& s) { return int32_t(s.setSwitchLedState(-7)); },
             "bi_switchled_set_state", json::array({-7}), "setSwitchLedState 109\n"},
            {"getSwitchLedState",
             [](IVeskDeviceManager& s) { return int32_t(s.getSwitchLedState()); },
             "bi_switchled_get_state", json::array({}), "getSwitchLedState 115\n"},
            {"setRunningLedState",
             [](IVeskDeviceManager& s) { return int32_t(s.setRunningLedState(-7)); },
             "bi_runningled_set_state", json::array({-7}), "setRunningLedState 121\n"},
            {"getRunningLedState",
             [](IVeskDeviceManager& s) { return int32_t(s.getRunningLedState()); },
             "bi_runningled_get_state", json::array({}), "getRunningLedState 127\n"},
            {"setCloudLedState",
             [](IVeskDeviceManager& s) { return int32_t(s.setCloudLedState(-7)); },
             "bi_cloudled_set_state", json::array({-7}), "setCloudLedState 133\n"},
            {"getCloudLedState", [](IVeskDeviceManager& s) { return int32_t(s.getCloudLedState()); },
             "bi_cloudled_get_state", json::array({}), "getCloudLedState 139\n"},
            {"startWatchDog",
             [](IVeskDeviceManager& s) {
                 return int32_t(s.startWatchDog("/dev/watchdog0", 4294967295u));
             },
             "bi_watchdog_open", json::array({"/dev/watchdog0", 4294967295u}),
             "startWatchDog 728\n"},
            {"feedWatchDog",
             [](IVeskDeviceManager& s) { return int32_t(s.feedWatchDog("/dev/watchdog0")); },
             "bi_watchdog_feed", json::array({"/dev/watchdog0"}), "feedWatchDog 733\n"},
            {"stopWatchDog",
             [](IVeskDeviceManager& s) { return int32_t(s.stopWatchDog("/dev/watchdog0")); },
             "bi_watchdog_close", json::array({"/dev/watchdog0"}), "stopWatchDog 738\n"},
            {"setRelayState", [](IVeskDeviceManager& s) { return int32_t(s.setRelayState(-7)); },
             "bi_relay_set_state", json::array({-7}), "setRelayState 743\n"},
            {"getRelayState", [](IVeskDeviceManager& s) { return int32_t(s.getRelayState()); },
             "bi_relay_get_state", json::array({}), "getRelayState 748\n"},
            {"setOpsUsbPort", [](IVeskDeviceManager& s) { return int32_t(s.setOpsUsbPort(-7)); },
             "bi_ops_set_usb_port", json::array({-7}), "setOpsUsbPort 885\n"},
            {"getOpsUsbPort", [](IVeskDeviceManager& s) { return int32_t(s.getOpsUsbPort()); },
             "bi_ops_get_usb_port", json::array({}), "getOpsUsbPort 891\n"},
            {"setOpsSwitchState",
             [](IVeskDeviceManager& s) { return int32_t(s.setOpsSwitchState(-7)); },
             "bi_ops_switch_control", json::array({-7}), "setOpsSwitchState 897, state = -7\n"},
            {"getOpsSwitchState",
             [](IVeskDeviceManager& s) { return int32_t(s.getOpsSwitchState()); },
             "bi_ops_get_switch_state", json::array({}), "getOpsSwitchState 903\n"},
            {"setOpsOnState", [](IVeskDeviceManager& s) { return int32_t(s.setOpsOnState(-7)); },
             "bi_ops_on_set_state", json::array({-7}), "setOpsOnState 910, state = -7\n"},
            {"getOpsOnState", [](IVeskDeviceManager& s) { return int32_t(s.getOpsOnState()); },
             "bi_ops_on_get_state", json::array({}), "getOpsOnState 916\n"},
            {"setOpsControlState",
             [](IVeskDeviceManager& s) { return int32_t(s.setOpsControlState(-7)); },
             "bi_ops_control_set_state", json::array({-7}), "setOpsControlState 922, state = -7\n"},
            {"getOpsControlState",
             [](IVeskDeviceManager& s) { return int32_t(s.getOpsControlState()); },
             "bi_ops_control_get_state", json::array({}), "getOpsControlState 928\n"},
            {"getOpsDetectState",
             [](IVeskDeviceManager& s) { return int32_t(s.getOpsDetectState()); },
             "bi_ops_detect_get_state", json::array({}), "getOpsDetectState 934\n"},
            {"getProcessNum",
             [](IVeskDeviceManager& s) { return int32_t(s.getProcessNum("/dev/watchdog0", -7)); },
             "bi_kill_get_process_num", json::array({"/dev/watchdog0", -7}), "getProcessNum 940\n"},
            {"killProcessNum", [](IVeskDeviceManager& s) { return int32_t(s.killProcessNum(-7)); },
             "bi_kill_process_num", json::array({-7}), "killProcessNum 990\n"},
            {"getOtgMode", [](IVeskDeviceManager& s) { return int32_t(s.getOtgMode()); },
             "bi_otg_get_mode", json::array({}), "getOtgMode 996\n"},
            {"setOtgMode", [](IVeskDeviceManager& s) { return int32_t(s.setOtgMode(4294967295u)); },
             "bi_otg_set_mode", json::array({4294967295u}), "setOtgMode 1002\n"},
            {"setFactoryToolStatus",
             [](IVeskDeviceManager& s) { return int32_t(s.setFactoryToolStatus(-7)); },
             "bi_factory_tools_enable", json::array({-7}),
             "setFactoryToolStatus 1088, enable = -7\n"},
            {"getFactoryToolStatus",
             [](IVeskDeviceManager& s) { return int32_t(s.getFactoryToolStatus()); },
             "bi_factory_tools_get_status", json::array({}), "getFactoryToolStatus 1095\n"},
            {"setPeripheralRelayStatus",
             [](IVeskDeviceManager& s) {
                 return int32_t(s.setPeripheralRelayStatus(4294967295u, -7));
             },
             "bi_peripheral_relay_enable", json::array({4294967295u, -7}),
             "setPeripheralRelayStatus 1101, dev_num = -1, enable = -7\n"},
            {"getPeripheralRelayStatus",
             [](IVeskDeviceManager& s) { return int32_t(s.getPeripheralRelayStatus(4294967295u)); },
             "bi_peripheral_relay_get_status", json::array({4294967295u}),
             "getPeripheralRelayStatus 1107, dev_num = -1\n"},
            {"setPcControlStatus",
             [](IVeskDeviceManager& s) { return int32_t(s.setPcControlStatus(-7)); },
             "bi_pc_ctrl_enable", json::array({-7}), "setPcControlStatus 1113, enable = -7\n"},
            {"getPcControlStatus",
             [](IVeskDeviceManager& s) { return int32_t(s.getPcControlStatus()); },
             "bi_pc_ctrl_get_status", json::array({}), "getPcControlStatus 1119\n"},
            {"setUsbSubCardLedStatus",
             [](IVeskDeviceManager& s) { return int32_t(s.setUsbSubCardLedStatus(-7)); },
             "bi_usb_sub_card_led_enable", json::array({-7}),
             "setUsbSubCardLedStatus 1125, enable = -7\n"},
            {"getUsbSubCardLedStatus",
             [](IVeskDeviceManager& s) { return int32_t(s.getUsbSubCardLedStatus()); },
             "bi_usb_sub_card_led_get_status", json::array({}), "getUsbSubCardLedStatus 1131\n"},
            {"compressVeskLog",
             [](IVeskDeviceManager& s) {
                 return int32_t(s.compressVeskLog("/dev/watchdog0", "second"));
             },
             "bi_vesk_logd_compress", json::array({"/dev/watchdog0", "second"}),
             "compressVeskLog 1457\n"},
            {"clearVeskLog",
             [](IVeskDeviceManager& s) { return int32_t(s.clearVeskLog("/dev/watchdog0")); },
             "bi_vesk_logd_clear", json::array({"/dev/watchdog0"}), "clearVeskLog 1462\n"},
            {"setUsbSwitchEnable",
             [](IVeskDeviceManager& s) { return int32_t(s.setUsbSwitchEnable(4294967295u)); },
             "bi_usb_set_switch_enable", json::array({4294967295u}), "setUsbSwitchEnable 1138\n"},
            {"getUsbSwitchEnable",
             [](IVeskDeviceManager& s) { return int32_t(s.getUsbSwitchEnable()); },
             "bi_usb_get_switch_enable", json::array({}), "getUsbSwitchEnable 1144\n"},
            {"setUsbState",
             [](IVeskDeviceManager& s) { return int32_t(s.setUsbState(4294967295u, 7u)); },
             "bi_set_usb_state", json::array({4294967295u, 7u}),
             "setUsbState 1151 index = -1, enable = 7\n"},
            {"getUsbState",
             [](IVeskDeviceManager& s) { return int32_t(s.getUsbState(4294967295u)); },
             "bi_get_usb_state", json::array({4294967295u}), "getUsbState 1157 index = -1\n"},
            {"setRtcBootEnable",
             [](IVeskDeviceManager& s) { return int32_t(s.setRtcBootEnable(4294967295u)); },
             "bi_rtc_set_boot_enable", json::array({4294967295u}), "setRtcBootEnable 1163\n"},
            {"setRtcWakeEnable",
             [](IVeskDeviceManager& s) { return int32_t(s.setRtcWakeEnable(4294967295u)); },
             "bi_rtc_set_wake_enable", json::array({4294967295u}), "setRtcWakeEnable 1169\n"},
            {"setRtcBootTime",
             [](IVeskDeviceManager& s) { return int32_t(s.setRtcBootTime(rtcTime)); },
             "bi_rtc_set_boot_time", json::array({rtcWords}), "setRtcBootTime 1175\n"},
            {"setRtcWakeTime",
             [](IVeskDeviceManager& s) { return int32_t(s.setRtcWakeTime(rtcTime)); },
             "bi_rtc_set_wake_time", json::array({rtcWords}), "setRtcWakeTime 1181\n"},
            {"getAdcBoardId", [](IVeskDeviceManager& s) { return int32_t(s.getAdcBoardId()); },
             "bi_adc_get_board_id", json::array({}), "getAdcBoardId 1467\n"},
            {"setLowPowerMode", [](IVeskDeviceManager& s) { return int32_t(s.setLowPowerMode()); },
             "bi_power_low_power_mode", json::array({}), "setLowPowerMode 1472\n"},
            {"setNormalPowerMode",
             [](IVeskDeviceManager& s) { return int32_t(s.setNormalPowerMode()); },
             "bi_power_normal_mode", json::array({}), "setNormalPowerMode 1477\n"},
            {"getApNetworkInsulation",
             [](IVeskDeviceManager& s) { return int32_t(s.getApNetworkInsulation()); },
             "bi_network_get_ap_insulation", json::array({}), "getApNetworkInsulation 1482\n"},
            {"setApNetworkInsulation",
             [](IVeskDeviceManager& s) { return int32_t(s.setApNetworkInsulation(4294967295u)); },
             "bi_network_set_ap_insulation", json::array({4294967295u}),
             "setApNetworkInsulation 1487\n"},
            {"getApChannel", [](IVeskDeviceManager& s) { return int32_t(s.getApChannel()); },
             "bi_network_get_ap_channel", json::array({}), "getApChannel 1492\n"},
            {"setAudioEnable",
             [](IVeskDeviceManager& s) { return int32_t(s.setAudioEnable(255, 3)); },
             "bi_i2c_set_audio_enable", json::array({255, 3}), "setAudioEnable 1504, enable = 3\n"},
            {"getAudioEnable", [](IVeskDeviceManager& s) { return int32_t(s.getAudioEnable(255)); },
             "bi_i2c_get_audio_enable", json::array({255}), "getAudioEnable 1510\n"},
            {"setVideoInputSrcVolume",
             [](IVeskDeviceManager& s) { return int32_t(s.setVideoInputSrcVolume(255, 3)); },
             "bi_i2c_set_video_inputsrc_volume", json::array({255, 3}),
             "setVideoInputSrcVolume 1517, enable = 3\n"},
            {"getVideoInputSrcVolume",
             [](IVeskDeviceManager& s) { return int32_t(s.getVideoInputSrcVolume(255)); },
             "bi_i2c_get_video_inputsrc_volume", json::array({255}),
             "getVideoInputSrcVolume 1523\n"},
            {"getLoraState", [](IVeskDeviceManager& s) { return int32_t(s.getLoraState()); },
             "bi_lora_get_state", json::array({}), "getLoraState 1544\n"},
            {"setInfrared", [](IVeskDeviceManager& s) { return int32_t(s.setInfrared()); },
             "bi_infrared_write", json::array({}), "setInfrared 1538\n"},
            {"setRestoreFactorySetting",
             [](IVeskDeviceManager& s) { return int32_t(s.setRestoreFactorySetting(-7)); },
             "bi_restore_factory_setting", json::array({-7}), "setRestoreFactorySetting 1550\n"},
            {"set4gModuleState",
             [](IVeskDeviceManager& s) { return int32_t(s.set4gModuleState(-7)); },
             "bi_4g_module_set_state", json::array({-7}), "set4gModuleState 1555\n"},
            {"get4gModuleState", [](IVeskDeviceManager& s) { return int32_t(s.get4gModuleState()); },
             "bi_4g_module_get_state", json::array({}), "get4gModuleState 1560\n"},
            {"set4gPowerState", [](IVeskDeviceManager& s) { return int32_t(s.set4gPowerState(-7)); },
             "bi_4g_power_set_state", json::array({-7}), "set4gPowerState 1565\n"},
            {"get4gPowerState", [](IVeskDeviceManager& s) { return int32_t(s.get4gPowerState()); },
             "bi_4g_power_get_state", json::array({}), "get4gPowerState 1570\n"},
            {"setScreenModeState",
             [](IVeskDeviceManager& s) { return int32_t(s.setScreenModeState(-7)); },
             "bi_resolution_screen_mode_set_state", json::array({-7}), "setScreenModeState 1575\n"},
            {"getScreenModeState",
             [](IVeskDeviceManager& s) { return int32_t(s.getScreenModeState()); },
             "bi_resolution_screen_mode_get_state", json::array({}), "getScreenModeState 1580\n"},
            {"setHeadphonePowerState",
             [](IVeskDeviceManager& s) { return int32_t(s.setHeadphonePowerState(-7)); },
             "bi_headphone_power_set_state", json::array({-7}), "setHeadphonePowerState 1585\n"},
            {"getHeadphonePowerState",
             [](IVeskDeviceManager& s) { return int32_t(s.getHeadphonePowerState()); },
             "bi_headphone_power_get_state", json::array({}), "getHeadphonePowerState 1590\n"},
            {"getPQEnable", [](IVeskDeviceManager& s) { return int32_t(s.getPQEnable()); },
             "bi_get_pq_state", json::array({}), "getPQEnable 1606\n"},
            {"getHdmiInStatus", [](IVeskDeviceManager& s) { return int32_t(s.getHdmiInStatus(-7)); },
             "bi_display_get_hdmi_in_state", json::array({-7}), "getHdmiInStatus 1611\n"},
            {"getHdmiOutStatus",
             [](IVeskDeviceManager& s) { return int32_t(s.getHdmiOutStatus(-7)); },
             "bi_display_get_hdmi_out_state", json::array({-7}), "getHdmiOutStatus 1616\n"},
            {"fpgaFirmwareUpdate",
             [](IVeskDeviceManager& s) { return int32_t(s.fpgaFirmwareUpdate("/dev/watchdog0")); },
             "bi_fpga_firmware_update", json::array({"/dev/watchdog0"}),
             "fpgaFirmwareUpdate 1621\n"},
            {"schedUnbindPidFromCore",
             [](IVeskDeviceManager& s) { return int32_t(s.schedUnbindPidFromCore(-7)); },
             "bi_sched_unbind_pid_from_main_core", json::array({-7}),
             "schedUnbindPidFromCore 1626\n"},
            {"schedBindPidFromCore",
             [](IVeskDeviceManager& s) { return int32_t(s.schedBindPidFromCore(-7)); },
             "bi_sched_bind_pid_to_main_core", json::array({-7}), "schedBindPidFromCore 1631\n"},
            {"schedAdjustCpuFreq",
             [](IVeskDeviceManager& s) { return int32_t(s.schedAdjustCpuFreq("/dev/watchdog0")); },
             "bi_sched_adjust_cpu_freq", json::array({"/dev/watchdog0"}),
             "schedAdjustCpuFreq 1636\n"},
            {"checkBlock",
             [](IVeskDeviceManager& s) { return int32_t(s.checkBlock("/dev/watchdog0")); },
             "bi_block_check", json::array({"/dev/watchdog0"}), "checkBlock 1641\n"},
            {"setPowerAmplifierState",
             [](IVeskDeviceManager& s) { return int32_t(s.setPowerAmplifierState(-7)); },
             "bi_power_amplifier_set_state", json::array({-7}), "setPowerAmplifierState 1664\n"},
            {"getPowerAmplifierState",
             [](IVeskDeviceManager& s) { return int32_t(s.getPowerAmplifierState()); },
             "bi_power_amplifier_get_state", json::array({}), "getPowerAmplifierState 1670\n"},
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
