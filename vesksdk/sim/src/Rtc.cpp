// The RTC's boot and wake schedules: enables, and times (year, month, day, hour, minute,
// second) answered in a 256-word buffer. Kept in the state file.
#include <algorithm>

#include "SimMacros.h"
#include "vesksdk.h"

using vesk::sim::BoardData;
using vesk::sim::SimCall;

VESK_SIM_SETTER(bi_rtc_set_boot_enable, "rtc_boot_enable", unsigned int)
VESK_SIM_SETTER(bi_rtc_set_wake_enable, "rtc_wake_enable", unsigned int)

namespace {

using Times = std::array<uint32_t, VESK_RTC_TIME_WORDS>;

bool leapYear(unsigned int year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

// A calendar time the RTC can hold: years 1970 to 2099, real days of the month.
bool validTime(const unsigned int* time) {
    static const unsigned int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    unsigned int year = time[0], month = time[1], day = time[2];
    if (year < 1970 || year > 2099 || month < 1 || month > 12) return false;
    unsigned int days = kDays[month - 1] + (month == 2 && leapYear(year) ? 1 : 0);
    return day >= 1 && day <= days && time[3] <= 23 && time[4] <= 59 && time[5] <= 59;
}

int setTimes(const unsigned int* time, Times BoardData::*times) {
    if (!time || !validTime(time)) return -1;
    bool kept = vesk::sim::board().with(
            [&](BoardData& data) { std::copy_n(time, VESK_RTC_SET_WORDS, (data.*times).begin()); });
    return kept ? 0 : -1;
}

int getTimes(unsigned int* time, Times BoardData::*times) {
    if (!time) return -1;
    vesk::sim::board().with(
            [&](BoardData& data) { std::copy((data.*times).begin(), (data.*times).end(), time); });
    return 0;
}

}  // namespace

int bi_rtc_set_boot_time(const unsigned int* time) {
    return SimCall("bi_rtc_set_boot_time", {vesk::sim::inputWords(time, VESK_RTC_SET_WORDS)})
            .run([&] { return setTimes(time, &BoardData::rtcBoot); });
}

int bi_rtc_set_wake_time(const unsigned int* time) {
    return SimCall("bi_rtc_set_wake_time", {vesk::sim::inputWords(time, VESK_RTC_SET_WORDS)})
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
