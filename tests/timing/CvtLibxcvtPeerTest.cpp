// libxcvt (the X server's CVT generator) as a peer for standard and reduced blanking. The two
// agree wherever they follow the same method; where they deliberately part, the rule is
// checked instead, and each difference has one example of its own:
// - H sync start: the published method rounds the sync width down to whole cells,
//   floor(total * 8 % / cell) * cell; libxcvt moves the start up to the next cell boundary
//   even when it is already on one, 8 pixels further whenever floor(total * 8 %) is a whole
//   number of cells.
// - Reduced-blanking clock: from field rate x vertical total x horizontal total (published
//   method, whole blank lines); libxcvt divides the horizontal total by the estimated line
//   period, which leaves out the fraction of a line the blank is rounded up by.
// - Standard blanking's shortest back porch: 6 lines (published); libxcvt allows 3.
// - Aspect ratio: judged on the rounded quotient (1280 x 768 is "15:9", 7 sync lines);
//   libxcvt wants the height divisible by the ratio's denominator (10 sync lines there).
// - libxcvt turns 1360 x 768 into 1366 x 768 and only knows 8-pixel cells; its interlaced
//   output mixes frame and field lines, so interlaced modes are not compared.
#include <gtest/gtest.h>
#include <libxcvt/libxcvt.h>
#include <stdlib.h>

#include <cmath>
#include <memory>

#include "TestRoot.h"
#include "TimingTestSupport.h"

