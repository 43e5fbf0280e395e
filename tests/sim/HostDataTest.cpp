// System data comes from the host the board runs on: checked against the host's own files and
// tools, read independently here.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "ChildProcess.h"
#include "SimTestFiles.h"
#include "TestRoot.h"
#include "vesksdk.h"
#include "vesksdk_records.h"
#include "vesksdk_sim_control.h"

namespace vesk::test {
namespace {

class HostDataTest : public ::testing::Test {
  protected:
    TempRoot root;
};

std::string trimmed(std::string text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
    return text;
}

TEST_F(HostDataTest, CpuSharesAddUpToAllTheTime) {
    vesk_cpu_record cpu{};
    ASSERT_EQ(0, bi_info_get_cpu_state(&cpu));
    const float shares[] = {cpu.usr, cpu.nic, cpu.sys, cpu.idle, cpu.iowait, cpu.irq, cpu.softirq};
    float total = 0;
    for (float share : shares) {
        EXPECT_GE(share, 0.0f);
        EXPECT_LE(share, 100.0f);
        total += share;
    }
    EXPECT_NEAR(100.0f, total, 0.01f);
    EXPECT_EQ(-1, bi_info_get_cpu_state(nullptr));
}

TEST_F(HostDataTest, TemperatureIsTheFirstThermalZone) {
    vesk_cpu_record cpu{};
    ASSERT_EQ(0, bi_info_get_cpu_state(&cpu));
    std::string milli =
            trimmed(runCommand("cat $(ls -d /sys/class/thermal/thermal_zone* 2>/dev/null | sort | "
                               "head -1)/temp 2>/dev/null"));
    if (milli.empty()) {
        EXPECT_EQ(0u, cpu.temperature);  // no thermal zone on this host
    } else {
        EXPECT_NEAR(std::atol(milli.c_str()) / 1000.0, cpu.temperature, 3.0);
    }
}

TEST_F(HostDataTest, UsbListIsTheHostsDevices) {
    vesk_usb_list_record list{};
    ASSERT_EQ(0, bi_info_get_usb_list(&list));
    // Devices are the entries with an idVendor; interfaces (names with ':') have none.
    std::string listing = runCommand(
            "for d in /sys/bus/usb/devices/*; do [ -f \"$d/idVendor\" ] && "
            "echo \"$(cat $d/idVendor) $(cat $d/idProduct)\"; done 2>/dev/null");
    std::vector<std::pair<uint32_t, uint32_t>> expected;
    std::istringstream lines(listing);
    for (std::string vid, pid; lines >> vid >> pid;) {
        expected.emplace_back(std::stoul(vid, nullptr, 16), std::stoul(pid, nullptr, 16));
    }
    ASSERT_EQ(std::min<std::size_t>(expected.size(), VESK_USB_LIST_MAX), list.count);
    for (uint32_t i = 0; i < list.count; ++i) {
        EXPECT_EQ(expected[i].first, list.vid[i]) << i;
        EXPECT_EQ(expected[i].second, list.pid[i]) << i;
    }
}

TEST_F(HostDataTest, NetworkDetectionFollowsTheDefaultRoute) {
    // Destination 00000000 with the up flag (bit 0 of the hex flags) set.
    std::string routes = runCommand(
            "n=0; while read iface dest gw flags rest; do "
            "[ \"$dest\" = 00000000 ] && [ $((0x$flags & 1)) = 1 ] && n=$((n + 1)); "
            "done < /proc/net/route; echo $n");
    int expected = std::atoi(routes.c_str()) > 0 ? 1 : 0;
    EXPECT_EQ(expected, bi_network_detection());
}

// A program copied under a name of its own, so that no other process shares it.
std::string uniqueSleeper() {
    std::string path = temporaryPath("vsksleep");
    std::filesystem::copy_file("/bin/sleep", path);
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    return path;
}

TEST_F(HostDataTest, StartedProcessIsCountedDescribedAndKilledFromAnotherProcess) {
    std::string program = uniqueSleeper();
    std::string name = program.substr(program.rfind('/') + 1).substr(0, 15);
    int pid = vesk::sim::startProcess({program, "30"});
    ASSERT_GT(pid, 0);
    usleep(100 * 1000);  // until it runs the program under its own name
    EXPECT_EQ(1, bi_kill_get_process_num(name.c_str(), 0));
    vesk_process_record record{};
    ASSERT_EQ(1, bi_get_process_info_by_name(name.c_str(), &record));
    EXPECT_EQ(name, record.name1);
    EXPECT_EQ(static_cast<uint64_t>(pid), record.value64);
    EXPECT_EQ(trimmed(runCommand("id -un")), record.name3);
    int32_t parent = 0;
    memcpy(&parent, record.block, sizeof(parent));
    EXPECT_EQ(getpid(), parent);
    EXPECT_GT(record.value32, 0u);  // resident KiB

    EXPECT_EQ(0, inOtherProcess([pid] { return bi_kill_process_num(pid); }));
    int status = 0;
    ASSERT_EQ(pid, waitpid(pid, &status, 0));
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(SIGKILL, WTERMSIG(status));
    EXPECT_EQ(0, bi_kill_get_process_num(name.c_str(), 0));
    EXPECT_EQ(-1, bi_kill_process_num(pid));  // gone, and no longer on the list
    unlink(program.c_str());
}

TEST_F(HostDataTest, ForeignProcessesAreNeverKilled) {
    pid_t parent = getppid();
    EXPECT_EQ(-1, bi_kill_process_num(parent));
    EXPECT_EQ(-1, bi_kill_process_num(getpid()));
    EXPECT_EQ(-1, bi_kill_process_num(1));
    EXPECT_EQ(0, kill(parent, 0));  // still there
}

// Two processes of a name no other process has, counted as pgrep counts them. (A started
// process runs its program under its own name by the time the start returns.)
TEST_F(HostDataTest, ProcessCountMatchesPgrep) {
    std::string program = uniqueSleeper();
    std::string name = program.substr(program.rfind('/') + 1).substr(0, 15);
    const int pids[] = {vesk::sim::startProcess({program, "30"}),
                        vesk::sim::startProcess({program, "30"})};
    int status = -1;
    std::string count = runCommand("pgrep -xc '" + name + "'", &status);
    EXPECT_EQ(0, status) << "pgrep missing?";
    EXPECT_EQ(2, std::atoi(count.c_str()));
    EXPECT_EQ(2, bi_kill_get_process_num(name.c_str(), 0));
    for (int pid : pids) {
        ASSERT_GT(pid, 0);
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
    }
    unlink(program.c_str());
}

}  // namespace
}  // namespace vesk::test
