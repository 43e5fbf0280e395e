/*
 * The service facade: a byte stream read as a board script (results, counts and buffer
 * contents for any board function) and a short sequence of interface calls with arbitrary
 * arguments, made through veskdm's method table on one service object over the simulated
 * board. Only the inputs that end the process by design are left out: a negative readSpiFpga
 * size, a negative resolution-list count from the board, a setVeskLogConfigure field longer
 * than the room left in the board's record, and an empty callback (the table never passes
 * one). Sizes that make the service allocate are kept to 64 KiB (the simulator writes every byte a
 * board function reads to its journal), and serial read timeouts to a few milliseconds, so that an
 * input stays quick; the shell is a recorder.
 */
#include <cutils/properties.h>
#include <fuzzer/FuzzedDataProvider.h>
#include <stdint.h>
#include <vesksdk_records.h>
#include <vesksdk_sim_control.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include "FuzzRoot.h"
#include "MethodTable.h"
#include "VeskDeviceManager.h"
#include "vesk/host/Seams.h"

namespace {

using veskdm::Json;

// The board functions, from the board library's header.
const char* const kBoardFunctions[] = {
#include "BoardFunctionNames.inc"
};

constexpr uint32_t kMaxAllocation = 1 << 16;
constexpr uint32_t kMaxTimeoutMs = 3;

int gShellStatus = 0;

template <typename T>
Json integer(FuzzedDataProvider& in) {
    // Small values and the ends of the range come up far more often than chance gives them.
    switch (in.ConsumeIntegralInRange<int>(0, 3)) {
        case 0:
            return static_cast<T>(in.ConsumeIntegralInRange<int>(-2, 16));
        case 1:
            return in.ConsumeBool() ? std::numeric_limits<T>::min() : std::numeric_limits<T>::max();
        default:
            return in.ConsumeIntegral<T>();
    }
}

Json boardResult(FuzzedDataProvider& in) {
    Json entry = Json::object();
    if (in.ConsumeIntegralInRange<int>(0, 3) != 0) entry["return"] = integer<int32_t>(in);
    if (in.ConsumeBool()) entry["out"] = vesk::sim::scriptHex(in.ConsumeRandomLengthString(2100));
    return entry;
}

// Null when the script would end the process by design.
Json scriptFrom(FuzzedDataProvider& in) {
    Json script = Json::object();
    int functions = in.ConsumeIntegralInRange<int>(0, 4);
    for (int i = 0; i < functions; ++i) {
        std::string name =
                kBoardFunctions[in.ConsumeIntegralInRange<size_t>(0, std::size(kBoardFunctions) - 1)];
        Json value;
        if (in.ConsumeBool()) {
            value = boardResult(in);
        } else {
            value = Json::array();
            int entries = in.ConsumeIntegralInRange<int>(1, 3);
            for (int e = 0; e < entries; ++e) value.push_back(boardResult(in));
        }
        if (name == "bi_resolution_get_parameters_list") {
            for (const Json& entry : value.is_array() ? value : Json::array({value})) {
                if (entry.contains("return") && entry["return"].get<int64_t>() < 0) return nullptr;
            }
        }
        script[name] = value;
    }
    return script;
}

std::string stringWord(const std::string& text) {
    // A bare word is the string it spells unless it looks like JSON; then it is written as a
    // JSON string (bytes that are not UTF-8 become U+FFFD there).
    bool bare = !text.empty() && text.find_first_of("{[\"-0123456789") != 0 && text != "true" &&
                text != "false" && text != "null";
    return bare ? text : veskdm::dumpJson(Json(text));
}

bool isAllocationSize(const std::string& parameter) {
    return parameter.find(" length") != std::string::npos ||
           parameter.find(" data_size") != std::string::npos ||
           parameter.find(" size") != std::string::npos;
}

// The word for one parameter ("uint32_t data_size"); empty when the call must be left out.
bool wordFor(FuzzedDataProvider& in, const std::string& parameter, std::string& word) {
    std::string type = parameter.substr(0, parameter.find(' '));
    Json value;
    if (isAllocationSize(parameter)) {
        uint32_t size = in.ConsumeIntegralInRange<uint32_t>(0, kMaxAllocation);
        value = in.ConsumeBool() ? size : size & 0x3ff;
    } else if (parameter.find(" timeout_ms") != std::string::npos) {
        value = in.ConsumeIntegralInRange<uint32_t>(0, kMaxTimeoutMs);
    } else if (type == "bool") {
        value = in.ConsumeBool();
    } else if (type == "int8_t") {
        value = integer<int8_t>(in);
    } else if (type == "uint8_t") {
        value = integer<uint8_t>(in);
    } else if (type == "int16_t") {
        value = integer<int16_t>(in);
    } else if (type == "uint16_t") {
        value = integer<uint16_t>(in);
    } else if (type == "int32_t") {
        value = integer<int32_t>(in);
    } else if (type == "uint32_t") {
        value = integer<uint32_t>(in);
    } else if (type == "int64_t") {
        value = integer<int64_t>(in);
    } else if (type == "uint64_t") {
        value = integer<uint64_t>(in);
    } else if (type == "float") {
        float f = in.ConsumeFloatingPoint<float>();
        value = std::isfinite(f) ? f : 0.0f;
    } else if (type == "string") {
        word = stringWord(in.ConsumeRandomLengthString(300));
        return true;
    } else if (type == "IVeskDeviceCallback") {
        value = in.ConsumeIntegralInRange<int>(0, 7) == 0 ? Json("callback") : Json(nullptr);
    } else if (type == "vec<uint8_t>" || type == "vec<uint32_t>") {
        value = Json::array();
        size_t count = in.ConsumeIntegralInRange<size_t>(0, 600);
        for (size_t i = 0; i < count && in.remaining_bytes() > 0; ++i) {
            value.push_back(type == "vec<uint8_t>" ? in.ConsumeIntegral<uint8_t>()
                                                   : in.ConsumeIntegral<uint32_t>());
        }
    } else if (type == "VeskLogInfo") {
        static const std::pair<const char*, size_t> kFields[] = {
                {"level", offsetof(vesk_log_record, level)},
                {"base", offsetof(vesk_log_record, base)},
                {"mode", offsetof(vesk_log_record, mode)},
                {"total_size", offsetof(vesk_log_record, total_size)},
                {"once_size", offsetof(vesk_log_record, once_size)}};
        value = Json::object();
        for (const auto& [name, offset] : kFields) {
            // As the service receives it: bytes that are not UTF-8 arrive as U+FFFD.
            std::string text = Json::parse(veskdm::dumpJson(Json(in.ConsumeRandomLengthString(250))))
                                       .get<std::string>();
            // Longer than the room left in the record: the checked copy ends the process.
            if (text.size() > sizeof(vesk_log_record) - offset) return false;
            value[name] = text;
        }
        word = veskdm::dumpJson(value);
        return true;
    } else {
        __builtin_trap();  // a parameter type this fuzzer does not know yet
    }
    word = veskdm::dumpJson(value);
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    static bool ready = [] {
        vesk::fuzz::freshRoot();
        vesk::host::setShellRecorder([](const std::string&) { return gShellStatus; });
        return true;
    }();
    static_cast<void>(ready);
    static ::android::sp<veskdm::IVeskDeviceManager> service =
            vesk::hardware::veskdevicemanager::implementation::HIDL_FETCH_IVeskDeviceManager(
                    "default");
    static const char* level = "E";

    FuzzedDataProvider in(bytes, size);
    static const char* const kLevels[] = {"E", "W", "I", "D"};
    const char* wanted = kLevels[in.ConsumeIntegralInRange<int>(0, 3)];
    if (wanted != level) {
        property_set("persist.vesk.device.log.level", wanted);
        level = wanted;
    }
    gShellStatus = integer<int32_t>(in).get<int>();
    Json script = scriptFrom(in);
    if (script.is_null()) return -1;
    vesk::sim::clearScript();
    vesk::sim::setScript(script);

    const std::vector<veskdm::MethodBinder>& table = veskdm::methodTable();
    int calls = in.ConsumeIntegralInRange<int>(1, 8);
    for (int c = 0; c < calls && in.remaining_bytes() > 0; ++c) {
        const veskdm::MethodBinder& method =
                table[in.ConsumeIntegralInRange<size_t>(0, table.size() - 1)];
        std::vector<std::string> words{method.name};
        bool callable = true;
        for (const std::string& parameter : method.parameters) {
            std::string word;
            if (!wordFor(in, parameter, word)) {
                callable = false;
                break;
            }
            words.push_back(word);
        }
        if (!callable) continue;
        veskdm::BoundCall call;
        try {
            call = veskdm::bindCall(words);
        } catch (const veskdm::ArgumentError&) {
            __builtin_trap();  // every word above is within its parameter's type
        }
        veskdm::Json outcome = veskdm::runCall(call, *service);
        veskdm::dumpJson(outcome);
    }
    vesk::sim::clearScript();
    return 0;
}
