#include "SimTestFiles.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <memory>

#include "TestRoot.h"

namespace vesk::test {
namespace {

// The board keeps its state in the device root: every test process of the simulator gets a
// fresh root of its own, never the user's.
class FreshRoot : public ::testing::Environment {
  public:
    void SetUp() override { mRoot = std::make_unique<TempRoot>(); }
    void TearDown() override { mRoot.reset(); }

  private:
    std::unique_ptr<TempRoot> mRoot;
};

::testing::Environment* const kFreshRoot = ::testing::AddGlobalTestEnvironment(new FreshRoot);

}  // namespace

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
