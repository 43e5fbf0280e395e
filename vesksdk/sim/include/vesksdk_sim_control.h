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
// Arguments in C order: integers as numbers (unsigned char and signed char by value), a float
// as the exact value of the double it converts to (59.94f is 59.939998626708984), a string as
// a string, an input buffer as the array of the bytes the board reads (the RTC times as their
// 256 words), an output buffer and a null pointer as null. A float result is written likewise.
// The calls kept since startJournal(): {"function":...,"args":[...],"return":...} each.
std::vector<nlohmann::json> journal();
// The calls of one function, in order.
std::vector<nlohmann::json> journalOf(const std::string& function);
void clearJournal();
// Journals nothing from now on: no calls kept in memory, the journal file (the one named by
// $VESK_BOARD_JOURNAL included) closed.
void stopJournal();
// Appends every later call to `path` as well (what $VESK_BOARD_JOURNAL does), replacing the
// file named before. Returns false, with the reason in `error`, when it cannot be opened.
bool setJournalFile(const std::string& path, std::string* error = nullptr);

// $VESK_BOARD_JOURNAL and $VESK_BOARD_SCRIPT are read at the first board call or the first call
// of this header, whichever comes first; a file named there that cannot be opened or holds a
// malformed script is reported on stderr and aborts the process.

// Replaces the script (the $VESK_BOARD_SCRIPT file included): an object keyed by function
// name; an object value applies to every call, a list one entry per call, in order, after which
// the simulator's own behaviour resumes. Returns false, and changes nothing, for a malformed
// script, with the reason in `error`.
// An entry {"return": R, "out": ...} answers for the board: its own behaviour is skipped (no
// state changes) and only "out" is written to the caller's buffer. An entry without "return"
// lets the board act as usual and then lays "out" over what it wrote. "out" is hex bytes
// copied to the start of the output buffer, never past its capacity (a hex text longer than a
// fixed-size record is refused); for bi_get_process_info_by_name it is an object with the
// members name1, name2, name3, block (hex, at most 16 bytes), value64, valueReal and value32,
// which fills the whole record (absent members give "" or 0; the strings live as long as the
// process). "return" is an int, or any number for the two float functions.
bool setScript(const nlohmann::json& script, std::string* error = nullptr);
void clearScript();
// `bytes` as the hex text of an "out" (two lower-case digits a byte).
std::string scriptHex(const std::string& bytes);
// Reads a script file and installs it as setScript() does. Returns false, and changes nothing,
// for an unreadable file, malformed JSON or a malformed script, with the reason in `error`.
bool loadScriptFile(const std::string& path, std::string* error = nullptr);

}  // namespace vesk::sim

namespace vesk::sim {

// Starts a program (argv[0] found through $PATH, standard files on /dev/null) as the board
// would start a service, and records it in the board's state: bi_kill_process_num kills only
// processes started so (or by `veskdm board start`), from any process on the same root. The
// pid, or -1. The caller reaps the child.
int startProcess(const std::vector<std::string>& argv);

}  // namespace vesk::sim
