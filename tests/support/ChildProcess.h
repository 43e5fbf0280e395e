/*
 * Running part of a test in a child process, the one fork helper of the tests: a child to wait
 * for with a deadline, to kill at any moment, and to learn how it ended; another client on the
 * same device root (its int result comes back); or a child bounded by a file-size limit, as a
 * power cut would stop its writes (its log lines come back).
 */
#pragma once

#include <stddef.h>
#include <sys/types.h>

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

#include "vesk/host/LogSink.h"

namespace vesk::test {

// How a child ended.
struct ChildEnd {
    bool exited = false;  // it returned or called exit: `code` holds the status
    int code = -1;
    int signal = 0;         // the signal that ended it, if one did
    bool timedOut = false;  // it still ran at the deadline and was killed
};

// A child process running `body` (its result is the exit status), started at once. A child still
// running when the object goes is killed and reaped.
class Child {
  public:
    explicit Child(const std::function<int()>& body);
    ~Child();
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    pid_t pid() const { return mPid; }
    // Sends SIGKILL (no effect on a child already waited for).
    void kill();
    // Waits for the end, at most `deadline`; past it the child is killed (timedOut).
    ChildEnd wait(std::chrono::milliseconds deadline = std::chrono::seconds(60));
    // True once the child has ended (without waiting for it); wait() then tells how.
    bool ended();

  private:
    pid_t mPid = -1;
    bool mEnded = false;
    ChildEnd mEnd;
};

// Runs `body` in a child: its exit status, or -1 when it did not end within `deadline` (it is
// killed then) or ended by a signal.
int exitStatusInChild(const std::function<int()>& body,
                      std::chrono::milliseconds deadline = std::chrono::seconds(5));

// A child process that runs `action` while this one goes on.
class OtherProcess {
  public:
    explicit OtherProcess(const std::function<int()>& action);
    // Waits for the child: its action's result (INT_MIN if the child died).
    int result();

  private:
    int mFd = -1;
    std::unique_ptr<Child> mChild;
};

// Forks, runs `action` in the child and returns its int result (INT_MIN if the child died).
int inOtherProcess(const std::function<int()>& action);

struct ChildOutcome {
    bool exited = false;  // the child ran `body` to its end
    int result = 0;       // what `body` returned
    std::vector<vesk::host::LogLine> log;
};

// Runs `body` in a child whose writes stop at byte `limit` of any file (RLIMIT_FSIZE; the
// write that crosses it is cut short, later ones fail), as a power cut would stop them.
ChildOutcome runWithFileSizeLimit(size_t limit, const std::function<int()>& body);

}  // namespace vesk::test
