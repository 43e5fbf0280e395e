// The device root: its factory layout, path mapping and the shell runner.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <cstring>

#include "EnvImage.h"
#include "TestRoot.h"
#include "VeskPlatform.h"
#include "vesk/host/DeviceRoot.h"
#include "vesk/host/Seams.h"

namespace vesk::test {
namespace {

using DeviceRootTest = RootTest;

TEST_F(DeviceRootTest, FirstUseCreatesToolsAndTwoCopyEnvironment) {
    for (const char* tool :
         {"/vendor/bin/hdmimode", "/system/bin/test-systemcontrol", "/system/bin/reboot"}) {
        struct stat st {};
        ASSERT_EQ(0, stat((root / tool).c_str(), &st)) << tool;
        EXPECT_TRUE(st.st_mode & S_IXUSR) << tool;
    }
    std::string image = readFile(root / "/dev/block/env");
    ASSERT_EQ(131072u, image.size());
    EXPECT_EQ(image.substr(0, 65536), image.substr(65536));
    EXPECT_TRUE(copyValid(image, 0));
    for (const char* key : {"hdmimode=", "is.bestmode=", "custom_mode="}) {
        EXPECT_NE(std::string::npos, image.find(std::string("\0", 1) + key)) << key;
    }
}

TEST_F(DeviceRootTest, PathsStayBelowTheRoot) {
    EXPECT_EQ(root.path() + "/dev/block/env", vesk::platform::devicePath("/dev/block/env"));
    EXPECT_EQ(root.path() + "/etc/passwd", vesk::platform::devicePath("/../../etc/passwd"));
    EXPECT_EQ(root.path() + "/data/x", vesk::platform::devicePath("data/./y/../x"));
    EXPECT_EQ("", vesk::platform::devicePath(""));
}

TEST_F(DeviceRootTest, CommandsRunTheRootsStandIns) {
    EXPECT_EQ(0, vesk::platform::runCommand("/vendor/bin/hdmimode 999p60hz"));
    EXPECT_EQ(0, vesk::platform::runCommand("test-systemcontrol --p 1 1"));
    EXPECT_EQ("/vendor/bin/hdmimode 999p60hz\n/system/bin/test-systemcontrol --p 1 1\n",
              readFile(root / "/data/shell/invocations.log"));
    EXPECT_EQ("999p60hz\n", readFile(root / "/sys/class/display/mode"));
    int status = vesk::platform::runCommand("/vendor/bin/missing-tool");
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(127, WEXITSTATUS(status));
}

TEST_F(DeviceRootTest, RecorderReceivesCommandsInsteadOfTheShell) {
    std::vector<std::string> commands;
    vesk::host::setShellRecorder([&](const std::string& line) {
        commands.push_back(line);
        return 256;
    });
    EXPECT_EQ(256, vesk::platform::runCommand("/system/bin/reboot -p"));
    EXPECT_EQ(std::vector<std::string>{"/system/bin/reboot -p"}, commands);
    EXPECT_EQ("", readFile(root / "/data/shell/invocations.log"));
    vesk::host::setShellRecorder(nullptr);
}

}  // namespace
}  // namespace vesk::test
