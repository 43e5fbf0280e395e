/*
 * The core's values as HIDL's types and back. A client's vector reaches the core as a view of its
 * elements, and a vector the core returns reaches the callback lent, not copied.
 */
#pragma once

#include <hidl/HidlSupport.h>
#include <vesk/hardware/veskdevicemanager/1.0/types.h>

#include <vector>

#include "CoreTypes.h"

namespace vesk::hardware::veskdevicemanager::implementation {

V1_0::ProductInfo toHidl(const core::ProductInfo& info);
V1_0::WatchDogCfg toHidl(const core::WatchDogCfg& cfg);
V1_0::ProcessInfo toHidl(const core::ProcessInfo& info);
::android::hardware::hidl_vec<V1_0::UsbList> toHidl(const std::vector<core::UsbList>& list);
V1_0::CpuStatus toHidl(const core::CpuStatus& status);
V1_0::VeskLogInfo toHidl(const core::VeskLogInfo& info);
V1_0::VeskEffeResolution toHidl(const core::VeskEffeResolution& resolution);
::android::hardware::hidl_vec<V1_0::VeskEffeResolution> toHidl(
        const std::vector<core::VeskEffeResolution>& list);

core::VeskLogInfo toCore(const V1_0::VeskLogInfo& info);

// The client's elements where the client's vector holds them.
template <typename T>
core::InputView<T> viewOf(const ::android::hardware::hidl_vec<T>& items) {
    return core::InputView<T>(items.data(), items.size());
}

// A vector of the core's, seen by the callback without a copy: the hidl_vec points into it and
// owns nothing, so `items` must outlive the callback's run.
template <typename T>
::android::hardware::hidl_vec<T> lend(std::vector<T>& items) {
    ::android::hardware::hidl_vec<T> lent;
    lent.setToExternal(items.data(), items.size());
    return lent;
}

}  // namespace vesk::hardware::veskdevicemanager::implementation
