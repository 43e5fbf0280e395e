// The forwarding methods that do a little more than forward: the fan stubs, the colour LED's
// second line, the network state's normalisation, the two float readings, argument logging.
#include "ServiceTest.h"

namespace vesk::test {
namespace {

using ForwardingSpecialTest = ServiceTest;

TEST_F(ForwardingSpecialTest, FanMethodsTraceAndAlwaysAnswerMinusOneWithoutTheBoard) {
    setLevel("D");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(-1, int32_t(service->setSimpleFanState(1)));
        EXPECT_EQ(-1, int32_t(service->getSimPleFanState()));
        EXPECT_EQ(-1, int32_t(service->setFanSpeedLevel(3)));
        EXPECT_EQ(-1, int32_t(service->getFanSpeedLevel()));
        EXPECT_EQ(-1, int32_t(service->getFanSpeedPRM()));
    }
    EXPECT_TRUE(calls().empty());
    LogLines once = {debugLine(traced("setSimpleFanState") + "\n"),
                     debugLine(traced("getSimPleFanState") + "\n"),
                     debugLine(traced("setFanSpeedLevel") + "\n"),
                     debugLine(traced("getFanSpeedLevel") + "\n"),
                     debugLine(traced("getFanSpeedPRM") + "\n")};
    LogLines twice = once;
    twice.insert(twice.end(), once.begin(), once.end());
    EXPECT_EQ(twice, capturedLogWithTag(kServiceTag));
}

TEST_F(ForwardingSpecialTest, ColorLedWritesTraceThenStatesWithoutLineEnd) {
    setLevel("D");
    script({{"bi_triled_set_state", {{"return", 5}}}});
    EXPECT_EQ(5, int32_t(service->setColorLedState(1, 0, 1)));
    EXPECT_EQ(1u, calls().size());
    EXPECT_EQ((LogLines{debugLine(traced("setColorLedState") + "\n"),
                        debugLine("red_state:1 green_state:0 blue_state:1")}),
              capturedLogWithTag(kServiceTag));
    ASSERT_EQ(1u, callsOf("bi_triled_set_state").size());
    EXPECT_EQ(json::array({1, 0, 1}), callsOf("bi_triled_set_state")[0]["args"]);
}

TEST_F(ForwardingSpecialTest, OpsSwitchStateLogsItsArgumentOnce) {
    setLevel("D");
    service->setOpsSwitchState(5);
    EXPECT_EQ(LogLines{debugLine(traced("setOpsSwitchState") + ", state = 5\n")},
              capturedLogWithTag(kServiceTag));
}

TEST_F(ForwardingSpecialTest, NetworkStateTurnsEveryFailureIntoMinusOne) {
    setLevel("D");
    script({{"bi_network_detection",
             json::array({{{"return", -5}}, {{"return", -1}}, {{"return", 0}}, {{"return", 3}}})}});
    EXPECT_EQ(-1, int32_t(service->getNetWorkState()));
    EXPECT_EQ(
            (LogLines{debugLine(traced("getNetWorkState") + "\n"), debugLine("error return -5\n")}),
            capturedLogWithTag(kServiceTag));
    EXPECT_EQ(-1, int32_t(service->getNetWorkState()));
    EXPECT_EQ(0, int32_t(service->getNetWorkState()));
    EXPECT_EQ(3, int32_t(service->getNetWorkState()));
    auto board = callsOf("bi_network_detection");
    ASSERT_EQ(4u, board.size());
    for (const auto& call : board) EXPECT_EQ(json::array(), call["args"]);
    EXPECT_EQ(4u, calls().size());
}

TEST_F(ForwardingSpecialTest, ColorLedReadsBackThroughItsGetter) {
    setLevel("D");
    script({{"bi_triled_get_state", {{"return", -77}}}});
    EXPECT_EQ(-77, int32_t(service->getColorLedState()));
    EXPECT_EQ(LogLines{debugLine(traced("getColorLedState") + "\n")},
              capturedLogWithTag(kServiceTag));
}

TEST_F(ForwardingSpecialTest, NetworkStateErrorLineNeedsD) {
    setLevel("I");
    script({{"bi_network_detection", {{"return", -5}}}});
    EXPECT_EQ(-1, int32_t(service->getNetWorkState()));
    EXPECT_TRUE(capturedLogWithTag(kServiceTag).empty());
}

TEST_F(ForwardingSpecialTest, FloatReadingsKeepANonIntegralBoardValueExactly) {
    setLevel("D");
    script({{"bi_adc_get_board_voltage", {{"return", 12.15}}},
            {"bi_adc_get_board_temperature", {{"return", -3.375}}}});
    EXPECT_EQ(12.15f, float(service->getBoardVoltage()));
    EXPECT_EQ(-3.375f, float(service->getBoardTemperature()));
    EXPECT_EQ((LogLines{debugLine(traced("getBoardVoltage") + "\n"),
                        debugLine(traced("getBoardTemperature") + "\n")}),
              capturedLogWithTag(kServiceTag));
    EXPECT_EQ(1u, callsOf("bi_adc_get_board_voltage").size());
    EXPECT_EQ(1u, callsOf("bi_adc_get_board_temperature").size());
}

TEST_F(ForwardingSpecialTest, OutOfRangeArgumentsReachTheBoardUnchanged) {
    script({{"bi_relay_set_state", {{"return", -22}}},
            {"bi_peripheral_relay_enable", {{"return", -19}}}});
    EXPECT_EQ(-22, int32_t(service->setRelayState(-1)));
    EXPECT_EQ(-19, int32_t(service->setPeripheralRelayStatus(99, 5)));
    EXPECT_EQ(json::array({-1}), callsOf("bi_relay_set_state")[0]["args"]);
    EXPECT_EQ(json::array({99, 5}), callsOf("bi_peripheral_relay_enable")[0]["args"]);
}

TEST_F(ForwardingSpecialTest, EmptyRtcTimeVectorPassesItsNullDataPointer) {
    script({{"bi_rtc_set_boot_time", {{"return", -14}}}});
    EXPECT_EQ(-14, int32_t(service->setRtcBootTime(hidl_vec<uint32_t>())));
    auto board = callsOf("bi_rtc_set_boot_time");
    ASSERT_EQ(1u, board.size());
    EXPECT_EQ(json::array({nullptr}), board[0]["args"]);
}

// The board reads six words of a time; a shorter time must not let it read past the client's
// vector into the service's memory, so the missing words are zeros.
TEST_F(ForwardingSpecialTest, ShortRtcTimesAreFilledUpWithZerosForTheBoard) {
    // The board answers without judging the time; the journal shows the words it was given.
    script({{"bi_rtc_set_boot_time", {{"return", 0}}}, {"bi_rtc_set_wake_time", {{"return", 0}}}});
    EXPECT_EQ(0, int32_t(service->setRtcBootTime(hidl_vec<uint32_t>{2024, 5, 17})));
    EXPECT_EQ(0, int32_t(service->setRtcWakeTime(hidl_vec<uint32_t>{7})));
    EXPECT_EQ(json::array({json::array({2024, 5, 17, 0, 0, 0})}),
              callsOf("bi_rtc_set_boot_time")[0]["args"]);
    EXPECT_EQ(json::array({json::array({7, 0, 0, 0, 0, 0})}),
              callsOf("bi_rtc_set_wake_time")[0]["args"]);
}

TEST_F(ForwardingSpecialTest, LongRtcTimesPassTheirOwnWords) {
    script({{"bi_rtc_set_boot_time", {{"return", 0}}}});
    EXPECT_EQ(0, int32_t(service->setRtcBootTime(hidl_vec<uint32_t>{2024, 5, 17, 8, 30, 0, 99})));
    EXPECT_EQ(json::array({json::array({2024, 5, 17, 8, 30, 0})}),
              callsOf("bi_rtc_set_boot_time")[0]["args"]);
}

TEST_F(ForwardingSpecialTest, VideoInputVolumeReusesTheAudioWording) {
    setLevel("D");
    service->setVideoInputSrcVolume(2, 200);
    service->getVideoInputSrcVolume(2);
    EXPECT_EQ((LogLines{debugLine(traced("setVideoInputSrcVolume") + ", enable = 200\n"),
                        debugLine(traced("getVideoInputSrcVolume") + "\n")}),
              capturedLogWithTag(kServiceTag));
}

}  // namespace
}  // namespace vesk::test
