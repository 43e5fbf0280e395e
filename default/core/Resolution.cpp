/*
 * Display and resolution: the HDMI output mode (on the board models whose mode the service
 * computes itself, a DisplayModeControl made for the call validates, applies or reads it back;
 * every other model is left to the board library), the resolution list, the EDID queries, the
 * screen mode and the HDMI input and output states.
 */
#include <vesksdk.h>
#include <vesksdk_records.h>

#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "BoardText.h"
#include "DeviceManagerCore.h"
#include "DisplayModeControl.h"
#include "ServiceTrace.h"
#include "TraceLines.h"

namespace vesk::hardware::veskdevicemanager::core {

using implementation::DisplayModeControl;
using implementation::kTag;
using implementation::recordText;
using implementation::timing_t;
using implementation::trace;

namespace {

// The models of DisplayModeControl's allow list (RZ30Max, RZ8K, RZ8KMAX...).
constexpr int kComputedModels[] = {VESK_COMPUTED_MODELS};

bool computesOutputMode(int modelId) {
    for (int model : kComputedModels) {
        if (model == modelId) return true;
    }
    return false;
}

// The product's model number: the decimal text of model_id in a fresh product record.
int readModelId() {
    char record[sizeof(vesk_product_record)];
    memset(record, 0, sizeof(record));
    bi_info_get_product_info(record);
    return atoi(recordText(record, sizeof(record), offsetof(vesk_product_record, model_id)).c_str());
}

// A rate truncated to whole frames; a rate that is not a finite, non-negative 32-bit value
// reads as 0.
uint32_t wholeFrames(double rate) {
    double truncated = std::trunc(rate);
    if (!std::isfinite(truncated) || truncated < 0 || truncated > 4294967295.0) return 0;
    return static_cast<uint32_t>(truncated);
}

VeskEffeResolution toResolution(const vesk_resolution_record& record) {
    return VeskEffeResolution{record.width, record.height, record.fps, record.status};
}

constexpr int kMaxListRecords = VESK_RESOLUTION_LIST_BYTES / sizeof(vesk_resolution_record);

}  // namespace

VeskEffeResolution DeviceManagerCore::calculateResolutionParameters(uint32_t width, uint32_t height,
                                                                    uint32_t fps) {
    vesk::log::info(kTag, "%s %d\n", "calculateResolutionParameters",
                    VESK_TRACE_LINE("calculateResolutionParameters"));
    vesk_resolution_record result;
    memset(&result, 0, sizeof(result));
    int modelId = readModelId();
    DisplayModeControl control;
    if (computesOutputMode(modelId)) {
        vesk::log::info(kTag, "%s %d modid %d case\n", "calculateResolutionParameters",
                        VESK_TRACE_LINE("calculateResolutionParameters", "computed model"), modelId);
        // The requested rate is not used: the mode is always computed for 60 Hz.
        int verdict = control.verify(modelId, width, height, 60);
        if (verdict != 1) {
            result = {width, height, 60, verdict};
        } else {
            int status = control.setHDMIOutputMode();
            timing_t timing = control.getCurrentOutputModeTiming();
            result = {timing.h_active, timing.v_active, wholeFrames(timing.v_freq), status};
        }
    } else {
        vesk::log::info(kTag, "using default resolution case\n");
        bi_resolution_calculate_parameters(width, height, fps, &result);
    }
    return toResolution(result);
}

VeskEffeResolution DeviceManagerCore::getResolutionParameters() {
    vesk_resolution_record result;
    memset(&result, 0, sizeof(result));
    int modelId = readModelId();
    DisplayModeControl control;
    timing_t timing{};
    if (computesOutputMode(modelId)) {
        vesk::log::info(kTag, "%s %d RZ30Max or RZ8K or RZ8KMAX case\n", "getResolutionParameters",
                        VESK_TRACE_LINE("getResolutionParameters", "computed model"));
        control.getHDMIOutputMode(timing);
        vesk::log::info(kTag, "%s %d timing.h_active:%d timing.v_active:%d timing.v_freq:%f \n",
                        "getResolutionParameters",
                        VESK_TRACE_LINE("getResolutionParameters", "timing"), timing.h_active,
                        timing.v_active, timing.v_freq);
        // A stored mode keeps its rate in mHz; the native mode's 60 Hz therefore reads as 0.
        result = {timing.h_active, timing.v_active, wholeFrames(timing.v_freq) / 1000, 1};
    } else {
        bi_resolution_get_parameters(&result);
    }
    return toResolution(result);
}

ResolutionListResult DeviceManagerCore::getResolutionParametersList() {
    vesk_resolution_record records[kMaxListRecords];
    memset(records, 0, sizeof(records));
    int count = bi_resolution_get_parameters_list(records);
    // Reported at error priority on every call, as the board's tools expect to find it.
    vesk::log::error(kTag, "%s: resolution list is %d\n", "getResolutionParametersList", count);
    // The buffer holds no more than kMaxListRecords. A negative count gives no entries: the
    // front end decides what it means (the HIDL facade ends the process, as its vector's size
    // check does).
    ResolutionListResult result{count, {}};
    int size = count > kMaxListRecords ? kMaxListRecords : count;
    for (int i = 0; i < size; ++i) {
        // List entries are always usable; the board's fourth word is unused.
        result.list.push_back({records[i].width, records[i].height, records[i].fps, 1});
    }
    return result;
}

// On failure the 256 bytes go back as the board left them (unlike getEdidByModel).
std::vector<uint8_t> DeviceManagerCore::getEdidFromDefined(uint8_t index, uint16_t width,
                                                           uint16_t height, float refresh) {
    std::vector<uint8_t> edid(VESK_EDID_SIZE);
    trace("getEdidFromDefined", VESK_TRACE_LINE("getEdidFromDefined"));
    if (bi_resolution_get_edid_from_defined(index, width, height, edid.data(), refresh) < 0) {
        vesk::log::error(kTag, "%s bi_resolution_get_edid_from_defined failed\n",
                         "getEdidFromDefined");
    }
    return edid;
}

std::vector<uint8_t> DeviceManagerCore::getEdidByModel(uint16_t width, uint16_t height,
                                                       float refresh) {
    std::vector<uint8_t> edid(VESK_EDID_SIZE);
    if (bi_resolution_get_edid_by_model(width, height, edid.data(), refresh) < 0) {
        vesk::log::error(kTag, "%s get edid by model failed\n", "getEdidByModel");
        edid.clear();
    }
    return edid;
}

VeskEffeResolution DeviceManagerCore::getResolutionByEdid(InputView<uint8_t> edid) {
    vesk_resolution_record record;
    memset(&record, 0, sizeof(record));
    trace("getResolutionByEdid", VESK_TRACE_LINE("getResolutionByEdid"));
    if (edid.size() != VESK_EDID_SIZE) {
        vesk::log::error(kTag, "%s invalid edid size = %u not eq to 256\n", "getResolutionByEdid",
                         static_cast<unsigned>(edid.size()));
    } else {
        int ret = bi_resolution_get_prefferred_timing_by_edid(edid.data(), &record);
        if (ret < 0) {
            vesk::log::error(kTag,
                             "%s: bi_resolution_get_prefferred_timing_by_edid failed, ret = %d",
                             "getResolutionByEdid", ret);
        } else {
            vesk::log::debug(kTag, "%s: width = %u height = %u fps = %u\n", "getResolutionByEdid",
                             record.width, record.height, record.fps);
        }
    }
    return toResolution(record);
}

int32_t DeviceManagerCore::setScreenModeState(int32_t state) {
    trace("setScreenModeState", VESK_TRACE_LINE("setScreenModeState"));
    return bi_resolution_screen_mode_set_state(state);
}

int32_t DeviceManagerCore::getScreenModeState() {
    trace("getScreenModeState", VESK_TRACE_LINE("getScreenModeState"));
    return bi_resolution_screen_mode_get_state();
}

int32_t DeviceManagerCore::getHdmiInStatus(int32_t port) {
    trace("getHdmiInStatus", VESK_TRACE_LINE("getHdmiInStatus"));
    return bi_display_get_hdmi_in_state(port);
}

int32_t DeviceManagerCore::getHdmiOutStatus(int32_t port) {
    trace("getHdmiOutStatus", VESK_TRACE_LINE("getHdmiOutStatus"));
    return bi_display_get_hdmi_out_state(port);
}

}  // namespace vesk::hardware::veskdevicemanager::core
