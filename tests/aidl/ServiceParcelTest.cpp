// Bad input through real parcels, from another process: arguments out of their range through the
// generated proxy, and parcels written by hand that the generated code cannot read (a null where
// a value is needed, a truncated parcel, an array longer than its data, a transaction code the
// interface does not know). Each gets a binder error status, nothing reaches the board, and the
// service answers the next call. Then the size of one transaction, at RPC binder's limit and
// one byte past it.
#include <android/binder_parcel.h>
#include <android/binder_status.h>
#include <gmock/gmock.h>
#include <signal.h>

#include <climits>
#include <functional>
#include <string>
#include <vector>

#include "ServiceProcessFixture.h"

namespace vesk::test {
namespace {

using ::aidl::vesk::hardware::veskdevicemanager::ReadResult;
using ::aidl::vesk::hardware::veskdevicemanager::VeskLogInfo;

class ServiceParcelTest : public ServiceProcessTest {
  protected:
    void SetUp() override {
        ASSERT_TRUE(start()) << service->firstLine();
        client = std::make_unique<Session>(socketPath());
        ASSERT_EQ(VESK_RPC_OK, client->result) << client->message;
    }

    IVeskDeviceManager& manager() { return *client->proxy; }

    // A transaction of `code` whose parcel (after the interface token, which the binder writes)
    // `write` fills; how it ended for the caller.
    binder_status_t transact(transaction_code_t code, const std::function<void(AParcel*)>& write) {
        AParcel* in = nullptr;
        binder_status_t status = AIBinder_prepareTransaction(client->binder.get(), &in);
        if (status != STATUS_OK) return status;
        write(in);
        AParcel* out = nullptr;
        status = AIBinder_transact(client->binder.get(), code, &in, &out, 0);
        AParcel_delete(out);
        return status;
    }

    // The service still answers, and it made no board call but its construction's and this one.
    void expectServingWithNoOtherBoardCall() {
        int32_t state = -1;
        ASSERT_TRUE(manager().getNetLedState(&state).isOk());
        std::vector<nlohmann::json> calls = boardCalls();
        ASSERT_EQ(2u, calls.size()) << nlohmann::json(calls).dump();
        EXPECT_EQ("bi_init_product_config", calls[0]["function"]);
        EXPECT_EQ("bi_netled_get_state", calls[1]["function"]);
        EXPECT_FALSE(service->hasEnded());
    }

