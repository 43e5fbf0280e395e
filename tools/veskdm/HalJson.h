/*
 * JSON forms of the interface's values, both ways: integers and floats as numbers, strings as
 * strings, vectors and fixed arrays as arrays, structs as objects keyed by their field names.
 * Reading is strict: a value of the wrong type, out of its type's range, or a struct with a
 * missing or unknown field is an ArgumentError that says what was expected.
 */
#pragma once

#include <hidl/HidlSupport.h>
#include <vesk/hardware/veskdevicemanager/1.0/IVeskDeviceCallback.h>
#include <vesk/hardware/veskdevicemanager/1.0/types.h>

#include <limits>
#include <new>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <type_traits>

#include "HalTypeName.h"

namespace veskdm {

// Objects keep their fields in the order of the interface definition.
using Json = nlohmann::ordered_json;

// A value that cannot be read as the type asked for; the message is one line.
class ArgumentError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// A word that starts like JSON and is none; the message quotes the word and says where it
// stops being JSON ("\"0x10\", which is not JSON: 'x' at character 2 is not expected there").
class UnreadableJson : public ArgumentError {
  public:
    using ArgumentError::ArgumentError;
};

// The deepest nesting of arrays and objects an argument may have.
inline constexpr size_t kMaxNesting = 64;

// The longest vector a result may hold to be printed; a longer one is a size that cannot be
// allocated (std::bad_alloc).
inline constexpr size_t kMaxPrintedElements = size_t{1} << 24;

// One command-line word as a JSON value. A word that starts like JSON (with {, [, ", - or a
// digit) or is true, false or null must be valid JSON (objects without repeated keys: else
// UnreadableJson); any other word is taken as the string it spells. JSON nested deeper than
// kMaxNesting is refused before it is parsed.
Json readArgumentWord(const std::string& word);

// A value as it is quoted in messages (compact JSON, long values shortened).
std::string describeValue(const Json& value);

// The JSON text of a value: compact, invalid UTF-8 in strings replaced, never throwing.
std::string dumpJson(const Json& value);

// The shortest decimal that reads back as the same float ("12.15" for 12.15f).
std::string formatFloat(float value);

// ---- to JSON ----

template <typename T, std::enable_if_t<std::is_integral_v<T> && !std::is_same_v<T, bool>, int> = 0>
Json toJson(T value) {
    return value;
}
Json toJson(bool value);
Json toJson(float value);   // as formatFloat; NaN and infinities as null
Json toJson(double value);  // shortest round trip; NaN and infinities as null
Json toJson(const ::android::hardware::hidl_string& value);
Json toJson(const hal::ProductInfo& value);
Json toJson(const hal::WatchDogCfg& value);
Json toJson(const hal::ProcessInfo& value);
Json toJson(const hal::UsbList& value);
Json toJson(const hal::CpuStatus& value);
Json toJson(const hal::VeskLogInfo& value);
Json toJson(const hal::VeskEffeResolution& value);
Json toJson(const hal::MessageParcel& value);
template <typename T>
Json toJson(const ::android::hardware::hidl_vec<T>& value);
template <typename T, size_t N>
Json toJson(const ::android::hardware::hidl_array<T, N>& value);

// ---- from JSON ----

template <typename T, std::enable_if_t<std::is_integral_v<T> && !std::is_same_v<T, bool>, int> = 0>
void fromJson(const Json& in, T& out);
void fromJson(const Json& in, bool& out);
void fromJson(const Json& in, float& out);  // any number that rounds to a finite float
void fromJson(const Json& in, double& out);
void fromJson(const Json& in, ::android::hardware::hidl_string& out);
void fromJson(const Json& in, hal::ProductInfo& out);
void fromJson(const Json& in, hal::WatchDogCfg& out);
void fromJson(const Json& in, hal::ProcessInfo& out);
void fromJson(const Json& in, hal::UsbList& out);
void fromJson(const Json& in, hal::CpuStatus& out);
void fromJson(const Json& in, hal::VeskLogInfo& out);
void fromJson(const Json& in, hal::VeskEffeResolution& out);
void fromJson(const Json& in, hal::MessageParcel& out);
// null: no callback; "callback": a LocalDeviceCallback of this process.
void fromJson(const Json& in, ::android::sp<hal::IVeskDeviceCallback>& out);
template <typename T>
void fromJson(const Json& in, ::android::hardware::hidl_vec<T>& out);
template <typename T, size_t N>
void fromJson(const Json& in, ::android::hardware::hidl_array<T, N>& out);

// ---- what each type is written as, for messages ("an integer from 0 to 255 (uint8_t)") ----

template <typename T>
struct Form {};

std::string describeForm(Form<bool>);
std::string describeForm(Form<float>);
std::string describeForm(Form<double>);
std::string describeForm(Form<::android::hardware::hidl_string>);
std::string describeForm(Form<hal::ProductInfo>);
std::string describeForm(Form<hal::WatchDogCfg>);
std::string describeForm(Form<hal::ProcessInfo>);
std::string describeForm(Form<hal::UsbList>);
std::string describeForm(Form<hal::CpuStatus>);
std::string describeForm(Form<hal::VeskLogInfo>);
std::string describeForm(Form<hal::VeskEffeResolution>);
std::string describeForm(Form<hal::MessageParcel>);
std::string describeForm(Form<::android::sp<hal::IVeskDeviceCallback>>);
template <typename T, std::enable_if_t<std::is_integral_v<T> && !std::is_same_v<T, bool>, int> = 0>
std::string describeForm(Form<T>);
template <typename T>
std::string describeForm(Form<::android::hardware::hidl_vec<T>>);
template <typename T, size_t N>
std::string describeForm(Form<::android::hardware::hidl_array<T, N>>);

// ---- templates ----

namespace detail {
std::string integerForm(const std::string& type, long long min, unsigned long long max);
[[noreturn]] void throwNotInteger(const std::string& type, long long min, unsigned long long max,
                                  const Json& in);
[[noreturn]] void throwNotArray(const Json& in);
[[noreturn]] void rethrowAtIndex(size_t index, const ArgumentError& error);
}  // namespace detail

template <typename T, std::enable_if_t<std::is_integral_v<T> && !std::is_same_v<T, bool>, int>>
void fromJson(const Json& in, T& out) {
    // Widening int8_t keeps its sign, as wanted here.
    constexpr long long min = static_cast<long long>(
            std::numeric_limits<T>::min());  // NOLINT(bugprone-signed-char-misuse)
    constexpr unsigned long long max =
            static_cast<unsigned long long>(std::numeric_limits<T>::max());
    // The parser keeps non-negative integers unsigned and negative ones signed.
    if (in.is_number_unsigned()) {
        unsigned long long value = in.get<unsigned long long>();
        if (value <= max) {
            out = static_cast<T>(value);
            return;
        }
    } else if (in.is_number_integer()) {
        long long value = in.get<long long>();
        if (value >= min) {
            out = static_cast<T>(value);
            return;
        }
    }
    detail::throwNotInteger(halTypeName<T>(), min, max, in);
}

template <typename T, std::enable_if_t<std::is_integral_v<T> && !std::is_same_v<T, bool>, int>>
std::string describeForm(Form<T>) {
    return detail::integerForm(
            halTypeName<T>(),
            static_cast<long long>(
                    std::numeric_limits<T>::min()),  // NOLINT(bugprone-signed-char-misuse)
            static_cast<unsigned long long>(std::numeric_limits<T>::max()));
}

template <typename T>
std::string describeForm(Form<::android::hardware::hidl_vec<T>>) {
    return "an array (" + halTypeName<::android::hardware::hidl_vec<T>>() + "), each element " +
           describeForm(Form<T>{});
}

template <typename T, size_t N>
std::string describeForm(Form<::android::hardware::hidl_array<T, N>>) {
    return "an array of " + std::to_string(N) + " elements, each " + describeForm(Form<T>{});
}

template <typename T>
Json toJson(const ::android::hardware::hidl_vec<T>& value) {
    // Each element costs a JSON value and its text; past the bound the printing could not be
    // allocated (and, where memory is overcommitted, would be killed rather than refused).
    if (value.size() > kMaxPrintedElements) throw std::bad_alloc();
    Json out = Json::array();
    for (const T& element : value) out.push_back(toJson(element));
    return out;
}

template <typename T, size_t N>
Json toJson(const ::android::hardware::hidl_array<T, N>& value) {
    Json out = Json::array();
    for (size_t i = 0; i < N; ++i) out.push_back(toJson(value[i]));
    return out;
}

template <typename T>
void fromJson(const Json& in, ::android::hardware::hidl_vec<T>& out) {
    if (!in.is_array()) detail::throwNotArray(in);
    ::android::hardware::hidl_vec<T> result(in.size());
    for (size_t i = 0; i < in.size(); ++i) {
        try {
            fromJson(in[i], result[i]);
        } catch (const ArgumentError& error) {
            detail::rethrowAtIndex(i, error);
        }
    }
    out = std::move(result);
}

template <typename T, size_t N>
void fromJson(const Json& in, ::android::hardware::hidl_array<T, N>& out) {
    if (!in.is_array()) detail::throwNotArray(in);
    if (in.size() != N) {
        throw ArgumentError("expected an array of " + std::to_string(N) + " elements, got " +
                            std::to_string(in.size()));
    }
    ::android::hardware::hidl_array<T, N> result;
    for (size_t i = 0; i < N; ++i) {
        try {
            fromJson(in[i], result[i]);
        } catch (const ArgumentError& error) {
            detail::rethrowAtIndex(i, error);
        }
    }
    out = result;
}

}  // namespace veskdm
