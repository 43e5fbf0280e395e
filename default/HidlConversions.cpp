#include "HidlConversions.h"

#include <algorithm>

namespace vesk::hardware::veskdevicemanager::implementation {

using ::android::hardware::hidl_vec;

// A field as the other side holds it: the core's types and HIDL's convert implicitly.
#define VESK_COPY(name) out.name = in.name;

V1_0::ProductInfo toHidl(const core::ProductInfo& in) {
    V1_0::ProductInfo out;
    VESK_PRODUCT_INFO_TEXTS(VESK_COPY)
    VESK_PRODUCT_INFO_SWITCHES(VESK_COPY)
    return out;
}

V1_0::WatchDogCfg toHidl(const core::WatchDogCfg& in) {
    V1_0::WatchDogCfg out;
    VESK_WATCHDOG_CFG_FIELDS(VESK_COPY)
    return out;
}

V1_0::ProcessInfo toHidl(const core::ProcessInfo& in) {
    V1_0::ProcessInfo out;
    VESK_PROCESS_INFO_FIELDS(VESK_COPY)
    std::copy(in.block.begin(), in.block.end(), out.block.data());
    return out;
}

hidl_vec<V1_0::UsbList> toHidl(const std::vector<core::UsbList>& list) {
    hidl_vec<V1_0::UsbList> all(list.size());
    for (size_t i = 0; i < list.size(); ++i) {
        const core::UsbList& in = list[i];
        V1_0::UsbList& out = all[i];
        VESK_USB_LIST_FIELDS(VESK_COPY)
    }
    return all;
}

V1_0::CpuStatus toHidl(const core::CpuStatus& in) {
    V1_0::CpuStatus out;
    VESK_CPU_STATUS_FIELDS(VESK_COPY)
    return out;
}

V1_0::VeskLogInfo toHidl(const core::VeskLogInfo& in) {
    V1_0::VeskLogInfo out;
    VESK_LOG_INFO_FIELDS(VESK_COPY)
    return out;
}

V1_0::VeskEffeResolution toHidl(const core::VeskEffeResolution& in) {
    V1_0::VeskEffeResolution out;
    VESK_EFFE_RESOLUTION_FIELDS(VESK_COPY)
    return out;
}

hidl_vec<V1_0::VeskEffeResolution> toHidl(const std::vector<core::VeskEffeResolution>& list) {
    hidl_vec<V1_0::VeskEffeResolution> out(list.size());
    for (size_t i = 0; i < list.size(); ++i) out[i] = toHidl(list[i]);
    return out;
}

core::VeskLogInfo toCore(const V1_0::VeskLogInfo& in) {
    core::VeskLogInfo out;
    VESK_LOG_INFO_FIELDS(VESK_COPY)
    return out;
}

#undef VESK_COPY

}  // namespace vesk::hardware::veskdevicemanager::implementation
