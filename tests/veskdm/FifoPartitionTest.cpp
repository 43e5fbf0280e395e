// The environment device is a FIFO, without a writer and with one that never writes: no command
// waits on it. The store refuses it on its open-failure path with its own error line; veskdm env
// says it in one line (status 1), debug shows the copies as unreadable and the service's call
// answers as it does for an unreadable environment. Run as the built program with a deadline.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "RunVeskdm.h"

namespace veskdm::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class FifoPartitionTest : public ::testing::TestWithParam<bool> {
  protected:
    FifoPartitionTest() {
        veskdm.environment = {"VESK_IMPL_LIB=", "VESK_BOARD_SCRIPT=", "VESK_BOARD_JOURNAL="};
        veskdm.deadlineSeconds = 60;
        EXPECT_EQ(0, unlink(partition.c_str()));
        EXPECT_EQ(0, mkfifo(partition.c_str(), 0644));
        EXPECT_EQ(0, mkfifo(named.c_str(), 0644));
        if (GetParam()) {
            // Both ends held by the test: a writer that never writes.
            writers[0] = open(partition.c_str(), O_RDWR | O_CLOEXEC);
            writers[1] = open(named.c_str(), O_RDWR | O_CLOEXEC);
            EXPECT_GE(writers[0], 0);
            EXPECT_GE(writers[1], 0);
        }
    }
    ~FifoPartitionTest() override {
        for (int fd : writers) {
            if (fd >= 0) close(fd);
        }
    }

    vesk::test::TempRoot root;
    std::string partition = root / "/dev/block/env";
    std::string named = root.path() + "/env.fifo";
    int writers[2] = {-1, -1};
    VeskdmRunner veskdm{root};
};

TEST_P(FifoPartitionTest, EnvIsOneLine) {
    Outcome print = veskdm.run({"env", "print"});
    EXPECT_EQ(print.status, 1);
    EXPECT_THAT(print.errLines(),
                ElementsAre("veskdm: cannot read the boot loader's environment from "
                            "/dev/block/env: not a regular file, a block device or an MTD device"));
    EXPECT_EQ(print.out, "");
    Outcome device = veskdm.run({"env", "print", "--device", named});
    EXPECT_EQ(device.status, 1);
    EXPECT_THAT(device.errLines(),
                ElementsAre("veskdm: cannot read the boot loader's environment from " + named +
                            ": not a regular file, a block device or an MTD device"));
    Outcome set = veskdm.run({"env", "set", "hdmimode", "720p60hz"});
    EXPECT_EQ(set.status, 1);
    EXPECT_EQ(set.errLines().size(), 1u);
}

// The store's own line, as the service logs it, on the open-failure path.
TEST_P(FifoPartitionTest, DebugShowsTheCopiesUnreadable) {
    Outcome outcome = veskdm.run({"debug", "env"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_THAT(outcome.outLines(),
                ElementsAre("[env]", "device: /dev/block/env", "copy size: 65536",
                            "copy A: unreadable (-1 of 65536 bytes)",
                            "copy B: unreadable (-1 of 65536 bytes)"));
    EXPECT_THAT(outcome.err, HasSubstr(" E Ubootenv: [/Ubootenv.cpp, readPartitionData, "));
    EXPECT_THAT(outcome.err,
                HasSubstr("] [ubootenv] open devices error: " + std::string(strerror(ENOTBLK))));
}

// On model 8470 the service computes the mode and cannot store it: status -2 in its answer.
TEST_P(FifoPartitionTest, TheServiceAnswersWithoutWaiting) {
    Outcome outcome = veskdm.run({"call", "calculateResolutionParameters", "1920", "1080", "60"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out,
              "{\"method\":\"calculateResolutionParameters\",\"return\":null,\"callbacks\":[[{"
              "\"width\":1920,\"height\":1080,\"fps\":59,\"status\":-2}]]}\n");
    EXPECT_THAT(outcome.errLines(), Contains(HasSubstr("] [ubootenv] open devices error: " +
                                                       std::string(strerror(ENOTBLK)))));
}

INSTANTIATE_TEST_SUITE_P(Writer, FifoPartitionTest, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool>& info) {
                             return info.param ? "WithAWriterThatNeverWrites" : "WithoutAWriter";
                         });

}  // namespace
}  // namespace veskdm::test
