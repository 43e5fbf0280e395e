/*
 * The two output-mode methods. On the board models whose output mode the service computes
 * itself, a DisplayModeControl made for the call validates, applies or reads back the mode;
 * every other model is left to the board library.
 */
#include <vesksdk.h>
#include <vesksdk_records.h>

#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "BoardText.h"
#include "DisplayModeControl.h"
#include "ServiceTrace.h"
#include "VeskDeviceManager.h"

namespace vesk::hardware::veskdevicemanager::implementation {
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

}  // namespace

Return<void> VeskDeviceManager::calculateResolutionParameters(
        uint32_t width, uint32_t height, uint32_t fps, calculateResolutionParameters_cb _hidl_cb) {
    vesk::log::info(kTag, "%s %d\n", "calculateResolutionParameters", 1222);
    vesk_resolution_record result;
    memset(&result, 0, sizeof(result));
    int modelId = readModelId();
    DisplayModeControl control;
    if (computesOutputMode(modelId)) {
        vesk::log::info(kTag, "%s %d modid %d case\n", "calculateResolutionParameters", 1236,
                        modelId);
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
    _hidl_cb(toResolution(result));
    return Void();
}

Return<void> VeskDeviceManager::getResolutionParameters(getResolutionParameters_cb _hidl_cb) {
    vesk_resolution_record result;
    memset(&result, 0, sizeof(result));
    int modelId = readModelId();
    DisplayModeControl control;
    timing_t timing{};
    if (computesOutputMode(modelId)) {
        vesk::log::info(kTag, "%s %d RZ30Max or RZ8K or RZ8KMAX case\n", "getResolutionParameters",
                        1273);
        control.getHDMIOutputMode(timing);
        vesk::log::info(kTag, "%s %d timing.h_active:%d timing.v_active:%d timing.v_freq:%f \n",
                        "getResolutionParameters", 1276, timing.h_active, timing.v_active,
                        timing.v_freq);
        // A stored mode keeps its rate in mHz; the native mode's 60 Hz therefore reads as 0.
        result = {timing.h_active, timing.v_active, wholeFrames(timing.v_freq) / 1000, 1};
    } else {
        bi_resolution_get_parameters(&result);
    }
    _hidl_cb(toResolution(result));
    return Void();
}

}  // namespace vesk::hardware::veskdevicemanager::implementation
