/*
 * Running part of a test in a child process: to bound its address space (so that an
 * allocation fails for real) or to let a resource limit cut its writes short. The child's log
 * lines come back to the parent.
 */
#pragma once

#include <stddef.h>

#include <functional>
#include <vector>

#include "vesk/host/LogSink.h"

namespace vesk::test {

struct ChildOutcome {
    bool exited = false;  // the child ran `body` to its end
    int result = 0;       // what `body` returned
    std::vector<vesk::host::LogLine> log;
};

// Runs `body` in a child whose address space may grow by `headroom` bytes beyond what it has;
// its log lines are kept in a fixed buffer, so that logging needs no memory.
ChildOutcome runWithMemoryLimit(size_t headroom, const std::function<int()>& body);

// Runs `body` in a child whose writes stop at byte `limit` of any file (RLIMIT_FSIZE; the
// write that crosses it is cut short, later ones fail), as a power cut would stop them.
ChildOutcome runWithFileSizeLimit(size_t limit, const std::function<int()>& body);

}  // namespace vesk::test
