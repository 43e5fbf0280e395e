/*
 * The simulated board's script read and checked: per board function, one entry for every call
 * or a list of entries used one per call. No state: the board library parses what it installs
 * with it, and veskdm checks a script file with it before anything is loaded.
 */
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace vesk::sim {

// The structured "out" of the process record; its strings are kept alive by the script.
struct ProcessOut {
    std::string name1, name2, name3;
    std::array<uint8_t, 16> block{};
    uint64_t value64 = 0;
    double valueReal = 0;
    uint32_t value32 = 0;
};

struct ScriptEntry {
    std::optional<double> result;  // "return"; an integer for the int functions
    std::optional<std::vector<uint8_t>> out;
    std::optional<ProcessOut> process;
};

struct FunctionScript {
    bool everyCall = false;
    std::vector<ScriptEntry> entries;
    std::size_t used = 0;
};

// Reads `script` into `functions`; false, with the reason in `error`, when it is malformed.
bool parseScript(const nlohmann::json& script, std::map<std::string, FunctionScript>& functions,
                 std::string* error);

}  // namespace vesk::sim
