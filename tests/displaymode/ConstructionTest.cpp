// Constructing the control (its line, then the environment it loads) and ControlManager's
// one line.
#include <unistd.h>

#include "ControlManager.h"
#include "DisplayModeFixture.h"

namespace vesk::test {
namespace {

using vesk::hardware::veskdevicemanager::implementation::ControlManager;

using ConstructionTest = DisplayModeTest;

TEST_F(ConstructionTest, AnnouncesItselfBeforeLoadingTheEnvironment) {
    setLevel("I");
    DisplayModeControl control;
    LogLines log = capturedLog();
    ASSERT_FALSE(log.empty());
    EXPECT_EQ(controlInfo("DisplayModeControl construct\n"), log.front());
    EXPECT_EQ(1, countLines(kControlTag, "construct"));
    EXPECT_LT(0, countLines(kEnvTag, "[ubootenv] using /dev/block/env with size(65536) (65532)"))
            << "the environment is loaded after the line";
}

TEST_F(ConstructionTest, WritesNoLineBelowInformationLevel) {
    for (const char* level : {"E", "W"}) {
        setLevel(level);
        vesk::host::clearCapturedLog();
        DisplayModeControl control;
        EXPECT_EQ(LogLines{}, capturedLogWithTag(kControlTag)) << level;
    }
}

TEST_F(ConstructionTest, LoadsTheEnvironmentAfresh) {
    storeEnv("ubootenv.var.custom_mode", kMode1280x720);
    DisplayModeControl control;
    timing_t timing;
    control.getHDMIOutputMode(timing);
    EXPECT_EQ(1280u, timing.h_active);
    EXPECT_EQ(720u, timing.v_active);
}

TEST_F(ConstructionTest, AnEnvironmentThatCannotBeLoadedIsNotReported) {
    setLevel("I");
    ASSERT_EQ(0, unlink((root / kEnvPartition).c_str()));
    DisplayModeControl control;
    EXPECT_EQ(LogLines{controlInfo("DisplayModeControl construct\n")},
              capturedLogWithTag(kControlTag));
}

TEST_F(ConstructionTest, DestructionWritesNothing) {
    setLevel("D");
    { DisplayModeControl control; }
    LogLines afterConstruction = capturedLog();
    vesk::host::clearCapturedLog();
    {
        DisplayModeControl control;
        vesk::host::clearCapturedLog();
    }
    EXPECT_EQ(LogLines{}, capturedLog());
    EXPECT_FALSE(afterConstruction.empty());
}

TEST_F(ConstructionTest, ControlManagerAnnouncesItselfAtDebugLevelOnly) {
    setLevel("D");
    { ControlManager manager; }
    EXPECT_EQ((LogLines{lineOf(ANDROID_LOG_DEBUG, kManagerTag, "ControlManager construct")}),
              capturedLog());
}

TEST_F(ConstructionTest, ControlManagerIsSilentAtOtherLevels) {
    for (const char* level : {"I", "W", "E", "d", "x"}) {
        setLevel(level);
        { ControlManager manager; }
        EXPECT_EQ(LogLines{}, capturedLog()) << level;
    }
}

TEST_F(ConstructionTest, ControlManagerIsSilentWithTheLevelUnset) {
    { ControlManager manager; }
    EXPECT_EQ(LogLines{}, capturedLog());
}

}  // namespace
}  // namespace vesk::test
