/*
 * Processes started through the simulated board. bi_kill_process_num kills only these, from
 * any process on the same root; the list is kept in the state file with each pid's start time,
 * so that a later process that happens to get the same pid is never taken for one of them.
 */
#pragma once

#include <string>
#include <vector>

namespace vesk::sim {

// Starts `argv` (argv[0] found through $PATH) with /dev/null as its standard files, and records
// it. The pid, or -1 with errno saying why (execvp's error when the program could not be run).
// The child is the caller's: it reaps it, or it passes to init when the
// caller ends first.
int startBoardProcess(const std::vector<std::string>& argv);

}  // namespace vesk::sim
