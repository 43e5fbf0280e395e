#include "SimTestFiles.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>

namespace vesk::test {

std::string temporaryPath(const std::string& name) {
    return ::testing::TempDir() + "vesksdk-" + std::to_string(getpid()) + "-" + name;
}

std::vector<std::string> readLines(const std::string& path) {
    std::ifstream file(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    return lines;
}

}  // namespace vesk::test
