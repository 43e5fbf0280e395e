/*
 * The stable-AIDL interface's contract any board's service must meet, for an integrator to run on
 * the board (VTS) and run here against the host service on the simulated board: the service
 * serves the frozen version, every call answers with a binder success, results stay within their
 * documented ranges, a state written back as it was read is kept, an output size computed on an
 * allowed model reads back, and an argument out of its range is refused without harm. Nothing
 * here switches power, the modem or the OPS slot, or reboots: the module must be safe to run on a
 * board in use.
 */
#include <aidl/vesk/hardware/veskdevicemanager/BnVeskDeviceCallback.h>
#include <android/binder_status.h>
#include <gtest/gtest.h>
#include <vesksdk_records.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ServiceUnderTest.h"

namespace vesk::vts {
namespace {

using namespace ::aidl::vesk::hardware::veskdevicemanager;
using ::ndk::ScopedAStatus;

// The models whose output sizes the service computes itself (the board's records header).
constexpr int kComputedModels[] = {VESK_COMPUTED_MODELS};

// A client's notification receiver, as an application registers it.
class NotificationCounter : public BnVeskDeviceCallback {
  public:
    ScopedAStatus hwNotify(const MessageParcel& /* parcel */) override {
        ++notifications;
        return ScopedAStatus::ok();
    }
    std::atomic<int> notifications{0};
};

class VeskDeviceManagerAidlTest : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_NE(nullptr, service.get()) << "no IVeskDeviceManager/default"; }
    IVeskDeviceManager& manager() { return *service.get(); }

    ServiceUnderTest service;
};

// The service serves the frozen version: its number and hash are the ones this test was built
// with, from the same frozen version.
TEST_F(VeskDeviceManagerAidlTest, ServesTheFrozenVersion) {
    const int32_t built = IVeskDeviceManager::version;  // a constant of the class, not an object
    int32_t version = 0;
    ASSERT_TRUE(manager().getInterfaceVersion(&version).isOk());
    EXPECT_EQ(built, version);
    EXPECT_EQ(1, version);
    std::string hash;
    ASSERT_TRUE(manager().getInterfaceHash(&hash).isOk());
    EXPECT_EQ(IVeskDeviceManager::hash, hash);
    EXPECT_EQ(40u, hash.size()) << hash;
}

// Every getter without arguments that answers with a plain value: reading state changes none.
TEST_F(VeskDeviceManagerAidlTest, EveryStateGetterAnswers) {
    using Getter = ScopedAStatus (IVeskDeviceManager::*)(int32_t*);
    const std::vector<std::pair<const char*, Getter>> getters = {
            {"getSysLedState", &IVeskDeviceManager::getSysLedState},
            {"getNetLedState", &IVeskDeviceManager::getNetLedState},
            {"getColorLedState", &IVeskDeviceManager::getColorLedState},
            {"get4gLedState", &IVeskDeviceManager::get4gLedState},
            {"getPositionLedState", &IVeskDeviceManager::getPositionLedState},
            {"getSwitchLedState", &IVeskDeviceManager::getSwitchLedState},
            {"getRunningLedState", &IVeskDeviceManager::getRunningLedState},
            {"getCloudLedState", &IVeskDeviceManager::getCloudLedState},
            {"getProtocolType", &IVeskDeviceManager::getProtocolType},
            {"getSimPleFanState", &IVeskDeviceManager::getSimPleFanState},
            {"getFanSpeedLevel", &IVeskDeviceManager::getFanSpeedLevel},
            {"getFanSpeedPRM", &IVeskDeviceManager::getFanSpeedPRM},
            {"getRelayState", &IVeskDeviceManager::getRelayState},
            {"getOpsUsbPort", &IVeskDeviceManager::getOpsUsbPort},
            {"getOpsSwitchState", &IVeskDeviceManager::getOpsSwitchState},
            {"getOpsOnState", &IVeskDeviceManager::getOpsOnState},
            {"getOpsControlState", &IVeskDeviceManager::getOpsControlState},
            {"getOpsDetectState", &IVeskDeviceManager::getOpsDetectState},
            {"getOtgMode", &IVeskDeviceManager::getOtgMode},
            {"getFactoryToolStatus", &IVeskDeviceManager::getFactoryToolStatus},
            {"getPcControlStatus", &IVeskDeviceManager::getPcControlStatus},
            {"getUsbSubCardLedStatus", &IVeskDeviceManager::getUsbSubCardLedStatus},
            {"getNetWorkState", &IVeskDeviceManager::getNetWorkState},
            {"getUsbSwitchEnable", &IVeskDeviceManager::getUsbSwitchEnable},
            {"getAdcBoardId", &IVeskDeviceManager::getAdcBoardId},
            {"getApNetworkInsulation", &IVeskDeviceManager::getApNetworkInsulation},
            {"getApChannel", &IVeskDeviceManager::getApChannel},
            {"getLoraState", &IVeskDeviceManager::getLoraState},
            {"get4gModuleState", &IVeskDeviceManager::get4gModuleState},
            {"get4gPowerState", &IVeskDeviceManager::get4gPowerState},
            {"getScreenModeState", &IVeskDeviceManager::getScreenModeState},
            {"getHeadphonePowerState", &IVeskDeviceManager::getHeadphonePowerState},
            {"getPQEnable", &IVeskDeviceManager::getPQEnable},
            {"getPowerAmplifierState", &IVeskDeviceManager::getPowerAmplifierState},
    };
    for (const auto& [name, get] : getters) {
        int32_t value = 0;
        ScopedAStatus status = (manager().*get)(&value);
        EXPECT_TRUE(status.isOk()) << name << ": " << status.getDescription();
    }
    float reading = 0;
    EXPECT_TRUE(manager().getBoardVoltage(&reading).isOk());
    EXPECT_TRUE(manager().getBoardTemperature(&reading).isOk());
}

