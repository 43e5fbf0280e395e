/*
 * The interface-definition spelling of the C++ types at the interface ("int32_t", "string",
 * "vec<uint8_t>", "uint8_t[16]", "ProductInfo"), so that signatures are written from the
 * types of the generated methods themselves.
 */
#pragma once

#include <hidl/HidlSupport.h>
#include <vesk/hardware/veskdevicemanager/1.0/IVeskDeviceCallback.h>
#include <vesk/hardware/veskdevicemanager/1.0/types.h>

#include <cstdint>
#include <string>

namespace veskdm {

namespace hal = ::vesk::hardware::veskdevicemanager::V1_0;

template <typename T>
struct HalTypeName;  // no spelling for a type the interface does not use

#define VESKDM_HAL_TYPE_NAME(TYPE, NAME)          \
    template <>                                   \
    struct HalTypeName<TYPE> {                    \
        static std::string get() { return NAME; } \
    }

VESKDM_HAL_TYPE_NAME(bool, "bool");
VESKDM_HAL_TYPE_NAME(int8_t, "int8_t");
VESKDM_HAL_TYPE_NAME(uint8_t, "uint8_t");
VESKDM_HAL_TYPE_NAME(int16_t, "int16_t");
VESKDM_HAL_TYPE_NAME(uint16_t, "uint16_t");
VESKDM_HAL_TYPE_NAME(int32_t, "int32_t");
VESKDM_HAL_TYPE_NAME(uint32_t, "uint32_t");
VESKDM_HAL_TYPE_NAME(int64_t, "int64_t");
VESKDM_HAL_TYPE_NAME(uint64_t, "uint64_t");
VESKDM_HAL_TYPE_NAME(float, "float");
VESKDM_HAL_TYPE_NAME(double, "double");
VESKDM_HAL_TYPE_NAME(void, "void");
VESKDM_HAL_TYPE_NAME(::android::hardware::hidl_string, "string");
VESKDM_HAL_TYPE_NAME(::android::sp<hal::IVeskDeviceCallback>, "IVeskDeviceCallback");
VESKDM_HAL_TYPE_NAME(hal::ProductInfo, "ProductInfo");
VESKDM_HAL_TYPE_NAME(hal::WatchDogCfg, "WatchDogCfg");
VESKDM_HAL_TYPE_NAME(hal::ProcessInfo, "ProcessInfo");
VESKDM_HAL_TYPE_NAME(hal::UsbList, "UsbList");
VESKDM_HAL_TYPE_NAME(hal::CpuStatus, "CpuStatus");
VESKDM_HAL_TYPE_NAME(hal::VeskLogInfo, "VeskLogInfo");
VESKDM_HAL_TYPE_NAME(hal::VeskEffeResolution, "VeskEffeResolution");
VESKDM_HAL_TYPE_NAME(hal::MessageParcel, "MessageParcel");

#undef VESKDM_HAL_TYPE_NAME

template <typename T>
struct HalTypeName<::android::hardware::hidl_vec<T>> {
    static std::string get() { return "vec<" + HalTypeName<T>::get() + ">"; }
};

template <typename T, size_t N>
struct HalTypeName<::android::hardware::hidl_array<T, N>> {
    static std::string get() { return HalTypeName<T>::get() + "[" + std::to_string(N) + "]"; }
};

// The spelling of a parameter type as the generated method declares it (const T& or T).
template <typename T>
std::string halTypeName() {
    return HalTypeName<std::remove_cv_t<std::remove_reference_t<T>>>::get();
}

}  // namespace veskdm
