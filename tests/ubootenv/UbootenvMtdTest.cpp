// Saving to an MTD device, emulated on a file: every branch of the erase and write, for erase
// blocks smaller than, equal to, between and larger than twice the copy size.
#include <gtest/gtest.h>
#include <unistd.h>

#include "EnvFixture.h"
#include "FailingAllocation.h"
#include "FailingSeek.h"
#include "FileMtd.h"

namespace vesk::test {
namespace {

const std::string kOtherData(131072, '\xa5');  // what else the flash holds after both copies

Variables updated() {
    Variables variables = factoryVariables();
    variables[4].second = "720p60hz";  // hdmimode
    return variables;
}

// 65536-byte copies on a device named like an MTD character device, opened as given.
class MtdSaveTest : public EnvTest {
  protected:
    MtdSaveTest() : device(hostPath("/dev/mtd0")) {
        writeFile(device, envImage(factoryVariables()) + kOtherData);
    }

    // Loads, changes hdmimode and saves through updateValue; returns its result.
    int update() {
        Ubootenv env(device.c_str());
        EXPECT_TRUE(env.initDone);
        takeEnvLog();
        return env.updateValue("ubootenv.var.hdmimode", "720p60hz");
    }

    EnvLogs savedLog() const {
        return {updateLine("ubootenv.var.hdmimode", "720p60hz"),
                {kInfo, "updateValue", "[ubootenv] Save ubootenv to " + device + " succeed!\n"}};
    }

    static std::string newCopy() { return envCopy(dataArea(envStrings(updated()))); }

    std::string device;
};

TEST_F(MtdSaveTest, EraseBlockSmallerThanACopyErasesBothAndWritesEach) {
    FileMtd mtd(131072, 16384);
    EXPECT_EQ(0, update());
    ASSERT_EQ(1u, mtd.erases().size());
    EXPECT_EQ(0u, mtd.erases()[0].start);
    EXPECT_EQ(131072u, mtd.erases()[0].length);
    EXPECT_EQ(newCopy() + newCopy() + kOtherData, readFile(device));
    EXPECT_EQ(savedLog(), takeEnvLog());
}

TEST_F(MtdSaveTest, EraseBlockEqualToACopyErasesBothAndWritesEach) {
    FileMtd mtd(131072, 65536);
    EXPECT_EQ(0, update());
    ASSERT_EQ(1u, mtd.erases().size());
    EXPECT_EQ(0u, mtd.erases()[0].start);
    EXPECT_EQ(131072u, mtd.erases()[0].length);
    EXPECT_EQ(newCopy() + newCopy() + kOtherData, readFile(device));
    EXPECT_EQ(savedLog(), takeEnvLog());
}

TEST_F(MtdSaveTest, EraseBlockBetweenOneAndTwoCopiesLeavesTheRegionErased) {
    FileMtd mtd(131072, 98304);
    EXPECT_EQ(0, update());
    ASSERT_EQ(1u, mtd.erases().size());
    EXPECT_EQ(0u, mtd.erases()[0].start);
    EXPECT_EQ(131072u, mtd.erases()[0].length);
    EXPECT_EQ(std::string(131072, '\xff') + kOtherData, readFile(device));
    EnvLogs expected = savedLog();
    expected.insert(expected.begin() + 1, {kError, "save", "data is NULL\n"});
    EXPECT_EQ(expected, takeEnvLog());
}

TEST_F(MtdSaveTest, EraseBlockLargerThanTwoCopiesIsRewrittenWhole) {
    FileMtd mtd(131072, 262144);
    EXPECT_EQ(0, update());
    ASSERT_EQ(1u, mtd.erases().size());
    EXPECT_EQ(0u, mtd.erases()[0].start);
    EXPECT_EQ(262144u, mtd.erases()[0].length);
    EXPECT_EQ(newCopy() + newCopy() + kOtherData, readFile(device));
    EXPECT_EQ(savedLog(), takeEnvLog());
}

TEST_F(MtdSaveTest, ShortReadOfTheEraseBlockReturnsMinusSix) {
    FileMtd mtd(131072, 524288);  // larger than the whole file
    Ubootenv env(device.c_str());
    std::string before = readFile(device);
    env.set("hdmimode", "720p60hz", false);
    takeEnvLog();
    EXPECT_EQ(-6, env.save());
    EXPECT_TRUE(mtd.erases().empty());
    EXPECT_EQ(before, readFile(device));
    EXPECT_EQ((EnvLogs{{kError, "save", "[ubootenv] Read access failed !!!\n"}}), takeEnvLog());
}

TEST_F(MtdSaveTest, FailedEraseReturnsMinusTwo) {
    FileMtd mtd(131072, 262144);
    mtd.failErase(-1);
    Ubootenv env(device.c_str());
    std::string before = readFile(device);
    env.set("hdmimode", "720p60hz", false);
    takeEnvLog();
    EXPECT_EQ(-2, env.save());
    EXPECT_EQ(1u, mtd.erases().size());
    EXPECT_EQ(before, readFile(device));
    EXPECT_EQ((EnvLogs{{kError, "save", "[ubootenv] MEMERASE SYS_LOGE -1\n"}}), takeEnvLog());
}

TEST_F(MtdSaveTest, FailedInformationQueryReturnsMinusFour) {
    FileMtd mtd(131072, 65536);
    mtd.failGetInfo(1);
    Ubootenv env(device.c_str());
    std::string before = readFile(device);
    env.set("hdmimode", "720p60hz", false);
    takeEnvLog();
    EXPECT_EQ(-4, env.save());
    EXPECT_TRUE(mtd.erases().empty());
    EXPECT_EQ(before, readFile(device));
    EXPECT_EQ((EnvLogs{{kError, "save", "[ubootenv] Get MTD info error\n"}}), takeEnvLog());
}

TEST_F(MtdSaveTest, NoMemoryForTheEraseBlockReturnsMinusFive) {
    FileMtd mtd(131072, 0xfffff000u);
    std::string before = readFile(device);
    Ubootenv env(device.c_str());
    env.set("hdmimode", "720p60hz", false);
    takeEnvLog();
    {
        LargeMallocFails noRoomForTheEraseBlock(64 << 20);
        EXPECT_EQ(-5, env.save());
    }
    EXPECT_EQ(before, readFile(device));
    EXPECT_EQ((EnvLogs{{kError, "save", "[ubootenv] Out of memory!!!\n"}}), takeEnvLog());
}

// An MTD device that cannot seek (its name says MTD, so a save takes the MTD path).
class MtdSeekTest : public EnvTest {
  protected:
    MtdSeekTest() : device(hostPath("/dev/mtd2")) { writeFile(device, image); }

