/*
 * Fuzzing support: each fuzzer process works on a fresh device root of its own (in memory when
 * /dev/shm is there, so that the environment's synchronous writes stay cheap). Log lines are
 * formatted and then discarded.
 */
#pragma once

#include <string>

namespace vesk::fuzz {

// Creates the root once per process, makes it the device root and discards the log; the root
// is removed when the process exits. Returns its path.
const std::string& freshRoot();

}  // namespace vesk::fuzz
