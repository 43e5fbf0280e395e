// The custom mode string of timings written down by hand: 22 fields, the three scaled ones
// truncated toward zero, the reduced ratio, the fixed flags.
#include <cmath>
#include <cstring>
#include <limits>

#include "CustomMode.h"
#include "DisplayModeFixture.h"
#include "VideoTimingCaculator.h"

namespace vesk::test {
namespace {

using vesk::hardware::veskdevicemanager::implementation::formatCustomMode;
using vesk::hardware::veskdevicemanager::implementation::kCustomModeBufferSize;
using vesk::hardware::veskdevicemanager::implementation::VideoTimingCaculator;

// Plain Euclid with C's %, as the control's gcd.
int euclid(int a, int b) {
    while (b != 0) {
        int r = a % b;
        a = b;
        b = r;
    }
    return a;
}

// CEA-861's 1080p60 counts (2200 x 1125, 148.5 MHz), which the string takes as they stand.
timing_t cea1080p() {
    timing_t t;
    t.name = "cea";
    t.pix_clock = 148.5;
    t.h_total = 2200;
    t.h_active = 1920;
    t.h_blank = 280;
    t.h_front_porch = 88;
    t.h_sync = 44;
    t.h_back_porch = 148;
    t.h_freq = 67.5;
    t.v_total = 1125;
    t.v_active = 1080;
    t.v_blank = 45;
    t.v_front_porch = 4;
    t.v_sync = 5;
    t.v_back_porch = 36;
    t.v_freq = 59.934;
    return t;
}

std::string format(const timing_t& timing) {
    char buffer[kCustomModeBufferSize];
    formatCustomMode(timing, euclid, buffer);
    return buffer;
}

TEST(CustomModeStringTest, FullHdFieldsAreTheSizesTheRatioAndTheFlags) {
    std::vector<std::string> fields = fieldsOf(format(cea1080p()));
    ASSERT_EQ(22u, fields.size());
    EXPECT_EQ("1920", fields[8]);   // field 9
    EXPECT_EQ("1080", fields[14]);  // field 15
    EXPECT_EQ("16", fields[18]);    // field 19
    EXPECT_EQ("9", fields[19]);     // field 20
    EXPECT_EQ((std::vector<std::string>{"1", "0", "1"}),
              std::vector<std::string>(fields.begin() + 15, fields.begin() + 18));
    EXPECT_EQ("1", fields[20]);
    EXPECT_EQ("1", fields[21]);
}

TEST(CustomModeStringTest, ScaledFieldsOf148Point5MHzAnd59Point934Hz) {
    EXPECT_EQ("67500,59934,148500,2200,280,88,44,148,1920,1125,45,4,5,36,1080,1,0,1,16,9,1,1",
              format(cea1080p()));
}

TEST(CustomModeStringTest, ScaledFieldsAreTruncatedNeverRounded) {
    timing_t t = cea1080p();
    t.h_freq = 67.4996;      // 67499.6 Hz
    t.v_freq = 59.9349;      // 59934.9 mHz
    t.pix_clock = 148.4999;  // 148499.9 kHz
    std::vector<std::string> fields = fieldsOf(format(t));
    EXPECT_EQ("67499", fields[0]);
    EXPECT_EQ("59934", fields[1]);
    EXPECT_EQ("148499", fields[2]);
}

TEST(CustomModeStringTest, NegativeScaledFieldsAreTruncatedTowardZero) {
    timing_t t = cea1080p();
    t.h_freq = -1.5;
    t.v_freq = -0.0009;  // -0.9 becomes 0, not -1
    t.pix_clock = -2.9999;
    std::vector<std::string> fields = fieldsOf(format(t));
    EXPECT_EQ("-1500", fields[0]);
    EXPECT_EQ("0", fields[1]);
    EXPECT_EQ("-2999", fields[2]);
}

TEST(CustomModeStringTest, ZeroActiveLinesGiveOneToZero) {
    timing_t t = cea1080p();
    t.h_active = 1280;
    t.v_active = 0;
    std::vector<std::string> fields = fieldsOf(format(t));
    EXPECT_EQ("1280", fields[8]);
    EXPECT_EQ("0", fields[14]);
    EXPECT_EQ("1", fields[18]);
    EXPECT_EQ("0", fields[19]);
}

TEST(CustomModeStringTest, RatiosAreReducedByTheirGreatestCommonDivisor) {
    timing_t t = cea1080p();
    for (auto [width, height, num, den] :
         {std::tuple{2560u, 1080u, "64", "27"}, std::tuple{1080u, 1920u, "9", "16"},
          std::tuple{1366u, 768u, "683", "384"}, std::tuple{1922u, 1082u, "961", "541"},
          std::tuple{0u, 720u, "0", "1"}}) {
        t.h_active = width;
        t.v_active = height;
        std::vector<std::string> fields = fieldsOf(format(t));
        EXPECT_EQ(num, fields[18]) << width << "x" << height;
        EXPECT_EQ(den, fields[19]) << width << "x" << height;
    }
}

TEST(CustomModeStringTest, ZeroPixelClockGivesZeroScaledFields) {
    // The video-optimised reduced-blanking v2 timing has a zero clock (its periods are infinite).
    VideoTimingCaculator calculator;
    calculator.calculateCvt(1920, 1080, 60, 8, 3.0, "cvt_rb2", false, false, true);
    timing_t t = calculator.getCvtTiming();
    ASSERT_EQ(0.0, t.pix_clock);
    EXPECT_EQ("0,0,0,2000,80,8,32,40,1920,1111,31,17,8,6,1080,1,0,1,16,9,1,1", format(t));
}

TEST(CustomModeStringTest, ValuesThatAreNotFiniteOrDoNotFitAreStoredAsZero) {
    timing_t t = cea1080p();
    t.h_freq = std::numeric_limits<double>::infinity();
    t.v_freq = std::nan("");
    t.pix_clock = 3e6;  // 3e9 kHz does not fit in 32 bits
    std::vector<std::string> fields = fieldsOf(format(t));
    EXPECT_EQ("0", fields[0]);
    EXPECT_EQ("0", fields[1]);
    EXPECT_EQ("0", fields[2]);
    t.pix_clock = 2147483.647;  // 2147483647 kHz, the largest that fits
    EXPECT_EQ("2147483647", fieldsOf(format(t))[2]);
}

TEST(CustomModeStringTest, FieldsOutsideTheStringDoNotMatter) {
    timing_t t = cea1080p();
    t.name = "anything";
    t.h_sync_polarity = 1;
    t.v_sync_polarity = 1;
    t.h_period = 14.8;
    t.v_period = 16.7;
    t.vblank_duration = 666;
    t.peak_bw = 1;
    t.line_bw = 2;
    t.active_bw = 3;
    t.aspect = "16:9";
    EXPECT_EQ(format(cea1080p()), format(t));
}

TEST(CustomModeStringTest, BothSizesZeroGiveZeroToZero) {
    EXPECT_EQ("0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,1,0,1,0,0,1,1", format(timing_t{}));
}

TEST(CustomModeStringTest, TheBufferIsClearedBeforeUse) {
    char buffer[kCustomModeBufferSize];
    memset(buffer, 'x', sizeof(buffer));
    formatCustomMode(cea1080p(), euclid, buffer);
    size_t length = strlen(buffer);
    EXPECT_EQ(std::string(kCustomModeBufferSize - length, '\0'),
              std::string(buffer + length, kCustomModeBufferSize - length));
}

}  // namespace
}  // namespace vesk::test
