/*
 * The HIDL parameter type of each kind of the core's table (CoreValueMethods.h), and the one
 * conversion of an argument to what the core takes: a hidl_string reaches the core as
 * std::string (its own conversion), a vector as the core's view of its elements, a struct
 * converted (HidlConversions.h), a number as it is.
 */
#pragma once

#include <hidl/HidlSupport.h>
#include <vesk/hardware/veskdevicemanager/1.0/types.h>

#include <cstdint>

#include "CoreValueMethods.h"
#include "HidlConversions.h"

namespace vesk::hardware::veskdevicemanager::implementation {

template <typename Kind>
struct HidlParameterOf;

template <>
struct HidlParameterOf<core::kind::Int32> {
    using Type = int32_t;
};
template <>
struct HidlParameterOf<core::kind::Uint32> {
    using Type = uint32_t;
};
template <>
struct HidlParameterOf<core::kind::Size> {
    using Type = uint32_t;
};
template <>
struct HidlParameterOf<core::kind::Uint8> {
    using Type = uint8_t;
};
template <>
struct HidlParameterOf<core::kind::Int8> {
    using Type = int8_t;
};
template <>
struct HidlParameterOf<core::kind::Uint16> {
    using Type = uint16_t;
};
template <>
struct HidlParameterOf<core::kind::String> {
    using Type = const ::android::hardware::hidl_string&;
};
template <>
struct HidlParameterOf<core::kind::Bytes> {
    using Type = const ::android::hardware::hidl_vec<uint8_t>&;
};
template <>
struct HidlParameterOf<core::kind::Words> {
    using Type = const ::android::hardware::hidl_vec<uint32_t>&;
};
template <>
struct HidlParameterOf<core::kind::LogInfo> {
    using Type = const V1_0::VeskLogInfo&;
};

// The HIDL method's parameter of a kind of the table.
template <typename Kind>
using HidlParameter = typename HidlParameterOf<Kind>::Type;

// The argument as the core takes it.
template <typename T>
const T& coreArgument(const T& value) {
    return value;
}
template <typename T>
core::InputView<T> coreArgument(const ::android::hardware::hidl_vec<T>& items) {
    return viewOf(items);
}
inline core::VeskLogInfo coreArgument(const V1_0::VeskLogInfo& info) {
    return toCore(info);
}

}  // namespace vesk::hardware::veskdevicemanager::implementation
