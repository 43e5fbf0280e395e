// Changing the environment and writing both copies back to a block device.
#include <gtest/gtest.h>
#include <unistd.h>

#include <regex>
#include <sstream>

#include "BuiltProgram.h"
#include "EnvFixture.h"
#include "FailingAllocation.h"
#include "FailingSeek.h"
#include "FileMtd.h"
#include "InterruptedWrite.h"

namespace vesk::test {
namespace {

using UbootenvSaveTest = EnvTest;

const EnvLog kSaved = {kInfo, "updateValue",
                       "[ubootenv] Save ubootenv to /dev/block/env succeed!\n"};

Variables with(Variables variables, const std::string& key, const std::string& value) {
    for (auto& [k, v] : variables) {
        if (k == key) {
            v = value;
            return variables;
        }
    }
    variables.emplace_back(key, value);
    return variables;
}

// Edge case: storing the value a key already has.
TEST_F(UbootenvSaveTest, UpdatingToThePresentValueWritesNothing) {
    // Copy B differs from copy A, so that any write would show.
    std::string image = twoCopies(envCopy(dataArea(envStrings(factoryVariables()))),
                                  envCopy(dataArea({"hdmimode=720p60hz"})));
    writeDevice(kEnvDevice, image);
    Ubootenv env;
    takeEnvLog();
    EXPECT_EQ(0, env.updateValue("ubootenv.var.hdmimode", "1080p60hz"));
    EXPECT_EQ(image, readDevice(kEnvDevice));
    EXPECT_EQ((EnvLogs{updateLine("ubootenv.var.hdmimode", "1080p60hz")}), takeEnvLog());
}

TEST_F(UbootenvSaveTest, AnEmptyValueForAnAbsentKeyIsNoChange) {
    std::string image = twoCopies(envCopy(dataArea(envStrings(factoryVariables()))),
                                  envCopy(dataArea({"hdmimode=720p60hz"})));
    writeDevice(kEnvDevice, image);
    Ubootenv env;
    takeEnvLog();
    EXPECT_EQ(0, env.updateValue("ubootenv.var.panel_type", ""));
    EXPECT_EQ(0, env.updateValue("ubootenv.var.panel_type", nullptr));
    EXPECT_EQ(image, readDevice(kEnvDevice));
    EXPECT_EQ(factoryVariables(), attributeList(env));
    EXPECT_EQ((repeated({updateLine("ubootenv.var.panel_type", "")}, 2)), takeEnvLog());
}

TEST_F(UbootenvSaveTest, AChangedValueIsSavedToBothCopies) {
    Ubootenv env;
    takeEnvLog();
    EXPECT_EQ(0, env.updateValue("ubootenv.var.hdmimode", "720p60hz"));
    Variables expected = with(factoryVariables(), "hdmimode", "720p60hz");
    EXPECT_EQ(expected, attributeList(env));
    EXPECT_EQ(envImage(expected), readDevice(kEnvDevice));
    EXPECT_EQ((EnvLogs{updateLine("ubootenv.var.hdmimode", "720p60hz"), kSaved}), takeEnvLog());

    Ubootenv reloaded;
    EXPECT_EQ(expected, attributeList(reloaded));
}

// Edge case: a key not yet in the list.
TEST_F(UbootenvSaveTest, AnAbsentKeyIsAppendedAndWrittenLast) {
    Ubootenv env;
    takeEnvLog();
    EXPECT_EQ(0, env.updateValue("ubootenv.var.panel_type", "lcd_1"));
    Variables expected = factoryVariables();
    expected.emplace_back("panel_type", "lcd_1");
    EXPECT_EQ(expected, attributeList(env));
    std::string image = readDevice(kEnvDevice);
    EXPECT_EQ(envImage(expected), image);
    std::string data = image.substr(4, 65532);
    EXPECT_EQ(data.find("upgrade_step=2") + 15, data.find("panel_type=lcd_1"));
    EXPECT_EQ((EnvLogs{updateLine("ubootenv.var.panel_type", "lcd_1"), kSaved}), takeEnvLog());
}

// Edge case: "bootcmd" needs its prefix like every other key.
TEST_F(UbootenvSaveTest, BootcmdWithoutThePrefixIsRejected) {
    Ubootenv env;
    takeEnvLog();
    std::string before = readDevice(kEnvDevice);
    EXPECT_EQ(-2, env.updateValue("bootcmd", "run recovery"));
    EXPECT_EQ(before, readDevice(kEnvDevice));
    EXPECT_STREQ("run storeboot", env.get("bootcmd"));
    EXPECT_EQ((EnvLogs{updateLine("bootcmd", "run recovery"),
                       {kError, "updateValue", "[ubootenv] bootcmd is not a ubootenv variable.\n"}}),
              takeEnvLog());
}

TEST_F(UbootenvSaveTest, PrefixedBootcmdUpdatesTheKeyBootcmd) {
    Ubootenv env;
    takeEnvLog();
    EXPECT_EQ(0, env.updateValue("ubootenv.var.bootcmd", "run recovery"));
    Variables expected = with(factoryVariables(), "bootcmd", "run recovery");
    EXPECT_EQ(expected, attributeList(env));
    EXPECT_EQ(envImage(expected), readDevice(kEnvDevice));
    EXPECT_EQ((EnvLogs{updateLine("ubootenv.var.bootcmd", "run recovery"), kSaved}), takeEnvLog());
}

TEST_F(UbootenvSaveTest, OtherNamesWithoutThePrefixAreRejected) {
    Ubootenv env;
    takeEnvLog();
    EXPECT_EQ(-2, env.updateValue("ubootenv.var.", "x"));
    EXPECT_EQ(-2, env.updateValue(nullptr, "x"));
    EXPECT_EQ((EnvLogs{updateLine("ubootenv.var.", "x"),
                       {kError, "updateValue",
                        "[ubootenv] ubootenv.var. is not a ubootenv variable.\n"},
                       updateLine("(null)", "x"),
                       {kError, "updateValue", "[ubootenv] (null) is not a ubootenv variable.\n"}}),
              takeEnvLog());
}

// "a=b" stored as a key would load back as the key "a" with a value starting "b=", shadowing or
// replacing another variable; such a name is refused and nothing is written.
TEST_F(UbootenvSaveTest, ANameWhoseKeyHoldsAnEqualsSignIsRejected) {
    Ubootenv env;
    takeEnvLog();
    std::string before = readDevice(kEnvDevice);
    EXPECT_EQ(-2, env.updateValue("ubootenv.var.hdmimode=720p60hz", "x"));
    EXPECT_EQ(before, readDevice(kEnvDevice));
    EXPECT_EQ(factoryVariables(), attributeList(env));
    EXPECT_EQ(
            (EnvLogs{updateLine("ubootenv.var.hdmimode=720p60hz", "x"),
                     {kError, "updateValue",
                      "[ubootenv] ubootenv.var.hdmimode=720p60hz is not a ubootenv variable.\n"}}),
            takeEnvLog());
}

// A device that takes no data (every write fails with ENOSPC): the save reports a failed write.
TEST_F(UbootenvSaveTest, AWriteThatFailsIsMinusThree) {
    Ubootenv env;
    takeEnvLog();
    failWritesAt(65536);  // the device takes copy A and refuses copy B
    int result = env.save();
    failWritesAt(-1);
    EXPECT_EQ(-3, result);
    EnvLogs log = takeEnvLog();
    ASSERT_FALSE(log.empty());
    EXPECT_EQ((EnvLog{kError, "save", "[ubootenv] SYS_LOGE write, size 65536 \n"}), log.back());
}

// Edge case: after a save the copies are the same bytes, each with its CRC.
TEST_F(UbootenvSaveTest, BothCopiesAreIdenticalAndVerifyAfterASave) {
    std::string copyA = envCopy(dataArea(envStrings(factoryVariables())));
    writeDevice(kEnvDevice, twoCopies(copyA, envCopy(dataArea({"hdmimode=576cvbs"}))));
    Ubootenv env;
    takeEnvLog();
    EXPECT_EQ(0, env.updateValue("ubootenv.var.is.bestmode", "false"));
    EXPECT_EQ((EnvLogs{updateLine("ubootenv.var.is.bestmode", "false"), kSaved}), takeEnvLog());
    std::string image = readDevice(kEnvDevice);
    ASSERT_EQ(131072u, image.size());
    EXPECT_EQ(image.substr(0, 65536), image.substr(65536));
    EXPECT_TRUE(copyValid(image, 0));
    EXPECT_TRUE(copyValid(image, 65536));
    EXPECT_EQ(crcOf(dataArea(envStrings(with(factoryVariables(), "is.bestmode", "false")))),
              storedCrc(image, 65536));
}

// Edge case: a key=value text of two characters or fewer is overwritten by the next entry.
TEST_F(UbootenvSaveTest, AShortEntryIsOverwrittenByTheNext) {
    std::string copy = envCopy(dataArea({"a=1", "x=", "b=2"}));
    writeDevice(kEnvDevice, copy + copy);
    Ubootenv env;
    takeEnvLog();
    EXPECT_EQ(0, env.updateValue("ubootenv.var.a", "9"));
    EXPECT_EQ((Variables{{"a", "9"}, {"x", ""}, {"b", "2"}}), attributeList(env));
    std::string expected = envCopy(dataArea({"a=9", "b=2"}));
    EXPECT_EQ(expected + expected, readDevice(kEnvDevice));
    EXPECT_EQ((EnvLogs{updateLine("ubootenv.var.a", "9"),
                       {kError, "formatAttribute", "[ubootenv] Invalid env data key:x, value:\n"},
                       kSaved}),
              takeEnvLog());
}

// Edge case: ... and stays when it is the last entry.
TEST_F(UbootenvSaveTest, AShortLastEntryStaysInTheDataArea) {
    std::string copy = envCopy(dataArea({"a=1", "b=2", "x="}));
    writeDevice(kEnvDevice, copy + copy);
    Ubootenv env;
    takeEnvLog();
    EXPECT_EQ(0, env.updateValue("ubootenv.var.b", "3"));
    std::string expected = envCopy(dataArea({"a=1", "b=3", "x="}));
    EXPECT_EQ(expected + expected, readDevice(kEnvDevice));
    EXPECT_EQ((EnvLogs{updateLine("ubootenv.var.b", "3"),
                       {kError, "formatAttribute", "[ubootenv] Invalid env data key:x, value:\n"},
                       kSaved}),
              takeEnvLog());
}

TEST_F(UbootenvSaveTest, AnEmptyNodeIsDroppedOnSave) {
    std::string copy = envCopy(std::string(65532, '\0'));
    writeDevice(kEnvDevice, copy + copy);
    Ubootenv env;
    takeEnvLog();
    EXPECT_EQ(0, env.updateValue("ubootenv.var.hdmimode", "720p60hz"));
    EXPECT_EQ((Variables{{"", ""}, {"hdmimode", "720p60hz"}}), attributeList(env));
    EXPECT_EQ(envImage({{"hdmimode", "720p60hz"}}), readDevice(kEnvDevice));
    EXPECT_EQ((EnvLogs{updateLine("ubootenv.var.hdmimode", "720p60hz"),
                       {kError, "formatAttribute", "[ubootenv] Invalid env data key:, value:\n"},
                       kSaved}),
              takeEnvLog());
}

TEST_F(UbootenvSaveTest, UpdateBeforeALoadIsRefused) {
    removeDevice(kEnvDevice);
    Ubootenv env;
    takeEnvLog();
    EXPECT_EQ(-1, env.updateValue("ubootenv.var.hdmimode", "720p60hz"));
    EXPECT_EQ((EnvLogs{{kError, "updateValue", "[ubootenv] bootenv do not init\n"}}), takeEnvLog());
}

TEST_F(UbootenvSaveTest, SetChangesAppendsOrReportsAMissingKey) {
    Ubootenv env;
    std::string before = readDevice(kEnvDevice);
    takeEnvLog();
    EXPECT_EQ(2, env.set("hdmimode", "720p60hz", false));
    EXPECT_EQ(0, env.set("panel_type", "lcd_1", false));
    EXPECT_EQ(with(factoryVariables(), "hdmimode", "720p60hz"), attributeList(env));
    EXPECT_EQ(1, env.set("panel_type", "lcd_1", true));
    EXPECT_EQ(2, env.set("panel_type", "lcd_2", true));
    Variables expected = with(factoryVariables(), "hdmimode", "720p60hz");
    expected.emplace_back("panel_type", "lcd_2");
    EXPECT_EQ(expected, attributeList(env));
    EXPECT_EQ(before, readDevice(kEnvDevice));
    EXPECT_EQ(EnvLogs{}, takeEnvLog());
}

TEST_F(UbootenvSaveTest, SetWorksWithoutALoad) {
    removeDevice(kEnvDevice);
    Ubootenv env;
    takeEnvLog();
    EXPECT_EQ(1, env.set("hdmimode", "720p60hz", true));
    EXPECT_EQ((Variables{{"", ""}, {"hdmimode", "720p60hz"}}), attributeList(env));
}

TEST_F(UbootenvSaveTest, NoMemoryForANewNodeFailsTheUpdate) {
    Ubootenv env;
    std::string before = readDevice(kEnvDevice);
    takeEnvLog();
    failCallocOfSize(sizeof(EnvAttribute), 0);
    EXPECT_EQ(-5, env.updateValue("ubootenv.var.panel_type", "lcd_1"));
    EXPECT_EQ(factoryVariables(), attributeList(env));
    EXPECT_EQ(before, readDevice(kEnvDevice));
    EXPECT_EQ((EnvLogs{updateLine("ubootenv.var.panel_type", "lcd_1"),
                       {kError, "updateValue", "[ubootenv] Out of memory!!!\n"}}),
              takeEnvLog());
}

TEST_F(UbootenvSaveTest, SetRefusesAKeyOrValueThatDoesNotFitANode) {
    Ubootenv env;
    takeEnvLog();
    EXPECT_EQ(-1, env.set(std::string(256, 'k').c_str(), "v", true));
    EXPECT_EQ(-1, env.set("hdmimode", std::string(4096, 'v').c_str(), false));
    EXPECT_EQ(factoryVariables(), attributeList(env));
    EXPECT_EQ(
            (EnvLogs{{kError, "set", "[ubootenv] key of 256 characters is too long (at most 255)\n"},
                     {kError, "set",
                      "[ubootenv] value of 4096 characters is too long (at most 4095)\n"}}),
            takeEnvLog());
    EXPECT_EQ(1, env.set(std::string(255, 'k').c_str(), "v", true));
    EXPECT_EQ(2, env.set("hdmimode", std::string(4095, 'v').c_str(), false));
    EXPECT_EQ(std::string(4095, 'v'), env.get("hdmimode"));
    EXPECT_STREQ("v", env.get(std::string(255, 'k').c_str()));
}

TEST_F(UbootenvSaveTest, EveryFailedSaveIsLoggedAndTheLastCodeReturned) {
    Ubootenv env;
    takeEnvLog();
    // A directory cannot be opened for writing.
    removeDevice(kEnvDevice);
    ASSERT_EQ(0, system(("mkdir '" + hostPath(kEnvDevice) + "'").c_str()));
    EXPECT_EQ(-1, env.updateValue("ubootenv.var.hdmimode", "720p60hz"));
    EXPECT_STREQ("720p60hz", env.get("hdmimode"));  // kept for the next save
    EnvLogs attempt = {{kError, "save", "[ubootenv] open devices error\n"},
                       {kError, "updateValue", "[ubootenv] Cannot write /dev/block/env: -1.\n"}};
    EXPECT_EQ((EnvLogs{updateLine("ubootenv.var.hdmimode", "720p60hz")} + repeated(attempt, 5)),
              takeEnvLog());
}

// The save retries run through the MTD path, whose information query fails on demand.
class SaveRetryTest : public EnvTest {
  protected:
    SaveRetryTest() : mtd(65536, 65536) {
        writeDevice("/dev/mtd0", envImage(factoryVariables()));
        snprintf(env.devicePath, sizeof(env.devicePath), "%s", "/dev/mtd0");
        takeEnvLog();
    }

