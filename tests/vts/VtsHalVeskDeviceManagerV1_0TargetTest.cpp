/*
 * The interface contract any board's service must meet, for an integrator to run on the board
 * (VTS) and run here against the simulated board: every call answers with a transport-level
 * success, a method that reports through a callback calls it exactly once, results stay within
 * their documented ranges, and an output size computed on an allowed model reads back.
 */
#include <gtest/gtest.h>
#include <vesksdk_records.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "ServiceUnderTest.h"

namespace vesk::vts {
namespace {

using ::android::sp;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;
using namespace ::vesk::hardware::veskdevicemanager::V1_0;

// The models whose output sizes the service computes itself (the board's records header).
constexpr int kComputedModels[] = {VESK_COMPUTED_MODELS};

class VeskDeviceManagerTest : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_NE(nullptr, service.get()) << "no IVeskDeviceManager"; }
    IVeskDeviceManager& manager() { return *service.get(); }

    ServiceUnderTest service;
};

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

// The EDID of a standard mode is one or two 128-byte blocks, or none where the board has none.
TEST_F(VeskDeviceManagerTest, EdidsAreWholeBlocks) {
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
    EXPECT_EQ(0u, edid.size() % 128) << edid.size();
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
