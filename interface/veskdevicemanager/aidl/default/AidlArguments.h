/*
 * A call's arguments as the AIDL interface carries them, checked and converted to what the core
 * takes. Each kind of the core's table (CoreValueMethods.h) has its AIDL parameter type here and
 * one conversion: an int of a uint32_t keeps its bits; a narrow integer must lie within its HIDL
 * type's range; the size of a buffer the service makes must lie from 0 to kLargestBuffer; a log
 * configuration must fit the board's record (the core's own refusal). The first argument refused
 * makes the call's answer, EX_ILLEGAL_ARGUMENT with a message naming the method, the argument
 * and what it may be; the core is then not called, and nothing reaches the board.
 */
#pragma once

#include <aidl/vesk/hardware/veskdevicemanager/VeskLogInfo.h>
#include <android/binder_auto_utils.h>

#include <cstdint>
#include <string>
#include <vector>

#include "CoreValueMethods.h"
#include "DeviceManagerCore.h"

namespace aidl::vesk::hardware::veskdevicemanager {

namespace core = ::vesk::hardware::veskdevicemanager::core;

// The largest reply a binder transaction carries on the board (the binder driver's buffer of a
// process, 1 MiB less two pages): a larger buffer could never reach the client.
inline constexpr int32_t kLargestBuffer = 1024 * 1024 - 2 * 4096;

template <typename Kind>
struct AidlParameterOf {
    using Type = int32_t;  // every integer kind is an AIDL int
};
template <>
struct AidlParameterOf<core::kind::String> {
    using Type = const std::string&;
};
template <>
struct AidlParameterOf<core::kind::Bytes> {
    using Type = const std::vector<uint8_t>&;
};
template <>
struct AidlParameterOf<core::kind::Words> {
    using Type = const std::vector<int32_t>&;
};
template <>
struct AidlParameterOf<core::kind::LogInfo> {
    using Type = const VeskLogInfo&;
};

// The AIDL method's parameter of a kind of the table.
template <typename Kind>
using AidlParameter = typename AidlParameterOf<Kind>::Type;

// One call's arguments: take() each in order, then ask refused().
class Arguments {
  public:
    Arguments(const core::DeviceManagerCore& core, const char* method)
        : mCore(core), mMethod(method) {}

    int32_t take(core::kind::Int32, int32_t value, const char* name);
    uint32_t take(core::kind::Uint32, int32_t value, const char* name);
    uint32_t take(core::kind::Size, int32_t value, const char* name);
    uint8_t take(core::kind::Uint8, int32_t value, const char* name);
    int8_t take(core::kind::Int8, int32_t value, const char* name);
    uint16_t take(core::kind::Uint16, int32_t value, const char* name);
    const std::string& take(core::kind::String, const std::string& value, const char* name);
    core::InputView<uint8_t> take(core::kind::Bytes, const std::vector<uint8_t>& value,
                                  const char* name);
    core::InputView<uint32_t> take(core::kind::Words, const std::vector<int32_t>& value,
                                   const char* name);
    core::VeskLogInfo take(core::kind::LogInfo, const VeskLogInfo& value, const char* name);

    // Whether an argument was refused; refusal() is then the call's answer.
    bool refused() const { return !mRefusal.empty(); }
    ::ndk::ScopedAStatus refusal() const;

  private:
    // The value as it is when it lies from low to high; else the first refusal is noted.
    int32_t within(int32_t value, int32_t low, int32_t high, const char* name);
    void refuse(const std::string& why);

    const core::DeviceManagerCore& mCore;
    const char* mMethod;
    std::string mRefusal;
};

}  // namespace aidl::vesk::hardware::veskdevicemanager
