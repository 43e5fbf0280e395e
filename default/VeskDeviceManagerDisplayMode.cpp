/*
 * The two output-mode methods. Until the board's own output-mode control is wired in, both
 * answer through the board library.
 */
#include <vesksdk.h>
#include <vesksdk_records.h>

#include <cstring>

#include "VeskDeviceManager.h"

namespace vesk::hardware::veskdevicemanager::implementation {

Return<void> VeskDeviceManager::calculateResolutionParameters(
        uint32_t width, uint32_t height, uint32_t fps, calculateResolutionParameters_cb _hidl_cb) {
    vesk_resolution_record record;
    memset(&record, 0, sizeof(record));
    bi_resolution_calculate_parameters(width, height, fps, &record);
    _hidl_cb(VeskEffeResolution{record.width, record.height, record.fps, record.status});
    return Void();
}

Return<void> VeskDeviceManager::getResolutionParameters(getResolutionParameters_cb _hidl_cb) {
    vesk_resolution_record record;
    memset(&record, 0, sizeof(record));
    bi_resolution_get_parameters(&record);
    _hidl_cb(VeskEffeResolution{record.width, record.height, record.fps, record.status});
    return Void();
}

}  // namespace vesk::hardware::veskdevicemanager::implementation
