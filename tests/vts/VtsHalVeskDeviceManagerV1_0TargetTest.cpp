/*
 * The interface contract any board's service must meet, for an integrator to run on the board
 * (VTS) and run here against the simulated board: the service was built from the released
 * interface, every call answers with a transport-level
 * success, a method that reports through a callback calls it exactly once, results stay within
 * their documented ranges, a state written back as it was read is kept, and an output size
 * computed on an allowed model reads back. Nothing here switches power, the modem or the OPS
 * slot, or reboots: the module must be safe to run on a board in use.
 */
#include <gtest/gtest.h>
#include <vesksdk_records.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "ReleasedInterfaceHash.h"
#include "ServiceUnderTest.h"

namespace vesk::vts {
namespace {

using ::android::sp;
using ::android::hardware::hidl_array;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;
using ::android::hardware::Void;
using namespace ::vesk::hardware::veskdevicemanager::V1_0;

// The models whose output sizes the service computes itself (the board's records header).
constexpr int kComputedModels[] = {VESK_COMPUTED_MODELS};

// A client's notification receiver, as an application registers it.
class NotificationCounter : public IVeskDeviceCallback {
  public:
    Return<void> hwNotify(const MessageParcel& /*parcel*/) override {
        ++notifications;
        return Void();
    }
    int notifications = 0;
};

class VeskDeviceManagerTest : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_NE(nullptr, service.get()) << "no IVeskDeviceManager"; }
    IVeskDeviceManager& manager() { return *service.get(); }

    ServiceUnderTest service;
};

std::string hexOf(const hidl_array<uint8_t, 32>& hash) {
    std::string hex;
    for (size_t i = 0; i < hash.size(); ++i) {
        char digits[3];
        std::snprintf(digits, sizeof(digits), "%02x", hash[i]);
        hex += digits;
    }
    return hex;
}

// The service was built from the released interface: its hash chain starts with the hash that
// current.txt records for IVeskDeviceManager, so every method sits in its released slot, and
// ends with the base interface's.
TEST_F(VeskDeviceManagerTest, BuiltFromTheReleasedInterface) {
    int count = 0;
    hidl_vec<hidl_array<uint8_t, 32>> chain;
    EXPECT_TRUE(manager()
                        .getHashChain([&](const hidl_vec<hidl_array<uint8_t, 32>>& c) {
                            ++count;
                            chain = c;
                        })
                        .isOk());
    EXPECT_EQ(1, count);
    ASSERT_EQ(2u, chain.size());
    EXPECT_EQ(VESK_RELEASED_HASH_IVESKDEVICEMANAGER, hexOf(chain[0]));
    EXPECT_NE(hexOf(chain[0]), hexOf(chain[1]));
}

