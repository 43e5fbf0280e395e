// Binding words to calls: arguments reach the method with their exact types and values,
// returns and result callbacks come back as JSON, and bad words stop before any call.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "MethodTable.h"
#include "MockDeviceManager.h"
#include "NotificationOutput.h"

namespace veskdm {
namespace {

using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hardware::Status;
using ::android::hardware::Void;
using ::testing::_;
using ::testing::DoAll;
using ::testing::Invoke;
using ::testing::InvokeArgument;
using ::testing::StrictMock;
namespace gm = ::testing;

using test::MockDeviceManager;

class MethodBinderTest : public ::testing::Test {
  protected:
    // Binds the words and runs the call on the mock; the JSON line as text.
    std::string run(const std::vector<std::string>& words) {
        BoundCall call = bindCall(words);
        return dumpJson(runCall(call, *service));
    }
    std::string bindError(const std::vector<std::string>& words) {
        try {
            bindCall(words);
        } catch (const ArgumentError& error) {
            return error.what();
        }
        return "";
    }

    ::android::sp<StrictMock<MockDeviceManager>> service = new StrictMock<MockDeviceManager>();
};

TEST_F(MethodBinderTest, SetterReturnsItsValue) {
    EXPECT_CALL(*service, setSysLedState(3)).WillOnce(gm::Return(0));
    EXPECT_EQ(run({"setSysLedState", "3"}),
              R"({"method":"setSysLedState","return":0,"callbacks":[]})");
}

TEST_F(MethodBinderTest, NegativeReturnPassesThrough) {
    EXPECT_CALL(*service, getSysLedState()).WillOnce(gm::Return(-22));
    EXPECT_EQ(run({"getSysLedState"}), R"({"method":"getSysLedState","return":-22,"callbacks":[]})");
}

TEST_F(MethodBinderTest, FloatReturnIsShortest) {
    EXPECT_CALL(*service, getBoardVoltage()).WillOnce(gm::Return(12.15f));
    EXPECT_EQ(run({"getBoardVoltage"}),
              R"({"method":"getBoardVoltage","return":12.15,"callbacks":[]})");
}

TEST_F(MethodBinderTest, SeveralIntegerWidths) {
    EXPECT_CALL(*service, openSerialPort485(115200, uint8_t{8}, uint8_t{1}, int8_t{-128}))
            .WillOnce(gm::Return(0));
    run({"openSerialPort485", "115200", "8", "1", "-128"});
}

TEST_F(MethodBinderTest, Uint16AndFloatArguments) {
    hidl_vec<uint8_t> edid{0x00, 0xFF, 0xFF};
    EXPECT_CALL(*service,
                getEdidFromDefined(uint8_t{255}, uint16_t{65535}, uint16_t{1080}, 59.94f, _))
            .WillOnce(DoAll(InvokeArgument<4>(edid), gm::Return(Void())));
    EXPECT_EQ(run({"getEdidFromDefined", "255", "65535", "1080", "59.94"}),
              R"({"method":"getEdidFromDefined","return":null,"callbacks":[[[0,255,255]]]})");
}

TEST_F(MethodBinderTest, StringsNumbersAndBytes) {
    EXPECT_CALL(*service,
                writeBlockData(hidl_string("/data/block a"), 16u, 3u, hidl_vec<uint8_t>{1, 2, 3}))
            .WillOnce(gm::Return(3));
    EXPECT_EQ(run({"writeBlockData", "/data/block a", "16", "3", "[1, 2, 3]"}),
              R"({"method":"writeBlockData","return":3,"callbacks":[]})");
}

TEST_F(MethodBinderTest, QuotedJsonString) {
    EXPECT_CALL(*service, feedWatchDog(hidl_string("123"))).WillOnce(gm::Return(0));
    run({"feedWatchDog", "\"123\""});
}

TEST_F(MethodBinderTest, WordVector) {
    EXPECT_CALL(*service, setRtcBootTime(hidl_vec<uint32_t>{2024, 1, 2, 3, 4, 5}))
            .WillOnce(gm::Return(0));
    run({"setRtcBootTime", "[2024,1,2,3,4,5]"});
}

TEST_F(MethodBinderTest, StructArgument) {
    EXPECT_CALL(*service, setVeskLogConfigure(_)).WillOnce(Invoke([](const hal::VeskLogInfo& info) {
        EXPECT_EQ(std::string(info.level), "D");
        EXPECT_EQ(std::string(info.base), "/data/log");
        EXPECT_EQ(std::string(info.mode), "1");
        EXPECT_EQ(std::string(info.total_size), "100");
        EXPECT_EQ(std::string(info.once_size), "10");
        return 0;
    }));
    run({"setVeskLogConfigure", R"({"level":"D","base":"/data/log","mode":"1","total_size":"100",)"
                                R"("once_size":"10"})"});
}

TEST_F(MethodBinderTest, StructResultThroughTheCallback) {
    hal::CpuStatus status{};
    status.usr = 12.15f;
    status.nic = 0.5f;
    status.sys = 3.3f;
    status.idle = 80.0f;
    status.iowait = 0.1f;
    status.irq = 0.0f;
    status.softirq = 1.0f / 3.0f;
    status.temperature = 45;
    EXPECT_CALL(*service, getCpuStatus(_))
            .WillOnce(DoAll(InvokeArgument<0>(status), gm::Return(Void())));
    EXPECT_EQ(run({"getCpuStatus"}),
              R"({"method":"getCpuStatus","return":null,"callbacks":[[{"usr":12.15,"nic":0.5,)"
              R"("sys":3.3,"idle":80.0,"iowait":0.1,"irq":0.0,"softirq":0.33333334,)"
              R"("temperature":45}]]})");
}

TEST_F(MethodBinderTest, CallbackWithSeveralArguments) {
    EXPECT_CALL(*service, readBlockingSerialPort232(4u, 100u, _))
            .WillOnce(DoAll(InvokeArgument<2>(hidl_vec<uint8_t>{65, 66}, 2u), gm::Return(Void())));
    EXPECT_EQ(run({"readBlockingSerialPort232", "4", "100"}),
              R"({"method":"readBlockingSerialPort232","return":null,"callbacks":[[[65,66],2]]})");
}

TEST_F(MethodBinderTest, EveryCallbackInvocationIsKept) {
    EXPECT_CALL(*service, readSpiFpga(2, _))
            .WillOnce(DoAll(InvokeArgument<1>(2, hidl_vec<uint8_t>{7, 8}),
                            InvokeArgument<1>(-1, hidl_vec<uint8_t>{}), gm::Return(Void())));
    EXPECT_EQ(run({"readSpiFpga", "2"}),
              R"({"method":"readSpiFpga","return":null,"callbacks":[[2,[7,8]],[-1,[]]]})");
}

TEST_F(MethodBinderTest, CallbackNotCalled) {
    EXPECT_CALL(*service, hwInvoke(hidl_string("anything"), _)).WillOnce(gm::Return(Void()));
    EXPECT_EQ(run({"hwInvoke", "anything"}),
              R"({"method":"hwInvoke","return":null,"callbacks":[]})");
}

TEST_F(MethodBinderTest, VectorOfStructs) {
    hidl_vec<hal::VeskEffeResolution> list{{1920, 1080, 60, 1}, {3840, 2160, 30, -1}};
    EXPECT_CALL(*service, getResolutionParametersList(_))
            .WillOnce(DoAll(InvokeArgument<0>(list), gm::Return(Void())));
    EXPECT_EQ(run({"getResolutionParametersList"}),
              R"({"method":"getResolutionParametersList","return":null,"callbacks":[[[)"
              R"({"width":1920,"height":1080,"fps":60,"status":1},)"
              R"({"width":3840,"height":2160,"fps":30,"status":-1}]]]})");
}

TEST_F(MethodBinderTest, NullCallbackObject) {
    EXPECT_CALL(*service, hwRegistCallback(::android::sp<hal::IVeskDeviceCallback>(nullptr)))
            .WillOnce(gm::Return(0));
    run({"hwRegistCallback", "null"});
}

TEST_F(MethodBinderTest, LocalCallbackObjectPrintsNotifications) {
    EXPECT_CALL(*service, hwRegistCallback(_))
            .WillOnce(Invoke([](const ::android::sp<hal::IVeskDeviceCallback>& callback) {
                EXPECT_NE(callback, nullptr);
                hal::MessageParcel parcel;
                parcel.what = 5;
                parcel.message = "up";
                parcel.payload = hidl_vec<uint8_t>{9};
                if (callback != nullptr) callback->hwNotify(parcel);
                return 0;
            }));
    std::ostringstream out;
    std::string line;
    {
        NotificationOutput notifications(out);
        line = run({"hwRegistCallback", "callback"});
    }
    EXPECT_EQ(out.str(), "{\"notification\":{\"what\":5,\"message\":\"up\",\"payload\":[9]}}\n");
    EXPECT_EQ(line, R"({"method":"hwRegistCallback","return":0,"callbacks":[]})");
}

TEST_F(MethodBinderTest, TransportFailure) {
    EXPECT_CALL(*service, getSysLedState())
            .WillOnce(gm::Return(::android::hardware::Return<int32_t>(
                    Status::fromExceptionCode(Status::EX_TRANSACTION_FAILED))));
    EXPECT_THROW(run({"getSysLedState"}), TransportError);
}

TEST_F(MethodBinderTest, PreparedCallCanRunTwice) {
    EXPECT_CALL(*service, setNetLedState(1)).Times(2).WillRepeatedly(gm::Return(0));
    BoundCall call = bindCall({"setNetLedState", "1"});
    runCall(call, *service);
    runCall(call, *service);
}

// ---- bad words: an ArgumentError, and the strict mock sees no call ----

TEST_F(MethodBinderTest, UnknownMethod) {
    EXPECT_EQ(bindError({"setSysLed", "3"}),
              "unknown method \"setSysLed\" (veskdm methods lists them)");
    EXPECT_EQ(bindError({}), "no method given");
}

TEST_F(MethodBinderTest, TooManyArguments) {
    EXPECT_EQ(bindError({"setSysLedState", "1", "2"}),
              "setSysLedState takes 1 argument (int32_t state), got 2");
    EXPECT_EQ(bindError({"getSysLedState", "1"}), "getSysLedState takes no arguments, got 1");
}

TEST_F(MethodBinderTest, TooFewArguments) {
    EXPECT_EQ(bindError({"setColorLedState", "1"}),
              "setColorLedState takes 3 arguments (int32_t red, int32_t green, int32_t blue), "
              "got 1");
    EXPECT_EQ(bindError({"setSysLedState"}),
              "setSysLedState takes 1 argument (int32_t state), got 0");
}

TEST_F(MethodBinderTest, ArgumentOutOfRangeNamesTheArgument) {
    EXPECT_EQ(bindError({"setAudioEnable", "1", "256"}),
              "setAudioEnable: argument 2 (uint8_t enable): expected an integer from 0 to 255 "
              "(uint8_t), got 256 (out of range)");
    EXPECT_EQ(bindError({"setOtgMode", "-1"}),
              "setOtgMode: argument 1 (uint32_t mode): expected an integer from 0 to 4294967295 "
              "(uint32_t), got -1 (out of range)");
    EXPECT_EQ(bindError({"setSysLedState", "2147483648"}),
              "setSysLedState: argument 1 (int32_t state): expected an integer from -2147483648 "
              "to 2147483647 (int32_t), got 2147483648 (out of range)");
    EXPECT_EQ(bindError({"openSerialPort232", "9600", "8", "1", "128"}),
              "openSerialPort232: argument 4 (int8_t parity): expected an integer from -128 to "
              "127 (int8_t), got 128 (out of range)");
    EXPECT_EQ(bindError({"getEdidByModel", "65536", "1080", "60"}),
              "getEdidByModel: argument 1 (uint16_t width): expected an integer from 0 to 65535 "
              "(uint16_t), got 65536 (out of range)");
}

TEST_F(MethodBinderTest, FirstBadArgumentIsReported) {
    EXPECT_EQ(bindError({"setAudioEnable", "300", "x"}).rfind("setAudioEnable: argument 1 ", 0), 0u);
}

TEST_F(MethodBinderTest, WrongTypes) {
    EXPECT_EQ(bindError({"setSysLedState", "on"}),
              "setSysLedState: argument 1 (int32_t state): expected an integer from -2147483648 "
              "to 2147483647 (int32_t), got \"on\"");
    EXPECT_EQ(bindError({"feedWatchDog", "5"}),
              "feedWatchDog: argument 1 (string device): expected a string, got 5");
    EXPECT_EQ(bindError({"writeSerialPort485", "{}"}),
              "writeSerialPort485: argument 1 (vec<uint8_t> data): expected an array, got {}");
    EXPECT_EQ(bindError({"getEdidByModel", "1920", "1080", "fast"}),
              "getEdidByModel: argument 3 (float refresh): expected a number, got \"fast\"");
    EXPECT_EQ(bindError({"hwRegistCallback", "1"}),
              "hwRegistCallback: argument 1 (IVeskDeviceCallback callback): expected null or "
              "\"callback\", got 1");
}

TEST_F(MethodBinderTest, NonIntegralNumber) {
    EXPECT_EQ(bindError({"setFanSpeedLevel", "2.5"}),
              "setFanSpeedLevel: argument 1 (int32_t state): expected an integer from "
              "-2147483648 to 2147483647 (int32_t), got 2.5 (not an integer)");
}

TEST_F(MethodBinderTest, StructFieldErrors) {
    EXPECT_EQ(bindError({"setVeskLogConfigure", R"({"level":"D"})"}),
              "setVeskLogConfigure: argument 1 (VeskLogInfo info): missing field \"base\"");
    EXPECT_EQ(bindError({"setVeskLogConfigure",
                         R"({"level":"D","base":"b","mode":"m","total_size":"1","once_size":"2",)"
                         R"("colour":"red"})"}),
              "setVeskLogConfigure: argument 1 (VeskLogInfo info): unknown field \"colour\"");
}

// A word that is not JSON is refused in the tool's words: which argument, what it takes.
TEST_F(MethodBinderTest, UnreadableJson) {
    EXPECT_EQ(bindError({"writeSerialPort485", "[1, 2"}),
              "writeSerialPort485: argument 1 (vec<uint8_t> data): expected an array "
              "(vec<uint8_t>), each element an integer from 0 to 255 (uint8_t), got \"[1, 2\", "
              "which is not JSON: it ends before its value does");
    EXPECT_EQ(bindError({"setSysLedState", "0x10"}),
              "setSysLedState: argument 1 (int32_t state): expected an integer from -2147483648 "
              "to 2147483647 (int32_t), got \"0x10\", which is not JSON: 'x' at character 2 is "
              "not expected there");
    EXPECT_EQ(bindError({"getEdidByModel", "1920", "1080", "6x"}),
              "getEdidByModel: argument 3 (float refresh): expected a number (float), got \"6x\", "
              "which is not JSON: 'x' at character 2 is not expected there");
    EXPECT_EQ(bindError({"startWatchDog", "\"/dev/w", "3"}),
              "startWatchDog: argument 1 (string device): expected a string (a word, or JSON in "
              "double quotes), got \"\\\"/dev/w\", which is not JSON: it ends before its value "
              "does");
    EXPECT_EQ(bindError({"setVeskLogConfigure", "{"}),
              "setVeskLogConfigure: argument 1 (VeskLogInfo info): expected a VeskLogInfo object "
              "with the fields level, base, mode, total_size, once_size, got \"{\", which is not "
              "JSON: it ends before its value does");
    EXPECT_EQ(bindError({"hwRegistCallback", "[x"}),
              "hwRegistCallback: argument 1 (IVeskDeviceCallback callback): expected null or "
              "\"callback\", got \"[x\", which is not JSON: 'x' at character 2 is not expected "
              "there");
    EXPECT_EQ(bindError({"writeSerialPort232", "[1.5"}),
              "writeSerialPort232: argument 1 (vec<uint8_t> data): expected an array "
              "(vec<uint8_t>), each element an integer from 0 to 255 (uint8_t), got \"[1.5\", "
              "which is not JSON: it ends before its value does");
}

TEST_F(MethodBinderTest, VectorElementOutOfRange) {
    EXPECT_EQ(bindError({"writeSpiFpga", "[0, 255, 256]"}),
              "writeSpiFpga: argument 1 (vec<uint8_t> data): element 2: expected an integer from "
              "0 to 255 (uint8_t), got 256 (out of range)");
}

}  // namespace
}  // namespace veskdm
