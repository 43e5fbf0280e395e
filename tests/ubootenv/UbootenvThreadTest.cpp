// Threads of one process sharing one object, as HIDL threads do: updates of different keys and
// lookups of a third are serialised by the object's lock (the tsan preset checks for races).
#include <gtest/gtest.h>

#include <thread>

#include "EnvFixture.h"

namespace vesk::test {
namespace {

using UbootenvThreadTest = EnvTest;

TEST_F(UbootenvThreadTest, UpdatesAndLookupsFromSeveralThreads) {
    Ubootenv env;
    constexpr int kRounds = 40;
    int updateFailures = 0;
    int otherFailures = 0;
    int lookupFailures = 0;
    std::thread hdmi([&] {
        for (int i = 0; i < kRounds; ++i) {
            if (env.updateValue("ubootenv.var.hdmimode", i % 2 ? "720p60hz" : "2160p60hz") != 0) {
                ++updateFailures;
            }
        }
    });
    std::thread custom([&] {
        for (int i = 0; i < kRounds; ++i) {
            std::string value = "1920,1080," + std::to_string(i);
            if (env.updateValue("ubootenv.var.custom_mode", value.c_str()) != 0) ++otherFailures;
        }
    });
    std::thread lookups([&] {
        for (int i = 0; i < 4 * kRounds; ++i) {
            const char* value = env.getValue("ubootenv.var.is.bestmode");
            if (value == nullptr || std::string(value) != "true") ++lookupFailures;
        }
    });
    hdmi.join();
    custom.join();
    lookups.join();
    EXPECT_EQ(0, updateFailures);
    EXPECT_EQ(0, otherFailures);
    EXPECT_EQ(0, lookupFailures);

    Variables expected = factoryVariables();
    expected[4].second = "720p60hz";                                  // hdmimode, last round odd
    expected[7].second = "1920,1080," + std::to_string(kRounds - 1);  // custom_mode
    EXPECT_EQ(expected, attributeList(env));
    EXPECT_EQ(envImage(expected), readDevice(kEnvDevice));
}

}  // namespace
}  // namespace vesk::test
