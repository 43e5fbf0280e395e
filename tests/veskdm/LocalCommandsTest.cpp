// veskdm prop, env, timing and board run in-process: output, stderr and status exactly.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdio.h>

#include "EnvImage.h"
#include "InProcessRunner.h"

namespace veskdm::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;

class LocalCommandsTest : public vesk::test::RootTest {
  protected:
    void expectOk(const Outcome& outcome, const std::string& out) {
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        EXPECT_EQ(outcome.err, "");
        EXPECT_EQ(outcome.out, out);
    }
    void expectFailure(const Outcome& outcome, int status, const std::string& line) {
        EXPECT_EQ(outcome.status, status);
        EXPECT_EQ(outcome.err, line + "\n");
        EXPECT_EQ(outcome.out, "");
    }
    InProcessRunner veskdm{root};
};

TEST_F(LocalCommandsTest, PropSetGetList) {
    expectOk(veskdm.run({"prop", "set", "persist.vesk.test", "hello world"}), "");
    expectOk(veskdm.run({"prop", "get", "persist.vesk.test"}), "hello world\n");
    expectOk(veskdm.run({"prop", "get", "persist.vesk.unset"}), "\n");
    Outcome list = veskdm.run({"prop", "list"});
    EXPECT_EQ(list.status, 0);
    EXPECT_THAT(list.outLines(), Contains("persist.vesk.test=hello world"));
}

TEST_F(LocalCommandsTest, PropValueTooLong) {
    // PROPERTY_VALUE_MAX is 92 bytes with the terminating NUL.
    expectFailure(veskdm.run({"prop", "set", "persist.vesk.test", std::string(92, 'x')}), 2,
                  "veskdm: value longer than 91 bytes");
    expectOk(veskdm.run({"prop", "set", "persist.vesk.test", std::string(91, 'x')}), "");
}

TEST_F(LocalCommandsTest, EnvSetThenGet) {
    expectOk(veskdm.run({"env", "get", "hdmimode"}), "1080p60hz\n");
    expectOk(veskdm.run({"env", "set", "hdmimode", "720p60hz"}), "");
    expectOk(veskdm.run({"env", "get", "ubootenv.var.hdmimode"}), "720p60hz\n");
}

TEST_F(LocalCommandsTest, EnvGetUnknownIsOneLineWithoutTheLog) {
    // Loading the partition logs two information lines; they are not shown.
    expectFailure(veskdm.run({"env", "get", "nosuchvar"}), 2, "veskdm: no such variable: nosuchvar");
}

TEST_F(LocalCommandsTest, EnvOnAMissingDeviceIsOneLine) {
    std::string missing = root.path() + "/nonexistent";
    expectFailure(veskdm.run({"env", "print", "--device", missing}), 1,
                  "veskdm: cannot read the boot loader's environment from " + missing +
                          ": No such file or directory");
    expectFailure(veskdm.run({"env", "print", "--device", root.path()}), 1,
                  "veskdm: cannot read the boot loader's environment from " + root.path() +
                          ": it is a directory");
}

TEST_F(LocalCommandsTest, EnvOnAnUnreadableImageIsOneLine) {
    // Both copies fail their CRC: the environment library logs its errors, the run shows one.
    std::string image = root.path() + "/garbage.img";
    vesk::test::writeFile(image, std::string(128 * 1024, '\x5a'));
    char computed[16];
    snprintf(computed, sizeof(computed), "0x%08x", vesk::test::crcOf(std::string(65532, '\x5a')));
    std::string copy = std::string("fails its CRC (stored 0x5a5a5a5a, computed ") + computed + ")";
    expectFailure(veskdm.run({"env", "print", "--device", image}), 1,
                  "veskdm: cannot read the boot loader's environment from " + image +
                          ": no valid copy: copy A " + copy + ", copy B " + copy);
}

TEST_F(LocalCommandsTest, TimingModelineOfCvtReducedBlanking1080p) {
    // cvt -r 1920 1080 60: 138.50 MHz, 1920 1968 2000 2080, 1080 1083 1088 1111.
    expectOk(veskdm.run({"timing", "1920", "1080", "--format", "modeline"}),
             "Modeline \"1920x1080_60\" 138.500 1920 1968 2000 2080 1080 1083 1088 1111 "
             "+hsync -vsync\n");
}

TEST_F(LocalCommandsTest, TimingOptionsStartFromTheirDefaultsInEveryRun) {
    ASSERT_EQ(
            veskdm.run({"timing", "1920", "1080", "75", "--mode", "cvt", "--format", "json"}).status,
            0);
    expectOk(veskdm.run({"timing", "1920", "1080", "--format", "modeline"}),
             "Modeline \"1920x1080_60\" 138.500 1920 1968 2000 2080 1080 1083 1088 1111 "
             "+hsync -vsync\n");
}

TEST_F(LocalCommandsTest, TimingRefusesAZeroWidth) {
    expectFailure(veskdm.run({"timing", "0", "1080"}), 2,
                  "veskdm: timing: width must be a whole number from 1 to 40960, not '0'");
}

TEST_F(LocalCommandsTest, BoardShowAndSet) {
    Outcome show = veskdm.run({"board", "show"});
    EXPECT_EQ(show.status, 0);
    EXPECT_EQ(show.err, "");
    EXPECT_THAT(show.outLines(), Contains("watchdog_open=0"));
    EXPECT_THAT(show.outLines(), Contains("state_file=" + root.path() + "/data/vesksdk/state.json"));
    Outcome bad = veskdm.run({"board", "set", "no_such_key", "1"});
    EXPECT_EQ(bad.status, 2);
    EXPECT_EQ(bad.errLines().size(), 1u);
    EXPECT_EQ(bad.out, "");
}

TEST_F(LocalCommandsTest, HelpGoesToTheRunsOutput) {
    Outcome outcome = veskdm.run({"--help"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(outcome.out, ::testing::HasSubstr("veskdm: the device manager of the board"));
}

// veskdm debug: the service's debug() text as lshal would print it; the sections are checked
// in detail by the service's own tests.
TEST_F(LocalCommandsTest, DebugPrintsTheServicesSections) {
    Outcome all = veskdm.run({"debug"});
    EXPECT_EQ(0, all.status) << all.err;
    EXPECT_THAT(all.outLines(), Contains("[product]"));
    EXPECT_THAT(all.outLines(), Contains("[mode]"));
    EXPECT_THAT(all.outLines(), Contains("[env]"));
    EXPECT_THAT(all.outLines(), Contains("[log]"));
    EXPECT_THAT(all.outLines(), Contains("hdmimode: 1080p60hz"));
    EXPECT_THAT(all.outLines(), Contains("device: /dev/block/env"));
    Outcome env = veskdm.run({"debug", "env"});
    EXPECT_EQ(0, env.status);
    EXPECT_EQ("[env]", env.outLines().at(0));
    EXPECT_THAT(env.outLines(), Not(Contains("[product]")));
}

// The tool knows the sections: an unknown one is its own usage line, and nothing is loaded.
TEST_F(LocalCommandsTest, DebugWithAnUnknownSectionIsBadInput) {
    for (const char* section : {"everything", "nosuch"}) {
        expectFailure(veskdm.run({"debug", "env", section}), 2,
                      std::string("veskdm: debug: unknown section \"") + section +
                              "\"; usage: veskdm debug [product] [mode] [env] [log]");
    }
}

}  // namespace
}  // namespace veskdm::test
