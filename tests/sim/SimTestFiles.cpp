#include "SimTestFiles.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <memory>

#include "TestRoot.h"
#include "vesk/host/DeviceRoot.h"

namespace vesk::test {
namespace {

// The board keeps its state in the device root: every test of the simulator gets a fresh root
// of its own, never the user's nor the one of the test before.
class FreshRoot : public ::testing::EmptyTestEventListener {
    void OnTestStart(const ::testing::TestInfo&) override { mRoot = std::make_unique<TempRoot>(); }
    void OnTestEnd(const ::testing::TestInfo&) override { mRoot.reset(); }

    std::unique_ptr<TempRoot> mRoot;
};

const bool kFreshRoot = [] {
    ::testing::UnitTest::GetInstance()->listeners().Append(new FreshRoot);
    return true;
}();

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

nlohmann::json stateFile() {
    std::ifstream in(
            vesk::host::pathBelowRoot(vesk::host::deviceRoot(), "/data/vesksdk/state.json"));
    if (!in) return nlohmann::json::object();
    return nlohmann::json::parse(in);
}

}  // namespace vesk::test
