// A state file the board cannot fully use: each bad key falls back to its default alone, with
// one line on stderr, every other key is kept (and saved again), and no call fails or aborts.
#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <string>

#include "TestRoot.h"
#include "vesksdk.h"

namespace vesk::test {
namespace {

class StateFileTest : public ::testing::Test {
  protected:
    std::string statePath() const { return root / "/data/vesksdk/state.json"; }
    void writeState(const std::string& text) {
        bi_sysled_get_state();  // makes the board's folder
        std::ofstream(statePath(), std::ios::trunc) << text;
    }
    nlohmann::json savedState() const {
        std::ifstream in(statePath());
        return nlohmann::json::parse(in);
    }
    // The warning the board gives for one bad key.
    std::string warning(const std::string& key, const std::string& reason) const {
        return "vesksdk: " + statePath() + ": " + key + " " + reason + "; its default used\n";
    }

    TempRoot root;
};

struct BadKey {
    const char* name;
    const char* members;  // JSON members beside the good "values"
    const char* key;
    const char* reason;
};

const BadKey kBadKeys[] = {
        {"PidNotANumber", R"("started_processes": {"abc": 5})", "started_processes/abc",
         "is not a process id and start time"},
        {"PidWithSign", R"("started_processes": {"-7": 5})", "started_processes/-7",
         "is not a process id and start time"},
        {"PidTooLarge", R"("started_processes": {"99999999999": 5})",
         "started_processes/99999999999", "is not a process id and start time"},
        {"StartTimeNotANumber", R"("started_processes": {"12": "soon"})", "started_processes/12",
         "is not a process id and start time"},
        {"ProcessesNotAnObject", R"("started_processes": [1, 2])", "started_processes",
         "has the wrong shape"},
        {"WatchdogNotAnObject", R"("watchdog": 7)", "watchdog", "has the wrong shape"},
        {"WatchdogOpenNotABool", R"("watchdog": {"open": "yes"})", "watchdog", "has the wrong type"},
        {"WatchdogTimeoutNegative", R"("watchdog": {"timeout": -5})", "watchdog",
         "has the wrong shape"},
        {"LogLevelNotText", R"("log": {"level": 5})", "log", "has the wrong shape"},
        {"LogBaseTooLong",
         R"("log": {"base": ")"
         "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx"
         "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx"
         "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx"
         "xxxxxxxxxxxxxxxxxxxxxx"
         R"("})",
         "log", "has the wrong shape"},
        {"RtcTimeWithText", R"("rtc_boot_time": [1, "a"])", "rtc_boot_time", "has the wrong shape"},
        {"RtcTimeTooLong", R"("rtc_wake_time": [1, 2, 3, 4, 5, 6, 7])", "rtc_wake_time",
         "has the wrong shape"},
        {"OutputModeWidthText", R"("output_mode": {"width": "wide"})", "output_mode",
         "has the wrong type"},
        {"ValueNotAnInteger", R"("values": {"sysled": 2, "relay": "on"})", "values/relay",
         "is not a 32-bit integer"},
        {"ValueOutOfRange", R"("values": {"sysled": 2, "relay": 4294967296})", "values/relay",
         "is not a 32-bit integer"},
};

class BadKeyTest : public StateFileTest, public ::testing::WithParamInterface<BadKey> {};

TEST_P(BadKeyTest, FallsBackAloneAndKeepsTheRest) {
    const BadKey& bad = GetParam();
    std::string members = bad.members;
    // Every row keeps a good state of its own beside the bad key.
    std::string text = members.rfind(R"("values")", 0) == 0
                               ? "{" + members + ", \"rtc_boot_time\": [1, 2, 3, 4, 5, 6]}"
                               : R"({"values": {"sysled": 2}, )" + members +
                                         R"(, "rtc_boot_time": [1, 2, 3, 4, 5, 6]})";
    if (std::string(bad.key) == "rtc_boot_time") {
        text = R"({"values": {"sysled": 2}, )" + members + "}";
    }
    writeState(text);

    testing::internal::CaptureStderr();
    int led = bi_sysled_get_state();
    std::string printed = testing::internal::GetCapturedStderr();
    EXPECT_EQ(2, led);
    EXPECT_EQ(warning(bad.key, bad.reason), printed);

    // A change saves the kept keys and the bad key's default in place of the bad one.
    testing::internal::CaptureStderr();
    EXPECT_EQ(0, bi_netled_set_state(1));
    testing::internal::GetCapturedStderr();
    nlohmann::json saved = savedState();
    EXPECT_EQ(2, saved["values"]["sysled"]);
    EXPECT_EQ(1, saved["values"]["netled"]);
    if (std::string(bad.key) != "rtc_boot_time") {
        EXPECT_EQ(nlohmann::json({1, 2, 3, 4, 5, 6}), saved["rtc_boot_time"]);
    }
    testing::internal::CaptureStderr();
    bi_sysled_get_state();
    EXPECT_EQ("", testing::internal::GetCapturedStderr()) << "the saved file is whole again";
}

INSTANTIATE_TEST_SUITE_P(StateFile, BadKeyTest, ::testing::ValuesIn(kBadKeys),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(StateFileTest, AFileThatIsNoJsonObjectReadsAsFactoryState) {
    for (const char* text : {"{{{", "[1, 2]", "", "\"text\"", "{\"values\": {\"sysled\": 2}"}) {
        writeState(text);
        testing::internal::CaptureStderr();
        EXPECT_EQ(0, bi_sysled_get_state()) << text;
        EXPECT_EQ("vesksdk: " + statePath() + " is not a JSON object; read as empty\n",
                  testing::internal::GetCapturedStderr())
                << text;
    }
}

TEST_F(StateFileTest, DeepNestingIsNoCrash) {
    writeState(R"({"values": {"sysled": 2}, "log": )" + std::string(100000, '[') +
               std::string(100000, ']') + "}");
    testing::internal::CaptureStderr();
    EXPECT_EQ(2, bi_sysled_get_state());
    EXPECT_EQ(warning("log", "has the wrong shape"), testing::internal::GetCapturedStderr());
}

TEST_F(StateFileTest, TooManyStartedProcessesAreDroppedOnLoad) {
    std::string members;
    for (int pid = 100001; pid <= 100257; ++pid) {
        members += (members.empty() ? "" : ", ") + ("\"" + std::to_string(pid) + "\": 1");
    }
    writeState(R"({"started_processes": {)" + members + "}}");
    testing::internal::CaptureStderr();
    bi_sysled_get_state();
    // Keys are read in sorted order: "100257" is the 257th.
    EXPECT_EQ(warning("started_processes/100257", "is past the board's 256 processes"),
              testing::internal::GetCapturedStderr());
}

TEST_F(StateFileTest, AWatchdogDeviceNameIsBounded) {
    EXPECT_EQ(-1, bi_watchdog_open(std::string(4097, 'd').c_str(), 10));
    EXPECT_EQ(0, bi_watchdog_open(std::string(4096, 'd').c_str(), 10));
    EXPECT_EQ(std::string(4096, 'd'), savedState()["watchdog"]["device"]);
}

}  // namespace
}  // namespace vesk::test
