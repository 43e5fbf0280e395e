// veskdm's device root and log: a named root or device that is missing is one line and makes
// nothing; stderr shows warnings and errors only, -v every line, --log records every line; a
// run leaves the process's environment and log sink as it found them.
#include <android/log.h>
#include <errno.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "InProcessRunner.h"

namespace veskdm::test {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;

bool exists(const std::string& path) {
    struct stat st;
    return lstat(path.c_str(), &st) == 0;
}

// A home of its own, without $VESK_ROOT or $XDG_STATE_HOME: the default root would be
// HOME/.local/state/veskdm/root.
class MissingRootTest : public vesk::test::RootTest {
  protected:
    MissingRootTest()
        : home(root.path() + "/home"),
          defaultRoot(home + "/.local/state/veskdm/root"),
          environment({{"HOME", home},
                       {"XDG_STATE_HOME", ""},
                       {"VESK_ROOT", ""},
                       {"VESK_IMPL_LIB", ""},
                       {"VESK_BOARD_JOURNAL", ""},
                       {"VESK_BOARD_SCRIPT", ""}}) {
        mkdir(home.c_str(), 0755);
    }
    void expectNothingMade() {
        EXPECT_FALSE(exists(home + "/.local"));
        EXPECT_FALSE(exists(root.path() + "/missing"));
    }
    std::string home;
    std::string defaultRoot;
    EnvironmentScope environment;
};

TEST_F(MissingRootTest, RootOptionNamingAMissingDirectory) {
    for (const char* command : {"prop", "env", "board"}) {
        std::vector<std::string> args = {"--root", root.path() + "/missing", command, "show"};
        if (std::string(command) == "prop")
            args = {"--root", root.path() + "/missing", "prop", "set", "a", "b"};
        if (std::string(command) == "env")
            args = {"--root", root.path() + "/missing", "env", "set", "a", "b"};
        Outcome outcome = runInProcess(args);
        EXPECT_EQ(outcome.status, 2) << command;
        EXPECT_EQ(outcome.err, "veskdm: --root: no such directory " + root.path() + "/missing\n");
        EXPECT_EQ(outcome.out, "");
    }
    expectNothingMade();
}

// A root named by $VESK_ROOT is bad input as one named by --root: status 2 for every command.
TEST_F(MissingRootTest, VeskRootNamingAMissingDirectory) {
    EnvironmentScope named({{"VESK_ROOT", root.path() + "/missing"}});
    for (const std::vector<std::string>& args : {std::vector<std::string>{"prop", "set", "a", "b"},
                                                 {"prop", "get", "a"},
                                                 {"env", "print"},
                                                 {"call", "getSysLedState"},
                                                 {"board", "show"},
                                                 {"debug"}}) {
        Outcome outcome = runInProcess(args);
        EXPECT_EQ(outcome.status, 2) << args[0];
        EXPECT_EQ(outcome.err,
                  "veskdm: $VESK_ROOT: no such directory " + root.path() + "/missing\n");
        EXPECT_EQ(outcome.out, "");
    }
    expectNothingMade();
}

TEST_F(MissingRootTest, VeskRootNamingAFile) {
    std::string file = root.path() + "/file";
    vesk::test::writeFile(file, "not a directory\n");
    EnvironmentScope named({{"VESK_ROOT", file}});
    Outcome outcome = runInProcess({"prop", "list"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err, "veskdm: $VESK_ROOT: " + file + " is not a directory\n");
}

TEST_F(MissingRootTest, ReadingAPropertyMakesNoRoot) {
    for (const char* command : {"get", "list"}) {
        std::vector<std::string> args = {"prop", command};
        if (std::string(command) == "get") args.push_back("persist.vesk.x");
        Outcome outcome = runInProcess(args);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.err, "veskdm: no device root at " + defaultRoot + "\n");
        EXPECT_EQ(outcome.out, "");
    }
    expectNothingMade();
}

TEST_F(MissingRootTest, AMissingDeviceMakesNoRoot) {
    std::string missing = root.path() + "/missing/env.img";
    Outcome outcome = runInProcess({"env", "print", "--device", missing});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "veskdm: cannot read the boot loader's environment from " + missing +
                                   ": No such file or directory\n");
    expectNothingMade();
}

TEST_F(MissingRootTest, CommandsWithoutARootMakeNone) {
    EXPECT_EQ(runInProcess({"timing", "640", "480"}).status, 0);
    EXPECT_EQ(runInProcess({"methods"}).status, 0);
    EXPECT_EQ(runInProcess({"call", "noSuchMethod"}).status, 2);
    expectNothingMade();
}

