#include "DisplayModeControl.h"

#include <cutils/properties.h>
#include <vesksdk_records.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "CustomMode.h"
#include "DevicePaths.h"
#include "VeskLog.h"
#include "VeskPlatform.h"

namespace vesk::hardware::veskdevicemanager::implementation {

namespace {

constexpr char kControlTag[] = "vesk_system_DisplayModeControl";
constexpr char kCustomModeVar[] = "ubootenv.var.custom_mode";
constexpr char kBestModeVar[] = "ubootenv.var.is.bestmode";
constexpr char kHdmiModeVar[] = "ubootenv.var.hdmimode";
constexpr char kCustomHdmiMode[] = "999p60hz";

// The models whose output mode the service computes itself (the board's list), each of which
// may drive 4096x2160 pixels at most, 594 MHz (written in kHz).
constexpr uint32_t kAllowedModels[] = {VESK_COMPUTED_MODELS};
constexpr allow_list_t kModelLimits = {0, 800, 4096, 600, 4096, 8847360, 594000};

// Signed remainders, as C's %: the result keeps the signs it is given. A divisor of -1 always
// leaves 0 (INT_MIN % -1 would trap).
int euclid(int a, int b) {
    while (b != 0) {
        int r = b == -1 ? 0 : a % b;
        a = b;
        b = r;
    }
    return a;
}

// a / g, truncating; INT_MIN / -1 wraps to INT_MIN as the target's divide gives it.
int quotient(int a, int g) {
    if (g == -1) return static_cast<int>(0u - static_cast<unsigned>(a));
    return a / g;
}

// Copies `text` into a cleared buffer with a bounded format; text that would not fit ends the
// process, as every bounded formatting of the output-mode control does.
void boundedCopy(char (&buffer)[kCustomModeBufferSize], const char* text) {
    memset(buffer, 0, sizeof(buffer));
    int written = snprintf(buffer, sizeof(buffer), "%s", text);
    if (written < 0 || static_cast<size_t>(written) >= sizeof(buffer)) abort();
}

}  // namespace

DisplayModeControl::DisplayModeControl() {
    vesk::log::info(kControlTag, "DisplayModeControl construct\n");
    if (!env) env = std::make_unique<Ubootenv>();
    if (!calculator) calculator = std::make_unique<VideoTimingCaculator>();
    allowList.clear();
    for (uint32_t model : kAllowedModels) {
        allow_list_t row = kModelLimits;
        row.modid = model;
        allowList.push_back(row);
    }
}

DisplayModeControl::~DisplayModeControl() {
    env.reset();
    calculator.reset();
}

int DisplayModeControl::verify(uint32_t modid, uint32_t width, uint32_t height,
                               uint32_t /* fps */) {
    const allow_list_t* allow = nullptr;
    for (const allow_list_t& row : allowList) {
        if (row.modid == modid) {
            allow = &row;
            break;
        }
    }
    if (allow == nullptr) {
        vesk::log::error(kControlTag, "%s device not defined", "verify");
        return -1;
    }
    vesk::log::info(kControlTag, "find device in allow list\n");
    vesk::log::info(kControlTag, "allow.h_pixel_min:%d allow.h_pixel_max:%d\n", allow->h_pixel_min,
                    allow->h_pixel_max);
    vesk::log::info(kControlTag, "allow.v_pixel_min:%d allow.v_pixel_max:%d\n", allow->v_pixel_min,
                    allow->v_pixel_max);
    // 55 and 38 are fixed markers that the board's log readers look for.
    if (allow->h_pixel_min > width || allow->h_pixel_max < width || allow->v_pixel_min > height ||
        allow->v_pixel_max < height) {
        vesk::log::error(kControlTag, "%s out of range %dx%d in line %d\n", "verify", width, height,
                         55);
        return -1;
    }
    uint32_t area = width * height;  // wraps modulo 2^32 as the board's own check does
    if (area > allow->max_pixels) {
        vesk::log::error(kControlTag, "%s out of range %dx%d in line %d\n", "verify", width, height,
                         38);
        return -1;
    }
    width += width & 1;
    height += height & 1;
    vesk::log::info(kControlTag, "%s update to %dx%d\n", "verify", width, height);
    calculator->calculateCvt(width, height, 60, 8, 3.0, "cvt_rb", false, false, false);
    timing_t timing = calculator->getCvtTiming();
    // The limit is compared as it stands (MHz against a value written in kHz).
    if (timing.pix_clock > static_cast<double>(allow->max_pix_clock)) {
        vesk::log::error(kControlTag, "%s out of pix clock %dx%d\n", "verify", width, height);
        return -3;
    }
    return 1;
}

bool DisplayModeControl::isAllowDevice(uint32_t modid, allow_list_t& row) {
    for (const allow_list_t& allow : allowList) {
        if (allow.modid == modid) {
            vesk::log::info(kControlTag, "find device in allow list\n");
            row = allow;
            return true;
        }
    }
    return false;
}

int DisplayModeControl::getAspectRadio(int width, int height, int& num, int& den) {
    int g = gcd(width, height);
    if (g == 0) {
        vesk::log::error(kControlTag, "%s error\n", "getAspectRadio");
        return -1;
    }
    num = quotient(width, g);
    den = quotient(height, g);
    return 0;
}

int DisplayModeControl::gcd(int a, int b) {
    return euclid(a, b);
}

timing_t DisplayModeControl::getCurrentOutputModeTiming() {
    return calculator->getCvtTiming();
}

int DisplayModeControl::setHDMIOutputMode() {
    vesk::log::info(kControlTag, "%s %d\n", "setHDMIOutputMode", 65);
    property_set("persist.vesk.custom.mode.enable", "1");
    calculator->dump();
    timing_t timing = calculator->getCvtTiming();
    char mode[kCustomModeBufferSize];
    formatCustomMode(timing, euclid, mode);
    vesk::log::info(kControlTag, "%s\n", mode);
    // The mode tool runs before the new mode is stored, as the boot flow expects.
    vesk::platform::runCommand(vesk::platform::kSelectCustomModeCommand);
    if (storeOutputMode(mode, timing) != 1) return -2;
    std::string applied = std::to_string(timing.h_active) + "x" + std::to_string(timing.v_active) +
                          "@" + std::to_string(timing.v_freq);
    property_set("persist.vesk.custom.mode", applied.c_str());
    vesk::log::info(kControlTag, "setHDMIOutputMode success\n");
    return 1;
}

int DisplayModeControl::storeOutputMode(const char* mode, const timing_t& timing) {
    // One transaction of the environment: no other process sees the new mode with the selection
    // of before, and a write after the first that changes nothing is a look-up in memory.
    Ubootenv::Transaction transaction(*env);
    // Written three times, whatever each outcome.
    for (int i = 0; i < 3; ++i) {
        if (env->updateValue(kCustomModeVar, mode) == 0) {
            vesk::log::info(kControlTag, "updateValue ubootenv.var.custom_mode successful\n");
        } else {
            vesk::log::error(kControlTag, "updateValue ubootenv.var.custom_mode error\n");
        }
    }
    timing_t stored{};
    getHDMIOutputMode(stored);
    if (stored.h_active != timing.h_active || stored.v_active != timing.v_active) return -2;
    if (env->updateValue(kBestModeVar, "false") != 0) {
        vesk::log::error(kControlTag, "updateValue ubootenv.var.is.bestmode error\n");
        return -2;
    }
    vesk::log::info(kControlTag, "updateValue ubootenv.var.is.bestmode successful\n");
    if (env->updateValue(kHdmiModeVar, kCustomHdmiMode) != 0) {
        vesk::log::error(kControlTag, "updateValue ubootenv.var.hdmimode error\n");
        return -2;
    }
    vesk::log::info(kControlTag, "updateValue ubootenv.var.hdmimode successful\n");
    return 1;
}

void DisplayModeControl::getHDMIOutputMode(timing_t& timing) {
    vesk::log::info(kControlTag, "%s \n", "getHDMIOutputMode");
    const char* value = env->getValue(kCustomModeVar);
    if (value == nullptr) {
        vesk::log::error(kControlTag, "%s error\n", "getHDMIOutputMode");
        return;
    }
    if (strcmp(value, "0") == 0) {
        // No custom mode: the board's native 2160p60. The rate is in Hz here, while a stored
        // mode keeps mHz; readers divide as they always have.
        vesk::log::warn(kControlTag, "%s custom_mode is null \n", "getHDMIOutputMode");
        timing.h_active = 3840;
        timing.v_active = 2160;
        timing.v_freq = 60.0;
        return;
    }
    char buffer[kCustomModeBufferSize];
    boundedCopy(buffer, value);
    std::vector<std::string> tokens;
    split(buffer, tokens, ",");
    if (tokens.size() != 22) return;
    timing.h_active = atoi(tokens[8].c_str());
    timing.v_active = atoi(tokens[14].c_str());
    timing.v_freq = atoi(tokens[1].c_str());
    vesk::log::info(kControlTag, "%s h_active:%d Pixels v_active:%d Pixels v_freq:%f hz\n",
                    "getHDMIOutputMode", timing.h_active, timing.v_active, timing.v_freq / 1000.0);
}

void DisplayModeControl::split(const std::string& text, std::vector<std::string>& tokens,
                               const std::string& delimiters) {
    std::string::size_type start = text.find_first_not_of(delimiters, 0);
    std::string::size_type end = text.find_first_of(delimiters, start);
    while (start != std::string::npos || end != std::string::npos) {
        tokens.push_back(text.substr(start, end - start));
        start = text.find_first_not_of(delimiters, end);
        end = text.find_first_of(delimiters, start);
    }
}

}  // namespace vesk::hardware::veskdevicemanager::implementation
