// veskdm board: the product description and state of the simulated board in the root, read
// back through the service in other processes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "RunVeskdm.h"
#include "vesksdk.h"

namespace veskdm::test {
namespace {

using nlohmann::json;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

class BoardCommandTest : public ::testing::Test {
  protected:
    BoardCommandTest() { veskdm.environment = {"VESK_IMPL_LIB=", "VESK_BOARD_SCRIPT="}; }

    // The ProductInfo a fresh service process answers.
    json productInfo() {
        Outcome outcome = veskdm.run({"call", "getProductInfo"});
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        return json::parse(outcome.out)["callbacks"][0][0];
    }

    std::string productFile() const { return root.path() + "/data/vesksdk/product.json"; }

    vesk::test::TempRoot root;
    VeskdmRunner veskdm{root};
};

// The factory description, in record order.
const std::vector<std::string> kFactoryLines = {
        "vendor=VESK",
        "model_id=8470",
        "hardware_version=V1.2",
        "product_name=VESK media player",
        "serial_number=VSK8470A00012345",
        "manufacture_date=2024-03-18",
        "firmware_version=1.4.2",
        "mac=02:56:45:53:4b:01",
        "ip_address=192.168.1.100",
        "netmask=255.255.255.0",
        "description=Digital signage player",
        "has_4g=1",
        "gateway=192.168.1.1",
        "dns1=8.8.8.8",
        "dns2=8.8.4.4",
        "wifi_mac=02:56:45:53:4b:02",
        "bt_mac=02:56:45:53:4b:03",
        "panel=LVDS-1920x1080",
        "customer=generic",
        "has_wifi=0",
        "android_version=11",
        "has_ops=1",
        "region=CN",
        "language=en",
        "use_dhcp=true",
};

TEST_F(BoardCommandTest, ShowOnAFreshRoot) {
    Outcome outcome = veskdm.run({"board", "show"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    std::vector<std::string> expected = kFactoryLines;
    expected.push_back("state_file=" + root.path() + "/data/vesksdk/state.json");
    for (const char* line : {"watchdog_open=0", "watchdog_device=", "watchdog_timeout=0",
                             "watchdog_feeds=0", "watchdog_missed_feeds=0"}) {
        expected.push_back(line);
    }
    EXPECT_THAT(outcome.outLines(), ElementsAreArray(expected));
    EXPECT_EQ(outcome.err, "");
}

TEST_F(BoardCommandTest, FactoryRecordThroughTheService) {
    json info = productInfo();
    EXPECT_EQ(info["text01"], "VESK");
    EXPECT_EQ(info["modelId"], "8470");
    EXPECT_EQ(info["text05"], "VSK8470A00012345");
    EXPECT_EQ(info["flag1"], true);
    EXPECT_EQ(info["flag2"], false);
    EXPECT_EQ(info["flag3"], true);
    EXPECT_EQ(info["useDHCP"], true);
}

TEST_F(BoardCommandTest, SetThenReadThroughTheService) {
    for (const auto& [key, value] :
         std::vector<std::pair<std::string, std::string>>{{"serial_number", "SN-0042"},
                                                          {"model_id", "8471"},
                                                          {"has_wifi", "1"},
                                                          {"use_dhcp", "false"},
                                                          {"mac", "00:11:22:AA:bb:cc"}}) {
        Outcome set = veskdm.run({"board", "set", key, value});
        EXPECT_EQ(set.status, 0) << key << ": " << set.err;
        EXPECT_EQ(set.out + set.err, "") << key;
    }
    json info = productInfo();
    EXPECT_EQ(info["text05"], "SN-0042");
    EXPECT_EQ(info["modelId"], "8471");
    EXPECT_EQ(info["flag2"], true);
    EXPECT_EQ(info["useDHCP"], false);
    EXPECT_EQ(info["text08"], "00:11:22:AA:bb:cc");
    std::vector<std::string> lines = veskdm.run({"board", "show"}).outLines();
    ASSERT_GE(lines.size(), kFactoryLines.size());
    EXPECT_EQ(lines[4], "serial_number=SN-0042");
    EXPECT_EQ(lines[24], "use_dhcp=false");
}

// setProductInfo in one service process, the record in the next and in board show.
TEST_F(BoardCommandTest, DhcpSwitchSetThroughTheService) {
    Outcome set = veskdm.run({"call", "setProductInfo", "0"});
    EXPECT_EQ(json::parse(set.out)["return"], 0) << set.out;
    EXPECT_EQ(productInfo()["useDHCP"], false);
    EXPECT_THAT(veskdm.run({"board", "show"}).outLines(), ::testing::Contains("use_dhcp=false"));
    Outcome wrong = veskdm.run({"call", "setProductInfo", "2"});  // the board gets ""
    EXPECT_EQ(json::parse(wrong.out)["return"], -1) << wrong.out;
    EXPECT_EQ(productInfo()["useDHCP"], false);
}

TEST_F(BoardCommandTest, BadKeyOrValueWritesNothing) {
    ASSERT_EQ(veskdm.run({"board", "set", "vendor", "VESK"}).status, 0);  // makes the product file
    const std::string before = vesk::test::readFile(productFile());
    std::string keys;
    for (const std::string& line : kFactoryLines) {
        keys += (keys.empty() ? "" : ", ") + line.substr(0, line.find('='));
    }
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
            {{"board", "set", "colour", "red"},
             "veskdm: unknown product key colour (keys: " + keys + ")"},
            {{"board", "set", "modelId", "1"},
             "veskdm: unknown product key modelId (keys: " + keys + ")"},
            {{"board", "set", "model_id", "84a0"},
             "veskdm: model_id takes a decimal number from 0 to 2147483647"},
            {{"board", "set", "model_id", "2147483648"},
             "veskdm: model_id takes a decimal number from 0 to 2147483647"},
            {{"board", "set", "model_id", "99999999999999999999"},
             "veskdm: model_id takes a decimal number from 0 to 2147483647"},
            {{"board", "set", "use_dhcp", "TRUE"}, "veskdm: use_dhcp takes true or false"},
            {{"board", "set", "has_4g", "2"}, "veskdm: has_4g takes 0 or 1"},
            {{"board", "set", "mac", "00:11:22:33:44"},
             "veskdm: mac takes a MAC (xx:xx:xx:xx:xx:xx)"},
            {{"board", "set", "model_id", std::string(32, '1')},
             "veskdm: model_id takes at most 31 bytes"},
    };
    for (const auto& [args, message] : cases) {
        Outcome outcome = veskdm.run(args);
        EXPECT_EQ(outcome.status, 2) << args[2];
        EXPECT_THAT(outcome.errLines(), ElementsAre(message));
        EXPECT_EQ(outcome.out, "");
    }
    EXPECT_EQ(vesk::test::readFile(productFile()), before);
    // A text of exactly 31 bytes fits the 32-byte slot; the model number's range is an int's.
    EXPECT_EQ(veskdm.run({"board", "set", "hardware_version", std::string(31, '1')}).status, 0);
    EXPECT_EQ(veskdm.run({"board", "set", "model_id", "2147483647"}).status, 0);
    EXPECT_EQ(veskdm.run({"board", "set", "model_id", "0"}).status, 0);
}

// Each open serial channel links its pseudo-terminal's far end into the root's dev/; show lists
// the links that exist.
TEST_F(BoardCommandTest, ShowListsSerialPeerLinks) {
    ASSERT_EQ(0, symlink("/dev/pts/97", (root / "/dev/ttyVESK232").c_str()));
    ASSERT_EQ(0, symlink("/dev/pts/99", (root / "/dev/ttyVESKTTL_2").c_str()));
    std::vector<std::string> lines = veskdm.run({"board", "show"}).outLines();
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(lines[lines.size() - 2], "serial ttyVESK232 -> /dev/pts/97");
    EXPECT_EQ(lines[lines.size() - 1], "serial ttyVESKTTL_2 -> /dev/pts/99");
}

// A channel opened by the board library in this process shows while it is open.
TEST_F(BoardCommandTest, ShowListsTheLinkOfAnOpenChannel) {
    ASSERT_EQ(0, bi_serial_485_open(115200, 8, 1, 0));
    char target[256] = {};
    ASSERT_GT(readlink((root / "/dev/ttyVESK485").c_str(), target, sizeof(target) - 1), 0);
    std::vector<std::string> lines = veskdm.run({"board", "show"}).outLines();
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.back(), std::string("serial ttyVESK485 -> ") + target);
    ASSERT_EQ(0, bi_serial_485_close());
    lines = veskdm.run({"board", "show"}).outLines();
    EXPECT_EQ(lines.back(), "watchdog_missed_feeds=0");
}

// A watchdog started by one process and fed too late by another: show reports the reset that
// the board would have made.
TEST_F(BoardCommandTest, ShowReportsAMissedWatchdogFeed) {
    Outcome start = veskdm.run({"call", "startWatchDog", "/dev/watchdog", "1"});
    EXPECT_EQ(json::parse(start.out)["return"], 0) << start.out;
    usleep(1300 * 1000);
    Outcome feed = veskdm.run({"call", "feedWatchDog", "/dev/watchdog"});
    EXPECT_EQ(json::parse(feed.out)["return"], 0) << feed.out;
    std::vector<std::string> lines = veskdm.run({"board", "show"}).outLines();
    EXPECT_THAT(lines, ::testing::IsSupersetOf({"watchdog_open=1", "watchdog_device=/dev/watchdog",
                                                "watchdog_timeout=1", "watchdog_feeds=1",
                                                "watchdog_missed_feeds=1"}));
}

// "Z" for a zombie, "" once it is gone: /proc/PID/stat's state letter.
std::string processState(int pid) {
    std::string stat = vesk::test::readFile("/proc/" + std::to_string(pid) + "/stat");
    std::size_t close = stat.rfind(')');
    return close == std::string::npos ? "" : stat.substr(close + 2, 1);
}

// A process started through veskdm is the one the service may kill, from another process; any
// other is refused.
TEST_F(BoardCommandTest, KillsOnlyAProcessTheBoardStarted) {
    Outcome start = veskdm.run({"board", "start", "sleep", "30"});
    ASSERT_EQ(start.status, 0) << start.err;
    int pid = std::stoi(start.out);
    ASSERT_GT(pid, 0);
    EXPECT_NE(processState(pid), "");
    Outcome own = veskdm.run({"call", "killProcessNum", std::to_string(getpid())});
    EXPECT_EQ(json::parse(own.out)["return"], -1) << own.out;
    Outcome kill = veskdm.run({"call", "killProcessNum", std::to_string(pid)});
    EXPECT_EQ(json::parse(kill.out)["return"], 0) << kill.out;
    // Killed: a zombie until its new parent reaps it, then gone (SIGKILL is delivered
    // asynchronously, so wait for it).
    std::string state = processState(pid);
    for (int i = 0; i < 200 && state != "Z" && state != ""; ++i) {
        usleep(10 * 1000);
        state = processState(pid);
    }
    EXPECT_TRUE(state == "Z" || state == "") << state;
    Outcome again = veskdm.run({"call", "killProcessNum", std::to_string(pid)});
    EXPECT_EQ(json::parse(again.out)["return"], -1) << again.out;
}

TEST_F(BoardCommandTest, StartOfAMissingProgramFails) {
    Outcome outcome = veskdm.run({"board", "start", "/no/such/program"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errLines(),
                ElementsAre("veskdm: cannot start /no/such/program: No such file or directory"));
}

}  // namespace
}  // namespace veskdm::test
