// veskdm's device root and log: a named root or device that is missing is one line and makes
// nothing; stderr shows warnings and errors only, -v every line, --log records every line; a
// run leaves the process's environment and log sink as it found them.
#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

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

TEST_F(MissingRootTest, VeskRootNamingAMissingDirectory) {
    EnvironmentScope named({{"VESK_ROOT", root.path() + "/missing"}});
    Outcome outcome = runInProcess({"prop", "set", "a", "b"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "veskdm: no device root at " + root.path() + "/missing\n");
    expectNothingMade();
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
    EXPECT_EQ(outcome.err,
              "veskdm: cannot read the boot loader's environment from " + missing + "\n");
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
    // A partition too short to hold a copy: the library logs errors and finds no variable.
    std::string image = root.path() + "/short.img";
    vesk::test::writeFile(image, std::string(1000, '\0'));
    Outcome outcome = veskdm.run({"--log", logFile, "env", "print", "--device", image});
    EXPECT_EQ(outcome.status, 0);
    size_t warnings = 0;
    for (const nlohmann::json& line : logLines()) warnings += line["priority"] >= ANDROID_LOG_WARN;
    ASSERT_GT(warnings, 0u);
    std::vector<std::string> shown = outcome.errLines();
    EXPECT_EQ(shown.size(), warnings);
    for (const std::string& line : shown) EXPECT_THAT(line, HasSubstr(" E Ubootenv: "));
}

TEST_F(LogTest, AFailureIsOneLineEvenWhenErrorsWereLogged) {
    std::string image = root.path() + "/garbage.img";
    vesk::test::writeFile(image, std::string(128 * 1024, '\x5a'));
    Outcome outcome = veskdm.run({"--log", logFile, "env", "print", "--device", image});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errLines(),
                ElementsAre("veskdm: cannot read the boot loader's environment from " + image));
    size_t errors = 0;
    for (const nlohmann::json& line : logLines()) errors += line["priority"] >= ANDROID_LOG_ERROR;
    EXPECT_GT(errors, 0u);  // recorded, not shown
    // With -v they are shown as they come.
    Outcome verbose = veskdm.run({"-v", "env", "print", "--device", image});
    EXPECT_GT(verbose.errLines().size(), 1u);
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
