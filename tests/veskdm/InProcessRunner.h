/*
 * Runs veskdm's commands in this process (Veskdm.h) on string streams, with a fresh device root,
 * and collects what they printed; the environment it sets for a run is put back after it.
 */
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "RunVeskdm.h"
#include "TestRoot.h"

namespace veskdm::test {

// Sets environment variables (an empty value unsets) until it goes out of scope.
class EnvironmentScope {
  public:
    explicit EnvironmentScope(const std::vector<std::pair<std::string, std::string>>& variables);
    ~EnvironmentScope();
    EnvironmentScope(const EnvironmentScope&) = delete;
    EnvironmentScope& operator=(const EnvironmentScope&) = delete;

  private:
    std::vector<std::pair<std::string, std::pair<bool, std::string>>> mSaved;
};

// veskdm ARGS... < input, in this process, with the root as the process's environment names it
// ($VESK_ROOT, $XDG_STATE_HOME, $HOME).
Outcome runInProcess(const std::vector<std::string>& args, const std::string& input = "");

class InProcessRunner {
  public:
    explicit InProcessRunner(const vesk::test::TempRoot& root) : mRoot(root.path()) {}

    // Set for each run and put back after it, as NAME, VALUE (an empty value unsets).
    std::vector<std::pair<std::string, std::string>> environment;

    // veskdm --root ROOT ARGS... < input
    Outcome run(const std::vector<std::string>& args, const std::string& input = "") const;

    const std::string& rootPath() const { return mRoot; }

  private:
    std::string mRoot;
};

}  // namespace veskdm::test
