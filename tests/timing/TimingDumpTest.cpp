// dump: 23 information lines, each behind a fresh read of the log level.
#include <android/log.h>
#include <gtest/gtest.h>

#include "TestRoot.h"
#include "TimingTestSupport.h"

namespace vesk::test {
namespace {

LogLines infoLines(const std::vector<std::string>& messages) {
    LogLines lines;
    for (const auto& message : messages) lines.push_back({ANDROID_LOG_INFO, kTimingTag, message});
    return lines;
}

class TimingDumpLevelTest : public RootTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(TimingDumpLevelTest, InformationLevelWritesAll23Lines) {
    setProperty(kLevelProperty, GetParam());
    VideoTimingCaculator calculator;
    calculator.calculateCvt(1920, 1080, 60, 8, 3.0, "cvt_rb", false, false, false);
    int result = calculator.dump();
    EXPECT_EQ(infoLines(kDump1080pReducedBlanking), capturedLog());
    // The result is liblog's for the last line.
    EXPECT_EQ(__android_log_print(ANDROID_LOG_INFO, kTimingTag, "%s",
                                  kDump1080pReducedBlanking.back().c_str()),
              result);
    EXPECT_GT(result, 0);
}

INSTANTIATE_TEST_SUITE_P(Levels, TimingDumpLevelTest, ::testing::Values("I", "D", "Debug"));

class TimingDumpSilentTest : public RootTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(TimingDumpSilentTest, OtherLevelsWriteNothing) {
    if (GetParam()[0] != '\0') setProperty(kLevelProperty, GetParam());
    VideoTimingCaculator calculator;
    calculator.calculateCvt(1920, 1080, 60, 8, 3.0, "cvt_rb", false, false, false);
    EXPECT_EQ(0, calculator.dump());
    EXPECT_TRUE(capturedLog().empty());
}

INSTANTIATE_TEST_SUITE_P(Levels, TimingDumpSilentTest,
                         ::testing::Values("E", "", "W", "i", "d", "V"), [](const auto& info) {
                             return std::string(info.param[0] != '\0' ? info.param : "unset");
                         });

using TimingDumpTest = RootTest;

TEST_F(TimingDumpTest, LevelIsReadForEveryDump) {
    VideoTimingCaculator calculator;
    calculator.calculateCvt(1920, 1080, 60, 8, 3.0, "cvt_rb", false, false, false);
    calculator.dump();
    setProperty(kLevelProperty, "I");
    calculator.dump();
    setProperty(kLevelProperty, "E");
    calculator.dump();
    EXPECT_EQ(infoLines(kDump1080pReducedBlanking), capturedLog());
}

// Without a clock the periods print as "inf"; the record's name leads every line.
TEST_F(TimingDumpTest, VideoOptimizedPeriodsPrintAsInfinite) {
    setProperty(kLevelProperty, "I");
    VideoTimingCaculator calculator;
    calculator.calculateCvt(1920, 1080, 60, 8, 3.0, "cvt_rb2", false, false, true);
    calculator.dump();
    LogLines lines = capturedLog();
    ASSERT_EQ(23u, lines.size());
    EXPECT_EQ("cvt_rb2_pix_clock        0.000 MHz\n", lines[0].message);
    EXPECT_EQ("cvt_rb2_h_freq           0.000 KHz\n", lines[8].message);
    EXPECT_EQ("cvt_rb2_h_period         inf us\n", lines[9].message);
    EXPECT_EQ("cvt_rb2_vblank_duration  0 us\n", lines[13].message);
    EXPECT_EQ("cvt_rb2_v_period         inf us\n", lines[19].message);
    EXPECT_EQ("cvt_rb2_peak_bw          0 Mbit/s\n", lines[20].message);
}

TEST_F(TimingDumpTest, RecordBeforeAnyCalculationDumpsZeros) {
    setProperty(kLevelProperty, "D");
    VideoTimingCaculator calculator;
    calculator.dump();
    LogLines lines = capturedLog();
    ASSERT_EQ(23u, lines.size());
    EXPECT_EQ("_pix_clock        0.000 MHz\n", lines[0].message);
    EXPECT_EQ("_active_bw        0 Mbit/s\n", lines[22].message);
}

}  // namespace
}  // namespace vesk::test
