// The passthrough factory, the constructor, the two generic entry points, the callback class
// and the level property that gates the trace.
#include <stdlib.h>

#include <functional>

#include "BuiltProgram.h"
#include "ServiceTest.h"
#include "VeskDeviceCallback.h"

namespace vesk::test {
namespace {

using vesk::hardware::veskdevicemanager::implementation::HIDL_FETCH_IVeskDeviceManager;
using vesk::hardware::veskdevicemanager::implementation::VeskDeviceCallback;
using vesk::hardware::veskdevicemanager::V1_0::MessageParcel;

using ServiceEntryTest = ServiceTest;

TEST_F(ServiceEntryTest, EveryFetchMakesANewObjectAndInitialisesTheBoard) {
    sp<IVeskDeviceManager> first = HIDL_FETCH_IVeskDeviceManager("default");
    sp<IVeskDeviceManager> second = HIDL_FETCH_IVeskDeviceManager("");
    sp<IVeskDeviceManager> third = HIDL_FETCH_IVeskDeviceManager("default");
    EXPECT_NE(first.get(), second.get());
    EXPECT_NE(first.get(), third.get());
    auto init = callsOf("bi_init_product_config");
    ASSERT_EQ(3u, init.size());
    EXPECT_EQ(json::array(), init[0]["args"]);
    EXPECT_EQ(3u, calls().size());
}

TEST_F(ServiceEntryTest, ConstructorTracesBeforeInitialisingTheBoard) {
    setLevel("D");
    sp<IVeskDeviceManager> manager = HIDL_FETCH_IVeskDeviceManager("x");
    EXPECT_EQ(LogLines{debugLine(traced("VeskDeviceManager") + "\n")},
              capturedLogWithTag(kServiceTag));
    EXPECT_EQ(1u, callsOf("bi_init_product_config").size());
}

TEST_F(ServiceEntryTest, InitialisationFailureIsIgnored) {
    script({{"bi_init_product_config", {{"return", -1}}}});
    sp<IVeskDeviceManager> manager = HIDL_FETCH_IVeskDeviceManager("default");
    ASSERT_NE(nullptr, manager.get());
    EXPECT_EQ(0, int32_t(manager->hwRegistCallback(nullptr)));
}

TEST_F(ServiceEntryTest, HwInvokeNeverCallsItsCallback) {
    setLevel("D");
    int called = 0;
    for (const char* command : {"", "status", "reboot now", "{\"json\":1}"}) {
        auto ret = service->hwInvoke(command, [&](const hidl_string&) { ++called; });
        EXPECT_TRUE(ret.isOk());
    }
    EXPECT_EQ(0, called);
    EXPECT_EQ(LogLines(4, debugLine(traced("hwInvoke") + "\n")), capturedLogWithTag(kServiceTag));
    EXPECT_TRUE(calls().empty());
}

TEST_F(ServiceEntryTest, HwRegistCallbackAnswersZeroForNullAndRealCallbacks) {
    setLevel("D");
    EXPECT_EQ(0, int32_t(service->hwRegistCallback(nullptr)));
    sp<VeskDeviceCallback> callback = new VeskDeviceCallback();
    EXPECT_EQ(0, int32_t(service->hwRegistCallback(callback)));
    EXPECT_EQ(LogLines(2, debugLine(traced("hwRegistCallback") + "\n")),
              capturedLogWithTag(kServiceTag));
    EXPECT_TRUE(calls().empty());
}

TEST_F(ServiceEntryTest, HwNotifyReturnsSuccessAndDoesNothing) {
    setLevel("D");
    sp<VeskDeviceCallback> callback = new VeskDeviceCallback();
    MessageParcel parcel;
    EXPECT_TRUE(callback->hwNotify(parcel).isOk());
    parcel.what = -1;
    parcel.message = "anything";
    parcel.payload = hidl_vec<uint8_t>{1, 2, 3};
    EXPECT_TRUE(callback->hwNotify(parcel).isOk());
    EXPECT_TRUE(capturedLog().empty());
    EXPECT_TRUE(calls().empty());
}

TEST_F(ServiceEntryTest, LevelSetByAnotherProcessTakesEffectOnTheNextCall) {
    service->setSysLedState(1);
    EXPECT_TRUE(capturedLogWithTag(kServiceTag).empty());
    int status = -1;
    runCommand("VESK_ROOT='" + root.path() + "' " + veskdmCommand() + " prop set " + kLevel + " D",
               &status);
    ASSERT_EQ(0, status);
    service->setSysLedState(1);
    EXPECT_EQ(LogLines{debugLine(traced("setSysLedState") + "\n")}, capturedLogWithTag(kServiceTag));
    runCommand("VESK_ROOT='" + root.path() + "' " + veskdmCommand() + " prop set " + kLevel + " E",
               &status);
    vesk::host::clearCapturedLog();
    service->setSysLedState(1);
    EXPECT_TRUE(capturedLogWithTag(kServiceTag).empty());
}

TEST_F(ServiceEntryTest, LevelIWritesInformationLinesButNoDebugLines) {
    setLevel("I");
    script({{"bi_info_get_usb_list", {{"return", 0}, {"out", "0100000034120000"}}}});
    service->getUsbList([](const hidl_vec<vesk::hardware::veskdevicemanager::V1_0::UsbList>&) {});
    EXPECT_EQ(LogLines{infoLine("Device 0: VID = 1234, PID = 0, ret = 0\n")},
              capturedLogWithTag(kServiceTag));
}

TEST_F(ServiceEntryTest, EmptyResultCallbackRaisesBadFunctionCall) {
    EXPECT_THROW(service->getVndkVersion(nullptr), std::bad_function_call);
}

}  // namespace
}  // namespace vesk::test