// The records: each call succeeds; a process record's block is always 16 bytes.
TEST_F(VeskDeviceManagerAidlTest, EveryRecordGetterAnswers) {
    ProductInfo product;
    EXPECT_TRUE(manager().getProductInfo(&product).isOk());
    WatchDogCfg watchdog;
    EXPECT_TRUE(manager().getWatchDogCfg(&watchdog).isOk());
    std::vector<UsbList> usb;
    EXPECT_TRUE(manager().getUsbList(&usb).isOk());
    CpuStatus cpu;
    EXPECT_TRUE(manager().getCpuStatus(&cpu).isOk());
    std::string version;
    EXPECT_TRUE(manager().getVndkVersion(&version).isOk());
    LogConfigureResult log;
    EXPECT_TRUE(manager().getVeskLogConfigure(&log).isOk());
    std::vector<int32_t> boot;
    EXPECT_TRUE(manager().getRtcBootTime(&boot).isOk());
    ProcessInfo process;
    EXPECT_TRUE(manager().getProcessInfo("init", &process).isOk());
    EXPECT_EQ(16u, process.block.size());
}

// The reserved entry points: hwInvoke answers null; hwRegistCallback takes any receiver, a null
// one included, answers 0 and sends it nothing.
TEST_F(VeskDeviceManagerAidlTest, ReservedEntryPointsAnswerNothing) {
    std::optional<std::string> answer = "unset";
    EXPECT_TRUE(manager().hwInvoke("status", &answer).isOk());
    EXPECT_EQ(std::nullopt, answer);

    int32_t ret = -1;
    ASSERT_TRUE(manager().hwRegistCallback(nullptr, &ret).isOk());
    EXPECT_EQ(0, ret);

    auto receiver = ndk::SharedRefBase::make<NotificationCounter>();
    ret = -1;
    ASSERT_TRUE(manager().hwRegistCallback(receiver, &ret).isOk());
    EXPECT_EQ(0, ret);
    EXPECT_EQ(0, receiver->notifications);
}

// Writing back the state a getter has just reported is accepted and keeps that state, on any
// board. Only switches without side effects are tried (LEDs, relay, fan level, audio, picture
// quality); a getter that reports a failure (a board without that part) is passed over.
TEST_F(VeskDeviceManagerAidlTest, AStateWrittenBackAsReadIsKept) {
    using Getter = ScopedAStatus (IVeskDeviceManager::*)(int32_t*);
    using Setter = ScopedAStatus (IVeskDeviceManager::*)(int32_t, int32_t*);
    struct Switch {
        const char* name;
        Getter get;
        Setter set;
    };
    const std::vector<Switch> switches = {
            {"SysLedState", &IVeskDeviceManager::getSysLedState,
             &IVeskDeviceManager::setSysLedState},
            {"NetLedState", &IVeskDeviceManager::getNetLedState,
             &IVeskDeviceManager::setNetLedState},
            {"4gLedState", &IVeskDeviceManager::get4gLedState, &IVeskDeviceManager::set4gLedState},
            {"PositionLedState", &IVeskDeviceManager::getPositionLedState,
             &IVeskDeviceManager::setPositionLedState},
            {"SwitchLedState", &IVeskDeviceManager::getSwitchLedState,
             &IVeskDeviceManager::setSwitchLedState},
            {"RunningLedState", &IVeskDeviceManager::getRunningLedState,
             &IVeskDeviceManager::setRunningLedState},
            {"CloudLedState", &IVeskDeviceManager::getCloudLedState,
             &IVeskDeviceManager::setCloudLedState},
            {"UsbSubCardLedStatus", &IVeskDeviceManager::getUsbSubCardLedStatus,
             &IVeskDeviceManager::setUsbSubCardLedStatus},
            {"RelayState", &IVeskDeviceManager::getRelayState, &IVeskDeviceManager::setRelayState},
            {"FanSpeedLevel", &IVeskDeviceManager::getFanSpeedLevel,
             &IVeskDeviceManager::setFanSpeedLevel},
            {"HeadphonePowerState", &IVeskDeviceManager::getHeadphonePowerState,
             &IVeskDeviceManager::setHeadphonePowerState},
            {"PowerAmplifierState", &IVeskDeviceManager::getPowerAmplifierState,
             &IVeskDeviceManager::setPowerAmplifierState},
            {"PQEnable", &IVeskDeviceManager::getPQEnable, &IVeskDeviceManager::setPQEnable},
    };
    int tried = 0;
    for (const Switch& s : switches) {
        int32_t state = 0;
        ASSERT_TRUE((manager().*s.get)(&state).isOk()) << s.name;
        if (state < 0) continue;
        ++tried;
        int32_t written = -1;
        ASSERT_TRUE((manager().*s.set)(state, &written).isOk()) << s.name;
        EXPECT_LE(0, written) << s.name << " refused its own state " << state;
        int32_t after = -1;
        ASSERT_TRUE((manager().*s.get)(&after).isOk()) << s.name;
        EXPECT_EQ(state, after) << s.name;
    }
    EXPECT_LT(0, tried) << "no switch of this board reports its state";
}

