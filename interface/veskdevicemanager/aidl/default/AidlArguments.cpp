#include "AidlArguments.h"

#include <android/binder_status.h>

#include <cstdint>
#include <limits>
#include <optional>

#include "AidlConversions.h"

namespace aidl::vesk::hardware::veskdevicemanager {

int32_t Arguments::take(core::kind::Int32, int32_t value, const char* /* name */) {
    return value;
}

// The same 32 bits: a uint32_t of 4294967295 arrives as -1.
uint32_t Arguments::take(core::kind::Uint32, int32_t value, const char* /* name */) {
    return static_cast<uint32_t>(value);
}

uint32_t Arguments::take(core::kind::Size, int32_t value, const char* name) {
    return static_cast<uint32_t>(within(value, 0, kLargestBuffer, name));
}

uint8_t Arguments::take(core::kind::Uint8, int32_t value, const char* name) {
    return static_cast<uint8_t>(within(value, 0, std::numeric_limits<uint8_t>::max(), name));
}

int8_t Arguments::take(core::kind::Int8, int32_t value, const char* name) {
    return static_cast<int8_t>(within(value, std::numeric_limits<int8_t>::min(),
                                      std::numeric_limits<int8_t>::max(), name));
}

uint16_t Arguments::take(core::kind::Uint16, int32_t value, const char* name) {
    return static_cast<uint16_t>(within(value, 0, std::numeric_limits<uint16_t>::max(), name));
}

const std::string& Arguments::take(core::kind::String, const std::string& value,
                                   const char* /* name */) {
    return value;
}

core::InputView<uint8_t> Arguments::take(core::kind::Bytes, const std::vector<uint8_t>& value,
                                         const char* /* name */) {
    return core::InputView<uint8_t>(value.data(), value.size());
}

// The client's words as the uint32_t they were in HIDL, where the client's vector holds them.
core::InputView<uint32_t> Arguments::take(core::kind::Words, const std::vector<int32_t>& value,
                                          const char* /* name */) {
    return core::InputView<uint32_t>(reinterpret_cast<const uint32_t*>(value.data()), value.size());
}

core::VeskLogInfo Arguments::take(core::kind::LogInfo, const VeskLogInfo& value, const char* name) {
    core::VeskLogInfo info = toCore(value);
    if (std::optional<std::string> why = mCore.logInfoRefusal(info)) {
        refuse(std::string(name) + "." + *why);
        return {};
    }
    return info;
}

::ndk::ScopedAStatus Arguments::refusal() const {
    return ::ndk::ScopedAStatus::fromExceptionCodeWithMessage(EX_ILLEGAL_ARGUMENT, mRefusal.c_str());
}

int32_t Arguments::within(int32_t value, int32_t low, int32_t high, const char* name) {
    if (value >= low && value <= high) return value;
    refuse(std::string(name) + " is " + std::to_string(value) + ", outside its range " +
           std::to_string(low) + " to " + std::to_string(high));
    return 0;
}

void Arguments::refuse(const std::string& why) {
    if (mRefusal.empty()) mRefusal = std::string(mMethod) + ": " + why;
}

}  // namespace aidl::vesk::hardware::veskdevicemanager
