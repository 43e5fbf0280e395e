// Published CVT timings (VESA CVT and DMT tables), reproduced by the calculator, the
// reduced-blanking clocks included.
#include <gtest/gtest.h>

#include "TestRoot.h"
#include "TimingTestSupport.h"

namespace vesk::test {
namespace {

using CvtPublishedTimingTest = RootTest;

uint32_t hSyncStart(const timing_t& t) {
    return t.h_active + t.h_front_porch;
}
uint32_t vSyncStart(const timing_t& t) {
    return t.v_active + t.v_front_porch;
}

TEST_F(CvtPublishedTimingTest, Standard1920x1200At60) {
    timing_t t = cvt(1920, 1200, 60, "cvt");
    EXPECT_EQ(193.25, t.pix_clock);
    EXPECT_EQ(2592u, t.h_total);
    EXPECT_EQ(1245u, t.v_total);
    EXPECT_EQ(0, t.h_sync_polarity);
    EXPECT_EQ(1, t.v_sync_polarity);
}

TEST_F(CvtPublishedTimingTest, ReducedBlanking1920x1200At60) {
    timing_t t = cvt(1920, 1200, 60, "cvt_rb");
    EXPECT_EQ(154.0, t.pix_clock);
    EXPECT_EQ(2080u, t.h_total);
    EXPECT_EQ(1235u, t.v_total);
    EXPECT_EQ(1, t.h_sync_polarity);
    EXPECT_EQ(0, t.v_sync_polarity);
}

TEST_F(CvtPublishedTimingTest, Standard1920x1200At75) {
    timing_t t = cvt(1920, 1200, 75, "cvt");
    EXPECT_EQ(245.25, t.pix_clock);
    EXPECT_EQ(2056u, hSyncStart(t));
    EXPECT_EQ(2264u, hSyncStart(t) + t.h_sync);
    EXPECT_EQ(2608u, t.h_total);
    EXPECT_EQ(1203u, vSyncStart(t));
    EXPECT_EQ(1209u, vSyncStart(t) + t.v_sync);
    EXPECT_EQ(1255u, t.v_total);
}

TEST_F(CvtPublishedTimingTest, ReducedBlanking2560x1600At60) {
    timing_t t = cvt(2560, 1600, 60, "cvt_rb");
    EXPECT_EQ(268.5, t.pix_clock);
    EXPECT_EQ(2720u, t.h_total);
    EXPECT_EQ(1646u, t.v_total);
}

TEST_F(CvtPublishedTimingTest, ReducedBlanking2At4096x2160At60) {
    timing_t t = cvt(4096, 2160, 60, "cvt_rb2");
    EXPECT_EQ(556.744, t.pix_clock);
    EXPECT_EQ(4104u, hSyncStart(t));
    EXPECT_EQ(4136u, hSyncStart(t) + t.h_sync);
    EXPECT_EQ(4176u, t.h_total);
    EXPECT_EQ(2208u, vSyncStart(t));
    EXPECT_EQ(2216u, vSyncStart(t) + t.v_sync);
    EXPECT_EQ(2222u, t.v_total);
}

// DMT modes defined by CVT: clock, horizontal and vertical totals.
struct DmtMode {
    uint32_t width, height, rate;
    const char* mode;
    double clock;
    uint32_t hTotal, vTotal;
};

void PrintTo(const DmtMode& m, std::ostream* os) {
    *os << m.mode << " " << m.width << "x" << m.height << "@" << m.rate;
}

class CvtDmtTest : public RootTest, public ::testing::WithParamInterface<DmtMode> {};

TEST_P(CvtDmtTest, ClockAndTotalsMatchTheDmtTable) {
    const DmtMode& m = GetParam();
    timing_t t = cvt(m.width, m.height, m.rate, m.mode);
    EXPECT_EQ(m.clock, t.pix_clock);
    EXPECT_EQ(m.hTotal, t.h_total);
    EXPECT_EQ(m.vTotal, t.v_total);
}

INSTANTIATE_TEST_SUITE_P(Dmt, CvtDmtTest,
                         ::testing::Values(DmtMode{1280, 800, 60, "cvt", 83.5, 1680, 831},
                                           DmtMode{1280, 800, 60, "cvt_rb", 71.0, 1440, 823},
                                           DmtMode{1440, 900, 60, "cvt", 106.5, 1904, 934},
                                           DmtMode{1440, 900, 60, "cvt_rb", 88.75, 1600, 926},
                                           DmtMode{1400, 1050, 60, "cvt", 121.75, 1864, 1089},
                                           DmtMode{1400, 1050, 60, "cvt_rb", 101.0, 1560, 1080},
                                           DmtMode{1680, 1050, 60, "cvt", 146.25, 2240, 1089},
                                           DmtMode{1680, 1050, 60, "cvt_rb", 119.0, 1840, 1080},
                                           DmtMode{2560, 1600, 60, "cvt", 348.5, 3504, 1658},
                                           DmtMode{1920, 1080, 60, "cvt_rb", 138.5, 2080, 1111}),
                         [](const auto& info) {
                             return std::string(info.param.mode) + "_" +
                                    std::to_string(info.param.width) + "x" +
                                    std::to_string(info.param.height);
                         });

}  // namespace
}  // namespace vesk::test
