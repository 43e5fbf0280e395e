// A save cut short at any point (every 4096 bytes of both copies, the copy boundaries
// included) leaves a partition that loads complete: the old environment or the new one.
#include <gtest/gtest.h>

#include "ChildProcess.h"
#include "EnvFixture.h"

namespace vesk::test {
namespace {

// 16 values of 4000 characters fill the data area; shortening the first shifts every byte
// after it, so that a copy cut anywhere differs from both the old and the new one.
Variables fullEnvironment(size_t firstLength) {
    Variables variables;
    for (int i = 0; i < 16; ++i) {
        size_t length = i == 0 ? firstLength : 4000;
        variables.emplace_back("var" + std::to_string(i), std::string(length, 'a' + i));
    }
    return variables;
}

class PowerCutTest : public EnvTest, public ::testing::WithParamInterface<size_t> {};

TEST_P(PowerCutTest, LeavesTheOldOrTheNewEnvironmentComplete) {
    const size_t cut = GetParam();
    const Variables before = fullEnvironment(4000);
    const Variables after = fullEnvironment(3999);
    const std::string oldImage = envImage(before);
    const std::string newImage = envImage(after);
    writeDevice(kEnvDevice, oldImage);

    ChildOutcome outcome = runWithFileSizeLimit(cut, [] {
        Ubootenv env;
        return env.updateValue("ubootenv.var.var0", std::string(3999, 'a').c_str());
    });
    ASSERT_TRUE(outcome.exited);
    EnvLogs childLog = parseEnvLog(outcome.log);
    if (cut >= 131072) {
        EXPECT_EQ(0, outcome.result);
        EXPECT_EQ(EnvLog({kInfo, "updateValue",
                          "[ubootenv] Save ubootenv to /dev/block/env succeed!\n"}),
                  childLog.back());
    } else {
        EXPECT_EQ(-3, outcome.result);
        EnvLogs attempt = {{kError, "save", "[ubootenv] SYS_LOGE write, size 65536 \n"},
                           {kError, "updateValue", "[ubootenv] Cannot write /dev/block/env: -3.\n"}};
        ASSERT_GE(childLog.size(), 10u);
        EXPECT_EQ(repeated(attempt, 5), EnvLogs(childLog.end() - 10, childLog.end()));
    }

    // What the cut left: the new bytes up to it, the old ones after it.
    std::string expectedImage = newImage.substr(0, cut) + oldImage.substr(cut);
    ASSERT_EQ(expectedImage, readDevice(kEnvDevice));

    Ubootenv env;
    ASSERT_TRUE(env.initDone);
    if (cut < 65536) {
        EXPECT_EQ(before, attributeList(env));
    } else {
        EXPECT_EQ(after, attributeList(env));
    }
    EnvLogs expected = loadedLog();
    if (cut > 0 && cut < 65536) {
        std::string tornA = expectedImage.substr(0, 65536);
        expected.insert(expected.begin() + 1,
                        {{kError, "readPartitionData",
                          "[ubootenv] CRC Check SYS_LOGE save_crc=" + hex8(storedCrc(tornA, 0)) +
                                  ", crcCalc = " + hex8(crcOf(tornA.substr(4))) + " \n"},
                         {kInfo, "readPartitionData", "first env error, try second....\n"}});
    }
    EXPECT_EQ(expected, takeEnvLog());
}

INSTANTIATE_TEST_SUITE_P(EveryPage, PowerCutTest, ::testing::Range<size_t>(0, 131072 + 1, 4096));

}  // namespace
}  // namespace vesk::test
