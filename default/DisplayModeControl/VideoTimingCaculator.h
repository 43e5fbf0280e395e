/*
 * VESA Coordinated Video Timings: standard blanking ("cvt"), reduced blanking version 1
 * ("cvt_rb") and version 2 ("cvt_rb2"), the limit searches built on them and a log dump of the
 * last timing. The output-mode control computes and applies its modes with it.
 */
#pragma once

#include <stdint.h>

#include <string>

namespace vesk::hardware::veskdevicemanager::implementation {

// One complete output timing.
struct timing_t {
    std::string name;      // the mode that produced it: "cvt", "cvt_rb", "cvt_rb2"
    double pix_clock = 0;  // MHz, to the kHz
    uint32_t h_total = 0;
    uint32_t h_active = 0;  // margins included
    uint32_t h_blank = 0;
    uint32_t h_front_porch = 0;
    uint32_t h_sync = 0;
    uint32_t h_back_porch = 0;
    int32_t h_sync_polarity = 0;  // 1 positive, 0 negative
    double h_freq = 0;            // kHz
    double h_period = 0;          // microseconds
    uint32_t v_total = 0;         // lines per field
    uint32_t v_active = 0;
    uint32_t v_blank = 0;
    uint32_t vblank_duration = 0;  // whole microseconds
    uint32_t v_front_porch = 0;
    uint32_t v_sync = 0;
    uint32_t v_back_porch = 0;
    int32_t v_sync_polarity = 0;  // 1 positive, 0 negative
    double v_freq = 0;            // Hz
    double v_period = 0;          // milliseconds (the dump has always labelled it "us")
    uint32_t peak_bw = 0;         // Mbit/s
    uint32_t line_bw = 0;         // Mbit/s
    uint32_t active_bw = 0;       // Mbit/s
    std::string aspect;           // not filled by the calculator
};

class VideoTimingCaculator {
  public:
    VideoTimingCaculator();
    ~VideoTimingCaculator();

    // Computes the timing of one mode into the current record. The mode is taken by reference
    // so that the searches and the output-mode control never copy it.
    void calculateCvt(uint32_t hPixels, uint32_t vLines, uint32_t refreshRate,
                      uint32_t bitsPerComponent, double componentsPerPixel, const std::string& mode,
                      bool margins, bool interlaced, bool videoOptimized);
    timing_t getCvtTiming();

    // Limit searches; each works on a calculator of its own. -1 when the ceiling is never
    // exceeded.
    int getMaxVFreq(uint32_t hPixels, uint32_t vLines, double maxPixClock,
                    uint32_t bitsPerComponent, double componentsPerPixel, const std::string& mode,
                    bool margins, bool interlaced, bool videoOptimized);
    int getMaxHPixs(uint32_t vLines, uint32_t refreshRate, double maxPixClock,
                    uint32_t bitsPerComponent, double componentsPerPixel, const std::string& mode,
                    bool margins, bool interlaced, bool videoOptimized);
    int getMaxVPixs(uint32_t hPixels, uint32_t refreshRate, double maxPixClock,
                    uint32_t bitsPerComponent, double componentsPerPixel, const std::string& mode,
                    bool margins, bool interlaced, bool videoOptimized);
    double getPixClock(uint32_t hPixels, uint32_t vLines, uint32_t refreshRate,
                       uint32_t bitsPerComponent, double componentsPerPixel,
                       const std::string& mode, bool margins, bool interlaced, bool videoOptimized);

    // Writes the current record to the log, one information line per field; returns the
    // result of the last line written (0 when the log level allowed none).
    int dump();

    // The aspect-ratio name of the last calculation ("16:9", ... or "Unknown").
    std::string getAspectRatio() const { return aspectRatio; }

  private:
    enum class Blanking { kStandard, kReduced, kReduced2, kOther };

    // The steps of one calculation are inlined into it: a search runs it tens of thousands of
    // times.

    [[gnu::always_inline]] static inline Blanking blankingOf(const std::string& mode);
    [[gnu::always_inline]] inline void setUpMode(Blanking blanking, bool videoOptimized);
    void calculateStandardBlanking();
    // `fieldTime` is 1e6 / vFieldRateRqd - rbMinVBlankTime.
    [[gnu::always_inline]] inline void calculateReducedBlanking(bool version2, double fieldTime);
    [[gnu::always_inline]] inline double blankLinesEstimate(double fieldTime,
                                                            double activeLines) const;
    [[gnu::always_inline]] inline void fillRecord(Blanking blanking, const std::string& mode,
                                                  uint32_t bitsPerComponent,
                                                  double componentsPerPixel);
    [[gnu::always_inline]] inline double clockToKhz(double clock) const;
    // Fills the record's rates, periods and bandwidths, once after each calculation.
    void completeRecord();
    [[gnu::always_inline]] inline double perClockStep(double x) const;

    timing_t timing;

    // Calculation constants; clockStep, minVBackPorch and the rb* values follow the mode.
    double clockStep;
    double hSyncFraction;
    uint32_t minVPorch;
    uint32_t minVBackPorch;
    uint32_t minVSyncBpTime;
    uint32_t rbHBlank;
    uint32_t rbHSync;
    uint32_t rbMinVBlankTime;
    uint32_t rbVFrontPorch;
    double marginPercent;
    uint32_t cPrime;
    uint32_t mPrime;
    double cellGranularity;
    // The texts point at literals only: a calculation never copies a string but the mode.
    const char* hSyncPolarity;  // "+", "-" or "?"
    const char* vSyncPolarity;
    double refreshMultiplier;

    // Working values of the last calculation.
    uint32_t cellGranularityRnd;
    uint32_t refreshRateRqd;
    double vFieldRateRqd;
    bool marginsRqd;
    bool interlacedRqd;
    uint32_t hPixelsRqd;
    uint32_t hPixelsRnd;
    uint32_t leftMargin;
    uint32_t rightMargin;
    uint32_t totalActivePixels;
    uint32_t vLinesRqd;
    uint32_t vLinesRnd;
    uint32_t topMargin;
    uint32_t bottomMargin;
    const char* aspectRatio;
    uint32_t vSync;
    uint32_t vSyncBp;
    uint32_t vBackPorch;
    uint32_t totalVLines;
    uint32_t hBlank;
    uint32_t totalPixels;
    uint32_t vBlank;
    uint32_t vFrontPorch;
    uint32_t hSync;
    uint32_t hBackPorch;
    uint32_t hFrontPorch;
    double vbiEstimate;
    uint32_t minVbiLines;
    uint32_t actVbiLines;
    double actPixelFreq;  // MHz
    double actHFreq;      // kHz
    double actFieldRate;
    double actFrameRate;
    double idealDutyCycle;
    double hPeriodEst;  // microseconds
    double interlace;   // 0.5 for an interlaced field, else 0
    uint32_t bitsPerComponentRqd;
    double componentsPerPixelRqd;
    bool recordComplete;      // the rates, periods and bandwidths of the record are filled in
    Blanking recordBlanking;  // of the mode whose name the record holds; kOther: any name
};

}  // namespace vesk::hardware::veskdevicemanager::implementation