// An EDID from predefined settings is always the whole 256-byte buffer; one for given values is
// the 256 bytes, or empty where the board has none.
TEST_F(VeskDeviceManagerAidlTest, EdidsAreTheWholeBufferOrNone) {
    std::vector<uint8_t> edid;
    EXPECT_TRUE(manager().getEdidByModel(1920, 1080, 60.0f, &edid).isOk());
    EXPECT_TRUE(edid.size() == 0 || edid.size() == 256) << edid.size();
    EXPECT_TRUE(manager().getEdidFromDefined(0, 1920, 1080, 60.0f, &edid).isOk());
    EXPECT_EQ(256u, edid.size());
}

// An EDID that is not exactly 256 bytes never reaches the board: the timing is all zeros.
TEST_F(VeskDeviceManagerAidlTest, AnEdidOfAnotherSizeHasNoTiming) {
    for (size_t size : {size_t{0}, size_t{128}, size_t{255}, size_t{257}}) {
        std::vector<uint8_t> edid(size);
        for (size_t i = 0; i < size; ++i) edid[i] = static_cast<uint8_t>(i);
        VeskEffeResolution timing;
        timing.width = timing.height = timing.fps = timing.status = 1;
        EXPECT_TRUE(manager().getResolutionByEdid(edid, &timing).isOk()) << size;
        EXPECT_EQ(0, timing.width) << size;
        EXPECT_EQ(0, timing.height) << size;
        EXPECT_EQ(0, timing.fps) << size;
        EXPECT_EQ(0, timing.status) << size;
    }
}

// Every listed output size is usable (status 1); the list is no longer than the board's record
// of sizes holds.
TEST_F(VeskDeviceManagerAidlTest, ListedOutputSizesAreUsable) {
    std::vector<VeskEffeResolution> list;
    EXPECT_TRUE(manager().getResolutionParametersList(&list).isOk());
    EXPECT_LE(list.size() * sizeof(vesk_resolution_record), size_t{VESK_RESOLUTION_LIST_BYTES});
    for (const VeskEffeResolution& entry : list) EXPECT_EQ(1, entry.status);
}

// A computed output size's status is one of 1, -1, -2 and -3; on an allowed model a size inside
// the limits succeeds and the current output size then reads back as it was computed.
TEST_F(VeskDeviceManagerAidlTest, ComputedOutputSizeReadsBack) {
    ProductInfo product;
    ASSERT_TRUE(manager().getProductInfo(&product).isOk());
    const int model = std::atoi(product.modelId.c_str());
    VeskEffeResolution computed;
    EXPECT_TRUE(manager().calculateResolutionParameters(1920, 1080, 60, &computed).isOk());
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
    VeskEffeResolution current;
    EXPECT_TRUE(manager().getResolutionParameters(&current).isOk());
    // The mode's own sizes and its whole rate in Hz (a reduced-blanking 60 Hz is 59.9...).
    EXPECT_EQ(1920, computed.width);
    EXPECT_EQ(1080, computed.height);
    EXPECT_EQ(computed.width, current.width);
    EXPECT_EQ(computed.height, current.height);
    EXPECT_EQ(computed.fps, current.fps);
    EXPECT_EQ(1, current.status);
}

// An argument outside what the board could be given is refused with EX_ILLEGAL_ARGUMENT, before
// any device is touched, and the service answers the next call.
TEST_F(VeskDeviceManagerAidlTest, AnArgumentOutOfItsRangeIsRefusedWithoutHarm) {
    ReadResult read;
    ScopedAStatus status = manager().readNonBlockingSerialPort485(-1, &read);
    EXPECT_EQ(EX_ILLEGAL_ARGUMENT, status.getExceptionCode()) << status.getDescription();
    int32_t ret = 0;
    status = manager().getAudioEnable(256, &ret);
    EXPECT_EQ(EX_ILLEGAL_ARGUMENT, status.getExceptionCode()) << status.getDescription();
    std::vector<uint8_t> block;
    status = manager().readBlockDataDefined(1024 * 1024, 0, &block);
    EXPECT_EQ(EX_ILLEGAL_ARGUMENT, status.getExceptionCode()) << status.getDescription();
    EXPECT_TRUE(manager().getSysLedState(&ret).isOk());
}

}  // namespace
}  // namespace vesk::vts
