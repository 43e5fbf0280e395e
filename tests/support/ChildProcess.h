/*
 * Running part of a test in a child process: as another client on the same device root (its
 * int result comes back), or bounded, to make an allocation fail for real or let a resource
 * limit cut its writes short (its log lines come back). The one fork helper of the tests.
 */
#pragma once

#include <stddef.h>

#include <functional>
#include <vector>

#include "vesk/host/LogSink.h"

namespace vesk::test {

// A child process that runs `action` while this one goes on.
class OtherProcess {
  public:
    explicit OtherProcess(const std::function<int()>& action);
    // Waits for the child: its action's result (INT_MIN if the child died).
    int result();

  private:
    int mPid = -1;
    int mFd = -1;
};

// Forks, runs `action` in the child and returns its int result (INT_MIN if the child died).
int inOtherProcess(const std::function<int()>& action);

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
