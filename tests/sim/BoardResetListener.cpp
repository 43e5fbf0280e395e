// After every test, the simulated board's process-wide state goes back to a fresh process's
// (no script, no journal, every serial channel closed), so that the next test, in any order,
// starts as it would in a process of its own. Nothing is done before a test: a test that runs in
// a fresh process of its own (FreshProcessStyle) must make the first board call itself.
#include <gtest/gtest.h>

#include "BoardReset.h"

namespace vesk::test {
namespace {

class BoardResetListener : public ::testing::EmptyTestEventListener {
    void OnTestEnd(const ::testing::TestInfo&) override { resetSimulatedBoard(); }
};

const bool kRegistered = [] {
    ::testing::UnitTest::GetInstance()->listeners().Append(new BoardResetListener);
    return true;
}();

}  // namespace
}  // namespace vesk::test
