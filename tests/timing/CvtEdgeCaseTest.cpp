// The calculator's edge cases: the standard 1080p reduced-blanking mode, a width that is not a
// whole number of cells, a zero clock, unknown modes, interlace, and the record's life cycle.
#include <android/log.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "TestRoot.h"
#include "TimingTestSupport.h"

namespace vesk::test {
namespace {

using CvtEdgeCaseTest = RootTest;

const vesk::host::LogLine kCellWarning = {ANDROID_LOG_WARN, kTimingTag,
                                          "WARNING! Aspect Ratio Not CVT Standar!Horizontal Pixel "
                                          "Not Divisible by 8, Count Rounded to "
                                          "Nearest Character Cell\n"};

// 1080 lines: round(1080 * 16 / 9) = 1920 is the width, so "16:9" and a 5-line sync.
// P = (1e6 / 60 - 460) / 1080 = 15.006 us; floor(460 / P) + 1 = 31 > 5 + 3 + 6, so 31 blank
// lines and 1111 in all; 1920 + 160 = 2080 pixels; 60 * 1111 * 2080 / 1e6 = 138.6528 MHz,
// down to the 0.25 MHz step: 138.5.
TEST_F(CvtEdgeCaseTest, ReducedBlanking1080p60) {
    setProperty(kLevelProperty, "W");  // a cell other than 8 would warn at this level
    VideoTimingCaculator calculator;
    calculator.calculateCvt(1920, 1080, 60, 8, 3.0, "cvt_rb", false, false, false);
    timing_t t = calculator.getCvtTiming();
    EXPECT_EQ("16:9", calculator.getAspectRatio());
    EXPECT_EQ(1920u, t.h_active);  // 1920 / 8 * 8
    EXPECT_EQ(5u, t.v_sync);
    EXPECT_EQ(2080u, t.h_total);
    EXPECT_EQ(1111u, t.v_total);
    EXPECT_EQ(138.5, t.pix_clock);
    EXPECT_EQ(1, t.h_sync_polarity);
    EXPECT_EQ(0, t.v_sync_polarity);
    EXPECT_TRUE(capturedLog().empty()) << "cell 8 writes no warning";
}

// 1366 is not a multiple of 8: the cell is 2, so the width stays 1366 (a cell of 8 would give
// 1360), and the warning follows the level property, read before each calculation.
class CellWarningTest : public RootTest,
                        public ::testing::WithParamInterface<std::pair<const char*, bool>> {};

TEST_P(CellWarningTest, Width1366UsesCellOfTwoAndWarnsByLevel) {
    auto [level, warns] = GetParam();
    if (level != nullptr) setProperty(kLevelProperty, level);
    VideoTimingCaculator calculator;
    calculator.calculateCvt(1366, 768, 60, 8, 3.0, "cvt_rb", false, false, false);
    EXPECT_EQ(1366u, calculator.getCvtTiming().h_active);
    EXPECT_EQ(1366u + 160u, calculator.getCvtTiming().h_total);
    LogLines expected;
    if (warns) expected.push_back(kCellWarning);
    EXPECT_EQ(expected, capturedLog());
}

INSTANTIATE_TEST_SUITE_P(Levels, CellWarningTest,
                         ::testing::Values(std::make_pair("D", true), std::make_pair("I", true),
                                           std::make_pair("W", true), std::make_pair("Warn", true),
                                           std::make_pair("E", false),
                                           std::make_pair(nullptr, false),
                                           std::make_pair("d", false), std::make_pair("w", false),
                                           std::make_pair("V", false)),
                         [](const auto& info) {
                             return std::string(info.param.first != nullptr ? info.param.first
                                                                            : "unset");
                         });

TEST_F(CvtEdgeCaseTest, CellWarningFollowsEachFreshReadOfTheLevel) {
    VideoTimingCaculator calculator;
    calculator.calculateCvt(1366, 768, 60, 8, 3.0, "cvt", false, false, false);
    setProperty(kLevelProperty, "W");
    calculator.calculateCvt(1366, 768, 60, 8, 3.0, "cvt", false, false, false);
    calculator.calculateCvt(1368, 768, 60, 8, 3.0, "cvt", false, false, false);  // 171 cells
    setProperty(kLevelProperty, "E");
    calculator.calculateCvt(1366, 768, 60, 8, 3.0, "cvt", false, false, false);
    EXPECT_EQ(LogLines{kCellWarning}, capturedLog());
}

// The video-optimised version 2 multiplies the clock by 0: no clock, so the periods divide by
// zero (infinite) and the unsigned duration and bandwidths hold 0.
TEST_F(CvtEdgeCaseTest, VideoOptimizedReducedBlanking2HasNoClock) {
    timing_t t = cvt(1920, 1080, 60, "cvt_rb2", false, false, true);
    EXPECT_EQ(0.0, t.pix_clock);
    EXPECT_EQ(0.0, t.h_freq);
    EXPECT_EQ(0.0, t.v_freq);
    EXPECT_TRUE(std::isinf(t.h_period) && t.h_period > 0) << t.h_period;
    EXPECT_TRUE(std::isinf(t.v_period) && t.v_period > 0) << t.v_period;
    EXPECT_EQ(0u, t.vblank_duration);
    EXPECT_EQ(0u, t.peak_bw);
    EXPECT_EQ(0u, t.line_bw);
    EXPECT_EQ(0u, t.active_bw);
    // The geometry is still there: 1920 + 80 pixels, 1080 + 31 lines, positive H sync.
    EXPECT_EQ(2000u, t.h_total);
    EXPECT_EQ(1111u, t.v_total);
    EXPECT_EQ(1, t.h_sync_polarity);
    EXPECT_EQ("cvt_rb2", t.name);
}

TEST_F(CvtEdgeCaseTest, UnknownModeHasNoPolaritiesAndNoClock) {
    for (const char* mode : {"dmt", "CVT_RB", "cvt_rb ", ""}) {
        timing_t t = cvt(1920, 1080, 60, mode);
        EXPECT_EQ(mode, t.name);
        EXPECT_EQ(0, t.h_sync_polarity) << mode;
        EXPECT_EQ(0, t.v_sync_polarity) << mode;
        EXPECT_EQ(0.0, t.pix_clock) << mode;
        // Computed along the reduced-blanking path with a fresh calculator's constants.
        EXPECT_EQ(2080u, t.h_total) << mode;
        EXPECT_EQ(1111u, t.v_total) << mode;
    }
}

// Interlaced 1080: 540 lines per field at a field rate of 120.
// Reduced: P = (1e6 / 120 - 460) / 540 = 14.580 us, floor(460 / P) + 1 = 32 blank lines;
// 0.5 + 540 + 32 = 572.5, truncated to 572; 120 * 572 * 2080 / 1e6 = 142.7712 -> 142.75 MHz;
// field rate 142.75e6 / (572 * 2080) = 119.982 Hz.
// Standard: P = (1 / 120 - 550e-6) / (540 + 3 + 0.5) * 1e6 = 14.321 us,
// floor(550 / P) + 1 = 39; 540 + 39 + 0.5 + 3 = 582.5, truncated to 582.
TEST_F(CvtEdgeCaseTest, Interlaced1080HalvesLinesDoublesFieldRateAndTruncatesHalfLine) {
    timing_t rb = cvt(1920, 1080, 60, "cvt_rb", false, true);
    EXPECT_EQ(540u, rb.v_active);
    EXPECT_EQ(32u, rb.v_blank);
    EXPECT_EQ(572u, rb.v_total);
    EXPECT_EQ(142.75, rb.pix_clock);
    EXPECT_EQ(119.982, rb.v_freq);

    timing_t standard = cvt(1920, 1080, 60, "cvt", false, true);
    EXPECT_EQ(540u, standard.v_active);
    EXPECT_EQ(42u, standard.v_blank);  // 39 + 3
    EXPECT_EQ(582u, standard.v_total);
    EXPECT_EQ(5u, standard.v_sync);  // the frame's 1080 lines decide the aspect ratio

    timing_t progressive = cvt(1920, 1080, 60, "cvt_rb");
    EXPECT_EQ(1111u, progressive.v_total);
}

TEST_F(CvtEdgeCaseTest, RecordIsEmptyBeforeAnyCalculation) {
    VideoTimingCaculator calculator;
    timing_t t = calculator.getCvtTiming();
    EXPECT_EQ("", t.name);
    EXPECT_EQ("", t.aspect);
    EXPECT_EQ(0.0, t.pix_clock);
    EXPECT_EQ(0u, t.h_total);
    EXPECT_EQ(0u, t.v_total);
    EXPECT_EQ(0u, t.active_bw);
}

TEST_F(CvtEdgeCaseTest, EachCalculationReplacesTheRecord) {
    VideoTimingCaculator calculator;
    calculator.calculateCvt(1920, 1080, 60, 8, 3.0, "cvt", true, true, false);
    calculator.calculateCvt(1280, 720, 60, 8, 3.0, "cvt_rb", false, false, false);
    timing_t t = calculator.getCvtTiming();
    // 720 lines: P = (1e6 / 60 - 460) / 720 = 22.509 us, floor(460 / P) + 1 = 21 blank lines.
    EXPECT_EQ("cvt_rb", t.name);
    EXPECT_EQ(1280u, t.h_active);
    EXPECT_EQ(1440u, t.h_total);
    EXPECT_EQ(720u, t.v_active);
    EXPECT_EQ(741u, t.v_total);
    EXPECT_EQ("", t.aspect);
}

TEST_F(CvtEdgeCaseTest, CopyOfTheRecordIsIndependent) {
    VideoTimingCaculator calculator;
    calculator.calculateCvt(1920, 1080, 60, 8, 3.0, "cvt_rb", false, false, false);
    timing_t copy = calculator.getCvtTiming();
    copy.name = "changed";
    copy.h_total = 1;
    EXPECT_EQ("cvt_rb", calculator.getCvtTiming().name);
    EXPECT_EQ(2080u, calculator.getCvtTiming().h_total);
}

// An unknown mode keeps the previous mode's constants: after "cvt_rb2" the blank is 80 pixels,
// so the front porch 80 - 112 wraps around as an unsigned field, and the front porch of 1 line
// enters the minimum blank (5 + 1 + 6 = 12, below the 31 of the estimate).
TEST_F(CvtEdgeCaseTest, UnknownModeKeepsThePreviousModesConstants) {
    VideoTimingCaculator calculator;
    calculator.calculateCvt(1920, 1080, 60, 8, 3.0, "cvt_rb2", false, false, false);
    calculator.calculateCvt(1920, 1080, 60, 8, 3.0, "dmt", false, false, false);
    timing_t t = calculator.getCvtTiming();
    EXPECT_EQ(80u, t.h_blank);
    EXPECT_EQ(2000u, t.h_total);
    EXPECT_EQ(4294967264u, t.h_front_porch);  // 2^32 - 32
    EXPECT_EQ(32u, t.h_sync);
    EXPECT_EQ(80u, t.h_back_porch);
    EXPECT_EQ(5u, t.v_sync);  // the "16:9" sync, not version 2's 8
    EXPECT_EQ(31u, t.v_blank);
    EXPECT_EQ(3u, t.v_front_porch);
    EXPECT_EQ(23u, t.v_back_porch);
    EXPECT_EQ(0.0, t.pix_clock);

    // A fresh calculator's reduced blank for the same unknown mode is 160 pixels.
    EXPECT_EQ(160u, cvt(1920, 1080, 60, "dmt").h_blank);
}

TEST_F(CvtEdgeCaseTest, ModeNameOutlivesTheCallersString) {
    VideoTimingCaculator calculator;
    {
        std::string mode = "cvt_rb2";
        calculator.calculateCvt(1920, 1080, 60, 8, 3.0, mode, false, false, false);
        mode = "overwritten";
    }
    EXPECT_EQ("cvt_rb2", calculator.getCvtTiming().name);
    std::string longName(100, 'x');  // a mode name longer than any built-in one
    calculator.calculateCvt(1920, 1080, 60, 8, 3.0, longName, false, false, false);
    EXPECT_EQ(longName, calculator.getCvtTiming().name);
    calculator.calculateCvt(1920, 1080, 60, 8, 3.0, "cvt", false, false, false);
    EXPECT_EQ("cvt", calculator.getCvtTiming().name);
}

// Bits per component and components per pixel only scale the three bandwidths:
// 138.5 MHz * 10 * 3.0 = 4155 Mbit/s peak; * 1920 / 2080 = 3835.38 -> 3835 on a line.
TEST_F(CvtEdgeCaseTest, BandwidthsScaleWithBitsAndComponents) {
    VideoTimingCaculator calculator;
    calculator.calculateCvt(1920, 1080, 60, 10, 3.0, "cvt_rb", false, false, false);
    EXPECT_EQ(4155u, calculator.getCvtTiming().peak_bw);
    EXPECT_EQ(3835u, calculator.getCvtTiming().line_bw);
    calculator.calculateCvt(1920, 1080, 60, 8, 2.0, "cvt_rb", false, false, false);
    EXPECT_EQ(2216u, calculator.getCvtTiming().peak_bw);  // 138.5 * 16
}

}  // namespace
}  // namespace vesk::test
