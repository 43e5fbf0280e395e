/*
 * The partition's lock as other processes see it: whether someone holds it, and whether a given
 * process is waiting for it (the kernel's table of locks, /proc/locks), so that a test knows a
 * writer is blocked without guessing how long that takes.
 */
#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>

namespace vesk::test {

// True when a flock of another open file (another process's, or another object's) holds `path`
// alone; the probe never waits.
bool heldElsewhere(const std::string& path);

// Waits until process `pid` waits for a flock of `path`: true then, false when it has not within
// `deadline`.
bool waitsForLock(pid_t pid, const std::string& path,
                  std::chrono::milliseconds deadline = std::chrono::seconds(30));

// A one-way signal between two processes, made before the fork: each side closes the end it
// does not use, so that the receiver of a process that died reads the end of the pipe.
class Signal {
  public:
    Signal();
    ~Signal();
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;

    void senderSide();    // in the process that gives the signal
    void receiverSide();  // in the process that waits for it
    void give();
    // True when the signal came; false when the sender is gone without giving it.
    bool await();

  private:
    int mFds[2] = {-1, -1};
};

}  // namespace vesk::test
