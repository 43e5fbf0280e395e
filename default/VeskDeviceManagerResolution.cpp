/*
 * Resolution list and EDID queries.
 */
#include <vesksdk.h>
#include <vesksdk_records.h>

#include <cstring>

#include "ServiceTrace.h"
#include "VeskDeviceManager.h"

namespace vesk::hardware::veskdevicemanager::implementation {
namespace {

constexpr int kMaxListRecords = VESK_RESOLUTION_LIST_BYTES / sizeof(vesk_resolution_record);

}  // namespace

Return<void> VeskDeviceManager::getResolutionParametersList(getResolutionParametersList_cb _hidl_cb) {
    vesk_resolution_record records[kMaxListRecords];
    memset(records, 0, sizeof(records));
    int count = bi_resolution_get_parameters_list(records);
    // Reported at error priority on every call, as the board's tools expect to find it.
    vesk::log::error(kTag, "%s: resolution list is %d\n", "getResolutionParametersList", count);
    // The buffer holds no more than kMaxListRecords; a negative count is left to the vector's
    // own size check, which ends the process.
    int size = count > kMaxListRecords ? kMaxListRecords : count;
    hidl_vec<VeskEffeResolution> list;
    list.resize(static_cast<size_t>(static_cast<int64_t>(size)));
    for (int i = 0; i < size; ++i) {
        list[i].width = records[i].width;
        list[i].height = records[i].height;
        list[i].fps = records[i].fps;
        list[i].status = 1;  // list entries are always usable; the board's fourth word is unused
    }
    _hidl_cb(list);
    return Void();
}

// On failure the 256 bytes go back as the board left them (unlike getEdidByModel).
Return<void> VeskDeviceManager::getEdidFromDefined(uint8_t index, uint16_t width, uint16_t height,
                                                   float refresh, getEdidFromDefined_cb _hidl_cb) {
    hidl_vec<uint8_t> edid(VESK_EDID_SIZE);
    trace("getEdidFromDefined", 1316);
    if (bi_resolution_get_edid_from_defined(index, width, height, edid.data(), refresh) < 0) {
        vesk::log::error(kTag, "%s bi_resolution_get_edid_from_defined failed\n",
                         "getEdidFromDefined");
    }
    _hidl_cb(edid);
    return Void();
}

Return<void> VeskDeviceManager::getEdidByModel(uint16_t width, uint16_t height, float refresh,
                                               getEdidByModel_cb _hidl_cb) {
    hidl_vec<uint8_t> edid(VESK_EDID_SIZE);
    if (bi_resolution_get_edid_by_model(width, height, edid.data(), refresh) < 0) {
        vesk::log::error(kTag, "%s get edid by model failed\n", "getEdidByModel");
        edid.resize(0);
    }
    _hidl_cb(edid);
    return Void();
}

Return<void> VeskDeviceManager::getResolutionByEdid(const hidl_vec<uint8_t>& edid,
                                                    getResolutionByEdid_cb _hidl_cb) {
    vesk_resolution_record record;
    memset(&record, 0, sizeof(record));
    trace("getResolutionByEdid", 1346);
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
    VeskEffeResolution resolution{record.width, record.height, record.fps, record.status};
    _hidl_cb(resolution);
    return Void();
}

}  // namespace vesk::hardware::veskdevicemanager::implementation
