// setHDMIOutputMode() seen from another process: the custom mode and the selection that goes
// with it are stored as one change, so that a reader never finds the new mode beside the
// best-mode flag or hdmimode of before.
#include <ostream>
#include <string>

#include "ChildProcess.h"
#include "DisplayModeFixture.h"
#include "Ubootenv.h"

namespace vesk::test {
namespace {

constexpr int kRounds = 20;

// The three variables a reader finds, in one load.
struct Selection {
    std::string customMode;
    std::string bestMode;
    std::string hdmiMode;
    bool operator==(const Selection& other) const {
        return customMode == other.customMode && bestMode == other.bestMode &&
               hdmiMode == other.hdmiMode;
    }
};

void PrintTo(const Selection& selection, std::ostream* os) {
    *os << selection.customMode << " " << selection.bestMode << " " << selection.hdmiMode;
}

// The factory's selection, and what applying 1920 x 1080 makes of it (written by hand).
const Selection kBefore = {"0", "true", "1080p60hz"};
const Selection kApplied = {kMode1920x1080, "false", "999p60hz"};

std::string valueOf(Ubootenv& env, const char* name) {
    const char* value = env.getValue(name);
    return value != nullptr ? value : "<absent>";
}

Selection load() {
    Ubootenv env;
    return {valueOf(env, "ubootenv.var.custom_mode"), valueOf(env, "ubootenv.var.is.bestmode"),
            valueOf(env, "ubootenv.var.hdmimode")};
}

using ApplyOutputModeAcrossProcessesTest = DisplayModeTest;

TEST_F(ApplyOutputModeAcrossProcessesTest, AReaderSeesTheModeAndItsSelectionChangeTogether) {
    ASSERT_EQ(kBefore, load());
    Child writer([] {
        for (int round = 0; round < kRounds; ++round) {
            {
                // Back to the factory's selection, itself as one change.
                Ubootenv env;
                Ubootenv::Transaction transaction(env);
                if (env.updateValue("ubootenv.var.custom_mode", kBefore.customMode.c_str()) != 0 ||
                    env.updateValue("ubootenv.var.is.bestmode", kBefore.bestMode.c_str()) != 0 ||
                    env.updateValue("ubootenv.var.hdmimode", kBefore.hdmiMode.c_str()) != 0) {
                    return 1;
                }
            }
            DisplayModeControl control;
            if (control.verify(8470, 1920, 1080, 60) != 1 || control.setHDMIOutputMode() != 1) {
                return 2;
            }
        }
        return 0;
    });
    int loads = 0;
    int mixed = 0;
    Selection firstMixed;
    while (!writer.ended()) {
        Selection seen = load();
        ++loads;
        if (!(seen == kBefore) && !(seen == kApplied) && mixed++ == 0) firstMixed = seen;
    }
    ChildEnd end = writer.wait();
    ASSERT_TRUE(end.exited);
    EXPECT_EQ(0, end.code);
    EXPECT_GT(loads, 0);
    EXPECT_EQ(0, mixed) << "first seen: " << ::testing::PrintToString(firstMixed);
    EXPECT_EQ(kApplied, load());
}

}  // namespace
}  // namespace vesk::test
