#include "AidlConversions.h"

#include <utility>

#include "AidlText.h"

namespace aidl::vesk::hardware::veskdevicemanager {

ProductInfo toAidl(const core::ProductInfo& info) {
    ProductInfo out;
#define VESK_COPY_TEXT(name) out.name = aidlText(info.name);
#define VESK_COPY(name) out.name = info.name;
    VESK_PRODUCT_INFO_TEXTS(VESK_COPY_TEXT)
    VESK_PRODUCT_INFO_SWITCHES(VESK_COPY)
#undef VESK_COPY
#undef VESK_COPY_TEXT
    return out;
}

WatchDogCfg toAidl(const core::WatchDogCfg& cfg) {
    WatchDogCfg out;
    out.wdtDevice = aidlText(cfg.wdtDevice);
    out.wdt_timeout = static_cast<int32_t>(cfg.wdt_timeout);
    out.wdt_interval = static_cast<int32_t>(cfg.wdt_interval);
    return out;
}

ProcessInfo toAidl(const core::ProcessInfo& info) {
    ProcessInfo out;
    out.name1 = aidlText(info.name1);
    out.name2 = aidlText(info.name2);
    out.name3 = aidlText(info.name3);
    out.block.assign(info.block.begin(), info.block.end());
    out.value64 = static_cast<int64_t>(info.value64);
    out.valueReal = info.valueReal;
    out.value32 = static_cast<int32_t>(info.value32);
    return out;
}

std::vector<UsbList> toAidl(const std::vector<core::UsbList>& list) {
    std::vector<UsbList> out(list.size());
    for (size_t i = 0; i < list.size(); ++i) {
        out[i].vid = static_cast<int32_t>(list[i].vid);
        out[i].pid = static_cast<int32_t>(list[i].pid);
    }
    return out;
}

CpuStatus toAidl(const core::CpuStatus& status) {
    CpuStatus out;
    out.usr = status.usr;
    out.nic = status.nic;
    out.sys = status.sys;
    out.idle = status.idle;
    out.iowait = status.iowait;
    out.irq = status.irq;
    out.softirq = status.softirq;
    out.temperature = static_cast<int32_t>(status.temperature);
    return out;
}

VeskLogInfo toAidl(const core::VeskLogInfo& info) {
    VeskLogInfo out;
    out.level = aidlText(info.level);
    out.base = aidlText(info.base);
    out.mode = aidlText(info.mode);
    out.total_size = aidlText(info.total_size);
    out.once_size = aidlText(info.once_size);
    return out;
}

VeskEffeResolution toAidl(const core::VeskEffeResolution& resolution) {
    VeskEffeResolution out;
    out.width = static_cast<int32_t>(resolution.width);
    out.height = static_cast<int32_t>(resolution.height);
    out.fps = static_cast<int32_t>(resolution.fps);
    out.status = resolution.status;
    return out;
}

std::vector<VeskEffeResolution> toAidl(const std::vector<core::VeskEffeResolution>& list) {
    std::vector<VeskEffeResolution> out;
    out.reserve(list.size());
    for (const core::VeskEffeResolution& resolution : list) out.push_back(toAidl(resolution));
    return out;
}

std::vector<int32_t> toAidl(const std::vector<uint32_t>& words) {
    return std::vector<int32_t>(words.begin(), words.end());
}

ReadResult toAidl(core::ReadResult&& result) {
    ReadResult out;
    out.data = std::move(result.data);
    out.bytes_read = result.bytesRead;
    return out;
}

TransferResult toAidl(core::TransferResult&& result) {
    TransferResult out;
    out.ret = result.ret;
    out.data = std::move(result.data);
    return out;
}

LogConfigureResult toAidl(const core::LogConfigureResult& result) {
    LogConfigureResult out;
    out.ret = result.ret;
    out.info = toAidl(result.info);
    return out;
}

core::VeskLogInfo toCore(const VeskLogInfo& info) {
    return {info.level, info.base, info.mode, info.total_size, info.once_size};
}

}  // namespace aidl::vesk::hardware::veskdevicemanager
