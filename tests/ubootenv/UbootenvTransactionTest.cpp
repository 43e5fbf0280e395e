// Updates as transactions with other processes on the same partition: no update lost, nothing
// written over a partition that was not read, no entry shortened, both copies written, and a
// writer killed at any write leaves an environment the next update keeps whole.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <climits>
#include <map>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "DisplayModeControl.h"
#include "EnvFixture.h"
#include "InterruptedWrite.h"
#include "vesk/host/Seams.h"

namespace vesk::test {
namespace {

constexpr int kWriters = 8;
constexpr int kUpdatesPerWriter = 50;

using UbootenvTransactionTest = EnvTest;

TEST_F(UbootenvTransactionTest, EveryUpdateOfEveryProcessSurvives) {
    std::vector<OtherProcess> children;
    for (int writer = 0; writer < kWriters; ++writer) {
        children.emplace_back(([writer] {
            int failures = 0;
            for (int i = 0; i < kUpdatesPerWriter; ++i) {
                Ubootenv env;  // each update on an object loaded before other processes saved
                std::string name =
                        "ubootenv.var.w" + std::to_string(writer) + "_" + std::to_string(i);
                if (env.updateValue(name.c_str(), std::to_string(writer * 1000 + i).c_str()) != 0) {
                    ++failures;
                }
            }
            return failures == 0 ? 0 : 1;
        }));
    }
    // Beside them, output modes applied as the service applies them (its shell recorded).
    children.emplace_back(([] {
        vesk::host::setShellRecorder([](const std::string&) { return 0; });
        int failures = 0;
        for (uint32_t width : {1920u, 1280u, 1600u, 1920u}) {
            vesk::hardware::veskdevicemanager::implementation::DisplayModeControl control;
            if (control.verify(8470, width, width * 9 / 16, 60) != 1) ++failures;
            if (control.setHDMIOutputMode() != 1) ++failures;
        }
        return failures == 0 ? 0 : 1;
    }));
    for (OtherProcess& child : children) EXPECT_EQ(0, child.result());

    std::string image = readDevice(kEnvDevice);
    EXPECT_TRUE(copyValid(image, 0));
    EXPECT_TRUE(copyValid(image, 65536));
    EXPECT_EQ(image.substr(0, 65536), image.substr(65536, 65536));
    Ubootenv env;
    ASSERT_TRUE(env.initDone);
    std::map<std::string, std::string> values = variablesOf(env);
    int missing = 0;
    for (int writer = 0; writer < kWriters; ++writer) {
        for (int i = 0; i < kUpdatesPerWriter; ++i) {
            std::string key = "w" + std::to_string(writer) + "_" + std::to_string(i);
            if (values[key] != std::to_string(writer * 1000 + i)) ++missing;
        }
    }
    EXPECT_EQ(0, missing);
    for (const auto& [key, value] : factoryVariables()) {
        if (key == "hdmimode" || key == "custom_mode" || key == "is.bestmode") continue;
        EXPECT_EQ(value, values[key]) << key;
    }
    EXPECT_EQ("999p60hz", values["hdmimode"]);  // the output mode's own variables, last write
}

TEST_F(UbootenvTransactionTest, AnUpdateMadeElsewhereSinceTheLoadIsKept) {
    Ubootenv mine;
    {
        Ubootenv other;
        ASSERT_EQ(0, other.updateValue("ubootenv.var.theirs", "1"));
    }
    ASSERT_EQ(0, mine.updateValue("ubootenv.var.mine", "2"));
    std::map<std::string, std::string> values = variablesOf(mine);
    EXPECT_EQ("1", values["theirs"]);
    EXPECT_EQ("2", values["mine"]);
    Ubootenv reread;
    EXPECT_EQ(values, variablesOf(reread));
}

TEST_F(UbootenvTransactionTest, ForOneVariableTheLastSaveWins) {
    Ubootenv first;
    Ubootenv second;
    ASSERT_EQ(0, first.updateValue("ubootenv.var.hdmimode", "720p60hz"));
    ASSERT_EQ(0, second.updateValue("ubootenv.var.hdmimode", "2160p60hz"));
    // The first object's change was saved: it is not replayed over the later one.
    ASSERT_EQ(0, first.updateValue("ubootenv.var.other", "x"));
    Ubootenv reread;
    EXPECT_EQ("2160p60hz", variablesOf(reread)["hdmimode"]);
    EXPECT_EQ("x", variablesOf(reread)["other"]);
}

TEST_F(UbootenvTransactionTest, NothingIsWrittenOverAPartitionThatCouldNotBeRead) {
    Ubootenv env;
    ASSERT_TRUE(env.initDone);
    // Both copies damaged for a moment: the reload fails, the object keeps initDone.
    std::string good = readDevice(kEnvDevice);
    std::string damaged = good;
    damaged[10] ^= 0x20;
    damaged[65536 + 10] ^= 0x20;
    writeDevice(kEnvDevice, damaged);
    env.reInit();
    takeEnvLog();
    EXPECT_EQ(-1, env.updateValue("ubootenv.var.hdmimode", "720p60hz"));
    // The update rereads the partition under its lock, reports the bad copies as a load does,
    // and refuses with one line of its own.
    auto crcLine = [&](const char* format, size_t offset) {
        return std::string("[ubootenv] ") + format +
               " SYS_LOGE save_crc=" + hex8(storedCrc(damaged, offset)) +
               ", crcCalc = " + hex8(crcOf(damaged.substr(offset + 4, 65532))) + " \n";
    };
    EXPECT_EQ(
            (EnvLogs{{kInfo, "updateValue",
                      "[ubootenv] update value name [ubootenv.var.hdmimode]: value [720p60hz] \n"},
                     {kError, "readPartitionData", crcLine("CRC Check", 0)},
                     {kInfo, "readPartitionData", "first env error, try second....\n"},
                     {kError, "readPartitionData", crcLine("CRC2 Check", 65536)},
                     {kError, "updateValue",
                      "[ubootenv] /dev/block/env could not be read: not writing over it\n"}}),
            takeEnvLog());
    EXPECT_EQ(damaged, readDevice(kEnvDevice));

    // Once the partition reads again, the update goes on top of everything on it.
    writeDevice(kEnvDevice, good);
    EXPECT_EQ(0, env.updateValue("ubootenv.var.hdmimode", "720p60hz"));
    Ubootenv reread;
    std::map<std::string, std::string> values = variablesOf(reread);
    for (const auto& [key, value] : factoryVariables()) {
        if (key != "hdmimode") {
            EXPECT_EQ(value, values[key]) << key;
        }
    }
    EXPECT_EQ("720p60hz", values["hdmimode"]);
}

TEST_F(UbootenvTransactionTest, AnErasedPartitionIsWrittenAfresh) {
    Ubootenv env;
    ASSERT_TRUE(env.initDone);
    writeDevice(kEnvDevice, std::string(131072, '\xff'));
    EXPECT_EQ(0, env.updateValue("ubootenv.var.hdmimode", "720p60hz"));
    std::string image = readDevice(kEnvDevice);
    EXPECT_TRUE(copyValid(image, 0));
    EXPECT_TRUE(copyValid(image, 65536));
}

TEST_F(UbootenvTransactionTest, AValueLongerThanANodeIsSavedWhole) {
    std::string longValue(5000, 'v');
    longValue[4999] = 'E';  // the end, which a shortened copy would lose
    writeDevice(kEnvDevice, envImage({{"a", "1"}, {"big", longValue}, {"b", "2"}}));
    Ubootenv env;
    ASSERT_TRUE(env.initDone);
    ASSERT_EQ(0, env.updateValue("ubootenv.var.c", "3"));

    // U-Boot's own reader, one copy at a time.
    std::string device = hostPath(kEnvDevice);
    for (const char* offset : {"0x0", "0x10000"}) {
        std::string config = hostPath("/data/copy.config");
        writeFile(config, device + " " + offset + " 0x10000\n");
        int status = -1;
        std::string printed = runCommand("fw_printenv -c '" + config + "' big 2>&1", &status);
        EXPECT_EQ(0, status) << offset;
        EXPECT_EQ("big=" + longValue + "\n", printed) << offset;
        EXPECT_EQ("c=3\n", runCommand("fw_printenv -c '" + config + "' c 2>&1", &status));
    }
}

TEST_F(UbootenvTransactionTest, AKeyLongerThanANodeIsSavedWholeAndNamesNoOtherKey) {
    std::string longKey(300, 'k');
    writeDevice(kEnvDevice, envImage({{longKey, "v"}, {"b", "2"}}));
    Ubootenv env;
    // The first 255 characters are no key of the partition: a new variable is appended.
    std::string cut = "ubootenv.var." + longKey.substr(0, 255);
    ASSERT_EQ(0, env.updateValue(cut.c_str(), "new"));
    std::string image = readDevice(kEnvDevice);
    EXPECT_EQ(dataArea(envStrings({{longKey, "v"}, {"b", "2"}, {longKey.substr(0, 255), "new"}})),
              image.substr(4, 65532));
}

TEST_F(UbootenvTransactionTest, CopyBIsWrittenWhenCopyAFails) {
    std::string before = readDevice(kEnvDevice);
    Ubootenv env;
    failWritesAt(0);
    int result = env.updateValue("ubootenv.var.hdmimode", "720p60hz");
    failWritesAt(-1);
    EXPECT_EQ(0, result);  // the save's result is that of copy B
    std::string image = readDevice(kEnvDevice);
    EXPECT_EQ(before.substr(0, 65536), image.substr(0, 65536));
    EXPECT_TRUE(copyValid(image, 65536));
    EXPECT_NE(std::string::npos, image.find("hdmimode=720p60hz", 65536));
}

// A writer killed inside each write of a save (before its first byte, in its middle, after its
// last byte): every later load finds the old or the new value, and the next update keeps both
// the factory variables and itself.
TEST_F(UbootenvTransactionTest, AWriterKilledAtAnyWriteLosesNothing) {
    std::string factory = readDevice(kEnvDevice);
    for (int write = 0; write < 2; ++write) {
        for (size_t bytes : {size_t{0}, size_t{4}, size_t{30000}, size_t{65536}}) {
            SCOPED_TRACE("write " + std::to_string(write) + ", bytes " + std::to_string(bytes));
            writeDevice(kEnvDevice, factory);
            int result = inOtherProcess([write, bytes] {
                Ubootenv env;
                killInWrite(write, bytes);
                env.updateValue("ubootenv.var.hdmimode", "720p60hz");
                return 0;
            });
            EXPECT_EQ(INT_MIN, result) << "the writer was not killed";

            Ubootenv after;
            ASSERT_TRUE(after.initDone);
            std::string mode = variablesOf(after)["hdmimode"];
            EXPECT_TRUE(mode == "1080p60hz" || mode == "720p60hz") << mode;
            ASSERT_EQ(0, after.updateValue("ubootenv.var.next", "1"));
            Ubootenv reread;
            std::map<std::string, std::string> values = variablesOf(reread);
            EXPECT_EQ("1", values["next"]);
            for (const auto& [key, value] : factoryVariables()) {
                if (key != "hdmimode") {
                    EXPECT_EQ(value, values[key]) << key;
                }
            }
            std::string image = readDevice(kEnvDevice);
            EXPECT_TRUE(copyValid(image, 0));
            EXPECT_TRUE(copyValid(image, 65536));
        }
    }
}

}  // namespace
}  // namespace vesk::test
