/*
 * The arguments of veskdm timing, read and checked against what the calculator can compute:
 * every total it gives then fits its 32-bit fields (and the dump's signed printing), and every
 * clock and period is a number.
 */
#pragma once

#include <stdint.h>

#include <string>

namespace veskdm {

// Sizes, in pixels and lines: the calculator's own searches stop at 40960.
inline constexpr uint32_t kMaxTimingSize = 40960;
// Fields a second: a field's vertical blanking takes at least 550 us (460 with reduced
// blanking), so faster fields leave no time for their lines, and near that the line counts grow
// without bound. An interlaced frame has two fields.
inline constexpr uint32_t kMaxFieldRate = 1000;
inline constexpr uint32_t kMaxBitsPerComponent = 16;
inline constexpr double kMaxComponentsPerPixel = 4.0;
inline constexpr const char* kTimingModes[] = {"cvt", "cvt_rb", "cvt_rb2"};

// A whole number from `min` to `max`; UsageError naming `what` and the range otherwise
// (`note`, when given, says why the range is what it is).
uint32_t readWholeNumber(const std::string& text, const std::string& what, uint32_t min,
                         uint32_t max, const std::string& note = "");
// A number above 0 and at most `max` (any positive finite number when `max` is 0).
double readPositiveNumber(const std::string& text, const std::string& what, double max = 0);
// One of kTimingModes.
void checkTimingMode(const std::string& mode);

}  // namespace veskdm