    std::unique_ptr<Session> client;
};

void expectIllegalArgument(const ndk::ScopedAStatus& status, const std::string& message) {
    EXPECT_EQ(EX_ILLEGAL_ARGUMENT, status.getExceptionCode()) << status.getDescription();
    EXPECT_EQ(message, status.getMessage() == nullptr ? "" : status.getMessage());
}

TEST_F(ServiceParcelTest, ArgumentsOutOfTheirRangeAreIllegalAcrossTheBoundary) {
    ReadResult read;
    expectIllegalArgument(manager().readBlockingSerialPort485(-1, 100, &read),
                          "readBlockingSerialPort485: data_size is -1, outside its range 0 to "
                          "1040384");
    expectIllegalArgument(manager().readNonBlockingSerialPort232(1040385, &read),
                          "readNonBlockingSerialPort232: data_size is 1040385, outside its range 0 "
                          "to 1040384");
    int32_t ret = 0;
    expectIllegalArgument(manager().openSerialPortTTL(9600, 256, 1, 0, &ret),
                          "openSerialPortTTL: databits is 256, outside its range 0 to 255");
    expectIllegalArgument(manager().openSerialPortLora(9600, 8, 1, -129, &ret),
                          "openSerialPortLora: parity is -129, outside its range -128 to 127");
    std::vector<uint8_t> edid;
    expectIllegalArgument(manager().getEdidByModel(65536, 1080, 60.0f, &edid),
                          "getEdidByModel: width is 65536, outside its range 0 to 65535");
    VeskLogInfo info;
    info.once_size = std::string(9, '9');
    expectIllegalArgument(
            manager().setVeskLogConfigure(info, &ret),
            "setVeskLogConfigure: info.once_size: 9 bytes, the record has room for 8");
    expectServingWithNoOtherBoardCall();
}

TEST_F(ServiceParcelTest, ANullWhereAValueIsNeededIsRefusedByTheGeneratedCode) {
    // startWatchDog(String device, int timeout) with a null string.
    EXPECT_EQ(STATUS_UNEXPECTED_NULL,
              transact(IVeskDeviceManager::TRANSACTION_startWatchDog, [](AParcel* in) {
                  AParcel_writeString(in, nullptr, -1);
                  AParcel_writeInt32(in, 30);
              }));
    // writeSerialPort485(byte[] data) with a null array: libbinder_ndk's vector takes no null
    // array, and its reader says so as it says a vector cannot be made (parcel.cpp).
    EXPECT_EQ(STATUS_NO_MEMORY,
              transact(IVeskDeviceManager::TRANSACTION_writeSerialPort485,
                       [](AParcel* in) { AParcel_writeByteArray(in, nullptr, -1); }));
    // setVeskLogConfigure(VeskLogInfo info) with a null parcelable.
    EXPECT_EQ(STATUS_UNEXPECTED_NULL, transact(IVeskDeviceManager::TRANSACTION_setVeskLogConfigure,
                                               [](AParcel* in) { AParcel_writeInt32(in, 0); }));
    expectServingWithNoOtherBoardCall();
}

TEST_F(ServiceParcelTest, ATruncatedParcelIsRefusedByTheGeneratedCode) {
    // setColorLedState(int red, int green, int blue) with only the red.
    EXPECT_EQ(STATUS_NOT_ENOUGH_DATA, transact(IVeskDeviceManager::TRANSACTION_setColorLedState,
                                               [](AParcel* in) { AParcel_writeInt32(in, 255); }));
    // setSysLedState(int state) with nothing.
    EXPECT_EQ(STATUS_NOT_ENOUGH_DATA,
              transact(IVeskDeviceManager::TRANSACTION_setSysLedState, [](AParcel*) {}));
    // writeSpiFpga(byte[] data): an array of 100 bytes that holds 4. An array longer than the
    // data left is refused before anything is allocated for it (parcel.cpp), as is one that
    // claims the largest length and holds nothing.
    EXPECT_EQ(STATUS_NO_MEMORY,
              transact(IVeskDeviceManager::TRANSACTION_writeSpiFpga, [](AParcel* in) {
                  AParcel_writeInt32(in, 100);
                  AParcel_writeInt32(in, 0x01020304);
              }));
    EXPECT_EQ(STATUS_NO_MEMORY, transact(IVeskDeviceManager::TRANSACTION_writeSpiFpga,
                                         [](AParcel* in) { AParcel_writeInt32(in, INT32_MAX); }));
    // An array whose length is below -1, the null array's: lengths libbinder_ndk reserves.
    EXPECT_EQ(STATUS_BAD_VALUE, transact(IVeskDeviceManager::TRANSACTION_writeSpiFpga,
                                         [](AParcel* in) { AParcel_writeInt32(in, -2); }));
    expectServingWithNoOtherBoardCall();
}

TEST_F(ServiceParcelTest, ATransactionTheInterfaceDoesNotKnowIsRefused) {
    // The codes after the 162nd method, the version's and the hash's.
    for (transaction_code_t code : {static_cast<transaction_code_t>(FIRST_CALL_TRANSACTION + 162),
                                    static_cast<transaction_code_t>(LAST_CALL_TRANSACTION - 2)}) {
        EXPECT_EQ(STATUS_UNKNOWN_TRANSACTION,
                  transact(code, [](AParcel* in) { AParcel_writeInt32(in, 1); }))
                << code;
    }
    expectServingWithNoOtherBoardCall();
}

// What one transaction to the service may carry: a body of 100,000 bytes
// (kMaxTransactionAllocation in RpcState.cpp). writeSpiFpga's body is the wire transaction
// header (40 bytes), the interface token (the descriptor as a String16: a length of 4 bytes, then
// 50 characters and a terminator of 2 bytes each, padded from 102 to 104), the array's length (4)
// and its bytes padded to a multiple of 4: 152 bytes and the payload.
constexpr int32_t kLargestPayload = 100000 - 152;

TEST_F(ServiceParcelTest, APayloadAtTheLimitIsCarriedAndOnePastItEndsOnlyThatSession) {
    ASSERT_EQ(50u, std::string(IVeskDeviceManager::descriptor).size());
    int32_t ret = 0;
    ndk::ScopedAStatus status =
            manager().writeSpiFpga(std::vector<uint8_t>(kLargestPayload, 0xa5), &ret);
    ASSERT_TRUE(status.isOk()) << status.getDescription();
    EXPECT_EQ(kLargestPayload, ret);  // the simulated FPGA takes every byte it is sent

    // One byte more is four on the wire (padding): a body of 100,004 bytes, which the service
    // refuses by ending the session. The caller hears of it at once, as an error of the
    // transaction or, when the service closed the session before the caller read its answer, as
    // the session's death; from then on the session is dead.
    status = manager().writeSpiFpga(std::vector<uint8_t>(kLargestPayload + 1, 0xa5), &ret);
    EXPECT_THAT(status.getStatus(), ::testing::AnyOf(STATUS_UNKNOWN_ERROR, STATUS_DEAD_OBJECT))
            << status.getDescription();
    EXPECT_EQ(STATUS_DEAD_OBJECT, manager().getSysLedState(&ret).getStatus());
    EXPECT_TRUE(errorsShow("Transaction requested too much data allocation 100004"));

    Session next(socketPath());
    ASSERT_EQ(VESK_RPC_OK, next.result) << next.message;
    ASSERT_TRUE(next.proxy->getSysLedState(&ret).isOk());
    EXPECT_FALSE(service->hasEnded());
}

}  // namespace
}  // namespace vesk::test
