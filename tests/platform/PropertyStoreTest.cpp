// The host property store keeps libcutils' contract and is shared between processes.
#include <cutils/properties.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <thread>
#include <vector>

#include "BuiltProgram.h"
#include "TestRoot.h"

namespace vesk::test {
namespace {

using PropertyStoreTest = RootTest;

TEST_F(PropertyStoreTest, UnsetPropertyYieldsDefaultAndItsLength) {
    char value[PROPERTY_VALUE_MAX];
    EXPECT_EQ(1, property_get("persist.vesk.unset", value, "E"));
    EXPECT_STREQ("E", value);
    EXPECT_EQ(0, property_get("persist.vesk.unset", value, nullptr));
    EXPECT_STREQ("", value);
}

TEST_F(PropertyStoreTest, SetValueIsReadBack) {
    ASSERT_EQ(0, property_set("persist.vesk.device.log.level", "D"));
    char value[PROPERTY_VALUE_MAX];
    EXPECT_EQ(1, property_get("persist.vesk.device.log.level", value, "E"));
    EXPECT_STREQ("D", value);
    ASSERT_EQ(0, property_set("persist.vesk.device.log.level", "Info"));
    EXPECT_EQ(4, property_get("persist.vesk.device.log.level", value, "E"));
    EXPECT_STREQ("Info", value);
}

TEST_F(PropertyStoreTest, EmptyValueReadsAsDefault) {
    ASSERT_EQ(0, property_set("persist.vesk.empty", ""));
    char value[PROPERTY_VALUE_MAX];
    EXPECT_EQ(3, property_get("persist.vesk.empty", value, "abc"));
    EXPECT_STREQ("abc", value);
}

TEST_F(PropertyStoreTest, ValueOf91BytesIsKept92IsRefused) {
    std::string longest(PROPERTY_VALUE_MAX - 1, 'x');
    ASSERT_EQ(0, property_set("persist.vesk.long", longest.c_str()));
    char value[PROPERTY_VALUE_MAX];
    EXPECT_EQ(91, property_get("persist.vesk.long", value, ""));
    EXPECT_EQ(longest, value);
    std::string tooLong(PROPERTY_VALUE_MAX, 'y');
    EXPECT_LT(property_set("persist.vesk.long", tooLong.c_str()), 0);
    EXPECT_EQ(longest, getProperty("persist.vesk.long"));
}

TEST_F(PropertyStoreTest, ValueSetByAnotherProcessIsSeenOnTheNextRead) {
    char value[PROPERTY_VALUE_MAX];
    property_get("persist.vesk.shared", value, "none");
    EXPECT_STREQ("none", value);
    int status = 0;
    runCommand("VESK_ROOT='" + root.path() + "' " + veskdmCommand() +
                       " prop set "
                       "persist.vesk.shared fromchild",
               &status);
    ASSERT_EQ(0, status);
    EXPECT_EQ(9, property_get("persist.vesk.shared", value, "none"));
    EXPECT_STREQ("fromchild", value);
}

TEST_F(PropertyStoreTest, ManyThreadsSetAndGetDistinctProperties) {
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([t] {
            std::string name = "persist.vesk.thread." + std::to_string(t);
            for (int i = 0; i < 500; ++i) {
                std::string v = std::to_string(t) + ":" + std::to_string(i);
                EXPECT_EQ(0, property_set(name.c_str(), v.c_str()));
                char value[PROPERTY_VALUE_MAX];
                property_get(name.c_str(), value, "");
                EXPECT_EQ(v, value);
            }
        });
    }
    for (auto& thread : threads) thread.join();
}

TEST_F(PropertyStoreTest, ReaderNeverSeesATornValue) {
    std::atomic<bool> done{false};
    std::thread writer([&] {
        for (int i = 0; i < 2000; ++i) {
            property_set("persist.vesk.torn",
                         (i % 2) ? std::string(80, 'a').c_str() : std::string(40, 'b').c_str());
        }
        done = true;
    });
    while (!done) {
        std::string v = getProperty("persist.vesk.torn");
        if (v.empty()) continue;
        EXPECT_TRUE(v == std::string(80, 'a') || v == std::string(40, 'b')) << v;
    }
    writer.join();
}

}  // namespace
}  // namespace vesk::test
