/*
 * The core's values as the AIDL interface's parcelables and back. A uint32_t or uint64_t of the
 * core reaches the client as an int or long of the same bits; a result of several values is one
 * parcelable of its shape (ReadResult, TransferResult, LogConfigureResult); a text is made UTF-8
 * on the way (AidlText.h).
 */
#pragma once

#include <aidl/vesk/hardware/veskdevicemanager/CpuStatus.h>
#include <aidl/vesk/hardware/veskdevicemanager/LogConfigureResult.h>
#include <aidl/vesk/hardware/veskdevicemanager/ProcessInfo.h>
#include <aidl/vesk/hardware/veskdevicemanager/ProductInfo.h>
#include <aidl/vesk/hardware/veskdevicemanager/ReadResult.h>
#include <aidl/vesk/hardware/veskdevicemanager/TransferResult.h>
#include <aidl/vesk/hardware/veskdevicemanager/UsbList.h>
#include <aidl/vesk/hardware/veskdevicemanager/VeskEffeResolution.h>
#include <aidl/vesk/hardware/veskdevicemanager/VeskLogInfo.h>
#include <aidl/vesk/hardware/veskdevicemanager/WatchDogCfg.h>

#include <cstdint>
#include <vector>

#include "CoreTypes.h"

namespace aidl::vesk::hardware::veskdevicemanager {

namespace core = ::vesk::hardware::veskdevicemanager::core;

ProductInfo toAidl(const core::ProductInfo& info);
WatchDogCfg toAidl(const core::WatchDogCfg& cfg);
ProcessInfo toAidl(const core::ProcessInfo& info);
std::vector<UsbList> toAidl(const std::vector<core::UsbList>& list);
CpuStatus toAidl(const core::CpuStatus& status);
VeskLogInfo toAidl(const core::VeskLogInfo& info);
VeskEffeResolution toAidl(const core::VeskEffeResolution& resolution);
std::vector<VeskEffeResolution> toAidl(const std::vector<core::VeskEffeResolution>& list);
// The words as ints of the same bits.
std::vector<int32_t> toAidl(const std::vector<uint32_t>& words);
ReadResult toAidl(core::ReadResult&& result);
TransferResult toAidl(core::TransferResult&& result);
LogConfigureResult toAidl(const core::LogConfigureResult& result);

core::VeskLogInfo toCore(const VeskLogInfo& info);

}  // namespace aidl::vesk::hardware::veskdevicemanager
