/*
 * The custom mode string: how the boot loader and the mode tool receive an output timing.
 * 22 decimal integers separated by commas (line frequency in Hz, field rate in mHz, pixel clock
 * in kHz, the horizontal and vertical counts, fixed flags and the reduced aspect ratio).
 */
#pragma once

#include <cstddef>
#include <cstdint>

#include "VideoTimingCaculator.h"

namespace vesk::hardware::veskdevicemanager::implementation {

inline constexpr size_t kCustomModeBufferSize = 512;

// Truncates toward zero as the boot loader's readers expect; a value that is not finite (a
// timing with zero totals) or does not fit in 32 bits is stored as 0.
int32_t truncateToInt32(double value);

// Writes the custom mode string of `timing` into `buffer` (cleared first). `gcdOf` reduces the
// aspect ratio.
void formatCustomMode(const timing_t& timing, int (*gcdOf)(int, int),
                      char (&buffer)[kCustomModeBufferSize]);

}  // namespace vesk::hardware::veskdevicemanager::implementation
