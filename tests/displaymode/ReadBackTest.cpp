// getHDMIOutputMode(): the stored custom mode read back into three fields of a timing ("0" as
// 3840 x 2160 at 60 Hz, 22 fields parsed, anything else left alone), and split().
#include <unistd.h>

#include "DisplayModeFixture.h"

namespace vesk::test {
namespace {

// A timing whose every field is set, to see which ones the read-back touches.
timing_t marked() {
    timing_t t;
    t.name = "marked";
    t.pix_clock = 1.5;
    t.h_total = 11;
    t.h_active = 12;
    t.h_blank = 13;
    t.v_total = 21;
    t.v_active = 22;
    t.v_blank = 23;
    t.v_freq = 24.5;
    t.peak_bw = 31;
    return t;
}

timing_t markedWith(uint32_t hActive, uint32_t vActive, double vFreq) {
    timing_t t = marked();
    t.h_active = hActive;
    t.v_active = vActive;
    t.v_freq = vFreq;
    return t;
}

class ReadBackTest : public DisplayModeTest {
  protected:
    ReadBackTest() { setLevel("I"); }

    // getHDMIOutputMode() on a fresh object over the stored `value`; the log holds the call.
    timing_t readBack(const std::string& value) {
        storeEnv("ubootenv.var.custom_mode", value);
        return readBackStored();
    }
    timing_t readBackStored() {
        DisplayModeControl control;
        vesk::host::clearCapturedLog();
        timing_t timing = marked();
        control.getHDMIOutputMode(timing);
        return timing;
    }
    std::vector<std::string> split(const std::string& text, const std::string& delimiters,
                                   std::vector<std::string> tokens = {}) {
        DisplayModeControl control;
        control.split(text, tokens, delimiters);
        return tokens;
    }
};

TEST_F(ReadBackTest, StoredZeroIsTheNative2160p60) {
    timing_t timing = readBack("0");
    EXPECT_EQ(describe(markedWith(3840, 2160, 60.0)), describe(timing));
    EXPECT_EQ((LogLines{controlInfo("getHDMIOutputMode \n"),
                        controlWarn("getHDMIOutputMode custom_mode is null \n")}),
              capturedLog());
}

TEST_F(ReadBackTest, StoredZeroWarningShowsFromWarningLevel) {
    setLevel("W");
    readBack("0");
    EXPECT_EQ(LogLines{controlWarn("getHDMIOutputMode custom_mode is null \n")}, capturedLog());
    setLevel("E");
    readBack("0");
    EXPECT_EQ(LogLines{}, capturedLog());
    setLevel("D");
    readBack("0");
    EXPECT_EQ((LogLines{controlInfo("getHDMIOutputMode \n"),
                        controlWarn("getHDMIOutputMode custom_mode is null \n")}),
              capturedLog());
}

TEST_F(ReadBackTest, FullHdModeIsParsedWithItsRateInThousandths) {
    timing_t timing = readBack(kMode1920x1080);
    EXPECT_EQ(describe(markedWith(1920, 1080, 59934.0)), describe(timing));
    EXPECT_EQ((LogLines{controlInfo("getHDMIOutputMode \n"),
                        controlInfo("getHDMIOutputMode h_active:1920 Pixels v_active:1080 Pixels "
                                    "v_freq:59.934000 hz\n")}),
              capturedLog());
}

TEST_F(ReadBackTest, FieldsAreTakenByPositionTwoNineAndFifteen) {
    timing_t timing = readBack("1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,21,22");
    EXPECT_EQ(describe(markedWith(9, 15, 2.0)), describe(timing));
    EXPECT_EQ(controlInfo("getHDMIOutputMode h_active:9 Pixels v_active:15 Pixels "
                          "v_freq:0.002000 hz\n"),
              capturedLog().back());
}

TEST_F(ReadBackTest, TwentyOneFieldsLeaveTheTimingAlone) {
    timing_t timing = readBack("1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,21");
    EXPECT_EQ(describe(marked()), describe(timing));
    EXPECT_EQ(LogLines{controlInfo("getHDMIOutputMode \n")}, capturedLog());
}

TEST_F(ReadBackTest, TwentyThreeFieldsLeaveTheTimingAlone) {
    timing_t timing = readBack(std::string(kMode1920x1080) + ",1");
    EXPECT_EQ(describe(marked()), describe(timing));
    EXPECT_EQ(LogLines{controlInfo("getHDMIOutputMode \n")}, capturedLog());
}

TEST_F(ReadBackTest, AnEmptyFieldReducesTheCount) {
    timing_t timing =
            readBack("1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,,22");  // 22 fields
    EXPECT_EQ(describe(marked()), describe(timing));
    EXPECT_EQ(LogLines{controlInfo("getHDMIOutputMode \n")}, capturedLog());
}

TEST_F(ReadBackTest, LeadingAndTrailingCommasAreIgnored) {
    timing_t timing = readBack(std::string(",") + kMode1920x1080 + ",,");
    EXPECT_EQ(describe(markedWith(1920, 1080, 59934.0)), describe(timing));
}

TEST_F(ReadBackTest, TokensAreReadAsAtoiReadsThem) {
    timing_t timing = readBack("1,-7,3,4,5,6,7,8,1920px,10,11,12,13,14, 1080,16,17,18,19,20,21,x");
    EXPECT_EQ(describe(markedWith(1920, 1080, -7.0)), describe(timing));
}

TEST_F(ReadBackTest, AbsentModeIsAnErrorAndTouchesNothing) {
    writeEnvironment(root, {{"hdmimode", "1080p60hz"}, {"is.bestmode", "true"}});
    timing_t timing = readBackStored();
    EXPECT_EQ(describe(marked()), describe(timing));
    EXPECT_EQ((LogLines{controlInfo("getHDMIOutputMode \n"),
                        controlError("getHDMIOutputMode error\n")}),
              capturedLogWithTag(kControlTag));
}

TEST_F(ReadBackTest, EnvironmentThatCannotBeLoadedReadsAsAbsent) {
    ASSERT_EQ(0, unlink((root / kEnvPartition).c_str()));
    timing_t timing = readBackStored();
    EXPECT_EQ(describe(marked()), describe(timing));
    EXPECT_EQ((LogLines{controlInfo("getHDMIOutputMode \n"),
                        controlError("getHDMIOutputMode error\n")}),
              capturedLogWithTag(kControlTag));
    EXPECT_EQ(1, countLines(kEnvTag, "don't init done"));
}

TEST_F(ReadBackTest, ModeOf511CharactersIsRead) {
    std::string value = std::string(511 - strlen(kMode1920x1080), '0') + kMode1920x1080;
    ASSERT_EQ(511u, value.size());
    EXPECT_EQ(describe(markedWith(1920, 1080, 59934.0)), describe(readBack(value)));
}

TEST_F(ReadBackTest, ModeOf512CharactersStopsTheProcess) {
    std::string value = std::string(512 - strlen(kMode1920x1080), '0') + kMode1920x1080;
    storeEnv("ubootenv.var.custom_mode", value);
    EXPECT_DEATH(readBackStored(), "");
}

TEST_F(ReadBackTest, SplitDropsEmptyTokens) {
    EXPECT_EQ((std::vector<std::string>{"a", "b"}), split(",a,,b,", ","));
}

TEST_F(ReadBackTest, SplitOfEmptyTextGivesNothing) {
    EXPECT_EQ(std::vector<std::string>{}, split("", ","));
    EXPECT_EQ(std::vector<std::string>{}, split(",,,", ","));
}

TEST_F(ReadBackTest, SplitWithoutDelimitersGivesTheWholeText) {
    EXPECT_EQ(std::vector<std::string>{"a,b"}, split("a,b", ""));
}

TEST_F(ReadBackTest, SplitAppendsToWhatIsThere) {
    EXPECT_EQ((std::vector<std::string>{"x", "a", "b"}), split("a;b", ";", {"x"}));
}

TEST_F(ReadBackTest, SplitTakesAnyCharacterOfTheSet) {
    EXPECT_EQ((std::vector<std::string>{"a", "b", "c", "d"}), split(" a, b;c ,d", ", ;"));
    EXPECT_EQ(std::vector<std::string>{"abc"}, split("abc", ","));
}

}  // namespace
}  // namespace vesk::test
