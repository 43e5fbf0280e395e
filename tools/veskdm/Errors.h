/*
 * How a veskdm command reports failure; runVeskdm() turns each into one line on stderr and
 * the exit status.
 */
#pragma once

#include <functional>
#include <ostream>
#include <stdexcept>

namespace veskdm {

// Bad input (unknown names, wrong arguments, unreadable JSON): status 2; nothing has been
// changed.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// A command failed on valid input (for example an unreadable device): status 1.
class CommandError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// The command has already reported its problems (one line each): nothing more is printed and
// the run ends with this status.
class ExitStatus {
  public:
    explicit ExitStatus(int status) : mStatus(status) {}
    int status() const { return mStatus; }

  private:
    int mStatus;
};

// Runs `body` and returns the run's exit status: 0, or that of the failure it threw, whose one
// line ("veskdm: ...") goes to `err`.
int statusOf(const std::function<void()>& body, std::ostream& err);

}  // namespace veskdm
