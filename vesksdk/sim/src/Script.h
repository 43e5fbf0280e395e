/*
 * Scripted results: per board function, one entry for every call or a list of entries used
 * one per call, after which the simulator's own behaviour resumes.
 */
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <mutex>
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

class Script {
  public:
    static Script& instance();

    // Checks and installs `script`; on failure keeps the current one and explains in `error`.
    bool set(const nlohmann::json& script, std::string* error);
    bool loadFile(const std::string& path, std::string* error);
    void clear();

    // The entry for this call of `function`, if the script has one left.
    std::optional<ScriptEntry> next(const std::string& function);

  private:
    struct FunctionScript {
        bool everyCall = false;
        std::vector<ScriptEntry> entries;
        std::size_t used = 0;
    };

    std::mutex mMutex;
    std::map<std::string, FunctionScript> mFunctions;
};

}  // namespace vesk::sim
