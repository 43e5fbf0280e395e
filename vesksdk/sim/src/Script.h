/*
 * Scripted results: per board function, one entry for every call or a list of entries used
 * one per call, after which the simulator's own behaviour resumes.
 */
#pragma once

#include <map>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "ScriptParse.h"

namespace vesk::sim {

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
    std::mutex mMutex;
    std::map<std::string, FunctionScript> mFunctions;
};

}  // namespace vesk::sim
