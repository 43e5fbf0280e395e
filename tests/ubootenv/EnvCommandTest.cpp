// veskdm env print / get / set, on the device root's partition and on any image (--device),
// run as the built binary.
#include <gtest/gtest.h>
#include <unistd.h>

#include "BuiltProgram.h"
#include "EnvFixture.h"

namespace vesk::test {
namespace {

class EnvCommandTest : public EnvTest {
  protected:
    struct Run {
        int status;
        std::string out;
        std::string lastErrorLine;
    };

    Run veskdm(const std::string& arguments) {
        std::string errors = hostPath("/data/stderr.txt");
        Run run{-1, "", ""};
        run.out = runCommand(veskdmCommand() + " --root '" + root.path() + "' " + arguments +
                                     " 2>'" + errors + "'",
                             &run.status);
        std::string text = readFile(errors);
        if (!text.empty() && text.back() == '\n') text.pop_back();
        run.lastErrorLine = text.substr(text.rfind('\n') + 1);
        return run;
    }

    static std::string listing(const Variables& variables) {
        std::string text;
        for (const auto& [key, value] : variables) text += key + "=" + value + "\n";
        return text;
    }
};

TEST_F(EnvCommandTest, PrintListsEveryVariableInPartitionOrder) {
    Run run = veskdm("env print");
    EXPECT_EQ(0, run.status);
    EXPECT_EQ(listing(factoryVariables()), run.out);
}

TEST_F(EnvCommandTest, PrintSkipsStringsWithoutEquals) {
    std::string copy = envCopy(dataArea({"a=1", "junk", "b=2"}));
    writeDevice(kEnvDevice, copy + copy);
    Run run = veskdm("env print");
    EXPECT_EQ(0, run.status);
    EXPECT_EQ("a=1\nb=2\n", run.out);
}

TEST_F(EnvCommandTest, GetPrintsTheBareValueWithOrWithoutThePrefix) {
    EXPECT_EQ("1080p60hz\n", veskdm("env get hdmimode").out);
    EXPECT_EQ("1080p60hz\n", veskdm("env get ubootenv.var.hdmimode").out);
    Run run = veskdm("env get is.bestmode");
    EXPECT_EQ(0, run.status);
    EXPECT_EQ("true\n", run.out);
}

TEST_F(EnvCommandTest, SetSavesBothCopies) {
    Run run = veskdm("env set hdmimode 720p60hz");
    EXPECT_EQ(0, run.status);
    EXPECT_EQ("", run.out);
    Variables expected = factoryVariables();
    expected[4].second = "720p60hz";
    EXPECT_EQ(envImage(expected), readDevice(kEnvDevice));
    EXPECT_EQ("720p60hz\n", veskdm("env get hdmimode").out);
}

TEST_F(EnvCommandTest, SetWithThePrefixAndANewVariable) {
    EXPECT_EQ(0, veskdm("env set ubootenv.var.panel_type 'lcd 1'").status);
    Variables expected = factoryVariables();
    expected.emplace_back("panel_type", "lcd 1");
    EXPECT_EQ(envImage(expected), readDevice(kEnvDevice));
    EXPECT_EQ(listing(expected), veskdm("env print").out);
}

TEST_F(EnvCommandTest, DeviceOptionWorksOnAnyImage) {
    std::string image = hostPath("/data/other.img");
    Variables variables = {{"hdmimode", "480p60hz"}, {"bootcmd", "run x"}};
    writeFile(image, envImage(variables));
    std::string rootEnv = readDevice(kEnvDevice);
    EXPECT_EQ(listing(variables), veskdm("env print --device '" + image + "'").out);
    EXPECT_EQ("480p60hz\n", veskdm("env get hdmimode --device '" + image + "'").out);
    EXPECT_EQ(0, veskdm("env set bootcmd 'run y' --device '" + image + "'").status);
    variables[1].second = "run y";
    EXPECT_EQ(envImage(variables), readFile(image));
    EXPECT_EQ(rootEnv, readDevice(kEnvDevice));
}

TEST_F(EnvCommandTest, NoSuchVariableIsAnError) {
    Run run = veskdm("env get panel_type");
    EXPECT_EQ(2, run.status);
    EXPECT_EQ("", run.out);
    EXPECT_EQ("veskdm: no such variable: panel_type", run.lastErrorLine);
}

TEST_F(EnvCommandTest, AMissingDeviceIsAnErrorWhenReading) {
    std::string missing = hostPath("/data/missing.img");
    for (std::string command : {"env print", "env get hdmimode"}) {
        Run run = veskdm(command + " --device '" + missing + "'");
        EXPECT_EQ(1, run.status) << command;
        EXPECT_EQ("", run.out) << command;
        EXPECT_EQ("veskdm: cannot read the boot loader's environment from " + missing +
                          ": No such file or directory",
                  run.lastErrorLine)
                << command;
    }
    EXPECT_NE(0, access(missing.c_str(), F_OK));
}

// An erased partition (every byte 0xff) holds no environment: nothing is written over it.
TEST_F(EnvCommandTest, AnUnreadableRootPartitionIsAnError) {
    std::string erased(131072, '\xff');
    writeDevice(kEnvDevice, erased);
    std::string copy = "fails its CRC (stored 0xffffffff, computed 0x" +
                       hex8(crcOf(std::string(65532, '\xff'))) + ")";
    Run run = veskdm("env set hdmimode 720p60hz");
    EXPECT_EQ(1, run.status);
    EXPECT_EQ(
            "veskdm: cannot read the boot loader's environment from /dev/block/env: no valid "
            "copy: copy A " +
                    copy + ", copy B " + copy,
            run.lastErrorLine);
    EXPECT_EQ(erased, readDevice(kEnvDevice));
}

TEST_F(EnvCommandTest, ATooLongValueIsRefusedAndNothingWritten) {
    std::string before = readDevice(kEnvDevice);
    Run run = veskdm("env set hdmimode " + std::string(4096, 'v'));
    EXPECT_EQ(2, run.status);
    EXPECT_EQ("veskdm: value longer than 4095 characters", run.lastErrorLine);
    EXPECT_EQ(before, readDevice(kEnvDevice));
}

TEST_F(EnvCommandTest, BadNamesAreRefusedAndNothingWritten) {
    std::string before = readDevice(kEnvDevice);
    Run tooLong = veskdm("env set " + std::string(256, 'k') + " 1");
    EXPECT_EQ(2, tooLong.status);
    EXPECT_EQ("veskdm: variable name longer than 255 characters", tooLong.lastErrorLine);
    Run equals = veskdm("env set a=b 1");
    EXPECT_EQ(2, equals.status);
    EXPECT_EQ("veskdm: variable name contains '='", equals.lastErrorLine);
    Run empty = veskdm("env get ubootenv.var.");
    EXPECT_EQ(2, empty.status);
    EXPECT_EQ("veskdm: empty variable name", empty.lastErrorLine);
    EXPECT_EQ(before, readDevice(kEnvDevice));
}

TEST_F(EnvCommandTest, AValueThatDoesNotFitThePartitionIsRefused) {
    Variables full;
    for (int i = 0; i < 16; ++i)
        full.emplace_back("v" + std::to_string(10 + i), std::string(4000, 'x'));
    std::string image = envImage(full);
    writeDevice(kEnvDevice, image);
    Run run = veskdm("env set extra " + std::string(2000, 'y'));
    EXPECT_EQ(2, run.status);
    EXPECT_EQ("veskdm: no room in the environment for extra", run.lastErrorLine);
    EXPECT_EQ(image, readDevice(kEnvDevice));
}

TEST_F(EnvCommandTest, AFailedSaveIsAnError) {
    // Named like an MTD device, the image file fails the MTD information query.
    std::string image = hostPath("/data/mtd-image");
    writeFile(image, envImage(factoryVariables()));
    Run run = veskdm("env set hdmimode 720p60hz --device '" + image + "'");
    EXPECT_EQ(1, run.status);
    EXPECT_EQ("veskdm: cannot write the environment to " + image + " (-4)", run.lastErrorLine);
    EXPECT_EQ(envImage(factoryVariables()), readFile(image));
}

TEST_F(EnvCommandTest, MissingArgumentsAreUsageErrors) {
    EXPECT_EQ(2, veskdm("env").status);
    EXPECT_EQ(2, veskdm("env get").status);
    EXPECT_EQ(2, veskdm("env set hdmimode").status);
}

TEST_F(EnvCommandTest, TheModulesLogGoesToTheLogFile) {
    std::string log = hostPath("/data/log.json");
    EXPECT_EQ(0, veskdm("--log '" + log + "' env get hdmimode").status);
    std::string lines = readFile(log);
    EXPECT_NE(std::string::npos, lines.find("\"message\":\"[/Ubootenv.cpp, propertyLoad, "));
    EXPECT_NE(std::string::npos, lines.find("\"tag\":\"Ubootenv\""));
}

}  // namespace
}  // namespace vesk::test
