// Runs a board call in a second process on the same device root, as another client would.
#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <string>

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

// The board's state file of the current root, as JSON (empty object when missing).
nlohmann::json stateFile();

}  // namespace vesk::test
