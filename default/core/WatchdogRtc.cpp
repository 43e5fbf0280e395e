/*
 * Watchdog and RTC: the watchdog's configuration and its start, feed and stop; the RTC's boot
 * and wake switches and times. A time shorter than the board reads is padded with zeros
 * (BoardInput.h).
 */
#include <vesksdk.h>
#include <vesksdk_records.h>

#include <cstring>

#include "BoardInput.h"
#include "BoardText.h"
#include "DeviceManagerCore.h"
#include "ServiceTrace.h"
#include "TraceLines.h"

namespace vesk::hardware::veskdevicemanager::core {

using implementation::BoardInput;
using implementation::kTag;
using implementation::recordText;
using implementation::trace;

namespace {

std::vector<uint32_t> getRtcTime(const char* method, int line, int (*boardGet)(unsigned int*),
                                 const char* failure) {
    trace(method, line);
    std::vector<uint32_t> time(VESK_RTC_TIME_WORDS);
    if (boardGet(time.data()) < 0) {
        vesk::log::error(kTag, "%s", failure);
        time.clear();
    }
    return time;
}

}  // namespace

WatchDogCfg DeviceManagerCore::getWatchDogCfg() {
    vesk_watchdog_record record;
    memset(&record, 0, sizeof(record));
    bi_watchdog_parse(&record);  // a failed parse answers what the board left in the record
    WatchDogCfg cfg;
    cfg.wdtDevice = recordText(&record, sizeof(record), offsetof(vesk_watchdog_record, wdtDevice));
    cfg.wdt_timeout = record.wdt_timeout;
    cfg.wdt_interval = record.wdt_interval;
    vesk::log::debug(kTag, "%s:wdtDevice = %s, wdt_timeout = %u, wdt_interval = %u\n",
                     "getWatchDogCfg", cfg.wdtDevice.c_str(), cfg.wdt_timeout, cfg.wdt_interval);
    return cfg;
}

int32_t DeviceManagerCore::startWatchDog(const std::string& device, uint32_t timeout) {
    trace("startWatchDog", VESK_TRACE_LINE("startWatchDog"));
    return bi_watchdog_open(device.c_str(), timeout);
}

int32_t DeviceManagerCore::feedWatchDog(const std::string& device) {
    trace("feedWatchDog", VESK_TRACE_LINE("feedWatchDog"));
    return bi_watchdog_feed(device.c_str());
}

int32_t DeviceManagerCore::stopWatchDog(const std::string& device) {
    trace("stopWatchDog", VESK_TRACE_LINE("stopWatchDog"));
    return bi_watchdog_close(device.c_str());
}

int32_t DeviceManagerCore::setRtcBootEnable(uint32_t enable) {
    trace("setRtcBootEnable", VESK_TRACE_LINE("setRtcBootEnable"));
    return bi_rtc_set_boot_enable(enable);
}

int32_t DeviceManagerCore::setRtcWakeEnable(uint32_t enable) {
    trace("setRtcWakeEnable", VESK_TRACE_LINE("setRtcWakeEnable"));
    return bi_rtc_set_wake_enable(enable);
}

int32_t DeviceManagerCore::setRtcBootTime(InputView<uint32_t> time) {
    trace("setRtcBootTime", VESK_TRACE_LINE("setRtcBootTime"));
    return bi_rtc_set_boot_time(BoardInput<uint32_t>(time, VESK_RTC_SET_WORDS).data());
}

int32_t DeviceManagerCore::setRtcWakeTime(InputView<uint32_t> time) {
    trace("setRtcWakeTime", VESK_TRACE_LINE("setRtcWakeTime"));
    return bi_rtc_set_wake_time(BoardInput<uint32_t>(time, VESK_RTC_SET_WORDS).data());
}

std::vector<uint32_t> DeviceManagerCore::getRtcBootTime() {
    return getRtcTime("getRtcBootTime", VESK_TRACE_LINE("getRtcBootTime"), bi_rtc_get_boot_time,
                      "bi_rtc_get_boot_time failed");
}

std::vector<uint32_t> DeviceManagerCore::getRtcWakeTime() {
    return getRtcTime("getRtcWakeTime", VESK_TRACE_LINE("getRtcWakeTime"), bi_rtc_get_wake_time,
                      "bi_rtc_get_wake_time failed");
}

}  // namespace vesk::hardware::veskdevicemanager::core
