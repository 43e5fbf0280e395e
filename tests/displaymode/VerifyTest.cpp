// verify(): the model's row, the inclusive size bounds (line 55), the area (line 38), rounding up
// to even and the 60 Hz reduced-blanking timing it leaves in the calculator.
#include <limits>

#include "DisplayModeFixture.h"

namespace vesk::test {
namespace {

const LogLines kRowLines = {
        controlInfo("find device in allow list\n"),
        controlInfo("allow.h_pixel_min:800 allow.h_pixel_max:4096\n"),
        controlInfo("allow.v_pixel_min:600 allow.v_pixel_max:4096\n"),
};

LogLines rowLinesThen(const vesk::host::LogLine& last) {
    LogLines lines = kRowLines;
    lines.push_back(last);
    return lines;
}

class VerifyTest : public DisplayModeTest {
  protected:
    VerifyTest() { setLevel("I"); }

    // verify() on a fresh object; `log` gets the control's lines of the call alone.
    int verifyOnce(uint32_t modid, uint32_t width, uint32_t height, uint32_t fps,
                   timing_t* timing = nullptr, LogLines* log = nullptr) {
        DisplayModeControl control;
        vesk::host::clearCapturedLog();
        int result = control.verify(modid, width, height, fps);
        if (log != nullptr) *log = capturedLogWithTag(kControlTag);
        if (timing != nullptr) *timing = control.getCurrentOutputModeTiming();
        return result;
    }

