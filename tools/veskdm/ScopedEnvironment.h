/*
 * Environment variables that one veskdm run sets for the simulated board and for the programs
 * it starts, put back as they were when the run ends.
 */
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace veskdm {

class ScopedEnvironment {
  public:
    explicit ScopedEnvironment(const std::vector<std::string>& names);
    ~ScopedEnvironment();
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

  private:
    std::vector<std::pair<std::string, std::optional<std::string>>> mSaved;
};

}  // namespace veskdm