// Every getter without arguments that answers with a plain value: reading state changes none.
TEST_F(VeskDeviceManagerTest, EveryStateGetterAnswers) {
    using Getter = std::function<bool(IVeskDeviceManager&)>;
    const std::vector<std::pair<const char*, Getter>> getters = {
            {"getSysLedState", [](auto& m) { return m.getSysLedState().isOk(); }},
            {"getNetLedState", [](auto& m) { return m.getNetLedState().isOk(); }},
            {"getColorLedState", [](auto& m) { return m.getColorLedState().isOk(); }},
            {"get4gLedState", [](auto& m) { return m.get4gLedState().isOk(); }},
            {"getPositionLedState", [](auto& m) { return m.getPositionLedState().isOk(); }},
            {"getSwitchLedState", [](auto& m) { return m.getSwitchLedState().isOk(); }},
            {"getRunningLedState", [](auto& m) { return m.getRunningLedState().isOk(); }},
            {"getCloudLedState", [](auto& m) { return m.getCloudLedState().isOk(); }},
            {"getProtocolType", [](auto& m) { return m.getProtocolType().isOk(); }},
            {"getSimPleFanState", [](auto& m) { return m.getSimPleFanState().isOk(); }},
            {"getFanSpeedLevel", [](auto& m) { return m.getFanSpeedLevel().isOk(); }},
            {"getFanSpeedPRM", [](auto& m) { return m.getFanSpeedPRM().isOk(); }},
            {"getRelayState", [](auto& m) { return m.getRelayState().isOk(); }},
            {"getOpsUsbPort", [](auto& m) { return m.getOpsUsbPort().isOk(); }},
            {"getOpsSwitchState", [](auto& m) { return m.getOpsSwitchState().isOk(); }},
            {"getOpsOnState", [](auto& m) { return m.getOpsOnState().isOk(); }},
            {"getOpsControlState", [](auto& m) { return m.getOpsControlState().isOk(); }},
            {"getOpsDetectState", [](auto& m) { return m.getOpsDetectState().isOk(); }},
            {"getOtgMode", [](auto& m) { return m.getOtgMode().isOk(); }},
            {"getFactoryToolStatus", [](auto& m) { return m.getFactoryToolStatus().isOk(); }},
            {"getPcControlStatus", [](auto& m) { return m.getPcControlStatus().isOk(); }},
            {"getUsbSubCardLedStatus", [](auto& m) { return m.getUsbSubCardLedStatus().isOk(); }},
            {"getNetWorkState", [](auto& m) { return m.getNetWorkState().isOk(); }},
            {"getUsbSwitchEnable", [](auto& m) { return m.getUsbSwitchEnable().isOk(); }},
            {"getAdcBoardId", [](auto& m) { return m.getAdcBoardId().isOk(); }},
            {"getApNetworkInsulation", [](auto& m) { return m.getApNetworkInsulation().isOk(); }},
            {"getApChannel", [](auto& m) { return m.getApChannel().isOk(); }},
            {"getBoardVoltage", [](auto& m) { return m.getBoardVoltage().isOk(); }},
            {"getBoardTemperature", [](auto& m) { return m.getBoardTemperature().isOk(); }},
            {"getLoraState", [](auto& m) { return m.getLoraState().isOk(); }},
            {"get4gModuleState", [](auto& m) { return m.get4gModuleState().isOk(); }},
            {"get4gPowerState", [](auto& m) { return m.get4gPowerState().isOk(); }},
            {"getScreenModeState", [](auto& m) { return m.getScreenModeState().isOk(); }},
            {"getHeadphonePowerState", [](auto& m) { return m.getHeadphonePowerState().isOk(); }},
            {"getPQEnable", [](auto& m) { return m.getPQEnable().isOk(); }},
            {"getPowerAmplifierState", [](auto& m) { return m.getPowerAmplifierState().isOk(); }},
    };
    for (const auto& [name, call] : getters) EXPECT_TRUE(call(manager())) << name;
}

// A result through a callback comes exactly once, synchronously, and the call itself succeeds.
TEST_F(VeskDeviceManagerTest, EveryRecordGetterCallsBackExactlyOnce) {
    int count = 0;
    EXPECT_TRUE(manager().getProductInfo([&](const ProductInfo&) { ++count; }).isOk());
    EXPECT_EQ(1, count);
    count = 0;
    EXPECT_TRUE(manager().getWatchDogCfg([&](const WatchDogCfg&) { ++count; }).isOk());
    EXPECT_EQ(1, count);
    count = 0;
    EXPECT_TRUE(manager().getUsbList([&](const hidl_vec<UsbList>&) { ++count; }).isOk());
    EXPECT_EQ(1, count);
    count = 0;
    EXPECT_TRUE(manager().getCpuStatus([&](const CpuStatus&) { ++count; }).isOk());
    EXPECT_EQ(1, count);
    count = 0;
    EXPECT_TRUE(manager().getVndkVersion([&](const hidl_string&) { ++count; }).isOk());
    EXPECT_EQ(1, count);
    count = 0;
    EXPECT_TRUE(manager().getVeskLogConfigure([&](int32_t, const VeskLogInfo&) { ++count; }).isOk());
    EXPECT_EQ(1, count);
    count = 0;
    EXPECT_TRUE(manager().getRtcBootTime([&](const hidl_vec<uint32_t>&) { ++count; }).isOk());
    EXPECT_EQ(1, count);
    count = 0;
    EXPECT_TRUE(manager().getProcessInfo("init", [&](const ProcessInfo&) { ++count; }).isOk());
    EXPECT_EQ(1, count);
}