    FileMtd mtd;
    Ubootenv env;
    const EnvLogs attempt = {{kError, "save", "[ubootenv] Get MTD info error\n"},
                             {kError, "updateValue", "[ubootenv] Cannot write /dev/mtd0: -4.\n"}};
};

TEST_F(SaveRetryTest, SuccessOnTheFourthTryIsAnnounced) {
    mtd.failGetInfo(3);
    EXPECT_EQ(0, env.updateValue("ubootenv.var.hdmimode", "720p60hz"));
    EXPECT_EQ(envImage(with(factoryVariables(), "hdmimode", "720p60hz")), readDevice("/dev/mtd0"));
    EXPECT_EQ((EnvLogs{updateLine("ubootenv.var.hdmimode", "720p60hz")} + repeated(attempt, 3) +
               EnvLogs{{kInfo, "updateValue", "[ubootenv] Save ubootenv to /dev/mtd0 succeed!\n"}}),
              takeEnvLog());
}

TEST_F(SaveRetryTest, SuccessOnTheFifthTryIsNotAnnounced) {
    mtd.failGetInfo(4);
    EXPECT_EQ(0, env.updateValue("ubootenv.var.hdmimode", "720p60hz"));
    EXPECT_EQ(envImage(with(factoryVariables(), "hdmimode", "720p60hz")), readDevice("/dev/mtd0"));
    EXPECT_EQ((EnvLogs{updateLine("ubootenv.var.hdmimode", "720p60hz")} + repeated(attempt, 4)),
              takeEnvLog());
}

TEST_F(SaveRetryTest, FiveFailuresReturnTheLastCode) {
    mtd.failGetInfo(5);
    EXPECT_EQ(-4, env.updateValue("ubootenv.var.hdmimode", "720p60hz"));
    EXPECT_EQ(envImage(factoryVariables()), readDevice("/dev/mtd0"));
    EXPECT_EQ((EnvLogs{updateLine("ubootenv.var.hdmimode", "720p60hz")} + repeated(attempt, 5)),
              takeEnvLog());
}

TEST_F(UbootenvSaveTest, AValueOfMoreThan4095CharactersIsRefused) {
    Ubootenv env;
    takeEnvLog();
    std::string before = readDevice(kEnvDevice);
    std::string value(4096, 'v');
    EXPECT_EQ(-8, env.updateValue("ubootenv.var.hdmimode", value.c_str()));
    EXPECT_EQ(before, readDevice(kEnvDevice));
    EXPECT_EQ(factoryVariables(), attributeList(env));
    EnvLogs log = takeEnvLog();
    ASSERT_EQ(2u, log.size());
    EXPECT_EQ((EnvLog{kInfo, "updateValue",
                      clipped("updateValue", log[0].line,
                              updateLine("ubootenv.var.hdmimode", value).text)}),
              log[0]);
    EXPECT_EQ(
            (EnvLog{kError, "updateValue",
                    "[ubootenv] value of hdmimode (4096 characters) is too long (at most 4095)\n"}),
            log[1]);
}

TEST_F(UbootenvSaveTest, AValueOf4095CharactersIsStoredWhole) {
    Ubootenv env;
    std::string value(4095, 'v');
    EXPECT_EQ(0, env.updateValue("ubootenv.var.hdmimode", value.c_str()));
    Ubootenv reloaded;
    EXPECT_EQ(with(factoryVariables(), "hdmimode", value), attributeList(reloaded));
}

TEST_F(UbootenvSaveTest, AKeyOf256CharactersIsRefused) {
    Ubootenv env;
    takeEnvLog();
    std::string before = readDevice(kEnvDevice);
    std::string name = "ubootenv.var." + std::string(256, 'k');
    EXPECT_EQ(-2, env.updateValue(name.c_str(), "1"));
    EXPECT_EQ(before, readDevice(kEnvDevice));
    EXPECT_EQ(factoryVariables(), attributeList(env));
    EXPECT_EQ((EnvLogs{updateLine(name, "1"),
                       {kError, "updateValue",
                        "[ubootenv] key of 256 characters is too long (at most 255)\n"}}),
              takeEnvLog());
}

TEST_F(UbootenvSaveTest, AKeyOf255CharactersIsStoredWhole) {
    Ubootenv env;
    std::string key(255, 'k');
    EXPECT_EQ(0, env.updateValue(("ubootenv.var." + key).c_str(), "1"));
    Ubootenv reloaded;
    Variables expected = factoryVariables();
    expected.emplace_back(key, "1");
    EXPECT_EQ(expected, attributeList(reloaded));
}

// 16 variables "vNx=" and 4000 characters: 16 * 4005 bytes, and one for the end: 1451 bytes
// are left.
class FullEnvironmentTest : public EnvTest {
  protected:
    FullEnvironmentTest() {
        for (int i = 0; i < 16; ++i) {
            full.emplace_back("v" + std::to_string(i % 10) + std::string(1, 'a' + i),
                              std::string(4000, static_cast<char>('A' + i)));
        }
        image = envImage(full);
        writeDevice(kEnvDevice, image);
    }

