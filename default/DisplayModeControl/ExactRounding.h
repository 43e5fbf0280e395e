/*
 * floor() and round() of <cmath>, bit for bit, with the common case inline: positive values
 * below 2^52, where truncation is exact. The timing calculation rounds some twenty times and
 * generic x86-64 has no rounding instruction; zeros (signed), negative values, huge values and
 * values that are not numbers go to the library.
 */
#pragma once

#include <stdint.h>

#include <cmath>

namespace vesk::hardware::veskdevicemanager::implementation {

// From 2^52 on every double is a whole number.
inline constexpr double kIntegralFrom = 4503599627370496.0;

inline double floorExact(double x) {
    if (x > 0.0 && x < kIntegralFrom) return static_cast<double>(static_cast<int64_t>(x));
    return std::floor(x);
}

// Halves away from zero.
inline double roundExact(double x) {
    if (x > 0.0 && x < kIntegralFrom) {
        double whole = static_cast<double>(static_cast<int64_t>(x));
        return whole + static_cast<double>(x - whole >= 0.5);  // x - whole is exact
    }
    return std::round(x);
}

}  // namespace vesk::hardware::veskdevicemanager::implementation
