/*
 * veskdm timing W H [RATE]: the CVT timing calculator of the output-mode control, as the dump's
 * text, as JSON or as an X11 modeline; or one of its limit searches.
 */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

#include <cmath>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "Commands.h"
#include "TimingDumpLines.h"
#include "TimingInput.h"
#include "VideoTimingCaculator.h"

namespace veskdm {
namespace {

using vesk::hardware::veskdevicemanager::implementation::forEachTimingDumpLine;
using vesk::hardware::veskdevicemanager::implementation::timing_t;
using vesk::hardware::veskdevicemanager::implementation::VideoTimingCaculator;

struct TimingOptions {
    std::string width;
    std::string height;
    std::string rate = "60";
    std::string mode = "cvt_rb";
    bool interlaced = false;
    bool margins = false;
    bool videoOptimized = false;
    std::string bits = "8";
    std::string components = "3.0";
    std::string format = "text";
    std::string maxRefreshClock;
    std::string maxWidthClock;
    std::string maxHeightClock;
    // Which search was asked for (its option given, even empty).
    bool maxRefresh = false;
    bool maxWidth = false;
    bool maxHeight = false;
};

// The arguments as the calculator takes them, each checked.
struct TimingRequest {
    uint32_t width;
    uint32_t height;
    uint32_t rate;
    uint32_t maxRate;  // the highest rate the mode takes
    uint32_t bits;
    double components;
    const TimingOptions& options;
};

TimingRequest readRequest(const TimingOptions& options) {
    checkTimingMode(options.mode);
    if (options.videoOptimized && options.mode == "cvt_rb2") {
        // Kept as the output-mode control has it: its clock multiplier is 0 there.
        throw UsageError(
                "timing: --video-optimized cvt_rb2 has no pixel clock in this calculator (its "
                "clock multiplier is 0): no timing");
    }
    uint32_t maxRate = options.interlaced ? kMaxFieldRate / 2 : kMaxFieldRate;
    std::string rateNote = options.interlaced ? " with --interlaced (two fields a frame)" : "";
    return {readWholeNumber(options.width, "width", 1, kMaxTimingSize),
            readWholeNumber(options.height, "height", 1, kMaxTimingSize),
            readWholeNumber(options.rate, "rate", 1, maxRate, rateNote),
            maxRate,
            readWholeNumber(options.bits, "--bits", 1, kMaxBitsPerComponent),
            readPositiveNumber(options.components, "--components", kMaxComponentsPerPixel),
            options};
}

// printf-style formatting into a string.
template <typename... Args>
std::string format(const char* pattern, Args... args) {
    int length = snprintf(nullptr, 0, pattern, args...);
    if (length <= 0) return std::string();
    std::string text(static_cast<size_t>(length) + 1, '\0');
    snprintf(text.data(), text.size(), pattern, args...);
    text.pop_back();
    return text;
}

void printText(std::ostream& out, const timing_t& t) {
    forEachTimingDumpLine(t, [&](const char* pattern, auto value) {
        out << format(pattern, t.name.c_str(), value);
    });
}

void printJson(std::ostream& out, const timing_t& t) {
    // JSON has no infinity: the periods of a timing without a clock print as null.
    nlohmann::ordered_json json = {
            {"name", t.name},
            {"pix_clock", t.pix_clock},
            {"h_total", t.h_total},
            {"h_active", t.h_active},
            {"h_blank", t.h_blank},
            {"h_front_porch", t.h_front_porch},
            {"h_sync", t.h_sync},
            {"h_back_porch", t.h_back_porch},
            {"h_sync_polarity", t.h_sync_polarity},
            {"h_freq", t.h_freq},
            {"h_period", t.h_period},
            {"v_total", t.v_total},
            {"v_active", t.v_active},
            {"v_blank", t.v_blank},
            {"vblank_duration", t.vblank_duration},
            {"v_front_porch", t.v_front_porch},
            {"v_sync", t.v_sync},
            {"v_back_porch", t.v_back_porch},
            {"v_sync_polarity", t.v_sync_polarity},
            {"v_freq", t.v_freq},
            {"v_period", t.v_period},
            {"peak_bw", t.peak_bw},
            {"line_bw", t.line_bw},
            {"active_bw", t.active_bw},
            {"aspect", t.aspect},
    };
    out << json.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) << "\n";
}

// An X11 modeline for xrandr --newmode. The record counts the lines of one field, margins
// outside v_active; a modeline counts the addressable lines including margins and, when
// interlaced, the lines of a frame: twice a field's, plus the half line each field carries.
void printModeline(std::ostream& out, const timing_t& t, const TimingOptions& options) {
    using Count = unsigned long long;
    Count vDisplay = Count{t.v_total} - t.v_blank;
    Count vSyncStart = vDisplay + t.v_front_porch;
    Count vSyncEnd = vSyncStart + t.v_sync;
    Count vTotal = t.v_total;
    if (options.interlaced) {
        vDisplay *= 2;
        vSyncStart *= 2;
        vSyncEnd *= 2;
        vTotal = vTotal * 2 + 1;
    }
    const Count hSyncStart = Count{t.h_active} + t.h_front_porch;
    const Count hSyncEnd = hSyncStart + t.h_sync;
    out << format("Modeline \"%sx%s_%s\" %.3f %u %llu %llu %u %llu %llu %llu %llu %s %s%s\n",
                  options.width.c_str(), options.height.c_str(), options.rate.c_str(), t.pix_clock,
                  t.h_active, hSyncStart, hSyncEnd, t.h_total, vDisplay, vSyncStart, vSyncEnd,
                  vTotal, t.h_sync_polarity == 1 ? "+hsync" : "-hsync",
                  t.v_sync_polarity == 1 ? "+vsync" : "-vsync",
                  options.interlaced ? " Interlace" : "");
}

// A timing without a clock has no rates or periods: refused, with the reason.
void checkHasClock(const timing_t& timing, const TimingRequest& request) {
    if (timing.pix_clock > 0 && std::isfinite(timing.h_period) && std::isfinite(timing.v_period)) {
        return;
    }
    const char* step = request.options.mode == "cvt_rb2" ? "0.001" : "0.25";
    throw UsageError("timing: " + request.options.width + "x" + request.options.height + " at " +
                     request.options.rate + " Hz (" + request.options.mode +
                     ") has no pixel clock: it is below the calculator's step of " + step + " MHz");
}

// A search answers a size or rate only within the range the calculator takes; outside it the
// answer (-1 when it ran to its bound, or below 1 when the first step was over the ceiling)
// is none. `clockAtMax` gives the clock at the top of the range.
void printSearchAnswer(std::ostream& out, int answer, uint32_t max, const std::string& unit,
                       double ceiling, const std::function<double()>& clockAtMax,
                       const std::string& what, const std::string& margin) {
    if (answer >= 1 && static_cast<uint32_t>(answer) <= max) {
        out << answer << "\n";
        return;
    }
    std::ostringstream text;
    text << "timing: ";
    if (clockAtMax() <= ceiling) {
        text << "every " << what << " up to " << max << " " << unit << " stays under " << ceiling
             << " MHz: the search has no answer";
    } else {
        text << "no " << what << " fits under " << ceiling << " MHz (the search keeps " << margin
             << " below the first one over it)";
    }
    throw CommandError(text.str());
}

void run(std::ostream& out, const TimingOptions& options) {
    TimingRequest r = readRequest(options);
    VideoTimingCaculator calculator;
    auto clockOf = [&](uint32_t width, uint32_t height, uint32_t rate) {
        return [=, &calculator, &options] {
            return calculator.getPixClock(width, height, rate, r.bits, r.components, options.mode,
                                          options.margins, options.interlaced,
                                          options.videoOptimized);
        };
    };
    std::string at = " of " + options.width + "x" + options.height;
    if (options.maxRefresh) {
        double ceiling = readPositiveNumber(options.maxRefreshClock, "--max-refresh");
        int answer = calculator.getMaxVFreq(r.width, r.height, ceiling, r.bits, r.components,
                                            options.mode, options.margins, options.interlaced,
                                            options.videoOptimized);
        printSearchAnswer(out, answer, r.maxRate, "Hz", ceiling,
                          clockOf(r.width, r.height, r.maxRate), "refresh rate" + at, "5 Hz");
        return;
    }
    if (options.maxWidth) {
        double ceiling = readPositiveNumber(options.maxWidthClock, "--max-width");
        int answer = calculator.getMaxHPixs(r.height, r.rate, ceiling, r.bits, r.components,
                                            options.mode, options.margins, options.interlaced,
                                            options.videoOptimized);
        printSearchAnswer(out, answer, kMaxTimingSize, "pixels", ceiling,
                          clockOf(kMaxTimingSize, r.height, r.rate),
                          "width of " + options.height + " lines at " + options.rate + " Hz",
                          "12 pixels");
        return;
    }
    if (options.maxHeight) {
        double ceiling = readPositiveNumber(options.maxHeightClock, "--max-height");
        int answer =
                calculator.getMaxVPixs(r.width, r.rate, ceiling, r.bits, r.components, options.mode,
                                       options.margins, options.interlaced, options.videoOptimized);
        printSearchAnswer(out, answer, kMaxTimingSize, "lines", ceiling,
                          clockOf(r.width, kMaxTimingSize, r.rate),
                          "height of " + options.width + " pixels at " + options.rate + " Hz",
                          "12 lines");
        return;
    }

    calculator.calculateCvt(r.width, r.height, r.rate, r.bits, r.components, options.mode,
                            options.margins, options.interlaced, options.videoOptimized);
    timing_t timing = calculator.getCvtTiming();
    checkHasClock(timing, r);
    if (options.format == "json") {
        printJson(out, timing);
    } else if (options.format == "modeline") {
        printModeline(out, timing, options);
    } else {
        printText(out, timing);
    }
}

}  // namespace