TEST_F(MissingRootTest, TheDefaultRootIsMadeByACommandThatWritesIt) {
    Outcome outcome = runInProcess({"prop", "set", "persist.vesk.x", "1"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_TRUE(exists(defaultRoot + "/dev/block/env"));
}

// $XDG_STATE_HOME is a file, so the default root below it cannot be made: every command that
// works in a root says so in one line, status 1, and nothing is made.
TEST_F(MissingRootTest, ADefaultRootThatCannotBeMadeIsOneLine) {
    std::string stateHome = root.path() + "/state";
    vesk::test::writeFile(stateHome, "a file\n");
    EnvironmentScope state({{"XDG_STATE_HOME", stateHome}});
    std::string defaultHere = stateHome + "/veskdm/root";
    std::string cannotMake =
            "veskdm: cannot make the device root " + defaultHere + ": " + strerror(ENOTDIR) + "\n";
    std::string noRoot = "veskdm: no device root at " + defaultHere + "\n";
    const std::pair<std::vector<std::string>, std::string> kCommands[] = {
            {{"call", "getSysLedState"}, cannotMake},
            {{"shell"}, cannotMake},
            {{"prop", "set", "persist.vesk.x", "1"}, cannotMake},
            {{"env", "set", "hdmimode", "720p60hz"}, cannotMake},
            {{"board", "set", "vendor", "x"}, cannotMake},
            {{"board", "start", "true"}, cannotMake},
            {{"prop", "get", "persist.vesk.x"}, noRoot},
            {{"prop", "list"}, noRoot},
            {{"env", "print"}, noRoot},
            {{"env", "get", "hdmimode"}, noRoot},
            {{"board", "show"}, noRoot},
            {{"debug"}, noRoot},
    };
    for (const auto& [args, line] : kCommands) {
        Outcome outcome = runInProcess(args, "getSysLedState\n");
        EXPECT_EQ(outcome.status, 1) << args[0] << " " << args.size();
        EXPECT_EQ(outcome.err, line) << args[0];
        EXPECT_EQ(outcome.out, "") << args[0];
    }
    EXPECT_EQ("a file\n", vesk::test::readFile(stateHome));
    expectNothingMade();
}

// ---- the log ----

class LogTest : public vesk::test::RootTest {
  protected:
    std::string logFile = root.path() + "/log.jsonl";
    InProcessRunner veskdm{root};

    std::vector<nlohmann::json> logLines() const {
        std::vector<nlohmann::json> lines;
        for (const std::string& line : splitLines(vesk::test::readFile(logFile))) {
            lines.push_back(nlohmann::json::parse(line));
        }
        return lines;
    }
};

TEST_F(LogTest, QuietByDefaultLogFileRecordsEveryLine) {
    Outcome outcome = veskdm.run({"--log", logFile, "env", "get", "hdmimode"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "1080p60hz\n");
    EXPECT_EQ(outcome.err, "");  // loading logs information lines only
    std::vector<nlohmann::json> lines = logLines();
    ASSERT_FALSE(lines.empty());
    for (const nlohmann::json& line : lines) {
        EXPECT_EQ(line["priority"], ANDROID_LOG_INFO);
        EXPECT_EQ(line["tag"], "Ubootenv");
    }
}

TEST_F(LogTest, VerboseShowsEveryLineAsTheLogFileHasIt) {
    Outcome outcome = veskdm.run({"-v", "--log", logFile, "env", "get", "hdmimode"});
    EXPECT_EQ(outcome.status, 0);
    std::vector<nlohmann::json> lines = logLines();
    std::vector<std::string> shown = outcome.errLines();
    ASSERT_EQ(shown.size(), lines.size());
    ASSERT_FALSE(shown.empty());
    for (size_t i = 0; i < shown.size(); ++i) {
        std::string message = lines[i]["message"];
        if (!message.empty() && message.back() == '\n') message.pop_back();
        EXPECT_THAT(shown[i], EndsWith(" I Ubootenv: " + message));
    }
}

TEST_F(LogTest, WarningsOfASuccessAreShownAfterIt) {
    // At level W the calculator warns about a width outside whole 8-pixel cells.
    vesk::test::setProperty("persist.vesk.device.log.level", "W");
    Outcome outcome = veskdm.run({"--log", logFile, "timing", "1366", "768", "--format", "json"});
    EXPECT_EQ(outcome.status, 0);
    size_t warnings = 0;
    for (const nlohmann::json& line : logLines()) warnings += line["priority"] >= ANDROID_LOG_WARN;
    ASSERT_EQ(warnings, 1u);
    std::vector<std::string> shown = outcome.errLines();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_THAT(shown[0], HasSubstr(" W vesk_system_VideoTimingCalculator: WARNING! Aspect Ratio"));
}

TEST_F(LogTest, AFailureIsOneLineEvenWhenErrorsWereLogged) {
    // The partition is a FIFO, which the store refuses: five tries, each logging errors.
    std::string fifo = root.path() + "/dev/block/env";
    unlink(fifo.c_str());
    ASSERT_EQ(0, mkfifo(fifo.c_str(), 0644));
    Outcome outcome = veskdm.run({"--log", logFile, "env", "print"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errLines(),
                ElementsAre("veskdm: cannot read the boot loader's environment from "
                            "/dev/block/env: not a regular file, a block device or an MTD device"));
    size_t errors = 0;
    for (const nlohmann::json& line : logLines()) errors += line["priority"] >= ANDROID_LOG_ERROR;
    EXPECT_EQ(errors, 11u);  // recorded, not shown: five tries of two lines, and the failure
    // With -v they are shown as they come.
    Outcome verbose = veskdm.run({"-v", "env", "print"});
    EXPECT_EQ(verbose.errLines().size(), 13u);  // one information line, the errors, the failure
}

TEST_F(LogTest, ARunPutsBackTheSinkAndTheEnvironment) {
    EnvironmentScope environment({{"VESK_BOARD_JOURNAL", ""}, {"VESK_BOARD_SCRIPT", ""}});
    std::string journal = root.path() + "/journal.jsonl";
    Outcome outcome = veskdm.run({"--board-journal", journal, "-v", "env", "get", "hdmimode"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(getenv("VESK_BOARD_JOURNAL"), nullptr);
    EXPECT_STREQ(getenv("VESK_ROOT"), root.path().c_str());
    // The capture of the test fixture is in place again.
    vesk::host::clearCapturedLog();
    __android_log_print(ANDROID_LOG_INFO, "RootAndLogTest", "after the run");
    EXPECT_THAT(
            vesk::test::capturedLogWithTag("RootAndLogTest"),
            ElementsAre(vesk::host::LogLine{ANDROID_LOG_INFO, "RootAndLogTest", "after the run"}));
}

}  // namespace
}  // namespace veskdm::test