    void expectRefusedAt(uint32_t width, uint32_t height, int marker) {
        timing_t timing;
        LogLines log;
        EXPECT_EQ(-1, verifyOnce(8470, width, height, 60, &timing, &log));
        EXPECT_EQ(rowLinesThen(controlError("verify out of range " + std::to_string(width) + "x" +
                                            std::to_string(height) + " in line " +
                                            std::to_string(marker) + "\n")),
                  log);
        EXPECT_EQ(describe(timing_t{}), describe(timing)) << "nothing is computed";
    }
};

TEST_F(VerifyTest, FullHdAtThirtyIsAcceptedAndComputedForSixty) {
    timing_t timing;
    LogLines log;
    EXPECT_EQ(1, verifyOnce(8470, 1920, 1080, 30, &timing, &log));
    EXPECT_EQ(rowLinesThen(controlInfo("verify update to 1920x1080\n")), log);
    // VESA's CVT-RB 1920x1080 at 60 Hz.
    EXPECT_EQ("cvt_rb", timing.name);
    EXPECT_EQ(1920u, timing.h_active);
    EXPECT_EQ(1080u, timing.v_active);
    EXPECT_EQ(2080u, timing.h_total);
    EXPECT_EQ(1111u, timing.v_total);
    EXPECT_EQ(138.5, timing.pix_clock);
    EXPECT_EQ(59.934, timing.v_freq);
    EXPECT_EQ(1, timing.h_sync_polarity);
    EXPECT_EQ(0, timing.v_sync_polarity);
}

TEST_F(VerifyTest, TheRequestedRateChangesNothing) {
    timing_t atSixty;
    ASSERT_EQ(1, verifyOnce(8470, 1920, 1080, 60, &atSixty));
    for (uint32_t fps : {0u, 1u, 24u, 30u, 120u, std::numeric_limits<uint32_t>::max()}) {
        timing_t timing;
        LogLines log;
        EXPECT_EQ(1, verifyOnce(8470, 1920, 1080, fps, &timing, &log)) << fps;
        EXPECT_EQ(describe(atSixty), describe(timing)) << fps;
        EXPECT_EQ(rowLinesThen(controlInfo("verify update to 1920x1080\n")), log) << fps;
    }
}

TEST_F(VerifyTest, OddSizesAreRoundedUpToEven) {
    timing_t timing;
    LogLines log;
    EXPECT_EQ(1, verifyOnce(8470, 1921, 1081, 60, &timing, &log));
    EXPECT_EQ(rowLinesThen(controlInfo("verify update to 1922x1082\n")), log);
    EXPECT_EQ(1922u, timing.h_active);
    EXPECT_EQ(1082u, timing.v_active);
    EXPECT_EQ(2082u, timing.h_total);
    EXPECT_EQ(1113u, timing.v_total);
    EXPECT_EQ(139.0, timing.pix_clock);
}

TEST_F(VerifyTest, SmallestSizeIsAccepted) {
    timing_t timing;
    LogLines log;
    EXPECT_EQ(1, verifyOnce(8470, 800, 600, 60, &timing, &log));
    EXPECT_EQ(rowLinesThen(controlInfo("verify update to 800x600\n")), log);
    EXPECT_EQ(800u, timing.h_active);
    EXPECT_EQ(600u, timing.v_active);
}

TEST_F(VerifyTest, LargestLandscapeSizeIsAccepted) {
    timing_t timing;
    EXPECT_EQ(1, verifyOnce(8470, 4096, 2160, 60, &timing));  // exactly the area limit
    EXPECT_EQ(4096u, timing.h_active);
    EXPECT_EQ(2160u, timing.v_active);
}

TEST_F(VerifyTest, WidthBelowTheBoundIsRefusedAtLine55) {
    expectRefusedAt(799, 600, 55);
}

TEST_F(VerifyTest, HeightAboveTheBoundIsRefusedAtLine55) {
    expectRefusedAt(800, 4097, 55);
}

TEST_F(VerifyTest, TheOtherTwoBoundsAreRefusedAtLine55) {
    expectRefusedAt(4097, 600, 55);
    expectRefusedAt(800, 599, 55);
    expectRefusedAt(0, 0, 55);
}

TEST_F(VerifyTest, SquareOfTheBoundsIsRefusedByAreaAtLine38) {
    expectRefusedAt(4096, 4096, 38);
}

TEST_F(VerifyTest, TallSizeWithinTheAreaIsAccepted) {
    timing_t timing;
    EXPECT_EQ(1, verifyOnce(8470, 2160, 4096, 60, &timing));
    EXPECT_EQ(2160u, timing.h_active);
    EXPECT_EQ(4096u, timing.v_active);
}

TEST_F(VerifyTest, RangeIsCheckedBeforeArea) {
    expectRefusedAt(5000, 5000, 55);  // fails both checks; the first one reports
    expectRefusedAt(4095, 4095, 38);
}

TEST_F(VerifyTest, AreaIsJudgedOnTheRequestedSizeBeforeRounding) {
    // 4095 x 2160 = 8845200 fits; rounded it is 4096 x 2160, the limit itself.
    timing_t timing;
    LogLines log;
    EXPECT_EQ(1, verifyOnce(8470, 4095, 2160, 60, &timing, &log));
    EXPECT_EQ(rowLinesThen(controlInfo("verify update to 4096x2160\n")), log);
    EXPECT_EQ(4096u, timing.h_active);
    // 4096 x 2161 = 8851456 does not, although 2161 is in range.
    expectRefusedAt(4096, 2161, 38);
}

TEST_F(VerifyTest, UnknownModelIsNotDefined) {
    setLevel("E");
    timing_t timing;
    LogLines log;
    EXPECT_EQ(-1, verifyOnce(1234, 1920, 1080, 60, &timing, &log));
    EXPECT_EQ(LogLines{controlError("verify device not defined")}, log);
    EXPECT_EQ(describe(timing_t{}), describe(timing)) << "the calculator is untouched";
}

TEST_F(VerifyTest, UnknownModelWritesNoInformationLineEither) {
    LogLines log;
    EXPECT_EQ(-1, verifyOnce(8471, 800, 600, 60, nullptr, &log));
    EXPECT_EQ(LogLines{controlError("verify device not defined")}, log);
}

TEST_F(VerifyTest, ExactlyTheFourModelsHaveRows) {
    for (uint32_t model : {8470u, 8476u, 8475u, 8478u}) {
        EXPECT_EQ(1, verifyOnce(model, 1920, 1080, 60)) << model;
    }
    for (uint32_t model : {0u, 8469u, 8471u, 8472u, 8473u, 8474u, 8477u, 8479u, 4294967295u}) {
        EXPECT_EQ(-1, verifyOnce(model, 1920, 1080, 60)) << model;
    }
}

TEST_F(VerifyTest, NoSizeWithinTheBoundsReachesThePixelClockLimit) {
    setLevel("E");
    DisplayModeControl control;
    vesk::host::clearCapturedLog();
    double highest = 0;
    int checked = 0;
    // For every width the tallest accepted height has the highest clock; the shortest the lowest.
    for (uint32_t width = 800; width <= 4096; ++width) {
        uint32_t tallest = std::min<uint32_t>(4096, 8847360 / width);
        for (uint32_t height : {600u, tallest}) {
            ASSERT_EQ(1, control.verify(8470, width, height, 60)) << width << "x" << height;
            highest = std::max(highest, control.getCurrentOutputModeTiming().pix_clock);
            ++checked;
        }
    }
    EXPECT_EQ(2 * 3297, checked);
    EXPECT_GT(highest, 500.0);  // some hundreds of MHz, far below the 594000 of the row
    EXPECT_LT(highest, 700.0);
    EXPECT_EQ(LogLines{}, capturedLog());
}

TEST_F(VerifyTest, InformationLinesFollowTheLevelAndErrorsAlwaysShow) {
    for (const char* level : {"E", "W", "V"}) {
        setLevel(level);
        LogLines log;
        EXPECT_EQ(1, verifyOnce(8470, 1920, 1080, 60, nullptr, &log));
        EXPECT_EQ(LogLines{}, log) << level;
        EXPECT_EQ(-1, verifyOnce(8470, 799, 600, 60, nullptr, &log));
        EXPECT_EQ(LogLines{controlError("verify out of range 799x600 in line 55\n")}, log) << level;
    }
    setLevel("D");
    LogLines log;
    EXPECT_EQ(1, verifyOnce(8470, 1920, 1080, 60, nullptr, &log));
    EXPECT_EQ(rowLinesThen(controlInfo("verify update to 1920x1080\n")), log);
}

}  // namespace
}  // namespace vesk::test
