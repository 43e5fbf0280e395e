// The RTC's boot and wake schedules: enables, and times of 256 32-bit words each.
#include <algorithm>

#include "SimMacros.h"
#include "vesksdk.h"

using vesk::sim::BoardData;
using vesk::sim::SimCall;

VESK_SIM_SETTER(bi_rtc_set_boot_enable, "rtc_boot_enable", unsigned int)
VESK_SIM_SETTER(bi_rtc_set_wake_enable, "rtc_wake_enable", unsigned int)

namespace {

using Times = std::array<uint32_t, VESK_RTC_TIME_WORDS>;

int setTimes(const unsigned int* time, Times BoardData::*times) {
    if (!time) return -1;
    vesk::sim::board().with(
        [&](BoardData& data) { std::copy_n(time, VESK_RTC_TIME_WORDS, (data.*times).begin()); });
    return 0;
}

int getTimes(unsigned int* time, Times BoardData::*times) {
    if (!time) return -1;
    vesk::sim::board().with(
        [&](BoardData& data) { std::copy((data.*times).begin(), (data.*times).end(), time); });
    return 0;
}

}  // namespace

int bi_rtc_set_boot_time(const unsigned int* time) {
    return SimCall("bi_rtc_set_boot_time", {vesk::sim::inputWords(time, VESK_RTC_TIME_WORDS)})
        .run([&] { return setTimes(time, &BoardData::rtcBoot); });
}

int bi_rtc_set_wake_time(const unsigned int* time) {
    return SimCall("bi_rtc_set_wake_time", {vesk::sim::inputWords(time, VESK_RTC_TIME_WORDS)})
        .run([&] { return setTimes(time, &BoardData::rtcWake); });
}

int bi_rtc_get_boot_time(unsigned int* time) {
    return SimCall("bi_rtc_get_boot_time", {vesk::sim::outputBuffer()})
        .out(time, VESK_RTC_TIME_WORDS * sizeof(unsigned int))
        .run([&] { return getTimes(time, &BoardData::rtcBoot); });
}

int bi_rtc_get_wake_time(unsigned int* time) {
    return SimCall("bi_rtc_get_wake_time", {vesk::sim::outputBuffer()})
        .out(time, VESK_RTC_TIME_WORDS * sizeof(unsigned int))
        .run([&] { return getTimes(time, &BoardData::rtcWake); });
}
