// Loading the environment: the device search, the MTD size query, the read loop, the copies'
// checks, parsing, and the read-side calls with their log lines.
#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <functional>
#include <memory>

#include "ChildProcess.h"
#include "EnvFixture.h"
#include "FailingAllocation.h"
#include "FileMtd.h"

namespace vesk::test {
namespace {

using UbootenvLoadTest = EnvTest;

constexpr char kNandEnv[] = "/dev/nand_env";
constexpr char kByNameEnv[] = "/dev/block/by-name/env";
constexpr char kByNameUbootenv[] = "/dev/block/by-name/ubootenv";

// A copy whose stored CRC is off by one.
std::string badCopy(const Variables& variables) {
    std::string copy = envCopy(dataArea(envStrings(variables)));
    copy[0] = static_cast<char>(copy[0] + 1);
    return copy;
}

EnvLogs printedList(const Variables& variables) {
    EnvLogs lines;
    for (const auto& [key, value] : variables) {
        lines.push_back(
                {kInfo, "printValues", "[ubootenv] key: [" + key + "], value: [" + value + "]\n"});
    }
    return lines;
}

TEST_F(UbootenvLoadTest, LoadsTheFactoryPartitionOfTheDeviceRoot) {
    Ubootenv env;
    EXPECT_STREQ(kEnvDevice, env.devicePath);
    EXPECT_EQ(65536u, env.partitionSize);
    EXPECT_EQ(65532u, env.dataSize);
    EXPECT_TRUE(env.initDone);
    EXPECT_EQ(factoryVariables(), attributeList(env));
    ASSERT_NE(nullptr, env.image);
    EXPECT_EQ(static_cast<void*>(env.image), static_cast<void*>(env.crcWord));
    EXPECT_EQ(env.image + 4, env.data);
    EXPECT_EQ(crcOf(dataArea(envStrings(factoryVariables()))), *env.crcWord);
    EXPECT_EQ(loadedLog(), takeEnvLog());
}

TEST_F(UbootenvLoadTest, InitAgainReturnsZero) {
    Ubootenv env;
    takeEnvLog();
    EXPECT_EQ(0, env.init());
    EXPECT_EQ(factoryVariables(), attributeList(env));
    EXPECT_EQ(loadedLog(), takeEnvLog());
}

TEST_F(UbootenvLoadTest, NandEnvIsTriedFirst) {
    writeDevice(kNandEnv, envImage({{"hdmimode", "720p60hz"}}));
    writeDevice(kByNameEnv, envImage({{"hdmimode", "480p60hz"}}));
    Ubootenv env;
    EXPECT_STREQ(kNandEnv, env.devicePath);
    EXPECT_EQ((Variables{{"hdmimode", "720p60hz"}}), attributeList(env));
    EXPECT_EQ(loadedLog(kNandEnv), takeEnvLog());
}

TEST_F(UbootenvLoadTest, BlockEnvComesBeforeTheByNamePaths) {
    writeDevice(kByNameEnv, envImage({{"hdmimode", "480p60hz"}}));
    writeDevice(kByNameUbootenv, envImage({{"hdmimode", "576p50hz"}}));
    Ubootenv env;
    EXPECT_STREQ(kEnvDevice, env.devicePath);
    EXPECT_EQ(factoryVariables(), attributeList(env));
}

TEST_F(UbootenvLoadTest, ByNameEnvIsTheThirdChoiceAndNeedsNoMtdQuery) {
    FileMtd mtd(32768, 16384);
    removeDevice(kEnvDevice);
    writeDevice(kByNameEnv, envImage({{"hdmimode", "480p60hz"}}));
    writeDevice(kByNameUbootenv, envImage({{"hdmimode", "576p50hz"}}));
    Ubootenv env;
    EXPECT_STREQ(kByNameEnv, env.devicePath);
    EXPECT_EQ(65536u, env.partitionSize);
    EXPECT_EQ((Variables{{"hdmimode", "480p60hz"}}), attributeList(env));
    EXPECT_EQ(0, mtd.getInfoCalls());
    EXPECT_EQ(loadedLog(kByNameEnv), takeEnvLog());
}

TEST_F(UbootenvLoadTest, ByNameUbootenvTakesItsSizesFromTheMtdLayer) {
    FileMtd mtd(32768, 16384);
    removeDevice(kEnvDevice);
    // One copy is the reported 32768 bytes: CRC word, 32760 bytes of data covered by the CRC,
    // then 4 bytes that are not.
    std::string copyA =
            envCopy(dataArea({"hdmimode=720p60hz", "is.bestmode=false"}, 32760) + "ZZZZ", 32760);
    ASSERT_EQ(32768u, copyA.size());
    writeDevice(kByNameUbootenv, twoCopies(copyA, badCopy({{"hdmimode", "480p60hz"}})));
    Ubootenv env;
    EXPECT_STREQ(kByNameUbootenv, env.devicePath);
    EXPECT_EQ(32768u, env.partitionSize);
    EXPECT_EQ(32760u, env.dataSize);
    EXPECT_EQ(1, mtd.getInfoCalls());
    EXPECT_TRUE(env.initDone);
    EXPECT_EQ((Variables{{"hdmimode", "720p60hz"}, {"is.bestmode", "false"}}), attributeList(env));
    EXPECT_EQ((EnvLogs{{kInfo, "init",
                        "[ubootenv] using /dev/block/by-name/ubootenv with size(32768) (32760)"},
                       {kInfo, "propertyLoad", "[ubootenv] set property count: 0\n"}}),
              takeEnvLog());
}

TEST_F(UbootenvLoadTest, FailedMtdQueryReturnsMinusThree) {
    FileMtd mtd(32768, 16384);
    mtd.failGetInfo(2);
    removeDevice(kEnvDevice);
    writeDevice(kByNameUbootenv, envImage(factoryVariables()));
    Ubootenv env;
    EXPECT_FALSE(env.initDone);
    EXPECT_STREQ(kByNameUbootenv, env.devicePath);
    EXPECT_EQ((EnvLogs{{kError, "init", "[ubootenv] get MTD info error\n"}}), takeEnvLog());
    EXPECT_EQ(-3, env.init());
    EXPECT_EQ((EnvLogs{{kError, "init", "[ubootenv] get MTD info error\n"}}), takeEnvLog());
}

TEST_F(UbootenvLoadTest, MtdDeviceThatCannotBeOpenedReturnsMinusTwo) {
    removeDevice(kEnvDevice);
    ASSERT_EQ(0, system(("mkdir -p '" + hostPath(kByNameUbootenv) + "'").c_str()));
    Ubootenv env;
    EXPECT_FALSE(env.initDone);
    EXPECT_EQ(-2, env.init());
    EXPECT_EQ(repeated({{kError, "init",
                         "[ubootenv] open device(/dev/block/by-name/ubootenv) error\n"}},
                       2),
              takeEnvLog());
}

TEST_F(UbootenvLoadTest, MtdSizeTooSmallForTheCrcWordsIsRefused) {
    FileMtd mtd(8, 4096);
    removeDevice(kEnvDevice);
    writeDevice(kByNameUbootenv, envImage(factoryVariables()));
    Ubootenv env;
    EXPECT_FALSE(env.initDone);
    EXPECT_EQ(-3, env.init());
    EXPECT_EQ(
            repeated({{kError, "init", "[ubootenv] MTD size 8 too small for an environment\n"}}, 2),
            takeEnvLog());
}

TEST_F(UbootenvLoadTest, NoDeviceLeavesTheObjectEmpty) {
    removeDevice(kEnvDevice);
    Ubootenv env;
    EXPECT_STREQ("", env.devicePath);
    EXPECT_FALSE(env.initDone);
    EXPECT_EQ(nullptr, env.image);
    EXPECT_EQ((Variables{{"", ""}}), attributeList(env));
    EnvLogs attempt = {{kError, "readPartitionData",
                        "[ubootenv] open devices error: No such file or directory\n"},
                       {kError, "init", "[ubootenv] Cannot read : -1.\n"}};
    EXPECT_EQ((EnvLogs{{kInfo, "init", "[ubootenv] using  with size(65536) (65532)"}} +
               repeated(attempt, 5) + EnvLogs{{kError, "init", "[ubootenv] read  failed \n"}}),
              takeEnvLog());

    EXPECT_EQ(nullptr, env.get("hdmimode"));
    EXPECT_EQ(nullptr, env.getValue("ubootenv.var.hdmimode"));
    EXPECT_EQ(repeated({{kError, "get", "[ubootenv] don't init done\n"}}, 2), takeEnvLog());
    EXPECT_EQ(-2, env.init());
}

// A FIFO where the partition should be: with no writer (an open for reading would wait for
// one) and with a writer that never writes (a read would wait for bytes). Neither waits: the
// store opens without waiting and refuses what is no regular file, block device or MTD device.
class FifoPartitionTest : public EnvTest, public ::testing::WithParamInterface<bool> {
  protected:
    FifoPartitionTest() {
        removeDevice(kEnvDevice);
        EXPECT_EQ(0, mkfifo(hostPath(kEnvDevice).c_str(), 0644));
        if (GetParam()) writer = open(hostPath(kEnvDevice).c_str(), O_RDWR | O_CLOEXEC);
        EXPECT_TRUE(!GetParam() || writer >= 0);
    }
    ~FifoPartitionTest() override {
        if (writer >= 0) close(writer);
    }

