/*
 * In-process control of the simulated board, for C++ tests: the call journal and scripted
 * results, the same as VESK_BOARD_JOURNAL and VESK_BOARD_SCRIPT give other processes.
 */
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace vesk::sim {

// Keeps every board call of this process in memory from now on (cleared first), in addition
// to the journal file named by $VESK_BOARD_JOURNAL.
void startJournal();
// The calls kept since startJournal(): {"function":...,"args":[...],"return":...} each.
std::vector<nlohmann::json> journal();
// The calls of one function, in order.
std::vector<nlohmann::json> journalOf(const std::string& function);
void clearJournal();

// Replaces the script (the $VESK_BOARD_SCRIPT file included): an object keyed by function
// name; an object value applies to every call, a list one entry per call, in order, after which
// the simulator's own behaviour resumes. Returns false, and changes nothing, for a malformed
// script, with the reason in `error`.
bool setScript(const nlohmann::json& script, std::string* error = nullptr);
void clearScript();

}  // namespace vesk::sim
