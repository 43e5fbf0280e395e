#include "HidlConversions.h"

#include <algorithm>

namespace vesk::hardware::veskdevicemanager::implementation {

using ::android::hardware::hidl_vec;

V1_0::ProductInfo toHidl(const core::ProductInfo& info) {
    V1_0::ProductInfo out;
#define VESK_COPY(name) out.name = info.name;
    VESK_PRODUCT_INFO_TEXTS(VESK_COPY)
    VESK_PRODUCT_INFO_SWITCHES(VESK_COPY)
#undef VESK_COPY
    return out;
}

V1_0::WatchDogCfg toHidl(const core::WatchDogCfg& cfg) {
    V1_0::WatchDogCfg out;
    out.wdtDevice = cfg.wdtDevice;
    out.wdt_timeout = cfg.wdt_timeout;
    out.wdt_interval = cfg.wdt_interval;
    return out;
}

V1_0::ProcessInfo toHidl(const core::ProcessInfo& info) {
    V1_0::ProcessInfo out{info.name1,   info.name2,     info.name3,  {},
                          info.value64, info.valueReal, info.value32};
    std::copy(info.block.begin(), info.block.end(), out.block.data());
    return out;
}

hidl_vec<V1_0::UsbList> toHidl(const std::vector<core::UsbList>& list) {
    hidl_vec<V1_0::UsbList> out(list.size());
    for (size_t i = 0; i < list.size(); ++i) out[i] = {list[i].vid, list[i].pid};
    return out;
}

V1_0::CpuStatus toHidl(const core::CpuStatus& status) {
    return {status.usr,    status.nic, status.sys,     status.idle,
            status.iowait, status.irq, status.softirq, status.temperature};
}

V1_0::VeskLogInfo toHidl(const core::VeskLogInfo& info) {
    V1_0::VeskLogInfo out;
    out.level = info.level;
    out.base = info.base;
    out.mode = info.mode;
    out.total_size = info.total_size;
    out.once_size = info.once_size;
    return out;
}

V1_0::VeskEffeResolution toHidl(const core::VeskEffeResolution& resolution) {
    return {resolution.width, resolution.height, resolution.fps, resolution.status};
}

hidl_vec<V1_0::VeskEffeResolution> toHidl(const std::vector<core::VeskEffeResolution>& list) {
    hidl_vec<V1_0::VeskEffeResolution> out(list.size());
    for (size_t i = 0; i < list.size(); ++i) out[i] = toHidl(list[i]);
    return out;
}

core::VeskLogInfo toCore(const V1_0::VeskLogInfo& info) {
    return {info.level, info.base, info.mode, info.total_size, info.once_size};
}

}  // namespace vesk::hardware::veskdevicemanager::implementation