    // The object's load, in a child first: a wait there fails the test instead of hanging it.
    void expectNoWait(const std::function<void()>& load) {
        Child child([&] {
            load();
            return 0;
        });
        ChildEnd end = child.wait(std::chrono::seconds(60));
        ASSERT_FALSE(end.timedOut) << "the store waits on the FIFO";
        ASSERT_TRUE(end.exited && end.code == 0);
    }

    // The failed load of `device`: five tries whose open is refused, then the failure.
    static EnvLogs refusedLoad(const std::string& device) {
        EnvLogs attempt = {
                {kError, "readPartitionData",
                 "[ubootenv] open devices error: " + std::string(strerror(ENOTBLK)) + "\n"},
                {kError, "init", "[ubootenv] Cannot read " + device + ": -1.\n"}};
        return EnvLogs{{kInfo, "init", "[ubootenv] using " + device + " with size(65536) (65532)"}} +
               repeated(attempt, 5) +
               EnvLogs{{kError, "init", "[ubootenv] read " + device + " failed \n"}};
    }

    int writer = -1;
};

TEST_P(FifoPartitionTest, TheDeviceRootsPartitionIsRefused) {
    expectNoWait([] { Ubootenv env; });
    takeEnvLog();
    Ubootenv env;
    EXPECT_FALSE(env.initDone);
    EXPECT_EQ(refusedLoad(kEnvDevice), takeEnvLog());
    EXPECT_EQ(-1, env.updateValue("ubootenv.var.hdmimode", "720p60hz"));
    EXPECT_EQ((EnvLogs{{kError, "updateValue", "[ubootenv] bootenv do not init\n"}}), takeEnvLog());
}

TEST_P(FifoPartitionTest, ANamedDeviceIsRefused) {
    std::string device = hostPath(kEnvDevice);
    expectNoWait([&] { Ubootenv env(device.c_str()); });
    takeEnvLog();
    Ubootenv env(device.c_str());
    EXPECT_FALSE(env.initDone);
    EXPECT_EQ(refusedLoad(device), takeEnvLog());
    // A save opens the device too: refused the same way, nothing waits and nothing is written.
    env.set("hdmimode", "720p60hz", true);
    EXPECT_EQ(-1, env.save());
    EXPECT_EQ((EnvLogs{{kError, "formatAttribute", "[ubootenv] Invalid env data key:, value:\n"},
                       {kError, "save", "[ubootenv] open devices error\n"}}),
              takeEnvLog());
}

INSTANTIATE_TEST_SUITE_P(Writer, FifoPartitionTest, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool>& info) {
                             return info.param ? "WithAWriterThatNeverWrites" : "WithoutAWriter";
                         });

// Edge case: copy A with a bad CRC, copy B good.
TEST_F(UbootenvLoadTest, BadCopyAFallsBackToGoodCopyB) {
    std::string copyA = badCopy(factoryVariables());
    Variables listB = {{"hdmimode", "2160p60hz"}, {"custom_mode", "0"}};
    writeDevice(kEnvDevice, twoCopies(copyA, envCopy(dataArea(envStrings(listB)))));
    Ubootenv env;
    EXPECT_TRUE(env.initDone);
    EXPECT_EQ(listB, attributeList(env));
    std::string crcLine = "[ubootenv] CRC Check SYS_LOGE save_crc=" + hex8(storedCrc(copyA, 0)) +
                          ", crcCalc = " + hex8(crcOf(copyA.substr(4))) + " \n";
    EnvLogs fallback = {{kError, "readPartitionData", crcLine},
                        {kInfo, "readPartitionData", "first env error, try second....\n"}};
    EXPECT_EQ(EnvLogs{loadedLog()[0]} + fallback + EnvLogs{loadedLog()[1]}, takeEnvLog());

    EXPECT_EQ(0, env.readPartitionData());
    EXPECT_EQ(listB, attributeList(env));
    EXPECT_EQ(fallback, takeEnvLog());
}

// Edge case: both copies bad at the default size.
TEST_F(UbootenvLoadTest, BothCopiesBadFailAfterFiveTries) {
    std::string copyA = badCopy(factoryVariables());
    std::string copyB = badCopy({{"hdmimode", "720p60hz"}});
    writeDevice(kEnvDevice, twoCopies(copyA, copyB));
    Ubootenv env;
    EXPECT_FALSE(env.initDone);
    EXPECT_EQ(nullptr, env.image);
    EXPECT_EQ(nullptr, env.crcWord);
    EXPECT_EQ(nullptr, env.data);
    EnvLogs attempt = {{kError, "readPartitionData",
                        "[ubootenv] CRC Check SYS_LOGE save_crc=" + hex8(storedCrc(copyA, 0)) +
                                ", crcCalc = " + hex8(crcOf(copyA.substr(4))) + " \n"},
                       {kInfo, "readPartitionData", "first env error, try second....\n"},
                       {kError, "readPartitionData",
                        "[ubootenv] CRC2 Check SYS_LOGE save_crc=" + hex8(storedCrc(copyB, 0)) +
                                ", crcCalc = " + hex8(crcOf(copyB.substr(4))) + " \n"},
                       {kError, "init", "[ubootenv] Cannot read /dev/block/env: -3.\n"}};
    EXPECT_EQ((EnvLogs{loadedLog()[0]} + repeated(attempt, 5) +
               EnvLogs{{kError, "init", "[ubootenv] read /dev/block/env failed \n"}}),
              takeEnvLog());
    EXPECT_EQ(-2, env.init());
    EXPECT_EQ(-3, env.readPartitionData());
}

// The CRC covers the whole data area: bytes after the end mark count, and so does a change
// anywhere in the zero bytes that usually fill it.
TEST_F(UbootenvLoadTest, BytesAfterTheEndMarkAreCoveredByTheCrc) {
    std::string data = dataArea(envStrings(factoryVariables()));
    data[40000] = 'x';
    data[65531] = 'y';
    std::string copy = envCopy(data);
    writeDevice(kEnvDevice, copy + copy);
    Ubootenv env;
    EXPECT_TRUE(env.initDone);
    EXPECT_EQ(factoryVariables(), attributeList(env));
    EXPECT_EQ(loadedLog(), takeEnvLog());
}

TEST_F(UbootenvLoadTest, AByteChangedInTheZeroTailFailsTheCheck) {
    Variables listB = {{"hdmimode", "2160p60hz"}};
    for (size_t at : {size_t{30000}, size_t{65531}}) {
        std::string copyA = envCopy(dataArea(envStrings(factoryVariables())));
        copyA[4 + at] = '\x01';  // after the CRC was set
        writeDevice(kEnvDevice, twoCopies(copyA, envCopy(dataArea(envStrings(listB)))));
        Ubootenv env;
        EXPECT_EQ(listB, attributeList(env)) << at;
        std::string crcLine = "[ubootenv] CRC Check SYS_LOGE save_crc=" + hex8(storedCrc(copyA, 0)) +
                              ", crcCalc = " + hex8(crcOf(copyA.substr(4))) + " \n";
        EXPECT_EQ((EnvLogs{loadedLog()[0],
                           {kError, "readPartitionData", crcLine},
                           {kInfo, "readPartitionData", "first env error, try second....\n"},
                           loadedLog()[1]}),
                  takeEnvLog())
                << at;
    }
}

// Edge case: an all-zero data area with its CRC.
TEST_F(UbootenvLoadTest, AllZeroDataAreaGivesOneEmptyNode) {
    std::string copy = envCopy(std::string(65532, '\0'));
    writeDevice(kEnvDevice, copy + copy);
    Ubootenv env;
    EXPECT_TRUE(env.initDone);
    EXPECT_EQ((Variables{{"", ""}}), attributeList(env));
    EXPECT_EQ((EnvLogs{loadedLog()[0]} +
               EnvLogs{{kError, "parseAttribute", "[ubootenv] error need '=' skip this value\n"},
                       loadedLog()[1]}),
              takeEnvLog());
}

// Edge case: only the first '=' splits.
TEST_F(UbootenvLoadTest, OnlyTheFirstEqualsSignSplits) {
    writeDevice(kEnvDevice, envImage({{"a", "b=c"}}));
    Ubootenv env;
    EXPECT_EQ((Variables{{"a", "b=c"}}), attributeList(env));
    EXPECT_EQ(std::string("a\0b=c\0\0", 7), std::string(reinterpret_cast<char*>(env.data), 7));
    EXPECT_EQ(loadedLog(), takeEnvLog());
}

TEST_F(UbootenvLoadTest, AStringWithoutEqualsKeepsAnEmptyNode) {
    std::string copy = envCopy(dataArea({"a=1", "junk", "b=2"}));
    writeDevice(kEnvDevice, copy + copy);
    Ubootenv env;
    EXPECT_EQ((Variables{{"a", "1"}, {"", ""}, {"b", "2"}}), attributeList(env));
    EXPECT_EQ((EnvLogs{loadedLog()[0]} +
               EnvLogs{{kError, "parseAttribute", "[ubootenv] error need '=' skip this value\n"},
                       loadedLog()[1]}),
              takeEnvLog());
}

// Edge case: getValue needs the prefix and something after it.
TEST_F(UbootenvLoadTest, GetValueOfTheBarePrefixIsRejected) {
    Ubootenv env;
    takeEnvLog();
    EXPECT_EQ(nullptr, env.getValue("ubootenv.var."));
    EXPECT_EQ((EnvLogs{{kError, "getValue",
                        "[ubootenv] ubootenv.var. is not a ubootenv variable and need "
                        "prefix:ubootenv.var.xxx\n"}} +
               printedList(factoryVariables())),
              takeEnvLog());
}

TEST_F(UbootenvLoadTest, GetValueWithoutThePrefixIsRejected) {
    Ubootenv env;
    takeEnvLog();
    EXPECT_EQ(nullptr, env.getValue("hdmimode"));
    EXPECT_EQ((EnvLogs{{kError, "getValue",
                        "[ubootenv] hdmimode is not a ubootenv variable and need "
                        "prefix:ubootenv.var.xxx\n"}} +
               printedList(factoryVariables())),
              takeEnvLog());
}

TEST_F(UbootenvLoadTest, GetValueWithThePrefixLooksUpTheBareKey) {
    Ubootenv env;
    takeEnvLog();
    const char* value = env.getValue("ubootenv.var.hdmimode");
    ASSERT_NE(nullptr, value);
    EXPECT_STREQ("1080p60hz", value);
    EXPECT_EQ(env.get("hdmimode"), value);
    EXPECT_STREQ("true", env.getValue("ubootenv.var.is.bestmode"));
    EXPECT_STREQ("0", env.getValue("ubootenv.var.custom_mode"));
    EXPECT_EQ(nullptr, env.getValue("ubootenv.var.HDMIMODE"));
    EXPECT_EQ(nullptr, env.getValue("ubootenv.var.panel_type"));
    EXPECT_EQ(EnvLogs{}, takeEnvLog());
}

TEST_F(UbootenvLoadTest, GetMatchesTheWholeKeyCaseSensitively) {
    Ubootenv env;
    takeEnvLog();
    EXPECT_STREQ("1080p60hz", env.get("outputmode"));
    EXPECT_EQ(nullptr, env.get("output"));
    EXPECT_EQ(nullptr, env.get("OutputMode"));
    EXPECT_EQ(nullptr, env.get(nullptr));
    EXPECT_EQ(EnvLogs{}, takeEnvLog());
}

TEST_F(UbootenvLoadTest, IsEnvNeedsThePrefixAndMore) {
    Ubootenv env;
    EXPECT_FALSE(env.isEnv(nullptr));
    EXPECT_FALSE(env.isEnv(""));
    EXPECT_FALSE(env.isEnv("ubootenv.var."));
    EXPECT_FALSE(env.isEnv("ubootenv.var"));
    EXPECT_FALSE(env.isEnv("ubootenv.varx"));
    EXPECT_FALSE(env.isEnv("hdmimode"));
    EXPECT_TRUE(env.isEnv("ubootenv.var.x"));
    EXPECT_TRUE(env.isEnv("ubootenv.var.hdmimode"));
}

TEST_F(UbootenvLoadTest, ThePrefixIsTheGlobalsText) {
    Ubootenv env;
    takeEnvLog();
    const char* saved = PROFIX_UBOOTENV_VAR;
    PROFIX_UBOOTENV_VAR = "";
    EXPECT_FALSE(env.isEnv("ubootenv.var.hdmimode"));
    PROFIX_UBOOTENV_VAR = "env.";
    EXPECT_TRUE(env.isEnv("env.hdmimode"));
    EXPECT_STREQ("1080p60hz", env.getValue("env.hdmimode"));
    PROFIX_UBOOTENV_VAR = saved;
    EXPECT_EQ(EnvLogs{}, takeEnvLog());
}

TEST_F(UbootenvLoadTest, PrintValuesLogsEveryNode) {
    Ubootenv env;
    takeEnvLog();
    env.printValues();
    EXPECT_EQ(printedList(factoryVariables()), takeEnvLog());
}

TEST_F(UbootenvLoadTest, DumpWritesEveryNodeToTheDescriptor) {
    Ubootenv env;
    FILE* file = tmpfile();
    ASSERT_NE(nullptr, file);
    env.dump(fileno(file));
    std::string expected;
    for (const auto& [key, value] : factoryVariables()) {
        expected += "[ubootenv] key: [" + key + "], value: [" + value + "]\n";
    }
    std::string written(expected.size() + 16, '\0');
    size_t count = pread(fileno(file), &written[0], written.size(), 0);
    written.resize(count);
    fclose(file);
    EXPECT_EQ(expected, written);
}

TEST_F(UbootenvLoadTest, ReInitLoadsThePartitionAgain) {
    Ubootenv env;
    writeDevice(kEnvDevice, envImage({{"hdmimode", "720p60hz"}}));
    takeEnvLog();
    EXPECT_EQ(0, env.reInit());
    EXPECT_TRUE(env.initDone);
    EXPECT_EQ((Variables{{"hdmimode", "720p60hz"}}), attributeList(env));
    EXPECT_EQ(loadedLog(), takeEnvLog());
}

TEST_F(UbootenvLoadTest, FailedReInitKeepsInitDone) {
    Ubootenv env;
    removeDevice(kEnvDevice);
    takeEnvLog();
    EXPECT_EQ(0, env.reInit());
    EXPECT_TRUE(env.initDone);
    EXPECT_EQ(nullptr, env.image);
    EXPECT_EQ((Variables{{"", ""}}), attributeList(env));
    EXPECT_EQ(nullptr, env.get("hdmimode"));
    EnvLogs log = takeEnvLog();
    ASSERT_EQ(12u, log.size());
    EXPECT_EQ((EnvLog{kError, "init", "[ubootenv] read  failed \n"}), log.back());
}

TEST_F(UbootenvLoadTest, PropertyLoadSetsInitDone) {
    removeDevice(kEnvDevice);
    Ubootenv env;
    takeEnvLog();
    ASSERT_FALSE(env.initDone);
    env.propertyLoad();
    EXPECT_TRUE(env.initDone);
    EXPECT_EQ((EnvLogs{{kInfo, "propertyLoad", "[ubootenv] set property count: 0\n"}}),
              takeEnvLog());
}

// A device that fails the first `badTries` reads (both copies bad) and then has a good copy A:
// the device takes its next image after each failed try, when the store logs it.
class ReadLoopTest : public EnvTest {
  protected:
    // Lays out the images; the lines of one bad try.
    EnvLogs prepare(int badTries) {
        std::string copyA = badCopy({{"hdmimode", "480p60hz"}});
        std::string copyB = badCopy({{"hdmimode", "576p50hz"}});
        for (int i = 0; i < badTries; ++i) images.push_back(twoCopies(copyA, copyB));
        images.push_back(envImage(good));
        writeDevice(kEnvDevice, images[0]);
        return {{kError, "readPartitionData",
                 "[ubootenv] CRC Check SYS_LOGE save_crc=" + hex8(storedCrc(copyA, 0)) +
                         ", crcCalc = " + hex8(crcOf(copyA.substr(4))) + " \n"},
                {kInfo, "readPartitionData", "first env error, try second....\n"},
                {kError, "readPartitionData",
                 "[ubootenv] CRC2 Check SYS_LOGE save_crc=" + hex8(storedCrc(copyB, 0)) +
                         ", crcCalc = " + hex8(crcOf(copyB.substr(4))) + " \n"},
                {kError, "init", "[ubootenv] Cannot read /dev/block/env: -3.\n"}};
    }

