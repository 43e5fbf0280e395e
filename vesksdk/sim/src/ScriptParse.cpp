#include "ScriptParse.h"

#include <limits>

#include "BoardFunctions.h"
#include "vesk/sim/ScriptCheck.h"

namespace vesk::sim {
namespace {

using nlohmann::json;

bool fail(std::string* error, const std::string& reason) {
    if (error) *error = reason;
    return false;
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

bool parseHex(const json& value, std::vector<uint8_t>& bytes, const std::string& where,
              std::string* error) {
    if (!value.is_string()) return fail(error, where + " must be a string of hex bytes");
    const std::string& text = value.get_ref<const std::string&>();
    if (text.size() % 2 != 0) return fail(error, where + " has an odd number of hex digits");
    bytes.clear();
    for (std::size_t i = 0; i < text.size(); i += 2) {
        int high = hexDigit(text[i]);
        int low = hexDigit(text[i + 1]);
        if (high < 0 || low < 0) return fail(error, where + " is not hex: \"" + text + "\"");
        bytes.push_back(static_cast<uint8_t>(high << 4 | low));
    }
    return true;
}

bool parseUnsigned(const json& value, uint64_t max, uint64_t& result, const std::string& where,
                   std::string* error) {
    if (!value.is_number_integer() ||
        (value.is_number_integer() && !value.is_number_unsigned() && value.get<int64_t>() < 0)) {
        return fail(error, where + " must be a non-negative integer");
    }
    result = value.get<uint64_t>();
    if (result > max) return fail(error, where + " is out of range");
    return true;
}

bool parseProcessOut(const json& value, ProcessOut& out, const std::string& where,
                     std::string* error) {
    if (!value.is_object()) return fail(error, where + " must be an object");
    for (const auto& [key, member] : value.items()) {
        std::string at = where + "." + key;
        if (key == "name1" || key == "name2" || key == "name3") {
            if (!member.is_string()) return fail(error, at + " must be a string");
            (key == "name1"   ? out.name1
             : key == "name2" ? out.name2
                              : out.name3) = member.get<std::string>();
        } else if (key == "block") {
            std::vector<uint8_t> bytes;
            if (!parseHex(member, bytes, at, error)) return false;
            if (bytes.size() > out.block.size()) return fail(error, at + " is over 16 bytes");
            std::copy(bytes.begin(), bytes.end(), out.block.begin());
        } else if (key == "value64") {
            if (!parseUnsigned(member, std::numeric_limits<uint64_t>::max(), out.value64, at,
                               error)) {
                return false;
            }
        } else if (key == "value32") {
            uint64_t value32 = 0;
            if (!parseUnsigned(member, std::numeric_limits<uint32_t>::max(), value32, at, error)) {
                return false;
            }
            out.value32 = static_cast<uint32_t>(value32);
        } else if (key == "valueReal") {
            if (!member.is_number()) return fail(error, at + " must be a number");
            out.valueReal = member.get<double>();
        } else {
            return fail(error, where + " has an unknown member \"" + key + "\"");
        }
    }
    return true;
}

bool parseEntry(const BoardFunction& function, const json& value, ScriptEntry& entry,
                const std::string& where, std::string* error) {
    if (!value.is_object()) return fail(error, where + " must be an object");
    for (const auto& [key, member] : value.items()) {
        if (key == "return") {
            if (!member.is_number()) return fail(error, where + ".return must be a number");
            double result = member.get<double>();
            if (!function.returnsFloat) {
                if (!member.is_number_integer() || result < std::numeric_limits<int32_t>::min() ||
                    result > std::numeric_limits<int32_t>::max()) {
                    return fail(error, where + ".return must be an int");
                }
                result = static_cast<double>(member.get<int64_t>());
            }
            entry.result = result;
        } else if (key == "out") {
            std::string at = where + ".out";
            if (function.out == OutKind::None) {
                return fail(error, at + ": " + function.name + " has no output buffer");
            }
            if (function.out == OutKind::ProcessRecord) {
                ProcessOut process;
                if (!parseProcessOut(member, process, at, error)) return false;
                entry.process = std::move(process);
            } else {
                std::vector<uint8_t> bytes;
                if (!parseHex(member, bytes, at, error)) return false;
                if (function.capacity != 0 && bytes.size() > function.capacity) {
                    return fail(error, at + " has " + std::to_string(bytes.size()) +
                                               " bytes, more than the buffer's " +
                                               std::to_string(function.capacity));
                }
                entry.out = std::move(bytes);
            }
        } else {
            return fail(error, where + " has an unknown member \"" + key + "\"");
        }
    }
    return true;
}

}  // namespace

bool parseScript(const json& script, std::map<std::string, FunctionScript>& functions,
                 std::string* error) {
    if (!script.is_object()) return fail(error, "the script must be a JSON object");
    functions.clear();
    for (const auto& [name, value] : script.items()) {
        const BoardFunction* function = findBoardFunction(name);
        if (!function) return fail(error, name + ": no such board function");
        FunctionScript& parsed = functions[name];
        if (value.is_object()) {
            parsed.everyCall = true;
            parsed.entries.emplace_back();
            if (!parseEntry(*function, value, parsed.entries.back(), name, error)) return false;
        } else if (value.is_array()) {
            for (std::size_t i = 0; i < value.size(); ++i) {
                parsed.entries.emplace_back();
                std::string where = name + "[" + std::to_string(i) + "]";
                if (!parseEntry(*function, value[i], parsed.entries.back(), where, error)) {
                    return false;
                }
            }
        } else {
            return fail(error, name + " must be an object or a list of objects");
        }
    }
    return true;
}

bool checkScript(const nlohmann::json& script, std::string* error) {
    std::map<std::string, FunctionScript> functions;
    return parseScript(script, functions, error);
}

}  // namespace vesk::sim
