/*
 * Sweeps over many sizes and rates, each checked against the formulas written out plainly here,
 * step by step in doubles with <cmath>: the aspect-ratio choice, the reduced-blanking vertical
 * blank and clock, and every rate, period and bandwidth of the record. The calculator takes
 * shortcuts that must give the same doubles; these sweeps cover the values where a shortcut
 * could round differently (quotients near whole and half numbers).
 */
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "TimingTestSupport.h"

namespace vesk::test {
namespace {

// The aspect-ratio name, as the boot loader's tables name it, from round(lines * ratio) == width.
std::string aspectByFormula(double width, double frameLines) {
    if (std::round(frameLines * 4 / 3) == width) return "4:3";
    if (std::round(frameLines * 16 / 9) == width) return "16:9";
    if (std::round(frameLines * 16 / 10) == width) return "16:10";
    if (std::round(frameLines * 5 * 0.25) == width) return "5:4";
    if (std::round(frameLines * 15 / 9) == width) return "15:9";
    if (std::round(frameLines * 43 / 18) == width) return "43:18";
    if (std::round(frameLines * 64 / 27) == width) return "64:27";
    if (std::round(frameLines * 12 / 5) == width) return "12:5";
    return "Unknown";
}

TEST(CvtFormulaSweepTest, AspectRatioMatchesRoundedQuotientsForEveryHeight) {
    const double ratios[] = {4.0 / 3, 16.0 / 9, 1.6, 1.25, 15.0 / 9, 43.0 / 18, 64.0 / 27, 2.4};
    VideoTimingCaculator calculator;
    int named = 0;
    for (uint32_t lines = 1; lines <= 4400; ++lines) {
        for (double ratio : ratios) {
            // The widths around lines * ratio, where round() decides; whole 8-pixel cells only,
            // so that no warning is written.
            const uint32_t centre = static_cast<uint32_t>(lines * ratio);
            for (uint32_t width = (centre > 16 ? centre - 16 : 8) & ~7u; width <= centre + 16;
                 width += 8) {
                calculator.calculateCvt(width, lines, 60, 8, 3.0, "cvt_rb", false, false, false);
                const std::string expected = aspectByFormula(width, lines);
                ASSERT_EQ(calculator.getAspectRatio(), expected) << width << "x" << lines;
                named += expected != "Unknown";
            }
        }
    }
    EXPECT_GT(named, 4000);  // the sweep does reach the named ratios
}

TEST(CvtFormulaSweepTest, InterlacedAspectRatioUsesTheFrameHeight) {
    VideoTimingCaculator calculator;
    for (uint32_t lines = 2; lines <= 2400; lines += 2) {
        const uint32_t width = static_cast<uint32_t>(std::round(lines * 16.0 / 9)) & ~7u;
        calculator.calculateCvt(width, lines, 60, 8, 3.0, "cvt_rb", false, true, false);
        const double frameLines = std::floor(lines * 0.5) * 2.0;
        ASSERT_EQ(calculator.getAspectRatio(), aspectByFormula(width, frameLines)) << lines;
    }
}

struct ReducedBlankingByFormula {
    double vBlank, vTotal, clock;
};

// Reduced blanking (version 1), no margins, progressive: the steps as a CVT spreadsheet takes
// them.
ReducedBlankingByFormula reducedBlanking(double width, double lines, double rate, double vSync) {
    const double hPeriod = (1e6 / rate - 460) / lines;
    const double estimate = std::floor(460 / hPeriod) + 1;
    const double vBlank = std::max(vSync + 3 + 6, estimate);
    const double vTotal = lines + vBlank;
    const double totalPixels = width + 160;
    const double clock = 0.25 * std::floor(rate * vTotal * totalPixels / 1e6 / 0.25);
    return {vBlank, vTotal, clock};
}

TEST(CvtFormulaSweepTest, ReducedBlankingLinesAndClockForManyHeightsAndRates) {
    VideoTimingCaculator calculator;
    int checked = 0;
    for (uint32_t rate = 1; rate <= 480; rate += rate < 100 ? 1 : 7) {
        for (uint32_t lines = 24; lines <= 4320; lines += 13) {
            const uint32_t width = 1920;
            calculator.calculateCvt(width, lines, rate, 8, 3.0, "cvt_rb", false, false, false);
            const timing_t t = calculator.getCvtTiming();
            const double vSync = t.v_sync;  // chosen by the aspect ratio, checked above
            const ReducedBlankingByFormula f = reducedBlanking(width, lines, rate, vSync);
            if (!(1e6 / rate - 460 > 0)) continue;  // no time left for the picture
            ASSERT_EQ(t.v_blank, f.vBlank) << lines << "@" << rate;
            ASSERT_EQ(t.v_total, f.vTotal) << lines << "@" << rate;
            ASSERT_EQ(t.pix_clock, std::round(f.clock * 1e6 / 1000) / 1000) << lines << "@" << rate;
            ++checked;
        }
    }
    EXPECT_GT(checked, 30000);
}

TEST(CvtFormulaSweepTest, RecordRatesPeriodsAndBandwidthsFollowTheirFormulas) {
    const char* modes[] = {"cvt", "cvt_rb", "cvt_rb2"};
    VideoTimingCaculator calculator;
    for (const char* mode : modes) {
        for (uint32_t lines = 240; lines <= 2400; lines += 37) {
            for (uint32_t rate : {24u, 30u, 50u, 60u, 75u, 120u, 144u}) {
                const uint32_t width = (lines * 16 / 9) & ~7u;
                const uint32_t bits = 6 + lines % 5 * 2;
                const double components = lines % 2 ? 3.0 : 2.5;
                calculator.calculateCvt(width, lines, rate, bits, components, mode, false, false,
                                        false);
                const timing_t t = calculator.getCvtTiming();
                const double ht = t.h_total, vt = t.v_total;
                // The clock as calculated: on the quarter-MHz steps the record's clock to the
                // kHz is that clock exactly; version 2 steps by kHz, which a double holds only
                // approximately, so its clock is worked out again here.
                const double clock = std::string(mode) == "cvt_rb2"
                                             ? 0.001 * std::floor(rate * vt * ht / 1e6 / 0.001)
                                             : t.pix_clock;
                const double hz = clock * 1e6;
                EXPECT_EQ(t.pix_clock, std::round(hz / 1000) / 1000);
                SCOPED_TRACE(std::string(mode) + " " + std::to_string(width) + "x" +
                             std::to_string(lines) + "@" + std::to_string(rate));
                EXPECT_EQ(t.h_freq, std::round(hz / ht) / 1000);
                EXPECT_EQ(t.h_period, std::round(ht / hz * 1e9) / 1000);
                EXPECT_EQ(t.vblank_duration, std::round(t.v_blank * ht / hz * 1e6));
                EXPECT_EQ(t.v_freq, std::round(hz / (vt * ht) * 1000) / 1000);
                EXPECT_EQ(t.v_period, std::round(1e6 / (hz / (vt * ht))) / 1000);
                EXPECT_EQ(t.peak_bw, std::round(hz * bits * components / 1e6));
                EXPECT_EQ(t.line_bw, std::round(hz * bits * components * t.h_active / ht / 1e6));
                EXPECT_EQ(t.active_bw, std::round(hz / (vt * ht) * bits * t.v_active * t.h_active *
                                                  components / 1e6));
            }
        }
    }
}

}  // namespace
}  // namespace vesk::test

