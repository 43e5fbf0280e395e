// Working together with U-Boot's own tools: mkenvimage (u-boot-tools) builds a copy, and
// fw_printenv / fw_setenv (libubootenv-tool) read and change each copy through a single-copy
// configuration of their own ("DEVICE OFFSET SIZE"). Two lines in one configuration would make
// libubootenv expect redundant copies with a flags byte after the CRC, which this partition
// does not have.
#include <gtest/gtest.h>

#include <algorithm>

#include "EnvFixture.h"

namespace vesk::test {
namespace {

const Variables kVariables = {
        {"bootdelay", "1"},
        {"bootcmd", "run storeboot"},
        {"bootargs", "console=ttyS0,115200 root=/dev/mmcblk0p2 rw"},
        {"hdmimode", "1080p60hz"},
        {"is.bestmode", "true"},
        {"custom_mode", "0"},
        {"outputmode", "1080p60hz"},
        {"cvbsmode", "576cvbs"},
        {"display_width", "1920"},
        {"display_height", "1080"},
        {"empty_value", ""},
        {"upgrade_step", "2"},
};

class PeerToolsTest : public EnvTest {
  protected:
    void SetUp() override {
        device = hostPath(kEnvDevice);
        configA = hostPath("/data/copy-a.config");
        configB = hostPath("/data/copy-b.config");
        writeFile(configA, device + " 0x0 0x10000\n");
        writeFile(configB, device + " 0x10000 0x10000\n");
    }

    // Both copies of the partition made by mkenvimage from `variables`.
    void makeImage(const Variables& variables) {
        std::string text;
        for (const auto& [key, value] : variables) text += key + "=" + value + "\n";
        std::string input = hostPath("/data/env.txt");
        std::string copy = hostPath("/data/copy.bin");
        writeFile(input, text);
        int status = -1;
        runCommand("mkenvimage -s 0x10000 -o '" + copy + "' '" + input + "' 2>&1", &status);
        ASSERT_EQ(0, status);
        std::string bytes = readFile(copy);
        ASSERT_EQ(65536u, bytes.size());
        writeDevice(kEnvDevice, bytes + bytes);
    }

    // fw_printenv's lines (sorted) for one copy.
    std::vector<std::string> printenv(const std::string& config, const std::string& name = "") {
        int status = -1;
        std::string output =
                runCommand("fw_printenv -c '" + config + "' " + name + " 2>/dev/null", &status);
        EXPECT_EQ(0, status) << config;
        std::vector<std::string> lines;
        size_t start = 0;
        for (size_t end; (end = output.find('\n', start)) != std::string::npos; start = end + 1) {
            lines.push_back(output.substr(start, end - start));
        }
        std::sort(lines.begin(), lines.end());
        return lines;
    }

    static std::vector<std::string> sortedLines(const Variables& variables) {
        std::vector<std::string> lines;
        for (const auto& [key, value] : variables) lines.push_back(key + "=" + value);
        std::sort(lines.begin(), lines.end());
        return lines;
    }

    std::string device;
    std::string configA;
    std::string configB;
};

TEST_F(PeerToolsTest, AnImageFromMkenvimageLoadsWithEveryVariable) {
    makeImage(kVariables);
    Ubootenv env;
    EXPECT_TRUE(env.initDone);
    EXPECT_EQ(kVariables, attributeList(env));
    EXPECT_EQ(loadedLog(), takeEnvLog());
}

TEST_F(PeerToolsTest, FwPrintenvReadsAnUpdateFromBothCopies) {
    makeImage(kVariables);
    Ubootenv env;
    ASSERT_EQ(0, env.updateValue("ubootenv.var.hdmimode", "2160p60hz"));
    ASSERT_EQ(0, env.updateValue("ubootenv.var.panel_type", "lcd_1"));
    for (const auto& config : {configA, configB}) {
        EXPECT_EQ(std::vector<std::string>{"hdmimode=2160p60hz"}, printenv(config, "hdmimode"));
        EXPECT_EQ(std::vector<std::string>{"panel_type=lcd_1"}, printenv(config, "panel_type"));
    }
    Variables expected = kVariables;
    expected[3].second = "2160p60hz";
    expected.emplace_back("panel_type", "lcd_1");
    EXPECT_EQ(sortedLines(expected), printenv(configA));
    EXPECT_EQ(sortedLines(expected), printenv(configB));
}

TEST_F(PeerToolsTest, AValueSetByFwSetenvInCopyAIsReadBack) {
    makeImage(kVariables);
    std::string copyB = readDevice(kEnvDevice).substr(65536);
    int status = -1;
    runCommand("fw_setenv -c '" + configA + "' hdmimode 720p50hz 2>&1", &status);
    ASSERT_EQ(0, status);
    ASSERT_EQ(copyB, readDevice(kEnvDevice).substr(65536));  // fw_setenv wrote copy A only
    Ubootenv env;
    EXPECT_TRUE(env.initDone);
    EXPECT_STREQ("720p50hz", env.getValue("ubootenv.var.hdmimode"));
    Variables expected = kVariables;
    expected[3].second = "720p50hz";
    Variables loaded = attributeList(env);
    EXPECT_EQ(sortedLines(expected), sortedLines(loaded));
    EXPECT_EQ(loadedLog(), takeEnvLog());  // copy A was good
}

TEST_F(PeerToolsTest, AValueSetByFwSetenvInCopyBIsReadWhenCopyAIsBad) {
    makeImage(kVariables);
    int status = -1;
    runCommand("fw_setenv -c '" + configB + "' custom_mode 1920,1080,60 2>&1", &status);
    ASSERT_EQ(0, status);
    std::string image = readDevice(kEnvDevice);
    image[0] ^= 0x01;  // copy A's CRC no longer matches
    writeDevice(kEnvDevice, image);
    Ubootenv env;
    EXPECT_TRUE(env.initDone);
    EXPECT_STREQ("1920,1080,60", env.getValue("ubootenv.var.custom_mode"));
}

TEST_F(PeerToolsTest, FwPrintenvAcceptsTheFactoryPartition) {
    EXPECT_EQ(sortedLines(factoryVariables()), printenv(configA));
    EXPECT_EQ(sortedLines(factoryVariables()), printenv(configB));
}

}  // namespace
}  // namespace vesk::test
