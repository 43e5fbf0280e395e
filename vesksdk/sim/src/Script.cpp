#include "Script.h"

#include <fstream>

#include "vesksdk_sim_control.h"

namespace vesk::sim {
namespace {

using nlohmann::json;

bool fail(std::string* error, const std::string& reason) {
    if (error) *error = reason;
    return false;
}

}  // namespace

Script& Script::instance() {
    static Script script;
    return script;
}

bool Script::set(const json& script, std::string* error) {
    std::map<std::string, FunctionScript> functions;
    if (!parseScript(script, functions, error)) return false;
    std::lock_guard<std::mutex> lock(mMutex);
    mFunctions = std::move(functions);
    return true;
}

bool Script::loadFile(const std::string& path, std::string* error) {
    std::ifstream file(path);
    if (!file) return fail(error, path + ": cannot be read");
    json script = json::parse(file, nullptr, false);
    if (script.is_discarded()) return fail(error, path + ": not valid JSON");
    std::string reason;
    if (!set(script, &reason)) return fail(error, path + ": " + reason);
    return true;
}

void Script::clear() {
    std::lock_guard<std::mutex> lock(mMutex);
    mFunctions.clear();
}

std::optional<ScriptEntry> Script::next(const std::string& function) {
    std::lock_guard<std::mutex> lock(mMutex);
    auto found = mFunctions.find(function);
    if (found == mFunctions.end()) return std::nullopt;
    FunctionScript& script = found->second;
    if (script.everyCall) return script.entries.front();
    if (script.used >= script.entries.size()) return std::nullopt;
    return script.entries[script.used++];
}

std::string scriptHex(const std::string& bytes) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string hex;
    hex.reserve(2 * bytes.size());
    for (unsigned char c : bytes) {
        hex += kDigits[c >> 4];
        hex += kDigits[c & 15];
    }
    return hex;
}

}  // namespace vesk::sim
