// The calculator's inline floor and round agree with <cmath> bit for bit.
#include <gtest/gtest.h>
#include <string.h>

#include <cmath>
#include <limits>
#include <random>

#include "ExactRounding.h"

namespace vesk::test {
namespace {

using vesk::hardware::veskdevicemanager::implementation::floorExact;
using vesk::hardware::veskdevicemanager::implementation::roundExact;

uint64_t bits(double x) {
    uint64_t b;
    memcpy(&b, &x, sizeof(b));
    return b;
}

void expectLikeCmath(double x) {
    EXPECT_EQ(bits(std::floor(x)), bits(floorExact(x))) << "floor " << x;
    EXPECT_EQ(bits(std::round(x)), bits(roundExact(x))) << "round " << x;
}

TEST(ExactRoundingTest, SpecialValuesMatchCmath) {
    const double inf = std::numeric_limits<double>::infinity();
    for (double x : {0.0,
                     -0.0,
                     0.5,
                     -0.5,
                     1.5,
                     -1.5,
                     2.5,
                     -2.5,
                     0.49999999999999994,
                     -0.49999999999999994,
                     0.3,
                     -0.3,
                     1.0,
                     -1.0,
                     4503599627370495.5,
                     4503599627370496.0,
                     4503599627370497.0,
                     9007199254740993.0,
                     -4503599627370495.5,
                     1e300,
                     -1e300,
                     inf,
                     -inf,
                     std::numeric_limits<double>::denorm_min(),
                     -std::numeric_limits<double>::denorm_min(),
                     138.65279999999999,
                     466.49999999999994}) {
        expectLikeCmath(x);
    }
    EXPECT_TRUE(std::isnan(floorExact(NAN)));
    EXPECT_TRUE(std::isnan(roundExact(NAN)));
}

TEST(ExactRoundingTest, RandomValuesMatchCmath) {
    std::mt19937_64 random(20240607);
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    for (int i = 0; i < 200000; ++i) {
        double scale = std::ldexp(1.0, static_cast<int>(random() % 70) - 8);
        expectLikeCmath(unit(random) * scale);
        // Halves and their neighbours.
        double half = std::floor(unit(random) * scale) + 0.5;
        expectLikeCmath(half);
        expectLikeCmath(std::nextafter(half, 0.0));
        expectLikeCmath(std::nextafter(half, 1e308));
    }
}

}  // namespace
}  // namespace vesk::test
