// Two processes updating different variables at the same time while a third loads: every load
// finds copy A valid (the savers hold the device alone), and both copies end valid.
#include <gtest/gtest.h>
#include <unistd.h>

#include <map>

#include "ChildProcess.h"
#include "EnvFixture.h"

namespace vesk::test {
namespace {

constexpr int kUpdates = 200;

// Every factory variable with its factory value, and the writers' keys (if there) numeric.
bool complete(const Ubootenv& env) {
    if (!env.initDone) return false;
    std::map<std::string, std::string> values;
    for (const auto& [key, value] : attributeList(env)) values[key] = value;
    for (const auto& [key, value] : factoryVariables()) {
        if (values[key] != value) return false;
    }
    for (const char* key : {"writer_a", "writer_b"}) {
        auto it = values.find(key);
        if (it == values.end()) continue;
        int number = atoi(it->second.c_str());
        if (std::to_string(number) != it->second || number < 0 || number >= kUpdates) {
            return false;
        }
    }
    return values.size() <= factoryVariables().size() + 2;
}

// A process that updates `name` kUpdates times, each time in a fresh load that must be
// complete: its exit status is 0 when every load and update was.
int writeRepeatedly(const std::string& name) {
    int failures = 0;
    for (int i = 0; i < kUpdates; ++i) {
        Ubootenv env;
        if (!complete(env)) ++failures;
        if (env.updateValue(name.c_str(), std::to_string(i).c_str()) != 0) ++failures;
    }
    return failures == 0 ? 0 : 1;
}

using UbootenvConcurrencyTest = EnvTest;

TEST_F(UbootenvConcurrencyTest, TwoWritersAndAReaderNeverSeeATornCopy) {
    Child a([] { return writeRepeatedly("ubootenv.var.writer_a"); });
    Child b([] { return writeRepeatedly("ubootenv.var.writer_b"); });
    int loads = 0;
    int incomplete = 0;
    while (!a.ended() || !b.ended()) {
        Ubootenv env;
        ++loads;
        if (!complete(env)) ++incomplete;
    }
    ChildEnd endA = a.wait();
    ChildEnd endB = b.wait();
    ASSERT_TRUE(endA.exited);
    EXPECT_EQ(0, endA.code);
    ASSERT_TRUE(endB.exited);
    EXPECT_EQ(0, endB.code);
    EXPECT_GT(loads, 0);
    EXPECT_EQ(0, incomplete);
    // No load ever had to fall back to copy B.
    for (const auto& line : takeEnvLog()) {
        EXPECT_EQ(kInfo, line.priority) << line.text;
    }

    std::string image = readDevice(kEnvDevice);
    ASSERT_EQ(131072u, image.size());
    EXPECT_TRUE(copyValid(image, 0));
    EXPECT_TRUE(copyValid(image, 65536));
    EXPECT_EQ(image.substr(0, 65536), image.substr(65536));
    Ubootenv env;
    EXPECT_TRUE(complete(env));
    // The last save of one writer is in it.
    std::string a199 = env.get("writer_a") != nullptr ? env.get("writer_a") : "";
    std::string b199 = env.get("writer_b") != nullptr ? env.get("writer_b") : "";
    EXPECT_TRUE(a199 == "199" || b199 == "199") << a199 << " " << b199;
}

}  // namespace
}  // namespace vesk::test
