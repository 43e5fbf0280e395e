/*
 * Shared by the timing tests: the calculator's names and a one-call calculation.
 */
#pragma once

#include <stdint.h>

#include <string>
#include <vector>

#include "VideoTimingCaculator.h"

namespace vesk::test {

using vesk::hardware::veskdevicemanager::implementation::timing_t;
using vesk::hardware::veskdevicemanager::implementation::VideoTimingCaculator;

inline constexpr char kTimingTag[] = "vesk_system_VideoTimingCalculator";
inline constexpr char kLevelProperty[] = "persist.vesk.device.log.level";

// One calculation on a fresh calculator, 8 bits per component and 3.0 components per pixel.
inline timing_t cvt(uint32_t hPixels, uint32_t vLines, uint32_t refreshRate, const std::string& mode,
                    bool margins = false, bool interlaced = false, bool videoOptimized = false) {
    VideoTimingCaculator calculator;
    calculator.calculateCvt(hPixels, vLines, refreshRate, 8, 3.0, mode, margins, interlaced,
                            videoOptimized);
    return calculator.getCvtTiming();
}

// The 23 dump lines of 1920 x 1080 at 60 Hz, "cvt_rb", 8 bits, 3.0 components, by hand:
// 138.5 MHz, 2080 x 1111; 138.5e6 / 2080 = 66586.5 Hz -> 66.587 kHz; 2080 / 138.5e6 =
// 15.018 us; 31 * 2080 / 138.5e6 = 465.6 us -> 466; 138.5e6 / (1111 * 2080) = 59.9337 Hz ->
// 59.934, its period 16.6851 ms -> 16.685; 138.5 * 24 = 3324 Mbit/s, * 1920 / 2080 = 3068.3;
// 59.9337 * 24 * 1080 * 1920 / 1e6 = 2982.7.
inline const std::vector<std::string> kDump1080pReducedBlanking = {
        "cvt_rb_pix_clock        138.500 MHz\n", "cvt_rb_h_total          2080 Pixels\n",
        "cvt_rb_h_active         1920 Pixels\n", "cvt_rb_h_blank          160 Pixels\n",
        "cvt_rb_h_front_porch    48 Pixels\n",   "cvt_rb_h_sync           32 Pixels\n",
        "cvt_rb_h_back_porch     80 Pixels\n",   "cvt_rb_h_sync_polarity  1 \n",
        "cvt_rb_h_freq           66.587 KHz\n",  "cvt_rb_h_period         15.018 us\n",
        "cvt_rb_v_total          1111 Pixels\n", "cvt_rb_v_active         1080 Pixels\n",
        "cvt_rb_v_blank          31 Pixels\n",   "cvt_rb_vblank_duration  466 us\n",
        "cvt_rb_v_front_porch    3 Pixels\n",    "cvt_rb_v_sync           5 Pixels\n",
        "cvt_rb_v_back_porch     23 Pixels\n",   "cvt_rb_v_sync_polarity  0 \n",
        "cvt_rb_v_freq           59.934 Hz\n",   "cvt_rb_v_period         16.685 us\n",
        "cvt_rb_peak_bw          3324 Mbit/s\n", "cvt_rb_line_bw          3068 Mbit/s\n",
        "cvt_rb_active_bw        2983 Mbit/s\n",
};

}  // namespace vesk::test
