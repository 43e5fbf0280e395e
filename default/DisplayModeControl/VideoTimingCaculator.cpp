#include "VideoTimingCaculator.h"

#include <android/log.h>
#include <string.h>

#include <algorithm>
#include <cmath>

#include "ExactRounding.h"
#include "TimingDumpLines.h"
#include "VeskLog.h"

// Every rounding step below must give the same result on every build of the calculator: no
// fused multiply-add may merge two of its roundings.
#if defined(__clang__)
#pragma STDC FP_CONTRACT OFF
#endif

namespace vesk::hardware::veskdevicemanager::implementation {
namespace {

constexpr char kTimingTag[] = "vesk_system_VideoTimingCalculator";

// Two doubles that are divided together (SSE2 on x86-64, NEON on the device).
using Pair = double __attribute__((vector_size(16)));
constexpr uint32_t kSearchBound = 40960;

// Fixed porches of the reduced-blanking layouts.
constexpr uint32_t kRb2VBackPorch = 6;
constexpr uint32_t kRb2HSync = 32;
constexpr uint32_t kRb2HBackPorch = 40;
constexpr uint32_t kRbVFrontPorch = 3;
constexpr uint32_t kRbHSync = 32;
constexpr uint32_t kRbHBackPorch = 80;

// The aspect ratios in the order they are tested, and the vertical sync width of each.
struct AspectRatio {
    const char* name;
    uint32_t vSync;
};
constexpr AspectRatio kAspectRatios[] = {{"4:3", 4},    {"16:9", 5},  {"16:10", 6},
                                         {"5:4", 7},    {"15:9", 7},  {"43:18", 10},
                                         {"64:27", 10}, {"12:5", 10}, {"Unknown", 10}};

// Stores a double into an unsigned field, truncating toward zero. A value that is not finite
// (a zero pixel clock divides by zero) stores 0. A finite value outside the field's range
// saturates, as the device's conversion instruction does: 0 below, the largest value above.
uint32_t toField(double value) {
    if (!(value > -1.0)) return 0;  // NaN, -inf and negative values
    if (value >= 4294967296.0) return std::isinf(value) ? 0 : UINT32_MAX;
    return static_cast<uint32_t>(value);
}

// A polarity text, always a literal of at most one character, that reads "+".
bool isPlus(const char* polarity) {
    return polarity[0] == '+' && polarity[1] == '\0';
}

// Whether round(lines * numerator / denominator), worked out in doubles, equals `width`. With
// fewer than 2^33 lines and numerators up to 64 the quotient stays below 2^39, where its double
// lies within 2^-14 of the exact value; the exact value is a half-integer or at least 1/54 away
// from every half-integer, so both fall on the same side of width +- 1/2 and the test can be
// done exactly, in integers.
unsigned roundsTo(uint64_t lines, int64_t numerator, int64_t denominator, uint32_t width) {
    // d (2w - 1) <= 2 n L < d (2w + 1), that is -d <= 2 (n L - d w) < d
    const int64_t offset = 2 * (numerator * static_cast<int64_t>(lines) - denominator * width);
    return unsigned{static_cast<uint64_t>(offset + denominator) <
                    static_cast<uint64_t>(2 * denominator)};
}

}  // namespace

// The mode is compared exactly, case-sensitive, without building a string.
VideoTimingCaculator::Blanking VideoTimingCaculator::blankingOf(const std::string& mode) {
    const char* text = mode.data();
    switch (mode.size()) {
        case 3:
            if (memcmp(text, "cvt", 3) == 0) return Blanking::kStandard;
            break;
        case 6:
            if (memcmp(text, "cvt_rb", 6) == 0) return Blanking::kReduced;
            break;
        case 7:
            if (memcmp(text, "cvt_rb2", 7) == 0) return Blanking::kReduced2;
            break;
    }
    return Blanking::kOther;
}

VideoTimingCaculator::VideoTimingCaculator()
    : clockStep(0.25),  // each calculation sets it again; set here so that no value is unset
      hSyncFraction(0.08),
      minVPorch(3),
      minVBackPorch(6),
      minVSyncBpTime(550),
      rbHBlank(160),
      rbHSync(32),
      rbMinVBlankTime(460),
      rbVFrontPorch(3),
      marginPercent(1.8),
      cPrime(30),
      mPrime(300),
      cellGranularity(8.0),
      hSyncPolarity(""),
      vSyncPolarity(""),
      refreshMultiplier(1.0),
      cellGranularityRnd(0),
      refreshRateRqd(0),
      vFieldRateRqd(0),
      marginsRqd(false),
      interlacedRqd(false),
      hPixelsRqd(0),
      hPixelsRnd(0),
      leftMargin(0),
      rightMargin(0),
      totalActivePixels(0),
      vLinesRqd(0),
      vLinesRnd(0),
      topMargin(0),
      bottomMargin(0),
      aspectRatio(""),
      vSync(0),
      vSyncBp(0),
      vBackPorch(0),
      totalVLines(0),
      hBlank(0),
      totalPixels(0),
      vBlank(0),
      vFrontPorch(0),
      hSync(0),
      hBackPorch(0),
      hFrontPorch(0),
      vbiEstimate(0),
      minVbiLines(0),
      actVbiLines(0),
      actPixelFreq(0),
      actHFreq(0),
      actFieldRate(0),
      actFrameRate(0),
      idealDutyCycle(0),
      hPeriodEst(0),
      interlace(0),
      bitsPerComponentRqd(0),
      componentsPerPixelRqd(0),
      recordComplete(true),
      recordBlanking(Blanking::kOther) {}

VideoTimingCaculator::~VideoTimingCaculator() = default;

void VideoTimingCaculator::calculateCvt(uint32_t hPixels, uint32_t vLines, uint32_t refreshRate,
                                        uint32_t bitsPerComponent, double componentsPerPixel,
                                        const std::string& mode, bool margins, bool interlaced,
                                        bool videoOptimized) {
    const Blanking blanking = blankingOf(mode);
    setUpMode(blanking, videoOptimized);

    // Character cell: 8 pixels, or 2 when the width is not a whole number of cells.
    const uint32_t cell = hPixels % 8 == 0 ? 8 : 2;
    if (cell != 8) {
        vesk::log::warn(kTimingTag,
                        "WARNING! Aspect Ratio Not CVT Standar!Horizontal Pixel Not Divisible by "
                        "8, Count Rounded to Nearest Character Cell\n");
    }
    cellGranularity = cell;
    cellGranularityRnd = toField(floorExact(cellGranularity));  // the same whole number

    refreshRateRqd = refreshRate;
    marginsRqd = margins;
    interlacedRqd = interlaced;
    vFieldRateRqd = interlaced ? 2.0 * refreshRate : static_cast<double>(refreshRate);
    // The reduced-blanking field time, worked out first: the rest of that calculation waits
    // for this division, and meanwhile the sizes below are settled.
    const double fieldTime = 1e6 / vFieldRateRqd - rbMinVBlankTime;

    hPixelsRqd = hPixels;
    hPixelsRnd = hPixels & ~(cell - 1);  // cell is a power of two
    leftMargin = margins ? toField(floorExact(hPixelsRnd * marginPercent / 100 / cell) * cell) : 0;
    rightMargin = leftMargin;
    totalActivePixels = hPixelsRnd + leftMargin + rightMargin;

    vLinesRqd = vLines;
    vLinesRnd = interlaced ? toField(floorExact(vLines * 0.5)) : vLines;
    topMargin = margins ? toField(floorExact(vLinesRnd * marginPercent / 100)) : 0;
    bottomMargin = topMargin;
    interlace = interlaced ? 0.5 : 0.0;

    // The aspect ratio is judged on the frame's height against the rounded width; it sets the
    // vertical sync width, except for version 2's fixed 8 lines. The first ratio that matches
    // wins; all are tested at once, without a division. Every named ratio lies between 5:4 and
    // 12:5, so a width outside [5/4 L - 1/2, 12/5 L + 1/2] needs no test.
    const uint64_t frameLines = interlaced ? uint64_t{vLinesRnd} * 2 : vLinesRnd;
    const uint64_t width = hPixelsRnd;
    unsigned matches = 1u << 8;  // "Unknown"
    if (4 * width + 2 >= 5 * frameLines && 10 * width <= 24 * frameLines + 5) {
        matches |= roundsTo(frameLines, 4, 3, hPixelsRnd) |
                   roundsTo(frameLines, 16, 9, hPixelsRnd) << 1 |
                   roundsTo(frameLines, 16, 10, hPixelsRnd) << 2 |
                   roundsTo(frameLines, 5, 4, hPixelsRnd) << 3 |
                   roundsTo(frameLines, 15, 9, hPixelsRnd) << 4 |
                   roundsTo(frameLines, 43, 18, hPixelsRnd) << 5 |
                   roundsTo(frameLines, 64, 27, hPixelsRnd) << 6 |
                   roundsTo(frameLines, 12, 5, hPixelsRnd) << 7;
    }
    const AspectRatio& aspect = kAspectRatios[__builtin_ctz(matches)];
    aspectRatio = aspect.name;
    vSync = blanking == Blanking::kReduced2 ? 8 : aspect.vSync;

    if (blanking == Blanking::kStandard) {
        calculateStandardBlanking();
    } else {
        calculateReducedBlanking(blanking == Blanking::kReduced2, fieldTime);
    }
    fillRecord(blanking, mode, bitsPerComponent, componentsPerPixel);
}

void VideoTimingCaculator::setUpMode(Blanking blanking, bool videoOptimized) {
    switch (blanking) {
        case Blanking::kStandard:
        case Blanking::kReduced:
        case Blanking::kReduced2: {
            const bool rb2 = blanking == Blanking::kReduced2;
            minVBackPorch = 6;
            clockStep = rb2 ? 0.001 : 0.25;
            rbHBlank = rb2 ? 80 : 160;
            rbHSync = 32;
            rbMinVBlankTime = 460;
            rbVFrontPorch = rb2 ? 1 : 3;
            hSyncPolarity = blanking == Blanking::kStandard ? "-" : "+";
            vSyncPolarity = blanking == Blanking::kStandard ? "+" : "-";
            // The video-optimised variant of version 2 has always produced no clock here.
            refreshMultiplier = rb2 && videoOptimized ? 0.0 : 1.0;
            break;
        }
        case Blanking::kOther:
            // The constants of the previous mode stay; the clock and polarities are void.
            hSyncPolarity = "?";
            vSyncPolarity = "?";
            refreshMultiplier = 0.0;
            break;
    }
}

// x / clockStep. Dividing by a quarter is exactly multiplying by 4, and quicker.
double VideoTimingCaculator::perClockStep(double x) const {
    return clockStep == 0.25 ? x * 4.0 : x / clockStep;
}

void VideoTimingCaculator::calculateStandardBlanking() {
    const uint32_t cell = cellGranularityRnd;
    hPeriodEst = (1 / vFieldRateRqd - minVSyncBpTime / 1e6) /
                 (static_cast<double>(vLinesRnd) + 2.0 * topMargin + minVPorch + interlace) * 1e6;
    vSyncBp = toField(std::max(static_cast<double>(vSync + minVBackPorch),
                               floorExact(minVSyncBpTime / hPeriodEst) + 1));
    vBackPorch = vSyncBp - vSync;
    vFrontPorch = minVPorch;
    vBlank = vSyncBp + minVPorch;
    totalVLines = toField(static_cast<double>(topMargin) + vLinesRnd + bottomMargin + vSyncBp +
                          interlace + minVPorch);

    idealDutyCycle = cPrime - mPrime * hPeriodEst / 1000;
    if (idealDutyCycle < 20) {
        hBlank = totalActivePixels * 20 / 80 / (2 * cell) * 2 * cell;
    } else {
        hBlank = toField(floorExact(idealDutyCycle * totalActivePixels / (100 - idealDutyCycle) /
                                    (2.0 * cell)) *
                         2 * cell);
    }
    totalPixels = totalActivePixels + hBlank;

    actPixelFreq = clockStep * floorExact(perClockStep(totalPixels / hPeriodEst));

    hSync = toField(floorExact(totalPixels * hSyncFraction / cell) * cell);
    hBackPorch = hBlank / 2;
    hFrontPorch = hBlank - hBackPorch - hSync;
}

// floor(rbMinVBlankTime / hPeriodEst) + 1, with hPeriodEst = fieldTime / activeLines. Two
// divisions in a row are the slowest part of the calculation, so the quotient is first taken in
// one, as rbMinVBlankTime * activeLines / fieldTime: that lies within 4 units in the last place
// of the two-step quotient, and unless it is that close to a whole number both have the same
// floor. Otherwise, and for quotients that are not positive or not small, the two steps decide.
double VideoTimingCaculator::blankLinesEstimate(double fieldTime, double activeLines) const {
    const double quick = rbMinVBlankTime * activeLines / fieldTime;  // the product is exact
    if (quick > 0.0 && quick < 1099511627776.0) {                    // 2^40
        const double whole = static_cast<double>(static_cast<int64_t>(quick));
        const double margin = quick * 0x1p-49;  // 16 units in the last place
        if (quick - whole > margin && whole + 1 - quick > margin) return whole + 1;
    }
    return floorExact(rbMinVBlankTime / hPeriodEst) + 1;
}

void VideoTimingCaculator::calculateReducedBlanking(bool version2, double fieldTime) {
    hBlank = rbHBlank;
    totalPixels = totalActivePixels + hBlank;

    minVbiLines = vSync + rbVFrontPorch + minVBackPorch;
    const double activeLines = static_cast<double>(topMargin) + vLinesRnd + bottomMargin;
    hPeriodEst = fieldTime / activeLines;
    vbiEstimate = blankLinesEstimate(fieldTime, activeLines);
    const double blankLines = std::max(static_cast<double>(minVbiLines), vbiEstimate);
    actVbiLines = toField(blankLines);
    vBlank = actVbiLines;
    totalVLines =
            toField(interlace + topMargin + static_cast<double>(vLinesRnd) + bottomMargin + vBlank);

    // The same total as a double, without the round trip through the fields on the way to the
    // clock: whole numbers below 2^32 add exactly, and truncation takes the interlace half away.
    const double wholeLines = activeLines + blankLines;
    const double vTotal = wholeLines < 4294967296.0 ? wholeLines : totalVLines;
    actPixelFreq = clockStep * floorExact(perClockStep(refreshMultiplier * (vFieldRateRqd * vTotal *
                                                                            totalPixels / 1e6)));

    if (version2) {
        vBackPorch = kRb2VBackPorch;
        hSync = kRb2HSync;
        hBackPorch = kRb2HBackPorch;
        vFrontPorch = vBlank - vSync - kRb2VBackPorch;
        hFrontPorch = hBlank - (kRb2HSync + kRb2HBackPorch);
    } else {
        hBackPorch = kRbHBackPorch;
        vBackPorch = vBlank - vSync - kRbVFrontPorch;
        vFrontPorch = kRbVFrontPorch;
        hSync = kRbHSync;
        // Unsigned, like every field: a blank narrower than sync and back porch wraps around.
        hFrontPorch = hBlank - (kRbHSync + kRbHBackPorch);
    }
}

void VideoTimingCaculator::fillRecord(Blanking blanking, const std::string& mode,
                                      uint32_t bitsPerComponent, double componentsPerPixel) {
    // Every field is written here or by completeRecord(): the record starts over without a
    // separate reset.
    // The three named modes are recognised by their blanking: the name is written again only
    // when it changes.
    if (blanking == Blanking::kOther || blanking != recordBlanking) {
        timing.name.assign(mode);
        recordBlanking = blanking;
    }
    timing.aspect.clear();
    timing.h_total = totalPixels;
    timing.h_active = totalActivePixels;
    timing.h_blank = hBlank;
    timing.h_front_porch = hFrontPorch;
    timing.h_sync = hSync;
    timing.h_back_porch = hBackPorch;
    timing.pix_clock = clockToKhz(actPixelFreq);
    timing.h_sync_polarity = isPlus(hSyncPolarity) ? 1 : 0;
    timing.v_sync_polarity = isPlus(vSyncPolarity) ? 1 : 0;
    timing.v_total = totalVLines;
    timing.v_active = vLinesRnd;
    timing.v_blank = vBlank;
    timing.v_front_porch = vFrontPorch;
    timing.v_sync = vSync;
    timing.v_back_porch = vBackPorch;

    // The rates, periods and bandwidths follow from the fields above; they are worked out when
    // the record is first read, so that the searches, which read only the clock, skip them.
    bitsPerComponentRqd = bitsPerComponent;
    componentsPerPixelRqd = componentsPerPixel;
    recordComplete = false;
}

// round(clock * 1e6 / 1000) / 1000: the clock in MHz, to the kHz. On the quarter-MHz step every
// clock below 2^32 MHz is k / 4 for a whole k, and then each step is exact (250000 k < 2^52,
// 250 k and k / 4 are doubles): the result is the clock itself.
double VideoTimingCaculator::clockToKhz(double clock) const {
    if (clockStep == 0.25 && std::fabs(clock) < 4294967296.0) return clock;
    return roundExact(clock * 1e6 / 1000) / 1000;
}

void VideoTimingCaculator::completeRecord() {
    if (recordComplete) return;
    recordComplete = true;
    const double hz = actPixelFreq * 1e6;
    const double ht = totalPixels;
    const double vt = totalVLines;
    const double active = totalActivePixels;
    const double bits = bitsPerComponentRqd;
    const double bandwidth = hz * bits * componentsPerPixelRqd;

    // The divisions go two at a time: a pair costs about what one does, and each lane is
    // rounded exactly as a single division is. They come in three rounds, each needing the
    // one before.
    const Pair first1 = Pair{actPixelFreq * 1000, vBlank * ht} / Pair{ht, hz};
    const Pair first2 = Pair{hz, ht} / Pair{ht, hz};
    const Pair first3 = Pair{hz, bandwidth * active} / Pair{vt * ht, ht};
    actHFreq = first1[0];
    const double frameFreq = first3[0];  // hz / (vt * ht)
    const double activeBandwidth = frameFreq * bits * vLinesRnd * active * componentsPerPixelRqd;

    const Pair second1 = Pair{actHFreq * 1000, roundExact(frameFreq * 1000)} / Pair{vt, 1000};
    const Pair second2 = Pair{roundExact(first2[0]), roundExact(first2[1] * 1e9)} / 1000.0;
    const Pair second3 = Pair{first3[1], activeBandwidth} / 1e6;
    const Pair second4 = Pair{bandwidth, 1e6} / Pair{1e6, frameFreq};
    actFieldRate = second1[0];
    actFrameRate = interlacedRqd ? actFieldRate * 0.5 : actFieldRate;

    // With a zero clock the periods and durations below are infinite; the unsigned fields
    // among them then hold 0 (see toField).
    timing.h_freq = second2[0];                                     // round(hz / ht) / 1000
    timing.h_period = second2[1];                                   // round(ht / hz * 1e9) / 1000
    timing.vblank_duration = toField(roundExact(first1[1] * 1e6));  // vBlank * ht / hz * 1e6
    timing.v_freq = second1[1];                        // round(hz / (vt * ht) * 1000) / 1000
    timing.v_period = roundExact(second4[1]) / 1000;   // round(1e6 / ...) / 1000
    timing.peak_bw = toField(roundExact(second4[0]));  // hz * bits * components / 1e6
    timing.line_bw = toField(roundExact(second3[0]));
    timing.active_bw = toField(roundExact(second3[1]));
}

timing_t VideoTimingCaculator::getCvtTiming() {
    completeRecord();
    return timing;
}

int VideoTimingCaculator::getMaxVFreq(uint32_t hPixels, uint32_t vLines, double maxPixClock,
                                      uint32_t bitsPerComponent, double componentsPerPixel,
                                      const std::string& mode, bool margins, bool interlaced,
                                      bool videoOptimized) {
    VideoTimingCaculator calculator;
    for (uint32_t n = 0; n < kSearchBound; ++n) {
        calculator.calculateCvt(hPixels, vLines, n, bitsPerComponent, componentsPerPixel, mode,
                                margins, interlaced, videoOptimized);
        if (calculator.timing.pix_clock > maxPixClock) {
            vesk::log::info(kTimingTag, "%s %d\n", "getMaxVFreq", static_cast<int>(n));
            // Five below the first rate that is too fast, to stay clear of the limit.
            return static_cast<int>(n) - 5;
        }
    }
    vesk::log::error(kTimingTag, "%s to max freq %d exit!\n", "getMaxVFreq",
                     static_cast<int>(kSearchBound));
    return -1;
}

namespace {

// The size searches round the first size that is too large up to even and step back 12.
int sizeBelowLimit(uint32_t firstTooLarge) {
    return static_cast<int>(firstTooLarge + firstTooLarge % 2) - 12;
}

}  // namespace

int VideoTimingCaculator::getMaxHPixs(uint32_t vLines, uint32_t refreshRate, double maxPixClock,
                                      uint32_t bitsPerComponent, double componentsPerPixel,
                                      const std::string& mode, bool margins, bool interlaced,
                                      bool videoOptimized) {
    VideoTimingCaculator calculator;
    for (uint32_t n = 0; n < kSearchBound; ++n) {
        calculator.calculateCvt(n, vLines, refreshRate, bitsPerComponent, componentsPerPixel, mode,
                                margins, interlaced, videoOptimized);
        if (calculator.timing.pix_clock > maxPixClock) {
            vesk::log::info(kTimingTag, "%s %d current pixclock %.3f max pixclock %.3f\n",
                            "getMaxHPixs", static_cast<int>(n), calculator.timing.pix_clock,
                            maxPixClock);
            return sizeBelowLimit(n);
        }
    }
    return -1;
}

int VideoTimingCaculator::getMaxVPixs(uint32_t hPixels, uint32_t refreshRate, double maxPixClock,
                                      uint32_t bitsPerComponent, double componentsPerPixel,
                                      const std::string& mode, bool margins, bool interlaced,
                                      bool videoOptimized) {
    VideoTimingCaculator calculator;
    for (uint32_t n = 0; n < kSearchBound; ++n) {
        calculator.calculateCvt(hPixels, n, refreshRate, bitsPerComponent, componentsPerPixel, mode,
                                margins, interlaced, videoOptimized);
        if (calculator.timing.pix_clock > maxPixClock) {
            vesk::log::info(kTimingTag, "%s %d current pixclock %.3f max pixclock %.3f\n",
                            "getMaxVPixs", static_cast<int>(n), calculator.timing.pix_clock,
                            maxPixClock);
            return sizeBelowLimit(n);
        }
    }
    return -1;
}

double VideoTimingCaculator::getPixClock(uint32_t hPixels, uint32_t vLines, uint32_t refreshRate,
                                         uint32_t bitsPerComponent, double componentsPerPixel,
                                         const std::string& mode, bool margins, bool interlaced,
                                         bool videoOptimized) {
    VideoTimingCaculator calculator;
    calculator.calculateCvt(hPixels, vLines, refreshRate, bitsPerComponent, componentsPerPixel,
                            mode, margins, interlaced, videoOptimized);
    return calculator.timing.pix_clock;
}

int VideoTimingCaculator::dump() {
    completeRecord();
    int result = 0;
    forEachTimingDumpLine(timing, [&](const char* format, auto value) {
        const char level = vesk::log::currentLevel();
        if (level == 'I' || level == 'D') {
            result = __android_log_print(ANDROID_LOG_INFO, kTimingTag, format, timing.name.c_str(),
                                         value);
        }
    });
    return result;
}

}  // namespace vesk::hardware::veskdevicemanager::implementation
