/*
 * Fuzzing support: each fuzzer process works on a fresh device root of its own (in memory when
 * /dev/shm is there, so that the environment's synchronous writes stay cheap), with the log
 * kept in memory and dropped after every input.
 */
#pragma once

#include <string>

namespace vesk::fuzz {

// Creates the root once per process, makes it the device root and captures the log; the root
// is removed when the process exits. Returns its path.
const std::string& freshRoot();

// Forgets the log lines of the last input.
void dropLog();

}  // namespace vesk::fuzz
