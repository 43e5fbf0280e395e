/*
 * Picture quality and HDR, switched through the platform's system-control tool.
 */
#include <vesksdk.h>

#include "DeviceManagerCore.h"
#include "DevicePaths.h"
#include "ServiceTrace.h"
#include "TraceLines.h"
#include "VeskPlatform.h"

namespace vesk::hardware::veskdevicemanager::core {

using implementation::kTag;
using implementation::trace;

int32_t DeviceManagerCore::setPQEnable(int32_t enable) {
    trace("setPQEnable", VESK_TRACE_LINE("setPQEnable"));
    if (enable == 1) {
        vesk::platform::runCommand(vesk::platform::kPictureQualityOnCommand);
    } else if (enable == 0) {
        vesk::platform::runCommand(vesk::platform::kPictureQualityOffCommand);
    }
    return bi_set_pq_state(enable);
}

int32_t DeviceManagerCore::getPQEnable() {
    trace("getPQEnable", VESK_TRACE_LINE("getPQEnable"));
    return bi_get_pq_state();
}

// Both commands also select 2160p60hz: HDR switching always sets that output mode.
int32_t DeviceManagerCore::setHDREnable(int32_t enable) {
    trace("setHDREnable", VESK_TRACE_LINE("setHDREnable"));
    if (enable == 0) {
        int status = vesk::platform::runCommand(vesk::platform::kSdrCommand);
        if (status != 0) vesk::log::error(kTag, "%s: set HDR Disable failed\n", "setHDREnable");
        return status;
    }
    if (enable == 1) {
        int status = vesk::platform::runCommand(vesk::platform::kHdrCommand);
        if (status != 0) vesk::log::error(kTag, "%s: set HDR Enable failed\n", "setHDREnable");
        return status;
    }
    return -1;
}

}  // namespace vesk::hardware::veskdevicemanager::core