// The reserved entry points: hwInvoke never answers through its callback, hwRegistCallback takes
// any receiver, a null one included, returns 0 and sends it nothing.
TEST_F(VeskDeviceManagerTest, ReservedEntryPointsNeverCallBack) {
    int answers = 0;
    EXPECT_TRUE(manager().hwInvoke("status", [&](const hidl_string&) { ++answers; }).isOk());
    EXPECT_EQ(0, answers);

    Return<int32_t> withNull = manager().hwRegistCallback(nullptr);
    ASSERT_TRUE(withNull.isOk());
    EXPECT_EQ(0, static_cast<int32_t>(withNull));

    sp<NotificationCounter> receiver = new NotificationCounter();
    Return<int32_t> withReceiver = manager().hwRegistCallback(receiver);
    ASSERT_TRUE(withReceiver.isOk());
    EXPECT_EQ(0, static_cast<int32_t>(withReceiver));
    EXPECT_EQ(0, receiver->notifications);
}

// Writing back the state a getter has just reported is accepted and keeps that state, on any
// board. Only switches without side effects are tried (LEDs, relay, fan level, audio, picture
// quality); a getter that reports a failure (a board without that part) is passed over.
TEST_F(VeskDeviceManagerTest, AStateWrittenBackAsReadIsKept) {
    using Getter = std::function<Return<int32_t>(IVeskDeviceManager&)>;
    using Setter = std::function<Return<int32_t>(IVeskDeviceManager&, int32_t)>;
    struct Switch {
        const char* name;
        Getter get;
        Setter set;
    };
    const std::vector<Switch> switches = {
            {"SysLedState", [](auto& m) { return m.getSysLedState(); },
             [](auto& m, int32_t v) { return m.setSysLedState(v); }},
            {"NetLedState", [](auto& m) { return m.getNetLedState(); },
             [](auto& m, int32_t v) { return m.setNetLedState(v); }},
            {"4gLedState", [](auto& m) { return m.get4gLedState(); },
             [](auto& m, int32_t v) { return m.set4gLedState(v); }},
            {"PositionLedState", [](auto& m) { return m.getPositionLedState(); },
             [](auto& m, int32_t v) { return m.setPositionLedState(v); }},
            {"SwitchLedState", [](auto& m) { return m.getSwitchLedState(); },
             [](auto& m, int32_t v) { return m.setSwitchLedState(v); }},
            {"RunningLedState", [](auto& m) { return m.getRunningLedState(); },
             [](auto& m, int32_t v) { return m.setRunningLedState(v); }},
            {"CloudLedState", [](auto& m) { return m.getCloudLedState(); },
             [](auto& m, int32_t v) { return m.setCloudLedState(v); }},
            {"UsbSubCardLedStatus", [](auto& m) { return m.getUsbSubCardLedStatus(); },
             [](auto& m, int32_t v) { return m.setUsbSubCardLedStatus(v); }},
            {"RelayState", [](auto& m) { return m.getRelayState(); },
             [](auto& m, int32_t v) { return m.setRelayState(v); }},
            {"FanSpeedLevel", [](auto& m) { return m.getFanSpeedLevel(); },
             [](auto& m, int32_t v) { return m.setFanSpeedLevel(v); }},
            {"HeadphonePowerState", [](auto& m) { return m.getHeadphonePowerState(); },
             [](auto& m, int32_t v) { return m.setHeadphonePowerState(v); }},
            {"PowerAmplifierState", [](auto& m) { return m.getPowerAmplifierState(); },
             [](auto& m, int32_t v) { return m.setPowerAmplifierState(v); }},
            {"PQEnable", [](auto& m) { return m.getPQEnable(); },
             [](auto& m, int32_t v) { return m.setPQEnable(v); }},
    };
    int tried = 0;
    for (const Switch& s : switches) {
        Return<int32_t> before = s.get(manager());
        ASSERT_TRUE(before.isOk()) << s.name;
        const int32_t state = before;
        if (state < 0) continue;
        ++tried;
        Return<int32_t> written = s.set(manager(), state);
        ASSERT_TRUE(written.isOk()) << s.name;
        EXPECT_LE(0, static_cast<int32_t>(written)) << s.name << " refused its own state " << state;
        Return<int32_t> after = s.get(manager());
        ASSERT_TRUE(after.isOk()) << s.name;
        EXPECT_EQ(state, static_cast<int32_t>(after)) << s.name;
    }
    EXPECT_LT(0, tried) << "no switch of this board reports its state";
}

