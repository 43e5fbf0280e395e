/*
 * System records (watchdog, processes, USB, CPU, RTC times, log daemon, interface version) and
 * the shell actions (power-off, picture quality, HDR).
 */
#include <vesksdk.h>
#include <vesksdk_records.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "BoardText.h"
#include "ServiceTrace.h"
#include "VeskDeviceManager.h"
#include "VeskPlatform.h"

namespace vesk::hardware::veskdevicemanager::implementation {
namespace {

constexpr size_t kLogRecordSize = sizeof(vesk_log_record);
constexpr size_t kLogFieldOffsets[] = {
        offsetof(vesk_log_record, level), offsetof(vesk_log_record, base),
        offsetof(vesk_log_record, mode), offsetof(vesk_log_record, total_size),
        offsetof(vesk_log_record, once_size)};

// The log record with one zero byte behind it, so that a field that fills the record to its
// end still reads as a terminated string.
struct LogRecordBuffer {
    char bytes[kLogRecordSize + 1];
    LogRecordBuffer() { memset(bytes, 0, sizeof(bytes)); }
    const char* field(size_t index) const { return bytes + kLogFieldOffsets[index]; }
};

// Copies `text` to the start of its field, bounded only by the room left in the record: a text
// as long as its field runs on into the next one, and one longer than the room ends the process
// through the C library's checked copy. The board library relies on this layout as it stands.
void copyLogField(LogRecordBuffer& record, size_t index, const hidl_string& text) {
    size_t offset = kLogFieldOffsets[index];
    __builtin___memcpy_chk(record.bytes + offset, text.c_str(), text.size(),
                           kLogRecordSize - offset);
}

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

Return<void> VeskDeviceManager::getProcessInfo(const hidl_string& name, getProcessInfo_cb _hidl_cb) {
    trace("getProcessInfo", 949);
    ProcessInfo info{};
    auto* record = static_cast<vesk_process_record*>(calloc(1, sizeof(vesk_process_record)));
    if (record == nullptr) {
        vesk::log::error(kTag, "%s malloc failed\n", "getProcessInfo");
        _hidl_cb(info);
        return Void();
    }
    // Only exactly 1 means found.
    if (bi_get_process_info_by_name(name.c_str(), record) != 1) {
        vesk::log::error(kTag, "%s not get processinfo\n", "getProcessInfo");
    } else {
        // The strings belong to the board library; they are copied, never released here.
        info.name1 = record->name1 != nullptr ? record->name1 : "";
        info.name2 = record->name2 != nullptr ? record->name2 : "";
        info.name3 = record->name3 != nullptr ? record->name3 : "";
        memcpy(info.block.data(), record->block, sizeof(record->block));
        info.value64 = record->value64;
        info.valueReal = record->valueReal;
        info.value32 = record->value32;
    }
    free(record);
    _hidl_cb(info);
    return Void();
}

Return<void> VeskDeviceManager::getUsbList(getUsbList_cb _hidl_cb) {
    trace("getUsbList", 1013);
    auto* record = static_cast<vesk_usb_list_record*>(calloc(1, sizeof(vesk_usb_list_record)));
    hidl_vec<UsbList> list;
    if (record != nullptr) {
        int ret = bi_info_get_usb_list(record);
        // The record has room for VESK_USB_LIST_MAX devices; a larger count is not believed.
        uint32_t count = record->count < VESK_USB_LIST_MAX ? record->count : VESK_USB_LIST_MAX;
        list.resize(count);
        for (uint32_t i = 0; i < count; ++i) {
            list[i].vid = record->vid[i];
            list[i].pid = record->pid[i];
            vesk::log::info(kTag, "Device %d: VID = %X, PID = %X, ret = %d\n", i, list[i].vid,
                            list[i].pid, ret);
        }
        free(record);
    }
    _hidl_cb(list);
    return Void();
}

Return<void> VeskDeviceManager::getCpuStatus(getCpuStatus_cb _hidl_cb) {
    trace("getCpuStatus", 1037);
    vesk_cpu_record record;
    memset(&record, 0, sizeof(record));
    CpuStatus status{};
    if (bi_info_get_cpu_state(&record) != 0) {
        vesk::log::error(kTag, "%s: get cpu info failed\n", "getCpuStatus");
    } else {
        status.usr = record.usr;
        status.nic = record.nic;
        status.sys = record.sys;
        status.idle = record.idle;
        status.iowait = record.iowait;
        status.irq = record.irq;
        status.softirq = record.softirq;
        status.temperature = record.temperature;
        vesk::log::info(kTag,
                        "%s:USR: %f, NIC: %f, SYS: %f, IDLE: %f, I/O Wait: %f, IRQ: %f, "
                        "SoftIRQ: %f, Temperature: %u\n",
                        "getCpuStatus", status.usr, status.nic, status.sys, status.idle,
                        status.iowait, status.irq, status.softirq, status.temperature);
    }
    _hidl_cb(status);
    return Void();
}

// The method's own name stands in the version text; clients parse it as it is.
Return<void> VeskDeviceManager::getVndkVersion(getVndkVersion_cb _hidl_cb) {
    trace("getVndkVersion", 1074);
    char version[100];
    snprintf(version, sizeof(version), "%s:1.0", "getVndkVersion");
    _hidl_cb(version);
    return Void();
}

Return<void> VeskDeviceManager::getRtcBootTime(getRtcBootTime_cb _hidl_cb) {
    return getRtcTime("getRtcBootTime", 1188, bi_rtc_get_boot_time, "bi_rtc_get_boot_time failed",
                      _hidl_cb);
}

Return<void> VeskDeviceManager::getRtcWakeTime(getRtcWakeTime_cb _hidl_cb) {
    return getRtcTime("getRtcWakeTime", 1205, bi_rtc_get_wake_time, "bi_rtc_get_wake_time failed",
                      _hidl_cb);
}

Return<int32_t> VeskDeviceManager::setVeskLogConfigure(const VeskLogInfo& info) {
    trace("setVeskLogConfigure", 1436);
    LogRecordBuffer record;
    copyLogField(record, 0, info.level);
    copyLogField(record, 1, info.base);
    copyLogField(record, 2, info.mode);
    copyLogField(record, 3, info.total_size);
    copyLogField(record, 4, info.once_size);
    int ret = bi_vesk_logd_set_configure(record.bytes);
    if (ret < 0) {
        vesk::log::error(kTag, "bi_vesk_logd_set_configure failed, ret:%d\n", ret);
    } else {
        vesk::log::debug(kTag,
                         "hidl  -----loginfo level:%s, base:%s, mode:%s, total_size:%s, "
                         "once_size:%s, \n",
                         record.field(0), record.field(1), record.field(2), record.field(3),
                         record.field(4));
        vesk::log::debug(kTag, "%s %s %d", record.field(0), record.field(1), ret);
    }
    return ret;
}

// Zero is the board's failure here, unlike the setter's negative results.
Return<void> VeskDeviceManager::getVeskLogConfigure(getVeskLogConfigure_cb _hidl_cb) {
    trace("getVeskLogConfigure", 1410);
    LogRecordBuffer record;
    VeskLogInfo info{};
    int ret = bi_vesk_logd_get_configure(record.bytes);
    if (ret == 0) {
        vesk::log::error(kTag, "bi_vesk_logd_get_configure failed, ret:%d\n", ret);
    } else {
        vesk::log::debug(kTag,
                         "hidl -----loginfo level:%s, base:%s, mode:%s, total_size:%s, "
                         "once_size:%s, \n",
                         record.field(0), record.field(1), record.field(2), record.field(3),
                         record.field(4));
        if (ret >= 1) {
            info.level = record.field(0);
            info.base = record.field(1);
            info.mode = record.field(2);
            info.total_size = record.field(3);
            info.once_size = record.field(4);
        }
    }
    _hidl_cb(ret, info);
    return Void();
}

Return<int32_t> VeskDeviceManager::setSystemShutDown() {
    trace("setSystemShutDown", 1497);
    vesk::platform::runCommand("/system/bin/reboot -p");
    return 0;
}

Return<int32_t> VeskDeviceManager::setPQEnable(int32_t enable) {
    trace("setPQEnable", 1595);
    if (enable == 1) {
        vesk::platform::runCommand("test-systemcontrol --p 1 1");
    } else if (enable == 0) {
        vesk::platform::runCommand("test-systemcontrol --p 0 1");
    }
    return bi_set_pq_state(enable);
}

// Both commands also select 2160p60hz: HDR switching always sets that output mode.
Return<int32_t> VeskDeviceManager::setHDREnable(int32_t enable) {
    trace("setHDREnable", 1646);
    if (enable == 0) {
        int status = vesk::platform::runCommand(
                "/system/bin/test-systemcontrol -d sdr rgb,8bit 2160p60hz");
        if (status != 0) vesk::log::error(kTag, "%s: set HDR Disable failed\n", "setHDREnable");
        return status;
    }
    if (enable == 1) {
        int status = vesk::platform::runCommand(
                "/system/bin/test-systemcontrol -d hdr 422,10bit 2160p60hz");
        if (status != 0) vesk::log::error(kTag, "%s: set HDR Enable failed\n", "setHDREnable");
        return status;
    }
    return -1;
}

}  // namespace vesk::hardware::veskdevicemanager::implementation
