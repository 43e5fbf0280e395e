// The control header, and the one-time reading of the simulator's environment variables.
#include <cstdio>
#include <cstdlib>
#include <mutex>

#include "Journal.h"
#include "Script.h"
#include "SimCall.h"
#include "vesksdk_sim_control.h"

namespace vesk::sim {
namespace {

// A simulator set up wrongly must not run on with results nobody asked for.
[[noreturn]] void refuse(const char* variable, const std::string& reason) {
    fprintf(stderr, "vesksdk: %s: %s\n", variable, reason.c_str());
    abort();
}

std::string environment(const char* name) {
    const char* value = getenv(name);
    return value ? value : "";
}

}  // namespace

void ensureStarted() {
    static std::once_flag once;
    std::call_once(once, [] {
        std::string error;
        std::string journal = environment("VESK_BOARD_JOURNAL");
        if (!journal.empty() && !Journal::instance().openFile(journal, &error)) {
            refuse("VESK_BOARD_JOURNAL", error);
        }
        std::string script = environment("VESK_BOARD_SCRIPT");
        if (!script.empty() && !Script::instance().loadFile(script, &error)) {
            refuse("VESK_BOARD_SCRIPT", error);
        }
    });
}

void startJournal() {
    ensureStarted();
    Journal::instance().startMemory();
}

std::vector<nlohmann::json> journal() {
    ensureStarted();
    return Journal::instance().memory();
}

std::vector<nlohmann::json> journalOf(const std::string& function) {
    std::vector<nlohmann::json> calls;
    for (nlohmann::json& call : journal()) {
        if (call["function"] == function) calls.push_back(std::move(call));
    }
    return calls;
}

void clearJournal() {
    ensureStarted();
    Journal::instance().clearMemory();
}

void stopJournal() {
    ensureStarted();
    Journal::instance().stop();
}

bool setJournalFile(const std::string& path, std::string* error) {
    ensureStarted();
    return Journal::instance().openFile(path, error);
}

bool setScript(const nlohmann::json& script, std::string* error) {
    ensureStarted();
    return Script::instance().set(script, error);
}

void clearScript() {
    ensureStarted();
    Script::instance().clear();
}

bool loadScriptFile(const std::string& path, std::string* error) {
    ensureStarted();
    return Script::instance().loadFile(path, error);
}

}  // namespace vesk::sim