    std::string device;
    const std::string image = envImage(factoryVariables());
};

TEST_F(MtdSeekTest, FailedSeekToTheStartReturnsMinusSeven) {
    FileMtd mtd(131072, 98304);
    mtd.eraseWithoutWriting();
    Ubootenv env(device.c_str());
    ASSERT_TRUE(env.initDone);
    env.set("hdmimode", "720p60hz", false);
    takeEnvLog();
    {
        SeeksFail seeksFail;
        EXPECT_EQ(-7, env.save());
    }
    EXPECT_EQ(image, readFile(device));  // nothing written
    EnvLogs log = takeEnvLog();
    ASSERT_EQ(1u, log.size());
    EXPECT_EQ((EnvLog{kError, "save",
                      "save() " + std::to_string(log[0].line) + ": err is " +
                              std::to_string(ESPIPE) + "\n"}),
              log[0]);
}

TEST_F(MtdSeekTest, FailedSeekToCopyBIsLoggedAndCopyBWrittenAnyway) {
    FileMtd mtd(131072, 65536);
    mtd.eraseWithoutWriting();
    Ubootenv env(device.c_str());
    ASSERT_TRUE(env.initDone);
    takeEnvLog();
    {
        // Copy B then goes where copy A ended, which is where it belongs.
        SeeksFail seeksFail;
        EXPECT_EQ(0, env.updateValue("ubootenv.var.hdmimode", "720p60hz"));
    }
    std::string copy = envCopy(dataArea(envStrings(updated())));
    EXPECT_EQ(copy + copy, readFile(device));
    EXPECT_EQ((EnvLogs{updateLine("ubootenv.var.hdmimode", "720p60hz"),
                       {kError, "save", "[ubootenv] can not lseek, seek num = -1 \n"},
                       {kInfo, "updateValue",
                        "[ubootenv] Save ubootenv to " + device + " succeed!\n"}}),
              takeEnvLog());
}

// 32768-byte copies as the MTD layer reports them for /dev/block/by-name/ubootenv, which
// links to /dev/mtd1; the object is then pointed at /dev/mtd1 itself.
class SmallMtdSaveTest : public EnvTest {
  protected:
    void SetUp() override {
        removeDevice(kEnvDevice);
        // Copy A: CRC word, 32760 bytes of data, 4 bytes beyond the CRC ("ZZZZ"); then other
        // bytes up to copy B at 65536; copy B; the rest of the flash.
        copyA = envCopy(dataArea(envStrings(factoryVariables()), 32760) + "ZZZZ", 32760);
        image = copyA + std::string(32768, '\x5a') + copyA + std::string(163840, '\xa5');
        writeDevice("/dev/mtd1", image);
        std::string link = "mkdir -p '" + hostPath("/dev/block/by-name") +
                           "' && ln -s ../../mtd1 '" + hostPath("/dev/block/by-name/ubootenv") + "'";
        ASSERT_EQ(0, system(link.c_str()));
    }

