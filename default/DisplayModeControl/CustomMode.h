/*
 * The custom mode string: how the boot loader and the mode tool receive an output timing.
 * 22 decimal integers separated by commas (line frequency in Hz, field rate in mHz, pixel clock
 * in kHz, the horizontal and vertical counts, fixed flags and the reduced aspect ratio).
 */
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>

#include "VideoTimingCaculator.h"

namespace vesk::hardware::veskdevicemanager::implementation {

inline constexpr size_t kCustomModeBufferSize = 512;

// Truncates toward zero as the boot loader's readers expect; a value that is not finite (a
// timing with zero totals) or does not fit in 32 bits is stored as 0.
int32_t truncateToInt32(double value);

// The 22 fields of the custom mode string, in order: what each holds and in which unit.
struct CustomModeField {
    const char* name;
    const char* unit;
};
inline constexpr CustomModeField kCustomModeFields[] = {
        {"h_freq", "Hz"},         {"v_freq", "mHz"},          {"pix_clock", "kHz"},
        {"h_total", "pixels"},    {"h_blank", "pixels"},      {"h_front_porch", "pixels"},
        {"h_sync", "pixels"},     {"h_back_porch", "pixels"}, {"h_active", "pixels"},
        {"v_total", "lines"},     {"v_blank", "lines"},       {"v_front_porch", "lines"},
        {"v_sync", "lines"},      {"v_back_porch", "lines"},  {"v_active", "lines"},
        {"constant", "1"},        {"constant", "0"},          {"constant", "1"},
        {"aspect_numerator", ""}, {"aspect_denominator", ""}, {"constant", "1"},
        {"constant", "1"}};
static_assert(std::size(kCustomModeFields) == 22);

// Writes the custom mode string of `timing` into `buffer` (cleared first). `gcdOf` reduces the
// aspect ratio.
void formatCustomMode(const timing_t& timing, int (*gcdOf)(int, int),
                      char (&buffer)[kCustomModeBufferSize]);

}  // namespace vesk::hardware::veskdevicemanager::implementation