void addTimingCommand(CLI::App& app, Context& context) {
    auto shared = std::make_shared<TimingOptions>();
    TimingOptions& options = *shared;
    auto* timing = app.add_subcommand("timing", "CVT timing of W x H at RATE Hz (default 60)");
    timing->footer("Sizes from 1 to " + std::to_string(kMaxTimingSize) + ", rates from 1 to " +
                   std::to_string(kMaxFieldRate) + " Hz (" + std::to_string(kMaxFieldRate / 2) +
                   " interlaced): the calculator's totals fit its fields there.");
    timing->add_option("W", options.width, "active width, pixels")->required();
    timing->add_option("H", options.height, "active height, lines")->required();
    timing->add_option("RATE", options.rate, "refresh rate, Hz");
    timing->add_option("--mode", options.mode, "cvt, cvt_rb (default) or cvt_rb2");
    timing->add_flag("--interlaced", options.interlaced, "interlaced: 2 x RATE fields of H/2 lines");
    timing->add_flag("--margins", options.margins, "1.8 % margins on every side");
    timing->add_flag("--video-optimized", options.videoOptimized,
                     "video-optimised cvt_rb2 (which has no clock here)");
    timing->add_option("--bits", options.bits, "bits per component, 1 to 16 (8)");
    timing->add_option("--components", options.components,
                       "components per pixel, above 0 and at most 4 (3.0)");
    timing->add_option("--format", options.format, "text (default), json or modeline")
            ->check(CLI::IsMember({"text", "json", "modeline"}));
    auto* maxRefresh = timing->add_option("--max-refresh", options.maxRefreshClock,
                                          "highest refresh under CLOCK MHz, less 5");
    auto* maxWidth = timing->add_option("--max-width", options.maxWidthClock,
                                        "widest line under CLOCK MHz, less 12 (W ignored)");
    auto* maxHeight = timing->add_option("--max-height", options.maxHeightClock,
                                         "tallest frame under CLOCK MHz, less 12 (H ignored)");
    maxRefresh->excludes(maxWidth)->excludes(maxHeight);
    maxWidth->excludes(maxHeight);
    timing->callback([shared, maxRefresh, maxWidth, maxHeight, &context] {
        shared->maxRefresh = maxRefresh->count() > 0;
        shared->maxWidth = maxWidth->count() > 0;
        shared->maxHeight = maxHeight->count() > 0;
        run(context.out, *shared);
    });
}

}  // namespace veskdm
