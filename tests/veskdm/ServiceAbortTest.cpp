// Inputs on which the service ends its process, as it does on a board (where init then
// restarts it): veskdm says so in one line, status 1, and a shell stops there. Run as the built
// program on the real implementation library and the simulated board.
#include <dirent.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "RunVeskdm.h"

namespace veskdm::test {
namespace {

using nlohmann::json;
using ::testing::ElementsAre;

constexpr char kVectorAbort[] =
        "veskdm: the service aborted: hidl_vec can't hold more than 2^32 elements.";
constexpr char kLogRecordAbort[] = "veskdm: the service aborted: buffer overflow detected";

// A log configuration whose once_size has one character more than its 8-byte field can take.
const char kNineCharacterOnceSize[] =
        R"({"level": "D", "base": "/data/log", "mode": "ring", "total_size": "64M",)"
        R"( "once_size": "123456789"})";

class ServiceAbortTest : public ::testing::Test {
  protected:
    ServiceAbortTest() { veskdm.environment = {"VESK_IMPL_LIB=", "VESK_BOARD_SCRIPT="}; }

    Outcome run(std::vector<std::string> args, const std::string& input = "") {
        args.insert(args.begin(), {"--board-journal", journalFile, "--log", logFile});
        return veskdm.run(args, input);
    }

    std::vector<std::string> journalFunctions() const {
        std::vector<std::string> names;
        for (const std::string& line : splitLines(vesk::test::readFile(journalFile))) {
            names.push_back(json::parse(line).at("function"));
        }
        return names;
    }

    // The log lines of the given priority the runs recorded.
    std::vector<std::string> loggedMessages(int priority) const {
        std::vector<std::string> messages;
        for (const std::string& line : splitLines(vesk::test::readFile(logFile))) {
            json entry = json::parse(line);
            if (entry.at("priority") == priority) messages.push_back(entry.at("message"));
        }
        return messages;
    }

    // The names in the directory the runs started in (their working directory): no core file.
    static std::vector<std::string> workingDirectory() {
        std::vector<std::string> names;
        DIR* dir = opendir(".");
        while (dir != nullptr) {
            dirent* entry = readdir(dir);
            if (entry == nullptr) break;
            names.push_back(entry->d_name);
        }
        if (dir != nullptr) closedir(dir);
        std::sort(names.begin(), names.end());
        return names;
    }

    vesk::test::TempRoot root;
    std::string journalFile = root.path() + "/journal.jsonl";
    std::string logFile = root.path() + "/log.jsonl";
    VeskdmRunner veskdm{root};
};

TEST_F(ServiceAbortTest, ReadSpiFpgaOfANegativeSize) {
    std::vector<std::string> before = workingDirectory();
    Outcome outcome = run({"call", "readSpiFpga", "-1"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errLines(), ElementsAre(kVectorAbort));
    EXPECT_EQ(outcome.out, "");
    // The service's own fatal line is in the run's log.
    EXPECT_THAT(loggedMessages(7), ElementsAre("hidl_vec can't hold more than 2^32 elements."));
    EXPECT_THAT(journalFunctions(), ElementsAre("bi_init_product_config"));
    EXPECT_EQ(before, workingDirectory());
}

TEST_F(ServiceAbortTest, LogConfigurationPastTheRecord) {
    Outcome outcome = run({"call", "setVeskLogConfigure", kNineCharacterOnceSize});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errLines(), ElementsAre(kLogRecordAbort));
    EXPECT_EQ(outcome.out, "");
    // The copy ends the process before the board is called.
    EXPECT_THAT(journalFunctions(), ElementsAre("bi_init_product_config"));
}

// The shell answers the lines before, names the line that ended the service and runs no more.
TEST_F(ServiceAbortTest, ShellStopsAtTheLineThatEndedTheService) {
    Outcome outcome = run({"shell"},
                          "setSysLedState 1\n"
                          "readSpiFpga -1\n"
                          "getSysLedState\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errLines(),
                ElementsAre("veskdm: line 2: the service aborted: hidl_vec can't hold more than "
                            "2^32 elements."));
    EXPECT_THAT(outcome.outLines(),
                ElementsAre(R"({"method":"setSysLedState","return":0,"callbacks":[]})"));
    EXPECT_THAT(journalFunctions(), ElementsAre("bi_init_product_config", "bi_sysled_set_state"));

    Outcome log = run({"shell"}, std::string("getSysLedState\nsetVeskLogConfigure ") +
                                         kNineCharacterOnceSize + "\nsetSysLedState 0\n");
    EXPECT_EQ(log.status, 1);
    EXPECT_THAT(log.errLines(),
                ElementsAre("veskdm: line 2: the service aborted: buffer overflow detected"));
    EXPECT_THAT(log.outLines(),
                ElementsAre(R"({"method":"getSysLedState","return":1,"callbacks":[]})"));
}

// The next run starts a service of its own, as init restarts it on a board.
TEST_F(ServiceAbortTest, TheNextRunHasAServiceAgain) {
    ASSERT_EQ(run({"call", "readSpiFpga", "-1"}).status, 1);
    Outcome outcome = run({"call", "readSpiFpga", "2"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
}

}  // namespace
}  // namespace veskdm::test
