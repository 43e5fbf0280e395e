// Commands that only read (prop get, prop list, env print, env get, board show, debug, methods,
// timing) leave the device root as they found it: an empty root stays empty, a made one keeps
// every file byte for byte. Run as the built program on the real implementation library.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <map>

#include "RunVeskdm.h"
#include "TreeSnapshot.h"

namespace veskdm::test {
namespace {

const std::vector<std::vector<std::string>> kReadingCommands = {
        {"prop", "get", "persist.vesk.device.log.level"},
        {"prop", "list"},
        {"env", "print"},
        {"env", "get", "hdmimode"},
        {"board", "show"},
        {"debug"},
        {"methods"},
        {"timing", "1920", "1080"},
};

class ReadOnlyCommandsTest : public ::testing::Test {
  protected:
    ReadOnlyCommandsTest() {
        veskdm.environment = {"VESK_IMPL_LIB=", "VESK_BOARD_SCRIPT=", "VESK_BOARD_JOURNAL="};
        mkdir(rootPath.c_str(), 0755);
        mkdir(workDir.c_str(), 0755);
    }

    Outcome run(const std::vector<std::string>& args) { return veskdm.run(args); }

    vesk::test::TempRoot files;  // holds the empty root and the runs' own files
    std::string rootPath = files.path() + "/empty-root";
    std::string workDir = files.path() + "/runs";
    VeskdmRunner veskdm{rootPath, workDir};
};

TEST_F(ReadOnlyCommandsTest, AnEmptyRootStaysEmpty) {
    for (const std::vector<std::string>& args : kReadingCommands) {
        run(args);
        EXPECT_EQ(treeSnapshot(rootPath), (std::map<std::string, std::string>{}))
                << args[0] << " " << args[1];
    }
    // What they show of an empty root: unset properties and the board's factory description.
    EXPECT_EQ(run({"prop", "get", "persist.vesk.x"}).out, "\n");
    EXPECT_EQ(run({"prop", "list"}).out, "");
    EXPECT_THAT(run({"board", "show"}).outLines(), ::testing::Contains("model_id=8470"));
    Outcome env = run({"env", "print"});
    EXPECT_EQ(env.status, 1);
    EXPECT_EQ(env.err,
              "veskdm: no boot loader's environment in the device root: it has none of "
              "/dev/nand_env, /dev/block/env, /dev/block/by-name/env, "
              "/dev/block/by-name/ubootenv\n");
    Outcome debug = run({"debug", "env"});
    EXPECT_EQ(debug.status, 0) << debug.err;
    EXPECT_THAT(debug.outLines(), ::testing::ElementsAre("[env]", "device: (none found)"));
}

TEST_F(ReadOnlyCommandsTest, AMadeRootKeepsEveryFile) {
    ASSERT_EQ(run({"prop", "set", "persist.vesk.device.log.level", "D"}).status, 0);
    ASSERT_EQ(run({"call", "setSysLedState", "1"}).status, 0);
    std::map<std::string, std::string> before = treeSnapshot(rootPath);
    for (const std::vector<std::string>& args : kReadingCommands) {
        Outcome outcome = run(args);
        EXPECT_EQ(outcome.status, 0) << args[0] << ": " << outcome.err;
        EXPECT_EQ(before, treeSnapshot(rootPath)) << args[0] << " " << args[1];
    }
}

}  // namespace
}  // namespace veskdm::test
