/*
 * System records (processes and their scheduling, USB devices, CPU, interface version) and the
 * shell's power-off.
 */
#include <vesksdk.h>
#include <vesksdk_records.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "DeviceManagerCore.h"
#include "DevicePaths.h"
#include "ServiceTrace.h"
#include "TraceLines.h"
#include "VeskPlatform.h"

namespace vesk::hardware::veskdevicemanager::core {

using implementation::kTag;
using implementation::trace;

int32_t DeviceManagerCore::getProcessNum(const std::string& name, int32_t flag) {
    trace("getProcessNum", VESK_TRACE_LINE("getProcessNum"));
    return bi_kill_get_process_num(name.c_str(), flag);
}

ProcessInfo DeviceManagerCore::getProcessInfo(const std::string& name) {
    trace("getProcessInfo", VESK_TRACE_LINE("getProcessInfo"));
    ProcessInfo info;
    auto* record = static_cast<vesk_process_record*>(calloc(1, sizeof(vesk_process_record)));
    if (record == nullptr) {
        vesk::log::error(kTag, "%s malloc failed\n", "getProcessInfo");
        return info;
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
    return info;
}

int32_t DeviceManagerCore::killProcessNum(int32_t pid) {
    trace("killProcessNum", VESK_TRACE_LINE("killProcessNum"));
    return bi_kill_process_num(pid);
}

std::vector<UsbList> DeviceManagerCore::getUsbList() {
    trace("getUsbList", VESK_TRACE_LINE("getUsbList"));
    auto* record = static_cast<vesk_usb_list_record*>(calloc(1, sizeof(vesk_usb_list_record)));
    std::vector<UsbList> list;
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
    return list;
}

CpuStatus DeviceManagerCore::getCpuStatus() {
    trace("getCpuStatus", VESK_TRACE_LINE("getCpuStatus"));
    vesk_cpu_record record;
    memset(&record, 0, sizeof(record));
    CpuStatus status;
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
    return status;
}

// The method's own name stands in the version text; clients parse it as it is.
std::string DeviceManagerCore::getVndkVersion() {
    trace("getVndkVersion", VESK_TRACE_LINE("getVndkVersion"));
    char version[100];
    snprintf(version, sizeof(version), "%s:1.0", "getVndkVersion");
    return version;
}

int32_t DeviceManagerCore::schedUnbindPidFromCore(int32_t pid) {
    trace("schedUnbindPidFromCore", VESK_TRACE_LINE("schedUnbindPidFromCore"));
    return bi_sched_unbind_pid_from_main_core(pid);
}

int32_t DeviceManagerCore::schedBindPidFromCore(int32_t pid) {
    trace("schedBindPidFromCore", VESK_TRACE_LINE("schedBindPidFromCore"));
    return bi_sched_bind_pid_to_main_core(pid);
}

int32_t DeviceManagerCore::schedAdjustCpuFreq(const std::string& mode) {
    trace("schedAdjustCpuFreq", VESK_TRACE_LINE("schedAdjustCpuFreq"));
    return bi_sched_adjust_cpu_freq(mode.c_str());
}

int32_t DeviceManagerCore::setSystemShutDown() {
    trace("setSystemShutDown", VESK_TRACE_LINE("setSystemShutDown"));
    vesk::platform::runCommand(vesk::platform::kPowerOffCommand);
    return 0;
}

}  // namespace vesk::hardware::veskdevicemanager::core
