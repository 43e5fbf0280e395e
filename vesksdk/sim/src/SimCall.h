/*
 * One board call: collects its arguments, takes the scripted entry if there is one, runs the
 * simulated board otherwise, applies the scripted "out" and writes the journal line.
 */
#pragma once

#include <cstddef>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <optional>

#include "Script.h"

namespace vesk::sim {

// Reads $VESK_BOARD_JOURNAL and $VESK_BOARD_SCRIPT once per process.
void ensureStarted();

// Journal forms of the arguments that are not plain numbers.
nlohmann::json text(const char* string);
nlohmann::json inputBytes(const void* data, std::size_t count);
nlohmann::json inputWords(const unsigned int* words, std::size_t count);
inline nlohmann::json outputBuffer() {
    return nullptr;
}

class SimCall {
  public:
    SimCall(const char* function, std::initializer_list<nlohmann::json> args);

    // The caller's output buffer, where a scripted "out" goes (never past `capacity`).
    SimCall& out(void* buffer, std::size_t capacity);

    // `simulate` is the board's own behaviour, run unless the script gives the result.
    template <class Simulate>
    int run(Simulate&& simulate) {
        int result = hasScriptedResult() ? static_cast<int>(*mEntry->result) : simulate();
        finish(result);
        return result;
    }
    template <class Simulate>
    float runFloat(Simulate&& simulate) {
        float result = hasScriptedResult() ? static_cast<float>(*mEntry->result) : simulate();
        finish(result);
        return result;
    }

  private:
    bool hasScriptedResult();
    void finish(const nlohmann::json& result);

    const char* mFunction;
    nlohmann::json mArgs;
    std::optional<ScriptEntry> mEntry;
    void* mBuffer = nullptr;
    std::size_t mCapacity = 0;
};

}  // namespace vesk::sim
