// Temporary files for the simulator's tests.
#pragma once

#include <string>
#include <vector>

namespace vesk::test {

// A path in the test's temporary directory, unique to this process; removed by the caller.
std::string temporaryPath(const std::string& name);
std::vector<std::string> readLines(const std::string& path);

}  // namespace vesk::test
