/*
 * veskdm timing W H [RATE]: the CVT timing calculator of the output-mode control, as the dump's
 * text, as JSON or as an X11 modeline; or one of its limit searches.
 */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

#include <cmath>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "Commands.h"
#include "TimingDumpLines.h"
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
    uint32_t bits = 8;
    double components = 3.0;
    std::string format = "text";
    double maxRefreshClock = 0;
    double maxWidthClock = 0;
    double maxHeightClock = 0;
};

// A size or rate: a positive whole number that fits the calculator's 32 bits.
uint32_t parsePositive(const std::string& text, const char* what) {
    bool digits = !text.empty() && text.size() <= 10;
    for (char c : text) digits = digits && c >= '0' && c <= '9';
    unsigned long long value = digits ? strtoull(text.c_str(), nullptr, 10) : 0;
    if (value == 0 || value > UINT32_MAX) {
        throw UsageError(std::string("timing: ") + what + " must be a whole number from 1 to " +
                         std::to_string(UINT32_MAX) + ", not '" + text + "'");
    }
    return static_cast<uint32_t>(value);
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

void run(std::ostream& out, const TimingOptions& options, const CLI::Option* maxRefresh,
         const CLI::Option* maxWidth, const CLI::Option* maxHeight) {
    uint32_t width = parsePositive(options.width, "width");
    uint32_t height = parsePositive(options.height, "height");
    uint32_t rate = parsePositive(options.rate, "rate");
    if (options.bits == 0) throw UsageError("timing: --bits must be at least 1");
    if (!(options.components > 0 && std::isfinite(options.components))) {
        throw UsageError("timing: --components must be a positive number");
    }

    VideoTimingCaculator calculator;
    if (maxRefresh->count() > 0) {
        out << calculator.getMaxVFreq(width, height, options.maxRefreshClock, options.bits,
                                      options.components, options.mode, options.margins,
                                      options.interlaced, options.videoOptimized)
            << "\n";
        return;
    }
    if (maxWidth->count() > 0) {
        out << calculator.getMaxHPixs(height, rate, options.maxWidthClock, options.bits,
                                      options.components, options.mode, options.margins,
                                      options.interlaced, options.videoOptimized)
            << "\n";
        return;
    }
    if (maxHeight->count() > 0) {
        out << calculator.getMaxVPixs(width, rate, options.maxHeightClock, options.bits,
                                      options.components, options.mode, options.margins,
                                      options.interlaced, options.videoOptimized)
            << "\n";
        return;
    }

    calculator.calculateCvt(width, height, rate, options.bits, options.components, options.mode,
                            options.margins, options.interlaced, options.videoOptimized);
    timing_t timing = calculator.getCvtTiming();
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
    timing->add_option("W", options.width, "active width, pixels")->required();
    timing->add_option("H", options.height, "active height, lines")->required();
    timing->add_option("RATE", options.rate, "refresh rate, Hz");
    timing->add_option("--mode", options.mode, "cvt, cvt_rb (default) or cvt_rb2");
    timing->add_flag("--interlaced", options.interlaced, "interlaced: 2 x RATE fields of H/2 lines");
    timing->add_flag("--margins", options.margins, "1.8 % margins on every side");
    timing->add_flag("--video-optimized", options.videoOptimized,
                     "video-optimised cvt_rb2 (no clock)");
    timing->add_option("--bits", options.bits, "bits per component (8)");
    timing->add_option("--components", options.components, "components per pixel (3.0)");
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
        run(context.out, *shared, maxRefresh, maxWidth, maxHeight);
    });
}

}  // namespace veskdm
