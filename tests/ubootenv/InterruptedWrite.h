/*
 * write() of the code linked into the test program goes through this wrapper (the program is
 * linked with --wrap=write), so that a test can make a copy's write fail, or end the process
 * with SIGKILL in the middle of a save, as a crash or a power cut would.
 */
#pragma once

#include <stddef.h>
#include <sys/types.h>

namespace vesk::test {

// Every later write that starts at byte `offset` of its file fails with EIO (-1 disarms).
void failWritesAt(off_t offset);

// The `index`-th later write (0 for the next) writes its first `bytes` bytes (at most all of
// them), then the process is killed with SIGKILL before the write returns.
void killInWrite(int index, size_t bytes);

}  // namespace vesk::test
