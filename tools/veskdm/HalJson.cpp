#include "HalJson.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <set>
#include <tuple>
#include <vector>

#include "LocalDeviceCallback.h"

namespace veskdm {

using ::android::hardware::hidl_string;

namespace {

constexpr size_t kDescribedLength = 60;

// One field of a struct: its name in the interface definition and its member.
template <typename S, typename M>
struct Field {
    const char* name;
    M S::*member;
};
template <typename S, typename M>
Field(const char*, M S::*) -> Field<S, M>;

template <typename S, typename Fields>
Json structToJson(const S& value, const Fields& fields) {
    Json out = Json::object();
    std::apply([&](const auto&... field) { ((out[field.name] = toJson(value.*field.member)), ...); },
               fields);
    return out;
}

template <typename S, typename Fields>
void structFromJson(const Json& in, S& out, const Fields& fields) {
    if (!in.is_object()) {
        throw ArgumentError("expected a " + HalTypeName<S>::get() + " object, got " +
                            describeValue(in));
    }
    for (const auto& item : in.items()) {
        bool known = std::apply(
                [&](const auto&... field) { return ((item.key() == field.name) || ...); }, fields);
        if (!known) throw ArgumentError("unknown field \"" + item.key() + "\"");
    }
    S result{};
    std::apply(
            [&](const auto&... field) {
                auto read = [&](const auto& f) {
                    auto found = in.find(f.name);
                    if (found == in.end()) {
                        throw ArgumentError("missing field \"" + std::string(f.name) + "\"");
                    }
                    try {
                        fromJson(*found, result.*f.member);
                    } catch (const ArgumentError& error) {
                        throw ArgumentError("field \"" + std::string(f.name) +
                                            "\": " + error.what());
                    }
                };
                (read(field), ...);
            },
            fields);
    out = std::move(result);
}

// The fields of each struct, in the order of types.hal.
const auto kProductInfoFields = std::make_tuple(
        Field{"text01", &hal::ProductInfo::text01}, Field{"modelId", &hal::ProductInfo::modelId},
        Field{"text03", &hal::ProductInfo::text03}, Field{"text04", &hal::ProductInfo::text04},
        Field{"text05", &hal::ProductInfo::text05}, Field{"text06", &hal::ProductInfo::text06},
        Field{"text07", &hal::ProductInfo::text07}, Field{"text08", &hal::ProductInfo::text08},
        Field{"text09", &hal::ProductInfo::text09}, Field{"text10", &hal::ProductInfo::text10},
        Field{"text11", &hal::ProductInfo::text11}, Field{"text12", &hal::ProductInfo::text12},
        Field{"text13", &hal::ProductInfo::text13}, Field{"text14", &hal::ProductInfo::text14},
        Field{"text15", &hal::ProductInfo::text15}, Field{"text16", &hal::ProductInfo::text16},
        Field{"text17", &hal::ProductInfo::text17}, Field{"text18", &hal::ProductInfo::text18},
        Field{"text19", &hal::ProductInfo::text19}, Field{"text20", &hal::ProductInfo::text20},
        Field{"text21", &hal::ProductInfo::text21}, Field{"flag1", &hal::ProductInfo::flag1},
        Field{"flag2", &hal::ProductInfo::flag2}, Field{"flag3", &hal::ProductInfo::flag3},
        Field{"useDHCP", &hal::ProductInfo::useDHCP});

const auto kWatchDogCfgFields =
        std::make_tuple(Field{"wdtDevice", &hal::WatchDogCfg::wdtDevice},
                        Field{"wdt_timeout", &hal::WatchDogCfg::wdt_timeout},
                        Field{"wdt_interval", &hal::WatchDogCfg::wdt_interval});

const auto kProcessInfoFields = std::make_tuple(
        Field{"name1", &hal::ProcessInfo::name1}, Field{"name2", &hal::ProcessInfo::name2},
        Field{"name3", &hal::ProcessInfo::name3}, Field{"block", &hal::ProcessInfo::block},
        Field{"value64", &hal::ProcessInfo::value64},
        Field{"valueReal", &hal::ProcessInfo::valueReal},
        Field{"value32", &hal::ProcessInfo::value32});

const auto kUsbListFields =
        std::make_tuple(Field{"vid", &hal::UsbList::vid}, Field{"pid", &hal::UsbList::pid});

const auto kCpuStatusFields = std::make_tuple(
        Field{"usr", &hal::CpuStatus::usr}, Field{"nic", &hal::CpuStatus::nic},
        Field{"sys", &hal::CpuStatus::sys}, Field{"idle", &hal::CpuStatus::idle},
        Field{"iowait", &hal::CpuStatus::iowait}, Field{"irq", &hal::CpuStatus::irq},
        Field{"softirq", &hal::CpuStatus::softirq},
        Field{"temperature", &hal::CpuStatus::temperature});

const auto kVeskLogInfoFields = std::make_tuple(
        Field{"level", &hal::VeskLogInfo::level}, Field{"base", &hal::VeskLogInfo::base},
        Field{"mode", &hal::VeskLogInfo::mode}, Field{"total_size", &hal::VeskLogInfo::total_size},
        Field{"once_size", &hal::VeskLogInfo::once_size});

const auto kVeskEffeResolutionFields =
        std::make_tuple(Field{"width", &hal::VeskEffeResolution::width},
                        Field{"height", &hal::VeskEffeResolution::height},
                        Field{"fps", &hal::VeskEffeResolution::fps},
                        Field{"status", &hal::VeskEffeResolution::status});

const auto kMessageParcelFields = std::make_tuple(Field{"what", &hal::MessageParcel::what},
                                                  Field{"message", &hal::MessageParcel::message},
                                                  Field{"payload", &hal::MessageParcel::payload});

// Whether a word is meant as JSON rather than as a bare string.
bool looksLikeJson(const std::string& word) {
    if (word == "true" || word == "false" || word == "null") return true;
    if (word.empty()) return false;
    char first = word[0];
    return first == '{' || first == '[' || first == '"' || first == '-' ||
           (first >= '0' && first <= '9');
}

// The deepest nesting of arrays and objects in JSON text, brackets inside strings not counted.
// Stops counting once past `limit`.
size_t nestingDepth(const std::string& text, size_t limit) {
    size_t depth = 0;
    size_t deepest = 0;
    bool inString = false;
    for (size_t i = 0; i < text.size() && deepest <= limit; ++i) {
        char c = text[i];
        if (inString) {
            if (c == '\\') {
                ++i;
            } else if (c == '"') {
                inString = false;
            }
        } else if (c == '"') {
            inString = true;
        } else if (c == '[' || c == '{') {
            deepest = std::max(deepest, ++depth);
        } else if ((c == ']' || c == '}') && depth > 0) {
            --depth;
        }
    }
    return deepest;
}

}  // namespace

Json readArgumentWord(const std::string& word) {
    if (!looksLikeJson(word)) return word;
    // Deeper values are no value of the interface, and their printing would recurse as deep.
    if (nestingDepth(word, kMaxNesting) > kMaxNesting) {
        throw ArgumentError("JSON nested deeper than " + std::to_string(kMaxNesting) + " levels");
    }
    // Repeated keys would silently drop a value: they are refused.
    std::vector<std::set<std::string>> openObjects;
    std::string repeatedKey;
    Json::parser_callback_t noteKeys = [&](int, Json::parse_event_t event, Json& parsed) {
        if (event == Json::parse_event_t::object_start) {
            openObjects.emplace_back();
        } else if (event == Json::parse_event_t::object_end) {
            openObjects.pop_back();
        } else if (event == Json::parse_event_t::key && !openObjects.empty()) {
            const std::string& key = parsed.get_ref<const std::string&>();
            if (!openObjects.back().insert(key).second && repeatedKey.empty()) repeatedKey = key;
        }
        return true;
    };
    Json value;
    try {
        // Only objects can repeat keys; the plain parser is several times faster.
        value = word.find('{') == std::string::npos ? Json::parse(word)
                                                    : Json::parse(word, noteKeys);
    } catch (const Json::parse_error& error) {
        // The parser counts the bytes it read, the one it stopped at included.
        std::string where = error.byte > word.size()
                                    ? "it ends before its value does"
                                    : "'" + word.substr(error.byte - 1, 1) + "' at character " +
                                              std::to_string(error.byte) + " is not expected there";
        throw UnreadableJson(describeValue(Json(word)) + ", which is not JSON: " + where);
    } catch (const Json::out_of_range&) {
        // Well-formed, but a number past a double's range ("1e400").
        throw UnreadableJson(describeValue(Json(word)) + ", which holds a number past any range");
    }
    if (!repeatedKey.empty()) throw ArgumentError("repeated field \"" + repeatedKey + "\"");
    return value;
}

std::string dumpJson(const Json& value) {
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string describeValue(const Json& value) {
    std::string text = dumpJson(value);
    if (text.size() > kDescribedLength) text = text.substr(0, kDescribedLength - 3) + "...";
    return text;
}

std::string formatFloat(float value) {
    char buffer[64];
    auto result = std::to_chars(buffer, buffer + sizeof(buffer), value);
    return std::string(buffer, result.ptr);
}

Json toJson(bool value) {
    return value;
}

Json toJson(float value) {
    if (!std::isfinite(value)) return nullptr;
    // The double nearest to the float's shortest decimal prints as that decimal again.
    return std::strtod(formatFloat(value).c_str(), nullptr);
}

Json toJson(double value) {
    if (!std::isfinite(value)) return nullptr;
    return value;
}

Json toJson(const hidl_string& value) {
    return std::string(value.c_str(), value.size());
}

Json toJson(const hal::ProductInfo& value) {
    return structToJson(value, kProductInfoFields);
}
Json toJson(const hal::WatchDogCfg& value) {
    return structToJson(value, kWatchDogCfgFields);
}
Json toJson(const hal::ProcessInfo& value) {
    return structToJson(value, kProcessInfoFields);
}
Json toJson(const hal::UsbList& value) {
    return structToJson(value, kUsbListFields);
}
Json toJson(const hal::CpuStatus& value) {
    return structToJson(value, kCpuStatusFields);
}
Json toJson(const hal::VeskLogInfo& value) {
    return structToJson(value, kVeskLogInfoFields);
}
Json toJson(const hal::VeskEffeResolution& value) {
    return structToJson(value, kVeskEffeResolutionFields);
}
Json toJson(const hal::MessageParcel& value) {
    return structToJson(value, kMessageParcelFields);
}

void fromJson(const Json& in, bool& out) {
    if (!in.is_boolean()) throw ArgumentError("expected true or false, got " + describeValue(in));
    out = in.get<bool>();
}

void fromJson(const Json& in, float& out) {
    if (!in.is_number()) throw ArgumentError("expected a number, got " + describeValue(in));
    double value = in.get<double>();
    // Beyond FLT_MAX by less than half a unit in the last place still rounds to FLT_MAX.
    constexpr double kLimit = 340282356779733661637539395458142568448.0;  // 2^128 - 2^103
    constexpr double kFloatMax = std::numeric_limits<float>::max();
    if (!(std::fabs(value) < kLimit)) {
        throw ArgumentError("expected a float, got " + describeValue(in) + " (out of range)");
    }
    if (value > kFloatMax) value = kFloatMax;
    if (value < -kFloatMax) value = -kFloatMax;
    out = static_cast<float>(value);
}

void fromJson(const Json& in, double& out) {
    if (!in.is_number()) throw ArgumentError("expected a number, got " + describeValue(in));
    out = in.get<double>();
}

void fromJson(const Json& in, hidl_string& out) {
    if (!in.is_string()) throw ArgumentError("expected a string, got " + describeValue(in));
    const std::string& text = in.get_ref<const std::string&>();
    out = hidl_string(text.data(), text.size());
}

void fromJson(const Json& in, hal::ProductInfo& out) {
    structFromJson(in, out, kProductInfoFields);
}
void fromJson(const Json& in, hal::WatchDogCfg& out) {
    structFromJson(in, out, kWatchDogCfgFields);
}
void fromJson(const Json& in, hal::ProcessInfo& out) {
    structFromJson(in, out, kProcessInfoFields);
}
void fromJson(const Json& in, hal::UsbList& out) {
    structFromJson(in, out, kUsbListFields);
}
void fromJson(const Json& in, hal::CpuStatus& out) {
    structFromJson(in, out, kCpuStatusFields);
}
void fromJson(const Json& in, hal::VeskLogInfo& out) {
    structFromJson(in, out, kVeskLogInfoFields);
}
void fromJson(const Json& in, hal::VeskEffeResolution& out) {
    structFromJson(in, out, kVeskEffeResolutionFields);
}
void fromJson(const Json& in, hal::MessageParcel& out) {
    structFromJson(in, out, kMessageParcelFields);
}

void fromJson(const Json& in, ::android::sp<hal::IVeskDeviceCallback>& out) {
    if (in.is_null()) {
        out = nullptr;
    } else if (in == "callback") {
        out = new LocalDeviceCallback();
    } else {
        throw ArgumentError("expected null or \"callback\", got " + describeValue(in));
    }
}

std::string describeForm(Form<bool>) {
    return "true or false";
}
std::string describeForm(Form<float>) {
    return "a number (float)";
}
std::string describeForm(Form<double>) {
    return "a number (double)";
}
std::string describeForm(Form<hidl_string>) {
    return "a string (a word, or JSON in double quotes)";
}
std::string describeForm(Form<::android::sp<hal::IVeskDeviceCallback>>) {
    return "null or \"callback\"";
}

namespace {

template <typename S, typename Fields>
std::string structForm(const Fields& fields) {
    std::string names;
    std::apply(
            [&](const auto&... field) {
                ((names += (names.empty() ? "" : ", ") + std::string(field.name)), ...);
            },
            fields);
    return "a " + HalTypeName<S>::get() + " object with the fields " + names;
}

}  // namespace

std::string describeForm(Form<hal::ProductInfo>) {
    return structForm<hal::ProductInfo>(kProductInfoFields);
}
std::string describeForm(Form<hal::WatchDogCfg>) {
    return structForm<hal::WatchDogCfg>(kWatchDogCfgFields);
}
std::string describeForm(Form<hal::ProcessInfo>) {
    return structForm<hal::ProcessInfo>(kProcessInfoFields);
}
std::string describeForm(Form<hal::UsbList>) {
    return structForm<hal::UsbList>(kUsbListFields);
}
std::string describeForm(Form<hal::CpuStatus>) {
    return structForm<hal::CpuStatus>(kCpuStatusFields);
}
std::string describeForm(Form<hal::VeskLogInfo>) {
    return structForm<hal::VeskLogInfo>(kVeskLogInfoFields);
}
std::string describeForm(Form<hal::VeskEffeResolution>) {
    return structForm<hal::VeskEffeResolution>(kVeskEffeResolutionFields);
}
std::string describeForm(Form<hal::MessageParcel>) {
    return structForm<hal::MessageParcel>(kMessageParcelFields);
}

namespace detail {

std::string integerForm(const std::string& type, long long min, unsigned long long max) {
    return "an integer from " + std::to_string(min) + " to " + std::to_string(max) + " (" + type +
           ")";
}

void throwNotInteger(const std::string& type, long long min, unsigned long long max,
                     const Json& in) {
    std::string expected = "expected " + integerForm(type, min, max) + ", got " + describeValue(in);
    if (in.is_number_integer()) {
        throw ArgumentError(expected + " (out of range)");
    }
    if (in.is_number_float()) {
        // Integers too large for 64 bits are read as floating point. The limits of an integer
        // type are compared as min and max + 1, powers of two (or 0) that a double holds
        // exactly; max itself may not be (2^64 - 1 rounds to 2^64, and long double is no
        // wider than double on 32-bit ARM).
        const double value = in.get<double>();
        if (std::trunc(value) != value) throw ArgumentError(expected + " (not an integer)");
        const double end = static_cast<double>(max / 2 + 1) * 2;
        if (value < static_cast<double>(min) || value >= end) {
            throw ArgumentError(expected + " (out of range)");
        }
        throw ArgumentError(expected + " (written with a fraction or an exponent)");
    }
    throw ArgumentError(expected);
}

void throwNotArray(const Json& in) {
    throw ArgumentError("expected an array, got " + describeValue(in));
}

void rethrowAtIndex(size_t index, const ArgumentError& error) {
    throw ArgumentError("element " + std::to_string(index) + ": " + error.what());
}

}  // namespace detail

}  // namespace veskdm
