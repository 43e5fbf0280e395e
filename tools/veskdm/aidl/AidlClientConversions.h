/*
 * The AIDL interface's values back to the HIDL interface's, for the client side of veskdm over
 * AIDL: the inverse of the service's front end. A HIDL uint32_t travels as an int of the same
 * bits and a uint8_t, int8_t or uint16_t as an int (the service checks its range); parcelables
 * come back as the structs of types.hal.
 */
#pragma once

#include <aidl/vesk/hardware/veskdevicemanager/CpuStatus.h>
#include <aidl/vesk/hardware/veskdevicemanager/MessageParcel.h>
#include <aidl/vesk/hardware/veskdevicemanager/ProcessInfo.h>
#include <aidl/vesk/hardware/veskdevicemanager/ProductInfo.h>
#include <aidl/vesk/hardware/veskdevicemanager/UsbList.h>
#include <aidl/vesk/hardware/veskdevicemanager/VeskEffeResolution.h>
#include <aidl/vesk/hardware/veskdevicemanager/VeskLogInfo.h>
#include <aidl/vesk/hardware/veskdevicemanager/WatchDogCfg.h>
#include <hidl/HidlSupport.h>
#include <vesk/hardware/veskdevicemanager/1.0/types.h>

#include <cstdint>
#include <string>
#include <vector>

namespace veskdm::aidlclient {

namespace aidl = ::aidl::vesk::hardware::veskdevicemanager;
namespace hal = ::vesk::hardware::veskdevicemanager::V1_0;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;

// A HIDL argument as the AIDL method takes it.
inline int32_t toAidl(int32_t value) {
    return value;
}
inline int32_t toAidl(uint32_t value) {
    return static_cast<int32_t>(value);
}
inline int32_t toAidl(uint16_t value) {
    return value;
}
inline int32_t toAidl(uint8_t value) {
    return value;
}
inline int32_t toAidl(int8_t value) {
    return value;
}
inline float toAidl(float value) {
    return value;
}
std::string toAidl(const hidl_string& text);
std::vector<uint8_t> toAidl(const hidl_vec<uint8_t>& bytes);
std::vector<int32_t> toAidl(const hidl_vec<uint32_t>& words);
aidl::VeskLogInfo toAidl(const hal::VeskLogInfo& info);

// An AIDL result as the HIDL callback's argument.
hal::ProductInfo toHidl(const aidl::ProductInfo& info);
hal::WatchDogCfg toHidl(const aidl::WatchDogCfg& cfg);
hal::ProcessInfo toHidl(const aidl::ProcessInfo& info);
hidl_vec<hal::UsbList> toHidl(const std::vector<aidl::UsbList>& list);
hal::CpuStatus toHidl(const aidl::CpuStatus& status);
hal::VeskLogInfo toHidl(const aidl::VeskLogInfo& info);
hal::VeskEffeResolution toHidl(const aidl::VeskEffeResolution& resolution);
hidl_vec<hal::VeskEffeResolution> toHidl(const std::vector<aidl::VeskEffeResolution>& list);
hal::MessageParcel toHidl(const aidl::MessageParcel& parcel);
// The ints as the words of the same bits.
hidl_vec<uint32_t> toHidl(const std::vector<int32_t>& words);
hidl_vec<uint8_t> toHidl(const std::vector<uint8_t>& bytes);

}  // namespace veskdm::aidlclient