// An EDID from predefined settings is always the whole 256-byte buffer; one for given values is
// the 256 bytes, or empty where the board has none.
TEST_F(VeskDeviceManagerTest, EdidsAreTheWholeBufferOrNone) {
    int count = 0;
    hidl_vec<uint8_t> edid;
    EXPECT_TRUE(manager()
                        .getEdidByModel(1920, 1080, 60.0f,
                                        [&](const hidl_vec<uint8_t>& e) {
                                            ++count;
                                            edid = e;
                                        })
                        .isOk());
    EXPECT_EQ(1, count);
    EXPECT_TRUE(edid.size() == 0 || edid.size() == 256) << edid.size();

    count = 0;
    EXPECT_TRUE(manager()
                        .getEdidFromDefined(0, 1920, 1080, 60.0f,
                                            [&](const hidl_vec<uint8_t>& e) {
                                                ++count;
                                                edid = e;
                                            })
                        .isOk());
    EXPECT_EQ(1, count);
    EXPECT_EQ(256u, edid.size());
}

// An EDID that is not exactly 256 bytes never reaches the board: the timing is all zeros.
TEST_F(VeskDeviceManagerTest, AnEdidOfAnotherSizeHasNoTiming) {
    for (size_t size : {size_t{0}, size_t{128}, size_t{255}, size_t{257}}) {
        hidl_vec<uint8_t> edid;
        edid.resize(size);
        for (size_t i = 0; i < size; ++i) edid[i] = static_cast<uint8_t>(i);
        int count = 0;
        VeskEffeResolution timing{1, 1, 1, 1};
        EXPECT_TRUE(manager()
                            .getResolutionByEdid(edid,
                                                 [&](const VeskEffeResolution& r) {
                                                     ++count;
                                                     timing = r;
                                                 })
                            .isOk());
        EXPECT_EQ(1, count) << size;
        EXPECT_EQ(0u, timing.width) << size;
        EXPECT_EQ(0u, timing.height) << size;
        EXPECT_EQ(0u, timing.fps) << size;
        EXPECT_EQ(0, timing.status) << size;
    }
}

// Every listed output size is usable (status 1); the list is no longer than the board's record
// of sizes holds.
TEST_F(VeskDeviceManagerTest, ListedOutputSizesAreUsable) {
    int count = 0;
    hidl_vec<VeskEffeResolution> list;
    EXPECT_TRUE(manager()
                        .getResolutionParametersList([&](const hidl_vec<VeskEffeResolution>& l) {
                            ++count;
                            list = l;
                        })
                        .isOk());
    EXPECT_EQ(1, count);
    EXPECT_LE(list.size() * sizeof(vesk_resolution_record), size_t{VESK_RESOLUTION_LIST_BYTES});
    for (const VeskEffeResolution& entry : list) EXPECT_EQ(1, entry.status);
}

// A computed output size's status is one of 1, -1, -2 and -3; on an allowed model a size inside
// the limits succeeds and the current output size then reads back as it was computed.
TEST_F(VeskDeviceManagerTest, ComputedOutputSizeReadsBack) {
    int model = 0;
    manager().getProductInfo(
            [&](const ProductInfo& info) { model = std::atoi(info.modelId.c_str()); });
    VeskEffeResolution computed{};
    int count = 0;
    EXPECT_TRUE(manager()
                        .calculateResolutionParameters(1920, 1080, 60,
                                                       [&](const VeskEffeResolution& r) {
                                                           ++count;
                                                           computed = r;
                                                       })
                        .isOk());
    EXPECT_EQ(1, count);
    const bool allowed = std::find(std::begin(kComputedModels), std::end(kComputedModels), model) !=
                         std::end(kComputedModels);
    if (!allowed) {
        // Another model's request is the board's own: its status is whatever the board says.
        return;
    }
    EXPECT_TRUE(computed.status == 1 || computed.status == -1 || computed.status == -2 ||
                computed.status == -3)
            << computed.status;
    ASSERT_EQ(1, computed.status);
    VeskEffeResolution current{};
    EXPECT_TRUE(manager()
                        .getResolutionParameters([&](const VeskEffeResolution& r) { current = r; })
                        .isOk());
    // The mode's own sizes and its whole rate in Hz (a reduced-blanking 60 Hz is 59.9...).
    EXPECT_EQ(1920u, computed.width);
    EXPECT_EQ(1080u, computed.height);
    EXPECT_EQ(computed.width, current.width);
    EXPECT_EQ(computed.height, current.height);
    EXPECT_EQ(computed.fps, current.fps);
    EXPECT_EQ(1, current.status);
}

}  // namespace
}  // namespace vesk::vts