namespace vesk::test {
namespace {

// One calculator through a series of modes, as the output-mode control and the searches use it:
// the record always describes the last calculation, name and rates included.
TEST(CvtRecordReuseTest, RecordFollowsTheLastCalculationOnOneCalculator) {
    VideoTimingCaculator calculator;
    const char* modes[] = {"cvt_rb", "cvt_rb", "cvt", "other", "cvt_rb2", "another", "cvt_rb"};
    const char* previous = "cvt_rb";
    for (const char* mode : modes) {
        calculator.calculateCvt(1920, 1200, 60, 8, 3.0, mode, false, false, false);
        const timing_t reused = calculator.getCvtTiming();
        // Any other name keeps the constants of the mode before it: the fresh calculator goes
        // through that mode first.
        VideoTimingCaculator second;
        second.calculateCvt(640, 480, 60, 8, 3.0, previous, false, false, false);
        second.calculateCvt(1920, 1200, 60, 8, 3.0, mode, false, false, false);
        const timing_t fresh = second.getCvtTiming();
        previous = mode;
        EXPECT_EQ(reused.name, mode);
        EXPECT_EQ(reused.pix_clock, fresh.pix_clock) << mode;
        EXPECT_EQ(reused.h_total, fresh.h_total) << mode;
        EXPECT_EQ(reused.v_total, fresh.v_total) << mode;
        EXPECT_EQ(reused.h_freq, fresh.h_freq) << mode;
        EXPECT_EQ(reused.v_freq, fresh.v_freq) << mode;
        EXPECT_EQ(reused.peak_bw, fresh.peak_bw) << mode;
    }
    // Published: 1920x1200 at 60 Hz, reduced blanking, 154.00 MHz with 2080 x 1235; a record
    // read once and then recalculated must not keep the earlier rates.
    calculator.calculateCvt(1920, 1080, 60, 8, 3.0, "cvt_rb", false, false, false);
    (void)calculator.getCvtTiming();
    calculator.calculateCvt(1920, 1200, 60, 8, 3.0, "cvt_rb", false, false, false);
    const timing_t t = calculator.getCvtTiming();
    EXPECT_EQ(t.pix_clock, 154.0);
    EXPECT_EQ(t.h_freq, std::round(154e6 / 2080) / 1000);                    // 74.038 kHz
    EXPECT_EQ(t.v_freq, std::round(154e6 / (2080.0 * 1235) * 1000) / 1000);  // 59.95 Hz
}

}  // namespace
}  // namespace vesk::test
