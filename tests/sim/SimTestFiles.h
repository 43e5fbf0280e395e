// Temporary files for the simulator's tests.
#pragma once

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "BuiltProgram.h"

namespace vesk::test {

// A path in the test's temporary directory, unique to this process; removed by the caller.
std::string temporaryPath(const std::string& name);
std::vector<std::string> readLines(const std::string& path);

// The board's state file of the current root, as JSON (empty object when missing).
nlohmann::json stateFile();

// While it lives, EXPECT_EXIT and EXPECT_DEATH run their statement in a new run of this test
// program ("threadsafe" death tests), a process where the simulator has not yet read
// $VESK_BOARD_JOURNAL and $VESK_BOARD_SCRIPT, whatever the tests before did; the statement sets
// them and makes the first board call. The style before is put back afterwards.
class FreshProcessStyle {
  public:
    FreshProcessStyle() : mPrevious(GTEST_FLAG_GET(death_test_style)) {
        GTEST_FLAG_SET(death_test_style, "threadsafe");
        // The new run is an exec of this program: in a cross build, an exec of its emulator.
        std::vector<std::string> argv = ::testing::internal::GetArgvs();
        std::vector<std::string> start = builtProgramArgv(argv.front());
        if (start.size() > 1) {
            start.insert(start.end(), argv.begin() + 1, argv.end());
            ::testing::internal::SetInjectableArgvs(start);
            mInjected = true;
        }
    }
    ~FreshProcessStyle() {
        if (mInjected) ::testing::internal::ClearInjectableArgvs();
        GTEST_FLAG_SET(death_test_style, mPrevious);
    }
    FreshProcessStyle(const FreshProcessStyle&) = delete;
    FreshProcessStyle& operator=(const FreshProcessStyle&) = delete;

  private:
    std::string mPrevious;
    bool mInjected = false;
};

}  // namespace vesk::test
