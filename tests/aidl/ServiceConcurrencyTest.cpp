// Eight client processes with 200 calls each, all at once: each sets and reads back a switch of
// its own, asks for the same output mode (which the service stores in the boot loader's
// environment and publishes as properties) and reads the mode back. Nothing may be lost or torn:
// every call answers what the same calls made one by one would, and the final state (each
// switch, both copies of the environment as U-Boot's own reader sees them, the properties, the
// mode tool's invocations, the board's journal) is the one worked out below.
#include <string>
#include <vector>

#include "DisplayModeTestSupport.h"
#include "ServiceProcessFixture.h"

namespace vesk::test {
namespace {

using ::aidl::vesk::hardware::veskdevicemanager::VeskEffeResolution;
using Manager = IVeskDeviceManager;
using ::ndk::ScopedAStatus;

constexpr int kClients = 8;
constexpr int kCalls = 200;

// A switch of the board that one client owns: the service's setter and getter, the board's
// setter, and how many states it takes (the simulated board's LEDs: off, on, blinking; its
// relay: off, on).
struct Switch {
    ScopedAStatus (Manager::*set)(int32_t, int32_t*);
    ScopedAStatus (Manager::*get)(int32_t*);
    const char* boardSet;
    int32_t states;
};
const Switch kSwitches[kClients] = {
        {&Manager::setSysLedState, &Manager::getSysLedState, "bi_sysled_set_state", 3},
        {&Manager::setNetLedState, &Manager::getNetLedState, "bi_netled_set_state", 3},
        {&Manager::set4gLedState, &Manager::get4gLedState, "bi_4gled_set_state", 3},
        {&Manager::setPositionLedState, &Manager::getPositionLedState, "bi_position_led_set_state",
         3},
        {&Manager::setSwitchLedState, &Manager::getSwitchLedState, "bi_switchled_set_state", 3},
        {&Manager::setRunningLedState, &Manager::getRunningLedState, "bi_runningled_set_state", 3},
        {&Manager::setCloudLedState, &Manager::getCloudLedState, "bi_cloudled_set_state", 3},
        {&Manager::setRelayState, &Manager::getRelayState, "bi_relay_set_state", 2},
};

// Client c's calls, in tens: call 9 of each ten asks for 1920x1080 at 60 Hz, call 4 reads the
// mode back, the other even calls set the client's switch to (k / 2 + c) modulo its states and
// the odd ones read it. So each client makes 20 mode requests, 20 read-backs, 80 sets and 80
// reads, and its last set is at k = 198.
enum class MixedCall { kMode, kReadMode, kSet, kGet };
MixedCall callAt(int k) {
    if (k % 10 == 9) return MixedCall::kMode;
    if (k % 10 == 4) return MixedCall::kReadMode;
    return k % 2 == 0 ? MixedCall::kSet : MixedCall::kGet;
}
int32_t valueAt(int client, int k) {
    return (k / 2 + client) % kSwitches[client].states;
}
constexpr int kModeCallsEach = 20;
constexpr int kSetsEach = 80;
constexpr int kLastSet = 198;

// 1920x1080 as applied and read back on the simulated board's model: a reduced-blanking timing
// for 60 Hz, which runs at 59.934 Hz.
bool isFullHd(const VeskEffeResolution& r) {
    return r.width == 1920 && r.height == 1080 && r.fps == 59 && r.status == 1;
}

// The client's calls; the number of answers that were not what the calls made one by one give.
int runClient(const std::string& socketPath, int client) {
    Session session(socketPath);
    if (session.result != VESK_RPC_OK) return kCalls;
    Manager& manager = *session.proxy;
    const Switch& own = kSwitches[client];
    int wrong = 0;
    int32_t lastSet = -1;
    for (int k = 0; k < kCalls; ++k) {
        int32_t value = -1;
        VeskEffeResolution mode;
        switch (callAt(k)) {
            case MixedCall::kMode:
                wrong += !manager.calculateResolutionParameters(1920, 1080, 60, &mode).isOk() ||
                         !isFullHd(mode);
                break;
            case MixedCall::kReadMode:
                wrong += !manager.getResolutionParameters(&mode).isOk() || !isFullHd(mode);
                break;
            case MixedCall::kSet:
                lastSet = valueAt(client, k);
                wrong += !(manager.*own.set)(lastSet, &value).isOk() || value != 0;
                break;
            case MixedCall::kGet:
                wrong += !(manager.*own.get)(&value).isOk() || value != lastSet;
                break;
        }
    }
    return wrong;
}

TEST_F(ServiceProcessTest, EightClientsAtOnceLeaveTheStateTheirCallsMakeOneByOne) {
    ASSERT_TRUE(start()) << service->firstLine();
    {
        // The mode is there before the clients read it back.
        Session first(socketPath());
        ASSERT_EQ(VESK_RPC_OK, first.result) << first.message;
        VeskEffeResolution mode;
        ASSERT_TRUE(first.proxy->calculateResolutionParameters(1920, 1080, 60, &mode).isOk());
        ASSERT_TRUE(isFullHd(mode));
    }

    std::vector<std::unique_ptr<OtherProcess>> clients;
    for (int client = 0; client < kClients; ++client) {
        clients.push_back(std::make_unique<OtherProcess>(
                [this, client] { return runClient(socketPath(), client); }));
    }
    for (int client = 0; client < kClients; ++client) {
        EXPECT_EQ(0, clients[client]->result()) << "client " << client;
    }

    // Each switch holds its client's last value.
    Session after(socketPath());
    ASSERT_EQ(VESK_RPC_OK, after.result) << after.message;
    for (int client = 0; client < kClients; ++client) {
        int32_t value = -1;
        ASSERT_TRUE((*after.proxy.*kSwitches[client].get)(&value).isOk());
        EXPECT_EQ(valueAt(client, kLastSet), value) << "client " << client;
    }

    // The board saw every set, each client's in its order, in whole journal lines.
    std::vector<nlohmann::json> calls = boardCalls();
    for (int client = 0; client < kClients; ++client) {
        std::vector<int32_t> sets;
        for (const nlohmann::json& call : calls) {
            if (call["function"] == kSwitches[client].boardSet) sets.push_back(call["args"][0]);
        }
        std::vector<int32_t> expected;
        for (int k = 0; k < kCalls; ++k) {
            if (callAt(k) == MixedCall::kSet) expected.push_back(valueAt(client, k));
        }
        ASSERT_EQ(static_cast<size_t>(kSetsEach), expected.size());
        EXPECT_EQ(expected, sets) << kSwitches[client].boardSet;
    }

    // The mode tool ran once for each request, and every request stored the same mode.
    const int requests = 1 + kClients * kModeCallsEach;
    std::string invocations;
    for (int i = 0; i < requests; ++i) invocations += "/vendor/bin/hdmimode 999p60hz\n";
    EXPECT_EQ(invocations, readFile(root / "/data/shell/invocations.log"));
    for (int copy : {0, 1}) {
        SCOPED_TRACE(copy);
        EXPECT_EQ(kMode1920x1080, printenv(root, copy, "custom_mode"));
        EXPECT_EQ("999p60hz", printenv(root, copy, "hdmimode"));
        EXPECT_EQ("false", printenv(root, copy, "is.bestmode"));
    }
    EXPECT_EQ("1920x1080@59.934000", getProperty(kModeProperty));
    EXPECT_EQ("1", getProperty(kEnableProperty));
}

}  // namespace
}  // namespace vesk::test
