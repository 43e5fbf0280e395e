// The host log sink: capture, JSON lines, discarding and every priority enabled.
#include <android/log.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <nlohmann/json.hpp>

#include "TestRoot.h"
#include "vesk/host/LogSink.h"

namespace vesk::test {
namespace {

using LogSinkTest = RootTest;

TEST_F(LogSinkTest, CaptureKeepsPriorityTagAndExactText) {
    __android_log_print(ANDROID_LOG_DEBUG, "vesk_test", "%s %d\n", "setSysLedState", 48);
    __android_log_print(ANDROID_LOG_VERBOSE, "vesk_test", "no newline");
    LogLines expected = {{ANDROID_LOG_DEBUG, "vesk_test", "setSysLedState 48\n"},
                         {ANDROID_LOG_VERBOSE, "vesk_test", "no newline"}};
    EXPECT_EQ(expected, capturedLog());
}

TEST_F(LogSinkTest, JsonFileHoldsOneObjectPerLine) {
    std::string path = root.path() + "/log.json";
    ASSERT_TRUE(vesk::host::logToJsonFile(path));
    __android_log_print(ANDROID_LOG_ERROR, "tag1", "a \"quoted\" line\n");
    __android_log_print(ANDROID_LOG_INFO, "tag2", "second");
    std::string content = readFile(path);
    auto newline = content.find('\n');
    ASSERT_NE(std::string::npos, newline);
    auto first = nlohmann::json::parse(content.substr(0, newline));
    EXPECT_EQ(nlohmann::json({{"priority", 6}, {"tag", "tag1"}, {"message", "a \"quoted\" line\n"}}),
              first);
    auto second = nlohmann::json::parse(content.substr(newline + 1));
    EXPECT_EQ(nlohmann::json({{"priority", 4}, {"tag", "tag2"}, {"message", "second"}}), second);
}

TEST_F(LogSinkTest, DiscardKeepsNoLineAndPrintsNone) {
    __android_log_print(ANDROID_LOG_INFO, "vesk_test", "before\n");
    vesk::host::discardLog();
    testing::internal::CaptureStderr();
    __android_log_print(ANDROID_LOG_ERROR, "vesk_test", "discarded\n");
    EXPECT_EQ("", testing::internal::GetCapturedStderr());
    LogLines expected = {{ANDROID_LOG_INFO, "vesk_test", "before\n"}};
    EXPECT_EQ(expected, capturedLog());
    vesk::host::startLogCapture();
}

TEST_F(LogSinkTest, JsonFileIsMadeAtTheFirstLine) {
    std::string path = root.path() + "/later.json";
    ASSERT_TRUE(vesk::host::logToJsonFile(path));
    struct stat st;
    EXPECT_NE(0, stat(path.c_str(), &st));
    __android_log_print(ANDROID_LOG_WARN, "tag", "first");
    ASSERT_EQ(0, stat(path.c_str(), &st));
    EXPECT_EQ(nlohmann::json({{"priority", 5}, {"tag", "tag"}, {"message", "first"}}),
              nlohmann::json::parse(readFile(path)));
}

TEST_F(LogSinkTest, JsonFileThatCannotBeMadeOrAppendedToIsRefused) {
    EXPECT_FALSE(vesk::host::logToJsonFile(root.path() + "/no/such/dir/log.json"));
    EXPECT_FALSE(vesk::host::logToJsonFile(root.path()));  // a directory
    vesk::host::startLogCapture();
}

}  // namespace
}  // namespace vesk::test
