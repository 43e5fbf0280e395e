/*
 * Watchdog and RTC: the watchdog's configuration and its start, feed and stop; the RTC's boot
 * and wake switches and times. A time shorter than the board reads is padded with zeros
 * (BoardInput.h).
 */
#include <vesksdk.h>
#include <vesksdk_records.h>

#include <cstring>
#include <functional>

#include "BoardInput.h"
#include "BoardText.h"
#include "ServiceTrace.h"
#include "TraceLines.h"
#include "VeskDeviceManager.h"

namespace vesk::hardware::veskdevicemanager::implementation {
namespace {

Return<void> getRtcTime(const char* method, int line, int (*boardGet)(unsigned int*),
                        const char* failure,
                        const std::function<void(const hidl_vec<uint32_t>&)>& cb) {
    trace(method, line);
    hidl_vec<uint32_t> time(VESK_RTC_TIME_WORDS);
    if (boardGet(time.data()) < 0) {
        vesk::log::error(kTag, "%s", failure);
        time = hidl_vec<uint32_t>();
    }
    cb(time);
    return Void();
}

}  // namespace

Return<void> VeskDeviceManager::getWatchDogCfg(getWatchDogCfg_cb _hidl_cb) {
    vesk_watchdog_record record;
    memset(&record, 0, sizeof(record));
    bi_watchdog_parse(&record);  // a failed parse answers what the board left in the record
    WatchDogCfg cfg{};
    cfg.wdtDevice = recordText(&record, sizeof(record), offsetof(vesk_watchdog_record, wdtDevice));
    cfg.wdt_timeout = record.wdt_timeout;
    cfg.wdt_interval = record.wdt_interval;
    vesk::log::debug(kTag, "%s:wdtDevice = %s, wdt_timeout = %u, wdt_interval = %u\n",
                     "getWatchDogCfg", cfg.wdtDevice.c_str(), cfg.wdt_timeout, cfg.wdt_interval);
    _hidl_cb(cfg);
    return Void();
}

Return<int32_t> VeskDeviceManager::startWatchDog(const hidl_string& device, uint32_t timeout) {
    trace("startWatchDog", VESK_TRACE_LINE("startWatchDog"));
    return bi_watchdog_open(device.c_str(), timeout);
}

Return<int32_t> VeskDeviceManager::feedWatchDog(const hidl_string& device) {
    trace("feedWatchDog", VESK_TRACE_LINE("feedWatchDog"));
    return bi_watchdog_feed(device.c_str());
}

Return<int32_t> VeskDeviceManager::stopWatchDog(const hidl_string& device) {
    trace("stopWatchDog", VESK_TRACE_LINE("stopWatchDog"));
    return bi_watchdog_close(device.c_str());
}

Return<int32_t> VeskDeviceManager::setRtcBootEnable(uint32_t enable) {
    trace("setRtcBootEnable", VESK_TRACE_LINE("setRtcBootEnable"));
    return bi_rtc_set_boot_enable(enable);
}

Return<int32_t> VeskDeviceManager::setRtcWakeEnable(uint32_t enable) {
    trace("setRtcWakeEnable", VESK_TRACE_LINE("setRtcWakeEnable"));
    return bi_rtc_set_wake_enable(enable);
}

Return<int32_t> VeskDeviceManager::setRtcBootTime(const hidl_vec<uint32_t>& time) {
    trace("setRtcBootTime", VESK_TRACE_LINE("setRtcBootTime"));
    return bi_rtc_set_boot_time(BoardInput<uint32_t>(time, VESK_RTC_SET_WORDS).data());
}

Return<int32_t> VeskDeviceManager::setRtcWakeTime(const hidl_vec<uint32_t>& time) {
    trace("setRtcWakeTime", VESK_TRACE_LINE("setRtcWakeTime"));
    return bi_rtc_set_wake_time(BoardInput<uint32_t>(time, VESK_RTC_SET_WORDS).data());
}

Return<void> VeskDeviceManager::getRtcBootTime(getRtcBootTime_cb _hidl_cb) {
    return getRtcTime("getRtcBootTime", VESK_TRACE_LINE("getRtcBootTime"), bi_rtc_get_boot_time,
                      "bi_rtc_get_boot_time failed", _hidl_cb);
}

Return<void> VeskDeviceManager::getRtcWakeTime(getRtcWakeTime_cb _hidl_cb) {
    return getRtcTime("getRtcWakeTime", VESK_TRACE_LINE("getRtcWakeTime"), bi_rtc_get_wake_time,
                      "bi_rtc_get_wake_time failed", _hidl_cb);
}

}  // namespace vesk::hardware::veskdevicemanager::implementation