    int update(uint32_t eraseSize) {
        FileMtd mtd(32768, eraseSize);
        Ubootenv env;
        EXPECT_TRUE(env.initDone);
        EXPECT_EQ(32768u, env.partitionSize);
        EXPECT_EQ(factoryVariables(), attributeList(env));
        snprintf(env.devicePath, sizeof(env.devicePath), "%s", "/dev/mtd1");
        takeEnvLog();
        int result = env.updateValue("ubootenv.var.hdmimode", "720p60hz");
        erases = mtd.erases();
        return result;
    }

    // The new copy keeps the 4 bytes beyond the CRC as they were read.
    static std::string newCopy() {
        return envCopy(dataArea(envStrings(updated()), 32760) + "ZZZZ", 32760);
    }
    std::string flash(size_t from, size_t to) const {
        return readDevice("/dev/mtd1").substr(from, to - from);
    }

    std::string copyA;
    std::string image;
    std::vector<erase_info_user> erases;
};

TEST_F(SmallMtdSaveTest, EraseBlockSmallerThanACopy) {
    EXPECT_EQ(0, update(16384));
    ASSERT_EQ(1u, erases.size());
    EXPECT_EQ(65536u, erases[0].length);
    EXPECT_EQ(newCopy(), flash(0, 32768));
    EXPECT_EQ(std::string(32768, '\xff'), flash(32768, 65536));
    EXPECT_EQ(newCopy(), flash(65536, 98304));
    EXPECT_EQ(image.substr(98304), flash(98304, image.size()));
}

TEST_F(SmallMtdSaveTest, EraseBlockEqualToACopy) {
    EXPECT_EQ(0, update(32768));
    ASSERT_EQ(1u, erases.size());
    EXPECT_EQ(65536u, erases[0].length);
    EXPECT_EQ(newCopy(), flash(0, 32768));
    EXPECT_EQ(std::string(32768, '\xff'), flash(32768, 65536));
    EXPECT_EQ(newCopy(), flash(65536, 98304));
    EXPECT_EQ(image.substr(98304), flash(98304, image.size()));
}

TEST_F(SmallMtdSaveTest, EraseBlockBetweenOneAndTwoCopies) {
    EXPECT_EQ(0, update(49152));
    ASSERT_EQ(1u, erases.size());
    EXPECT_EQ(65536u, erases[0].length);
    EXPECT_EQ(std::string(65536, '\xff'), flash(0, 65536));
    EXPECT_EQ(image.substr(65536), flash(65536, image.size()));
    EXPECT_EQ((EnvLogs{updateLine("ubootenv.var.hdmimode", "720p60hz"),
                       {kError, "save", "data is NULL\n"},
                       {kInfo, "updateValue", "[ubootenv] Save ubootenv to /dev/mtd1 succeed!\n"}}),
              takeEnvLog());
}

TEST_F(SmallMtdSaveTest, EraseBlockLargerThanTwoCopies) {
    EXPECT_EQ(0, update(131072));
    ASSERT_EQ(1u, erases.size());
    EXPECT_EQ(131072u, erases[0].length);
    EXPECT_EQ(newCopy(), flash(0, 32768));
    EXPECT_EQ(image.substr(32768, 32768), flash(32768, 65536));  // kept through the buffer
    EXPECT_EQ(newCopy(), flash(65536, 98304));
    EXPECT_EQ(image.substr(98304), flash(98304, image.size()));
    EXPECT_EQ((EnvLogs{updateLine("ubootenv.var.hdmimode", "720p60hz"),
                       {kInfo, "updateValue", "[ubootenv] Save ubootenv to /dev/mtd1 succeed!\n"}}),
              takeEnvLog());
}

}  // namespace
}  // namespace vesk::test