    Variables full;
    std::string image;
};

TEST_F(FullEnvironmentTest, AnUpdateThatWouldNotFitIsRefused) {
    Ubootenv env;
    ASSERT_EQ(full, attributeList(env));
    takeEnvLog();
    // "extra=", 1445 characters and their NUL: 1452 bytes.
    std::string value(1445, 'x');
    EXPECT_EQ(-8, env.updateValue("ubootenv.var.extra", value.c_str()));
    EXPECT_EQ(image, readDevice(kEnvDevice));
    EXPECT_EQ(full, attributeList(env));
    EnvLogs log = takeEnvLog();
    ASSERT_EQ(2u, log.size());
    EXPECT_EQ((EnvLog{kError, "updateValue",
                      "[ubootenv] no room for extra: the env needs 65533 bytes, the data area has "
                      "65532\n"}),
              log[1]);
}

TEST_F(FullEnvironmentTest, AnUpdateThatFitsExactlyIsSaved) {
    Ubootenv env;
    std::string value(1444, 'x');
    EXPECT_EQ(0, env.updateValue("ubootenv.var.extra", value.c_str()));
    Variables expected = full;
    expected.emplace_back("extra", value);
    std::string saved = readDevice(kEnvDevice);
    EXPECT_EQ(envImage(expected), saved);
    EXPECT_EQ(std::string(2, '\0'), saved.substr(65534, 2));  // the end of the last string, then
                                                              // the empty one
    takeEnvLog();
    Ubootenv reloaded;
    EXPECT_EQ(expected, attributeList(reloaded));
    EXPECT_EQ(loadedLog(), takeEnvLog());
}

TEST_F(FullEnvironmentTest, GrowingAValuePastTheAreaIsRefused) {
    Ubootenv env;
    ASSERT_EQ(0, env.updateValue("ubootenv.var.extra", std::string(1444, 'x').c_str()));
    std::string saved = readDevice(kEnvDevice);
    takeEnvLog();
    // The area is full to the last byte: v0a cannot grow by one character, but may shrink.
    EXPECT_EQ(-8, env.updateValue("ubootenv.var.v0a", std::string(4001, 'A').c_str()));
    EXPECT_EQ(saved, readDevice(kEnvDevice));
    EXPECT_EQ(std::string(4000, 'A'), env.get("v0a"));
    EnvLogs log = takeEnvLog();
    ASSERT_EQ(2u, log.size());
    EXPECT_EQ((EnvLog{kError, "updateValue",
                      "[ubootenv] no room for v0a: the env needs 65533 bytes, the data area has "
                      "65532\n"}),
              log[1]);
    EXPECT_EQ(0, env.updateValue("ubootenv.var.v0a", std::string(3999, 'A').c_str()));
    EXPECT_TRUE(copyValid(readDevice(kEnvDevice), 0));
}

TEST_F(FullEnvironmentTest, SaveRefusesAListLongerThanTheDataArea) {
    Ubootenv env;
    ASSERT_EQ(1, env.set("extra", std::string(1445, 'x').c_str(), true));
    std::string area(reinterpret_cast<char*>(env.data), env.dataSize);
    takeEnvLog();
    EXPECT_EQ(-8, env.save());
    EXPECT_EQ(-1, env.formatAttribute());
    EXPECT_EQ(image, readDevice(kEnvDevice));
    EXPECT_EQ(area, std::string(reinterpret_cast<char*>(env.data), env.dataSize));
    EXPECT_EQ((repeated({{kError, "formatAttribute",
                          "[ubootenv] env data of 65533 bytes does not fit the data area (65532 "
                          "bytes)\n"}},
                        2)),
              takeEnvLog());
}

TEST_F(UbootenvSaveTest, SaveWithoutALoadedCopyWritesAFreshEnvironment) {
    std::string device = hostPath("/data/erased.img");
    writeFile(device, std::string(131072, '\xff'));
    Ubootenv env(device.c_str());
    ASSERT_FALSE(env.initDone);
    ASSERT_EQ(nullptr, env.image);
    takeEnvLog();
    EXPECT_EQ(1, env.set("hdmimode", "720p60hz", true));
    EXPECT_EQ(0, env.save());
    EXPECT_EQ(envImage({{"hdmimode", "720p60hz"}}), readFile(device));
    EXPECT_EQ((EnvLogs{{kError, "formatAttribute", "[ubootenv] Invalid env data key:, value:\n"}}),
              takeEnvLog());
}

TEST_F(UbootenvSaveTest, ASeekErrorBeforeCopyBIsLoggedAndCopyBWrittenAnyway) {
    Ubootenv env;
    ASSERT_TRUE(env.initDone);
    takeEnvLog();
    {
        // Copy B then goes where copy A ended, which is where it belongs.
        SeeksFail seeksFail;
        EXPECT_EQ(0, env.updateValue("ubootenv.var.hdmimode", "720p60hz"));
    }
    EXPECT_EQ(envImage(with(factoryVariables(), "hdmimode", "720p60hz")), readDevice(kEnvDevice));
    EXPECT_EQ((EnvLogs{updateLine("ubootenv.var.hdmimode", "720p60hz"),
                       {kError, "save", "[ubootenv] lseek error, seek num = -1 \n"},
                       kSaved}),
              takeEnvLog());
}

// The veskdm tool saves through Ubootenv; strace shows what reaches the device and in which
// order: the lock first (held by the update from its look-up on: the CRC words it compares are
// read with pread), then copy A and its sync, only then copy B and its sync.
TEST_F(UbootenvSaveTest, EachCopyIsOnTheDeviceBeforeTheNextWriteUnderAnExclusiveLock) {
    std::string trace = root / "/data/trace.txt";
    int status = -1;
    // LeakSanitizer cannot work under strace; the asan build's tool is traced without it.
    runCommand(
            "ASAN_OPTIONS=detect_leaks=0 strace -f -qq -e "
            "trace=openat,openat2,flock,lseek,write,fdatasync,fsync,close -o '" +
                    trace + "' " + veskdmCommand() + " --root '" + root.path() +
                    "' env set hdmimode 720p60hz 2>/dev/null",
            &status);
    ASSERT_EQ(0, status);
    std::istringstream lines(readFile(trace));
    std::string line;
    std::string fd;
    std::vector<std::string> calls;
    std::regex call(R"(^\d+ +(\w+)\((\d+)(?:, ([^"]*?|".*"\.*, \d+))?\) += (-?\d+))");
    while (std::getline(lines, line)) {
        // The host opens device files beneath the root with openat2 where the kernel (or the
        // emulator) has it, else name by name.
        if (line.find(hostPath(kEnvDevice) + "\", O_RDWR") != std::string::npos ||
            line.find("\"dev/block/env\", {flags=O_RDWR") != std::string::npos ||
            line.find("\"env\", O_RDWR") != std::string::npos) {
            fd = line.substr(line.rfind(' ') + 1);
            calls.clear();
            continue;
        }
        std::smatch match;
        if (fd.empty() || !std::regex_search(line, match, call) || match[2] != fd) continue;
        std::string arguments = match[3];
        if (match[1] == "write") arguments = arguments.substr(arguments.rfind(' ') + 1);
        calls.push_back(std::string(match[1]) + "(" + arguments + ")=" + std::string(match[4]));
        if (match[1] == "close") break;
    }
    EXPECT_EQ((std::vector<std::string>{"flock(LOCK_EX)=0", "lseek(0, SEEK_SET)=0",
                                        "lseek(0, SEEK_SET)=0", "write(65536)=65536",
                                        "fdatasync()=0", "lseek(65536, SEEK_SET)=65536",
                                        "write(65536)=65536", "fdatasync()=0", "close()=0"}),
              calls);
}

}  // namespace
}  // namespace vesk::test
