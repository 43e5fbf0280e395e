/*
 * The CVT timing calculator with any sizes, rates, modes and flags: the calculation, the dump
 * of its record, the custom mode string made of it and, now and then, the limit searches.
 */
#include <cutils/properties.h>
#include <fuzzer/FuzzedDataProvider.h>
#include <stdint.h>

#include <cstring>
#include <string>

#include "CustomMode.h"
#include "FuzzRoot.h"
#include "VideoTimingCaculator.h"

using namespace vesk::hardware::veskdevicemanager::implementation;

namespace {

std::string modeFrom(FuzzedDataProvider& in) {
    switch (in.ConsumeIntegralInRange<int>(0, 4)) {
        case 0:
            return "cvt";
        case 1:
            return "cvt_rb";
        case 2:
            return "cvt_rb2";
        default:
            return in.ConsumeRandomLengthString(16);
    }
}

// Sizes and rates: mostly plausible, sometimes anything a uint32_t holds.
uint32_t amountFrom(FuzzedDataProvider& in, uint32_t plausibleMax) {
    return in.ConsumeBool() ? in.ConsumeIntegralInRange<uint32_t>(0, plausibleMax)
                            : in.ConsumeIntegral<uint32_t>();
}

int gcdOf(int a, int b) {
    // Unsigned, so that no remainder traps; the string only needs some common divisor.
    unsigned x = static_cast<unsigned>(a), y = static_cast<unsigned>(b);
    while (y != 0) {
        unsigned r = x % y;
        x = y;
        y = r;
    }
    return static_cast<int>(x);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    vesk::fuzz::freshRoot();
    FuzzedDataProvider in(bytes, size);
    static bool debugLevel = false;
    bool wantDebug = in.ConsumeBool();
    if (wantDebug != debugLevel) {
        // The dump writes its lines only at the debug level.
        property_set("persist.vesk.device.log.level", wantDebug ? "D" : "E");
        debugLevel = wantDebug;
    }
    uint32_t hPixels = amountFrom(in, 10000);
    uint32_t vLines = amountFrom(in, 10000);
    uint32_t rate = amountFrom(in, 500);
    uint32_t bits = amountFrom(in, 16);
    double components = in.ConsumeBool() ? 3.0 : in.ConsumeFloatingPoint<double>();
    std::string mode = modeFrom(in);
    bool margins = in.ConsumeBool();
    bool interlaced = in.ConsumeBool();
    bool videoOptimized = in.ConsumeBool();
    // One input in 256 (an exhausted input reads 0 here, so 255 marks the searches).
    bool searches = in.ConsumeIntegralInRange<int>(0, 255) == 255;
    // A ceiling in the range of real pixel clocks (MHz), so that a search mostly ends early;
    // each step is a whole calculation.
    double maxPixClock = in.ConsumeFloatingPointInRange<double>(0, 1200);

    VideoTimingCaculator calculator;
    calculator.calculateCvt(hPixels, vLines, rate, bits, components, mode, margins, interlaced,
                            videoOptimized);
    timing_t timing = calculator.getCvtTiming();
    calculator.dump();
    calculator.getAspectRatio();
    char buffer[kCustomModeBufferSize];
    formatCustomMode(timing, gcdOf, buffer);
    if (strnlen(buffer, sizeof(buffer)) == sizeof(buffer)) __builtin_trap();
    calculator.getPixClock(hPixels, vLines, rate, bits, components, mode, margins, interlaced,
                           videoOptimized);
    if (searches) {
        calculator.getMaxVFreq(hPixels, vLines, maxPixClock, bits, components, mode, margins,
                               interlaced, videoOptimized);
        calculator.getMaxHPixs(vLines, rate, maxPixClock, bits, components, mode, margins,
                               interlaced, videoOptimized);
        calculator.getMaxVPixs(hPixels, rate, maxPixClock, bits, components, mode, margins,
                               interlaced, videoOptimized);
    }
    return 0;
}
