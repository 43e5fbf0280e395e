/*
 * The CVT calculator against libxcvt, the X server's generator, for the same reduced-blanking
 * modes: both cycle through the same 64 sizes, so nothing can be reused from one call to the
 * next. And a refresh search that never reaches its ceiling: 40960 calculations.
 */
#include <benchmark/benchmark.h>
#include <libxcvt/libxcvt.h>
#include <stdlib.h>

#include <array>
#include <filesystem>
#include <string>

#include "VideoTimingCaculator.h"
#include "vesk/host/DeviceRoot.h"
#include "vesk/host/LogSink.h"

namespace {

using vesk::hardware::veskdevicemanager::implementation::VideoTimingCaculator;

struct Size {
    uint32_t width, height;
};

// 8 widths (whole 8-pixel cells, so no warning is due) by 8 heights.
std::array<Size, 64> makeSizes() {
    constexpr uint32_t kWidths[] = {800, 1024, 1280, 1440, 1680, 1920, 2560, 3840};
    constexpr uint32_t kHeights[] = {600, 720, 768, 900, 1050, 1080, 1440, 2160};
    std::array<Size, 64> sizes{};
    size_t i = 0;
    for (uint32_t w : kWidths) {
        for (uint32_t h : kHeights) sizes[i++] = {w, h};
    }
    return sizes;
}
const std::array<Size, 64> kSizes = makeSizes();

// The calculation over the 64 sizes; with kReadRecord the whole record is read back as well,
// so that the rates, periods and bandwidths a calculation leaves for the first read count too.
template <bool kReadRecord>
void calculateReducedBlanking(benchmark::State& state) {
    VideoTimingCaculator calculator;
    const std::string mode = "cvt_rb";
    size_t i = 0;
    for (auto _ : state) {
        const Size& s = kSizes[i++ & 63];
        calculator.calculateCvt(s.width, s.height, 60, 8, 3.0, mode, false, false, false);
        if constexpr (kReadRecord) {
            auto timing = calculator.getCvtTiming();
            benchmark::DoNotOptimize(timing);
        } else {
            benchmark::ClobberMemory();
        }
    }
}

void BM_CalculateCvtReducedBlanking(benchmark::State& state) {
    calculateReducedBlanking<false>(state);
}
BENCHMARK(BM_CalculateCvtReducedBlanking);

// As the output-mode control calls it: the mode as a literal, so a short string is built.
void BM_CalculateCvtReducedBlankingLiteralMode(benchmark::State& state) {
    VideoTimingCaculator calculator;
    size_t i = 0;
    for (auto _ : state) {
        const Size& s = kSizes[i++ & 63];
        calculator.calculateCvt(s.width, s.height, 60, 8, 3.0, "cvt_rb", false, false, false);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_CalculateCvtReducedBlankingLiteralMode);

void BM_CalculateCvtReducedBlankingAndRecord(benchmark::State& state) {
    calculateReducedBlanking<true>(state);
}
BENCHMARK(BM_CalculateCvtReducedBlankingAndRecord);

void BM_LibxcvtGenModeInfoReduced(benchmark::State& state) {
    size_t i = 0;
    for (auto _ : state) {
        const Size& s = kSizes[i++ & 63];
        libxcvt_mode_info* mode = libxcvt_gen_mode_info(s.width, s.height, 60.0f, true, false);
        benchmark::DoNotOptimize(mode);
        free(mode);
    }
}
BENCHMARK(BM_LibxcvtGenModeInfoReduced);

// The search writes its "exit" line once per call; it is discarded here.
void BM_GetMaxVFreqUnreachableCeiling(benchmark::State& state) {
    vesk::host::discardLog();
    VideoTimingCaculator calculator;
    const std::string mode = "cvt_rb";
    for (auto _ : state) {
        benchmark::DoNotOptimize(
                calculator.getMaxVFreq(1920, 1080, 1e9, 8, 3.0, mode, false, false, false));
    }
    state.counters["calculations"] = 40960;
}
BENCHMARK(BM_GetMaxVFreqUnreachableCeiling)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    // The exit line reads the log level: keep the property store in a root of its own.
    std::string pattern = std::filesystem::temp_directory_path() / "vesk-bench-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) return 1;
    vesk::host::setDeviceRoot(pattern);

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    std::filesystem::remove_all(pattern);
    return 0;
}
