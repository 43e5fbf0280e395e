// The limit searches: their answers against brute-force loops and hand calculations, their
// safety margins, their log lines, and their independence from the calculator they run on.
#include <android/log.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "TestRoot.h"
#include "TimingTestSupport.h"

namespace vesk::test {
namespace {

using TimingSearchTest = RootTest;

// The first value from 0 up whose clock exceeds the ceiling, or -1.
int firstOver(double ceiling, const std::function<double(uint32_t)>& clockAt) {
    for (uint32_t n = 0; n < 40960; ++n) {
        if (clockAt(n) > ceiling) return static_cast<int>(n);
    }
    return -1;
}

// 1920 x 1080 "cvt_rb" (2080 pixels per line; minimum blank 5 + 3 + 6 = 14 lines):
// at 64 Hz, P = (15625 - 460) / 1080 = 14.042 us, 33 blank lines, 64 * 1113 * 2080 / 1e6
// = 148.16 -> 148.0 MHz; at 65 Hz, P = 13.819 us, 34 lines, 65 * 1114 * 2080 / 1e6 = 150.61
// -> 150.5 MHz, over 148.5. So the answer is 65 - 5 = 60.
TEST_F(TimingSearchTest, MaxRefreshFor1080pUnder148_5MHzIsFiveBelowFirstTooFast) {
    setProperty(kLevelProperty, "I");
    VideoTimingCaculator calculator;
    EXPECT_EQ(60, calculator.getMaxVFreq(1920, 1080, 148.5, 8, 3.0, "cvt_rb", false, false, false));
    int first = firstOver(148.5,
                          [](uint32_t rate) { return cvt(1920, 1080, rate, "cvt_rb").pix_clock; });
    EXPECT_EQ(65, first);
    EXPECT_EQ((LogLines{{ANDROID_LOG_INFO, kTimingTag, "getMaxVFreq 65\n"}}), capturedLog());
}

TEST_F(TimingSearchTest, UnreachableCeilingEndsRefreshSearchWithExitLine) {
    // The highest clock on the way is near 2173 Hz, where the estimated line period
    // (1e6 / F - 460) / 1080 approaches zero and the blank grows to some 2.6 million lines:
    // 2173 * 2.6e6 * 2080 / 1e6 = 1.2e7 MHz. Past 2174 Hz the period is negative and the
    // blank is the minimum of 14 lines: at most 40959 * 1094 * 2080 / 1e6 = 93203 MHz.
    VideoTimingCaculator calculator;  // the log level is unset: error lines are still written
    EXPECT_EQ(-1, calculator.getMaxVFreq(1920, 1080, 1e9, 8, 3.0, "cvt_rb", false, false, false));
    EXPECT_EQ((LogLines{{ANDROID_LOG_ERROR, kTimingTag, "getMaxVFreq to max freq 40960 exit!\n"}}),
              capturedLog());
}

TEST_F(TimingSearchTest, UnreachableCeilingEndsSizeSearchesSilently) {
    VideoTimingCaculator calculator;
    // 40959 pixels: 60 * 1111 * 41119 / 1e6 = 2741 MHz at most; 40959 lines: about 5 GHz.
    EXPECT_EQ(-1, calculator.getMaxHPixs(1080, 60, 1e9, 8, 3.0, "cvt_rb", false, false, false));
    EXPECT_EQ(-1, calculator.getMaxVPixs(1920, 60, 1e9, 8, 3.0, "cvt_rb", false, false, false));
    EXPECT_TRUE(capturedLog().empty());
}

TEST_F(TimingSearchTest, CeilingThatIsNotANumberIsNeverExceeded) {
    VideoTimingCaculator calculator;
    EXPECT_EQ(-1, calculator.getMaxVFreq(1920, 1080, NAN, 8, 3.0, "cvt_rb", false, false, false));
    EXPECT_EQ(-1, calculator.getMaxVPixs(1920, 60, NAN, 8, 3.0, "cvt_rb", false, false, false));
    EXPECT_EQ(1u, capturedLog().size());
}

TEST_F(TimingSearchTest, ModesWithoutAClockNeverReachACeiling) {
    VideoTimingCaculator calculator;
    EXPECT_EQ(-1, calculator.getMaxHPixs(1080, 60, 0.0, 8, 3.0, "dmt", false, false, false));
    EXPECT_EQ(-1, calculator.getMaxVPixs(1920, 60, 0.0, 8, 3.0, "cvt_rb2", false, false, true));
}

// "cvt_rb2", 1920 wide (2000 pixels per line, 0.001 MHz steps), 60 Hz:
// 2000 lines: P = (16666.667 - 460) / 2000 = 8.103 us, 57 blank lines, 60 * 2057 * 2000 / 1e6
// = 246.84 MHz; 2001 lines: P = 8.099 us, 57 lines, 60 * 2058 * 2000 / 1e6 = 246.96 MHz.
// Fewer lines give fewer total lines, so 2001 is the first over 246.8404: 2002 - 12 = 1990.
TEST_F(TimingSearchTest, OddFirstTooTallSizeRoundsUpToEvenLessTwelve) {
    setProperty(kLevelProperty, "D");
    VideoTimingCaculator calculator;
    EXPECT_EQ(1990,
              calculator.getMaxVPixs(1920, 60, 246.8404, 8, 3.0, "cvt_rb2", false, false, false));
    EXPECT_EQ(2001, firstOver(246.8404, [](uint32_t lines) {
                  return cvt(1920, lines, 60, "cvt_rb2").pix_clock;
              }));
    EXPECT_EQ((LogLines{{ANDROID_LOG_INFO, kTimingTag,
                         "getMaxVPixs 2001 current pixclock 246.960 max pixclock 246.840\n"}}),
              capturedLog());
}

// Margins with "cvt_rb2" at 1080 lines, 60 Hz: top = floor(1080 * 1.8 / 100) = 19,
// P = 16206.667 / 1118 = 14.496 us, 32 blank lines, 1150 in all. 2000 pixels (cell 8):
// margins floor(2000 * 0.018 / 8) * 8 = 32, active 2064; 1999 (cell 2): 1998 + 2 * 34 = 2066;
// 2001 (cell 2): 2000 + 2 * 36 = 2072, 60 * 1150 * 2152 / 1e6 = 148.488 MHz; below 2001 at most
// 2066, 60 * 1150 * 2146 / 1e6 = 148.074. So 2001 is the first over 148.3: 1990.
TEST_F(TimingSearchTest, OddFirstTooWideSizeRoundsUpToEvenLessTwelve) {
    VideoTimingCaculator calculator;
    EXPECT_EQ(1990, calculator.getMaxHPixs(1080, 60, 148.3, 8, 3.0, "cvt_rb2", true, false, false));
    EXPECT_EQ(2001, firstOver(148.3, [](uint32_t width) {
                  return cvt(width, 1080, 60, "cvt_rb2", true).pix_clock;
              }));
}

TEST_F(TimingSearchTest, SizeSearchesMatchBruteForceLoops) {
    VideoTimingCaculator calculator;
    struct Case {
        const char* mode;
        bool margins, interlaced;
        double ceiling;
    };
    for (Case c : {Case{"cvt", false, false, 200.0}, Case{"cvt", true, true, 123.4},
                   Case{"cvt_rb", false, false, 300.0}, Case{"cvt_rb2", false, true, 99.9}}) {
        SCOPED_TRACE(std::string(c.mode) + " " + std::to_string(c.ceiling));
        int width = firstOver(c.ceiling, [&](uint32_t w) {
            return cvt(w, 1080, 60, c.mode, c.margins, c.interlaced).pix_clock;
        });
        ASSERT_GT(width, 12);
        EXPECT_EQ(width + width % 2 - 12, calculator.getMaxHPixs(1080, 60, c.ceiling, 8, 3.0, c.mode,
                                                                 c.margins, c.interlaced, false));
        int lines = firstOver(c.ceiling, [&](uint32_t v) {
            return cvt(1920, v, 60, c.mode, c.margins, c.interlaced).pix_clock;
        });
        ASSERT_GT(lines, 12);
        EXPECT_EQ(lines + lines % 2 - 12, calculator.getMaxVPixs(1920, 60, c.ceiling, 8, 3.0, c.mode,
                                                                 c.margins, c.interlaced, false));
        int rate = firstOver(c.ceiling, [&](uint32_t r) {
            return cvt(1920, 1080, r, c.mode, c.margins, c.interlaced).pix_clock;
        });
        ASSERT_GT(rate, 5);
        EXPECT_EQ(rate - 5, calculator.getMaxVFreq(1920, 1080, c.ceiling, 8, 3.0, c.mode, c.margins,
                                                   c.interlaced, false));
    }
}

TEST_F(TimingSearchTest, SearchesLeaveTheirCalculatorUntouched) {
    VideoTimingCaculator calculator;
    calculator.calculateCvt(1280, 720, 50, 8, 3.0, "cvt", false, false, false);
    timing_t before = calculator.getCvtTiming();
    calculator.getMaxVFreq(1920, 1080, 148.5, 8, 3.0, "cvt_rb", false, false, false);
    calculator.getMaxHPixs(1080, 60, 148.5, 8, 3.0, "cvt_rb2", false, false, false);
    calculator.getMaxVPixs(1920, 60, 148.5, 8, 3.0, "cvt_rb", false, false, false);
    EXPECT_EQ(138.5, calculator.getPixClock(1920, 1080, 60, 8, 3.0, "cvt_rb", false, false, false));
    timing_t after = calculator.getCvtTiming();
    EXPECT_EQ(before.name, after.name);
    EXPECT_EQ(before.pix_clock, after.pix_clock);
    EXPECT_EQ(before.h_total, after.h_total);
    EXPECT_EQ(before.v_total, after.v_total);
    EXPECT_EQ("cvt", after.name);
}

// getPixClock is one calculation's clock: 1920 x 1200 at 60, standard 193.25 MHz, reduced
// 154.0 MHz; the video-optimised version 2 has none.
TEST_F(TimingSearchTest, PixClockIsOneCalculationsClock) {
    VideoTimingCaculator calculator;
    EXPECT_EQ(193.25, calculator.getPixClock(1920, 1200, 60, 8, 3.0, "cvt", false, false, false));
    EXPECT_EQ(154.0, calculator.getPixClock(1920, 1200, 60, 8, 3.0, "cvt_rb", false, false, false));
    EXPECT_EQ(0.0, calculator.getPixClock(1920, 1200, 60, 8, 3.0, "cvt_rb2", false, false, true));
}

TEST_F(TimingSearchTest, TraceLinesNeedInformationLevel) {
    VideoTimingCaculator calculator;
    for (const char* level : {"E", "W", "i", "d"}) {
        setProperty(kLevelProperty, level);
        EXPECT_EQ(60,
                  calculator.getMaxVFreq(1920, 1080, 148.5, 8, 3.0, "cvt_rb", false, false, false));
        EXPECT_EQ(1990, calculator.getMaxVPixs(1920, 60, 246.8404, 8, 3.0, "cvt_rb2", false, false,
                                               false));
    }
    EXPECT_TRUE(capturedLog().empty());
}

}  // namespace
}  // namespace vesk::test