namespace vesk::test {
namespace {

using CvtLibxcvtPeerTest = RootTest;

struct Peer {
    uint32_t hDisplay, hSyncStart, hSyncEnd, hTotal;
    uint32_t vDisplay, vSyncStart, vSyncEnd, vTotal;
    double clock;  // MHz
    int flags;
};

Peer libxcvt(uint32_t width, uint32_t height, uint32_t rate, bool reduced) {
    std::unique_ptr<libxcvt_mode_info, decltype(&free)> m(
            libxcvt_gen_mode_info(width, height, rate, reduced, false), free);
    return {m->hdisplay,           m->hsync_start, m->hsync_end, m->htotal,
            m->vdisplay,           m->vsync_start, m->vsync_end, m->vtotal,
            m->dot_clock / 1000.0, m->mode_flags};
}

Peer ours(const timing_t& t) {
    uint32_t hs = t.h_active + t.h_front_porch;
    uint32_t vs = t.v_active + t.v_front_porch;
    int flags = (t.h_sync_polarity == 1 ? LIBXCVT_MODE_FLAG_HSYNC_POSITIVE
                                        : LIBXCVT_MODE_FLAG_HSYNC_NEGATIVE) |
                (t.v_sync_polarity == 1 ? LIBXCVT_MODE_FLAG_VSYNC_POSITIVE
                                        : LIBXCVT_MODE_FLAG_VSYNC_NEGATIVE);
    return {t.h_active,    hs,        hs + t.h_sync, t.h_total, t.v_active, vs,
            vs + t.v_sync, t.v_total, t.pix_clock,   flags};
}

constexpr uint32_t kWidths[] = {640,  800,  1024, 1152, 1280, 1400, 1440, 1600, 1680,
                                1920, 2048, 2560, 2880, 3200, 3840, 4096, 5120, 7680};
constexpr uint32_t kHeights[] = {480,  600,  720,  768,  800,  864,  900,  960,  1024, 1050,
                                 1080, 1200, 1440, 1536, 1600, 1800, 2160, 2400, 2880, 4320};
constexpr uint32_t kRates[] = {50, 60, 75, 85, 100, 120, 144};

// The aspect-ratio rule is the only source of a different sync width.
bool syncWidthsDiffer(const VideoTimingCaculator& calculator, uint32_t height) {
    return calculator.getAspectRatio() == "15:9" && height % 9 != 0;
}

TEST_F(CvtLibxcvtPeerTest, StandardBlankingAgreesAcrossCommonModes) {
    int compared = 0;
    for (uint32_t w : kWidths) {
        for (uint32_t h : kHeights) {
            for (uint32_t r : kRates) {
                SCOPED_TRACE(std::to_string(w) + "x" + std::to_string(h) + "@" + std::to_string(r));
                VideoTimingCaculator calculator;
                calculator.calculateCvt(w, h, r, 8, 3.0, "cvt", false, false, false);
                timing_t t = calculator.getCvtTiming();
                Peer mine = ours(t), peer = libxcvt(w, h, r, false);
                EXPECT_EQ(peer.clock, mine.clock);
                EXPECT_EQ(peer.hDisplay, mine.hDisplay);
                EXPECT_EQ(peer.hTotal, mine.hTotal);
                EXPECT_EQ(peer.hSyncEnd, mine.hSyncEnd);
                uint32_t syncPixels = t.h_total * 8 / 100;
                EXPECT_EQ(peer.hSyncStart, mine.hSyncStart + (syncPixels % 8 == 0 ? 8 : 0));
                EXPECT_EQ(peer.vDisplay, mine.vDisplay);
                EXPECT_EQ(peer.vSyncStart, mine.vSyncStart);
                EXPECT_EQ(peer.flags, mine.flags);
                if (syncWidthsDiffer(calculator, h)) {
                    EXPECT_EQ(7u, t.v_sync);
                    EXPECT_EQ(10u, peer.vSyncEnd - peer.vSyncStart);
                    continue;
                }
                EXPECT_EQ(peer.vSyncEnd, mine.vSyncEnd);
                if (t.v_back_porch > 6) {
                    EXPECT_EQ(peer.vTotal, mine.vTotal);
                }
                ++compared;
            }
        }
    }
    EXPECT_GT(compared, 2000);
}

TEST_F(CvtLibxcvtPeerTest, ReducedBlankingAgreesAcrossCommonModes) {
    int sameClock = 0;
    for (uint32_t w : kWidths) {
        for (uint32_t h : kHeights) {
            for (uint32_t r : kRates) {
                SCOPED_TRACE(std::to_string(w) + "x" + std::to_string(h) + "@" + std::to_string(r));
                VideoTimingCaculator calculator;
                calculator.calculateCvt(w, h, r, 8, 3.0, "cvt_rb", false, false, false);
                timing_t t = calculator.getCvtTiming();
                Peer mine = ours(t), peer = libxcvt(w, h, r, true);
                EXPECT_EQ(peer.hDisplay, mine.hDisplay);
                EXPECT_EQ(peer.hSyncStart, mine.hSyncStart);
                EXPECT_EQ(peer.hSyncEnd, mine.hSyncEnd);
                EXPECT_EQ(peer.hTotal, mine.hTotal);
                EXPECT_EQ(peer.vDisplay, mine.vDisplay);
                EXPECT_EQ(peer.vSyncStart, mine.vSyncStart);
                EXPECT_EQ(peer.flags, mine.flags);
                if (!syncWidthsDiffer(calculator, h)) {
                    EXPECT_EQ(peer.vSyncEnd, mine.vSyncEnd);
                    EXPECT_EQ(peer.vTotal, mine.vTotal);
                }
                // The estimated period's clock leaves out the part of a line by which the
                // whole blank lines exceed the ideal blank: F * Ht * V / (1e6 / F - 460) MHz.
                double idealLines = h / (1 - 460e-6 * r);
                double upper = r * t.h_total * (t.v_total - idealLines) / 1e6 + 0.25;
                EXPECT_LE(peer.clock, mine.clock);
                EXPECT_LE(mine.clock - peer.clock, upper);
                if (peer.clock == mine.clock) ++sameClock;
            }
        }
    }
    EXPECT_GT(sameClock, 1000);
}

// Modes where both methods give the same reduced-blanking clock, field by field.
TEST_F(CvtLibxcvtPeerTest, ReducedBlankingClocksAgreeOnCommonDesktopModes) {
    struct Mode {
        uint32_t w, h;
    };
    for (Mode m : {Mode{1280, 800}, Mode{1440, 900}, Mode{1680, 1050}, Mode{1920, 1080},
                   Mode{1920, 1200}, Mode{2560, 1440}, Mode{2560, 1600}}) {
        SCOPED_TRACE(std::to_string(m.w) + "x" + std::to_string(m.h));
        Peer mine = ours(cvt(m.w, m.h, 60, "cvt_rb")), peer = libxcvt(m.w, m.h, 60, true);
        EXPECT_EQ(peer.clock, mine.clock);
        EXPECT_EQ(peer.hTotal, mine.hTotal);
        EXPECT_EQ(peer.vTotal, mine.vTotal);
    }
}

TEST_F(CvtLibxcvtPeerTest, HSyncStartIsNotMovedPastACellBoundary) {
    // 1920 x 1200 at 75: total 2608, 8 % = 208.64 -> 208 pixels, 26 whole cells.
    Peer mine = ours(cvt(1920, 1200, 75, "cvt")), peer = libxcvt(1920, 1200, 75, false);
    EXPECT_EQ(2056u, mine.hSyncStart);
    EXPECT_EQ(2064u, peer.hSyncStart);
    EXPECT_EQ(peer.hSyncEnd, mine.hSyncEnd);
}

TEST_F(CvtLibxcvtPeerTest, ReducedBlankingClockCountsWholeBlankLines) {
    // 640 x 480 at 85: P = (1e6 / 85 - 460) / 480 = 23.551 us, 20 blank lines, 500 in all;
    // 85 * 500 * 800 / 1e6 = 34.0 MHz, where 800 / 23.551 us = 33.97 MHz steps down to 33.75.
    EXPECT_EQ(34.0, ours(cvt(640, 480, 85, "cvt_rb")).clock);
    EXPECT_EQ(33.75, libxcvt(640, 480, 85, true).clock);
}

TEST_F(CvtLibxcvtPeerTest, ShortestStandardBackPorchIsSixLines) {
    // 1024 x 480 at 50: P = (1 / 50 - 550e-6) / 483 * 1e6 = 40.269 us, floor(550 / P) + 1 = 14,
    // below 10 + 6: 16 sync + back porch lines, 480 + 16 + 3 = 499 (libxcvt: 497).
    timing_t t = cvt(1024, 480, 50, "cvt");
    EXPECT_EQ(6u, t.v_back_porch);
    EXPECT_EQ(499u, t.v_total);
    EXPECT_EQ(497u, libxcvt(1024, 480, 50, false).vTotal);
}

TEST_F(CvtLibxcvtPeerTest, AspectRatioIsJudgedOnTheRoundedQuotient) {
    // round(768 * 15 / 9) = 1280: "15:9" and 7 sync lines; 768 is not divisible by 9.
    VideoTimingCaculator calculator;
    calculator.calculateCvt(1280, 768, 60, 8, 3.0, "cvt", false, false, false);
    EXPECT_EQ("15:9", calculator.getAspectRatio());
    EXPECT_EQ(7u, calculator.getCvtTiming().v_sync);
    Peer peer = libxcvt(1280, 768, 60, false);
    EXPECT_EQ(10u, peer.vSyncEnd - peer.vSyncStart);
}

TEST_F(CvtLibxcvtPeerTest, WidthOutsideWholeCellsKeepsItsPixels) {
    // A cell of 2 keeps 1366 pixels, blank in steps of 4; libxcvt computes 1360 in 8-pixel cells.
    timing_t t = cvt(1366, 768, 60, "cvt");
    EXPECT_EQ(1366u, t.h_active);
    EXPECT_EQ(0u, t.h_blank % 4);
    EXPECT_NE(0u, t.h_blank % 16);
    Peer peer = libxcvt(1366, 768, 60, false);
    EXPECT_EQ(0u, (peer.hTotal - 1360) % 16);
}

}  // namespace
}  // namespace vesk::test