    // Every line logged while `body` runs; after each failed try the device is written anew.
    EnvLogs logWhile(const std::function<void()>& body) {
        std::vector<vesk::host::LogLine> lines;
        {
            vesk::host::ScopedLogHandler handler([&](const vesk::host::LogLine& line) {
                lines.push_back(line);
                if (line.message.find("Cannot read /dev/block/env") != std::string::npos &&
                    next < images.size()) {
                    writeFile(hostPath(kEnvDevice), images[next++]);
                }
            });
            body();
        }
        return parseEnvLog(lines);
    }

    std::vector<std::string> images;  // what the device holds at each try
    size_t next = 1;                  // the image the next failed try brings
    const Variables good = {{"hdmimode", "1080p50hz"}, {"is.bestmode", "false"}};
};

TEST_F(ReadLoopTest, SuccessOnTheFourthTryLoads) {
    EnvLogs badTry = prepare(3);
    std::unique_ptr<Ubootenv> env;
    EnvLogs log = logWhile([&] { env = std::make_unique<Ubootenv>(); });
    EXPECT_TRUE(env->initDone);
    EXPECT_EQ(good, attributeList(*env));
    EXPECT_EQ(images.size(), next);  // every image was read
    EXPECT_EQ(EnvLogs{loadedLog()[0]} + repeated(badTry, 3) + EnvLogs{loadedLog()[1]}, log);
}

TEST_F(ReadLoopTest, SuccessOnTheFifthTryIsReportedAsFailure) {
    EnvLogs badTry = prepare(4);
    std::unique_ptr<Ubootenv> env;
    EnvLogs log = logWhile([&] { env = std::make_unique<Ubootenv>(); });
    EXPECT_FALSE(env->initDone);
    EXPECT_EQ(good, attributeList(*env));  // parsed all the same
    EXPECT_EQ(images.size(), next);
    EXPECT_EQ((EnvLogs{loadedLog()[0]} + repeated(badTry, 4) +
               EnvLogs{{kError, "init", "[ubootenv] read /dev/block/env failed \n"}}),
              log);
}

TEST_F(UbootenvLoadTest, ShortCopyAIsFollowedByCopyB) {
    // 40000 bytes: copy A comes short, copy B is not there at all and is taken as read.
    std::string image = envImage(factoryVariables()).substr(0, 40000);
    writeDevice(kEnvDevice, image);
    Ubootenv env;
    EXPECT_TRUE(env.initDone);
    EXPECT_EQ(factoryVariables(), attributeList(env));
    EXPECT_EQ((EnvLogs{loadedLog()[0]} +
               EnvLogs{{kError, "readPartitionData", "[ubootenv] read error 0x9c40 \n"},
                       {kInfo, "readPartitionData", "first env error, try second....\n"},
                       loadedLog()[1]}),
              takeEnvLog());
}

TEST_F(UbootenvLoadTest, CopyOfAnotherSizeIsTakenFromCopyBOnTrust) {
    // The MTD layer reports 131072 bytes: copy A's check covers the wrong bytes, and copy B,
    // read as 65536 bytes, is not checked at all (its CRC here is wrong too).
    FileMtd mtd(131072, 65536);
    removeDevice(kEnvDevice);
    Variables listB = {{"hdmimode", "720p50hz"}};
    std::string copyA = envCopy(dataArea(envStrings(factoryVariables())));
    std::string image = twoCopies(copyA, badCopy(listB));
    writeDevice(kByNameUbootenv, image);
    Ubootenv env;
    EXPECT_TRUE(env.initDone);
    EXPECT_EQ(listB, attributeList(env));
    EXPECT_EQ((EnvLogs{{kInfo, "init",
                        "[ubootenv] using /dev/block/by-name/ubootenv with size(131072) (131064)"},
                       {kError, "readPartitionData",
                        "[ubootenv] CRC Check SYS_LOGE save_crc=" + hex8(storedCrc(image, 0)) +
                                ", crcCalc = " + hex8(crcOf(image.substr(4, 131064))) + " \n"},
                       {kInfo, "readPartitionData", "first env error, try second....\n"},
                       {kInfo, "propertyLoad", "[ubootenv] set property count: 0\n"}}),
              takeEnvLog());
}

TEST_F(UbootenvLoadTest, CopyBReadHasRoomWhenTheMtdCopyIsSmall) {
    // 4096-byte copies: the fixed 65536-byte read of copy B still lands inside the buffer, and
    // only the 4088-byte data area is parsed.
    FileMtd mtd(4096, 4096);
    removeDevice(kEnvDevice);
    std::string copyB = envCopy(dataArea({"hdmimode=480p60hz", "x=" + std::string(5000, 'x')}));
    writeDevice(kByNameUbootenv, twoCopies(badCopy(factoryVariables()).substr(0, 4096), copyB));
    Ubootenv env;
    EXPECT_TRUE(env.initDone);
    EXPECT_EQ(4088u, env.dataSize);
    ASSERT_EQ(2u, attributeList(env).size());
    EXPECT_EQ((std::pair<std::string, std::string>("hdmimode", "480p60hz")), attributeList(env)[0]);
    // The second string is cut by the end of the data area: 4088 - 18 bytes, less "x=".
    EXPECT_EQ(std::string(4068, 'x'), attributeList(env)[1].second);
    EnvLogs log = takeEnvLog();
    ASSERT_EQ(5u, log.size());
    EXPECT_EQ((EnvLog{kError, "parseAttribute",
                      "[ubootenv] env data has no end mark within 4088 bytes\n"}),
              log[3]);
}

TEST_F(UbootenvLoadTest, NoMemoryForTheCopyFailsEveryTry) {
    FileMtd mtd(0xfffffff0u, 65536);
    removeDevice(kEnvDevice);
    writeDevice(kByNameUbootenv, envImage(factoryVariables()));
    {
        LargeMallocFails noRoomForTheCopy(64 << 20);
        Ubootenv env;
        EXPECT_FALSE(env.initDone);
        EXPECT_EQ(nullptr, env.image);
    }
    EnvLogs attempt = {
            {kError, "readPartitionData",
             "[ubootenv] Not enough memory for environment (4294967280 bytes)\n"},
            {kError, "init", "[ubootenv] Cannot read /dev/block/by-name/ubootenv: -2.\n"}};
    EXPECT_EQ((EnvLogs{{kInfo, "init",
                        "[ubootenv] using /dev/block/by-name/ubootenv with size(-16) (-24)"}} +
               repeated(attempt, 5) +
               EnvLogs{{kError, "init", "[ubootenv] read /dev/block/by-name/ubootenv failed \n"}}),
              takeEnvLog());
}

TEST_F(UbootenvLoadTest, NoMemoryForANodeEndsTheList) {
    failCallocOfSize(sizeof(EnvAttribute), 5);  // the seventh node finds no memory
    Ubootenv env;
    EXPECT_TRUE(env.initDone);
    Variables expected = factoryVariables();
    expected.resize(6);
    EXPECT_EQ(expected, attributeList(env));
    EXPECT_EQ((EnvLogs{loadedLog()[0]} +
               EnvLogs{{kError, "parseAttribute", "[ubootenv] parse attribute malloc error \n"},
                       loadedLog()[1]}),
              takeEnvLog());
}

}  // namespace
}  // namespace vesk::test
