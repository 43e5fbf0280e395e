/*
 * System records (processes and their scheduling, USB devices, CPU, interface version) and the
 * shell's power-off.
 */
#include <vesksdk.h>
#include <vesksdk_records.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "BoardText.h"
#include "DevicePaths.h"
#include "ServiceTrace.h"
#include "TraceLines.h"
#include "VeskDeviceManager.h"
#include "VeskPlatform.h"

namespace vesk::hardware::veskdevicemanager::implementation {

Return<int32_t> VeskDeviceManager::getProcessNum(const hidl_string& name, int32_t flag) {
    trace("getProcessNum", VESK_TRACE_LINE("getProcessNum"));
    return bi_kill_get_process_num(name.c_str(), flag);
}

Return<void> VeskDeviceManager::getProcessInfo(const hidl_string& name, getProcessInfo_cb _hidl_cb) {
    trace("getProcessInfo", VESK_TRACE_LINE("getProcessInfo"));
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

Return<int32_t> VeskDeviceManager::killProcessNum(int32_t pid) {
    trace("killProcessNum", VESK_TRACE_LINE("killProcessNum"));
    return bi_kill_process_num(pid);
}

Return<void> VeskDeviceManager::getUsbList(getUsbList_cb _hidl_cb) {
    trace("getUsbList", VESK_TRACE_LINE("getUsbList"));
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
    trace("getCpuStatus", VESK_TRACE_LINE("getCpuStatus"));
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
    trace("getVndkVersion", VESK_TRACE_LINE("getVndkVersion"));
    char version[100];
    snprintf(version, sizeof(version), "%s:1.0", "getVndkVersion");
    _hidl_cb(version);
    return Void();
}

Return<int32_t> VeskDeviceManager::schedUnbindPidFromCore(int32_t pid) {
    trace("schedUnbindPidFromCore", VESK_TRACE_LINE("schedUnbindPidFromCore"));
    return bi_sched_unbind_pid_from_main_core(pid);
}

Return<int32_t> VeskDeviceManager::schedBindPidFromCore(int32_t pid) {
    trace("schedBindPidFromCore", VESK_TRACE_LINE("schedBindPidFromCore"));
    return bi_sched_bind_pid_to_main_core(pid);
}

Return<int32_t> VeskDeviceManager::schedAdjustCpuFreq(const hidl_string& mode) {
    trace("schedAdjustCpuFreq", VESK_TRACE_LINE("schedAdjustCpuFreq"));
    return bi_sched_adjust_cpu_freq(mode.c_str());
}

Return<int32_t> VeskDeviceManager::setSystemShutDown() {
    trace("setSystemShutDown", VESK_TRACE_LINE("setSystemShutDown"));
    vesk::platform::runCommand(vesk::platform::kPowerOffCommand);
    return 0;
}

}  // namespace vesk::hardware::veskdevicemanager::implementation
