#include "AidlDeviceManagerClient.h"

#include <aidl/vesk/hardware/veskdevicemanager/BnVeskDeviceCallback.h>

#include <string>
#include <utility>
#include <vector>

#include "AidlClientConversions.h"
#include "MethodBinder.h"
#include "vesk/rpc_binder_host.h"

namespace veskdm::aidlclient {

using ::android::sp;
using ::android::hardware::Return;
using ::android::hardware::Void;
namespace kind = ::vesk::hardware::veskdevicemanager::core::kind;

void checkStatus(const ::ndk::ScopedAStatus& status) {
    if (status.isOk()) return;
    if (status.getExceptionCode() == EX_ILLEGAL_ARGUMENT) throw ServiceRefusal(status.getMessage());
    if (status.getExceptionCode() == EX_TRANSACTION_FAILED &&
        status.getStatus() == STATUS_DEAD_OBJECT) {
        throw TransportError("the service is gone (DEAD_OBJECT)");
    }
    throw TransportError(status.getDescription());
}

namespace {

// The HIDL callback of this process, reached by the service as an AIDL one.
class ForwardingCallback : public aidl::BnVeskDeviceCallback {
  public:
    explicit ForwardingCallback(sp<hal::IVeskDeviceCallback> callback)
        : mCallback(std::move(callback)) {}
    ::ndk::ScopedAStatus hwNotify(const aidl::MessageParcel& parcel) override {
        mCallback->hwNotify(toHidl(parcel));
        return ::ndk::ScopedAStatus::ok();
    }

  private:
    sp<hal::IVeskDeviceCallback> mCallback;
};

}  // namespace

AidlDeviceManagerClient::AidlDeviceManagerClient(std::shared_ptr<aidl::IVeskDeviceManager> proxy,
                                                 std::string socketPath,
                                                 std::function<void()> onRelease)
    : mProxy(std::move(proxy)),
      mSocketPath(std::move(socketPath)),
      mOnRelease(std::move(onRelease)) {}

AidlDeviceManagerClient::~AidlDeviceManagerClient() {
    mProxy.reset();
    if (mOnRelease) mOnRelease();
}

#define VESK_H(Kind) ::vesk::hardware::veskdevicemanager::implementation::HidlParameter<kind::Kind>
#define VESK_DEFINE0(R, method)                   \
    Return<R> AidlDeviceManagerClient::method() { \
        R result{};                               \
        checkStatus(mProxy->method(&result));     \
        return result;                            \
    }
#define VESK_DEFINE1(R, method, K1, a1)                        \
    Return<R> AidlDeviceManagerClient::method(VESK_H(K1) a1) { \
        R result{};                                            \
        checkStatus(mProxy->method(toAidl(a1), &result));      \
        return result;                                         \
    }
#define VESK_DEFINE2(R, method, K1, a1, K2, a2)                               \
    Return<R> AidlDeviceManagerClient::method(VESK_H(K1) a1, VESK_H(K2) a2) { \
        R result{};                                                           \
        checkStatus(mProxy->method(toAidl(a1), toAidl(a2), &result));         \
        return result;                                                        \
    }
#define VESK_DEFINE3(R, method, K1, a1, K2, a2, K3, a3)                                      \
    Return<R> AidlDeviceManagerClient::method(VESK_H(K1) a1, VESK_H(K2) a2, VESK_H(K3) a3) { \
        R result{};                                                                          \
        checkStatus(mProxy->method(toAidl(a1), toAidl(a2), toAidl(a3), &result));            \
        return result;                                                                       \
    }
#define VESK_DEFINE4(R, method, K1, a1, K2, a2, K3, a3, K4, a4)                               \
    Return<R> AidlDeviceManagerClient::method(VESK_H(K1) a1, VESK_H(K2) a2, VESK_H(K3) a3,    \
                                              VESK_H(K4) a4) {                                \
        R result{};                                                                           \
        checkStatus(mProxy->method(toAidl(a1), toAidl(a2), toAidl(a3), toAidl(a4), &result)); \
        return result;                                                                        \
    }
VESK_CORE_VALUE_METHODS(VESK_DEFINE0, VESK_DEFINE1, VESK_DEFINE2, VESK_DEFINE3, VESK_DEFINE4)
#undef VESK_DEFINE0
#undef VESK_DEFINE1
#undef VESK_DEFINE2
#undef VESK_DEFINE3
#undef VESK_DEFINE4
#undef VESK_H

// Reserved: the service answers null, and the HIDL service never calls the callback.
Return<void> AidlDeviceManagerClient::hwInvoke(const hidl_string& command, hwInvoke_cb _hidl_cb) {
    std::optional<std::string> result;
    checkStatus(mProxy->hwInvoke(toAidl(command), &result));
    if (result.has_value()) _hidl_cb(*result);
    return Void();
}

Return<int32_t> AidlDeviceManagerClient::hwRegistCallback(
        const sp<hal::IVeskDeviceCallback>& callback) {
    std::shared_ptr<aidl::IVeskDeviceCallback> forwarded;
    if (callback != nullptr) forwarded = ::ndk::SharedRefBase::make<ForwardingCallback>(callback);
    int32_t result = 0;
    checkStatus(mProxy->hwRegistCallback(forwarded, &result));
    return result;
}

Return<void> AidlDeviceManagerClient::getProductInfo(getProductInfo_cb _hidl_cb) {
    aidl::ProductInfo info;
    checkStatus(mProxy->getProductInfo(&info));
    _hidl_cb(toHidl(info));
    return Void();
}

#define VESK_SERIAL_READS(suffix)                                                                 \
    Return<void> AidlDeviceManagerClient::readBlockingSerialPort##suffix(                         \
            uint32_t data_size, uint32_t timeout_ms,                                              \
            readBlockingSerialPort##suffix##_cb _hidl_cb) {                                       \
        aidl::ReadResult result;                                                                  \
        checkStatus(mProxy->readBlockingSerialPort##suffix(toAidl(data_size), toAidl(timeout_ms), \
                                                           &result));                             \
        _hidl_cb(toHidl(result.data), static_cast<uint32_t>(result.bytes_read));                  \
        return Void();                                                                            \
    }                                                                                             \
    Return<void> AidlDeviceManagerClient::readNonBlockingSerialPort##suffix(                      \
            uint32_t data_size, readNonBlockingSerialPort##suffix##_cb _hidl_cb) {                \
        aidl::ReadResult result;                                                                  \
        checkStatus(mProxy->readNonBlockingSerialPort##suffix(toAidl(data_size), &result));       \
        _hidl_cb(toHidl(result.data), static_cast<uint32_t>(result.bytes_read));                  \
        return Void();                                                                            \
    }
VESK_SERIAL_READS(485)
VESK_SERIAL_READS(485_2)
VESK_SERIAL_READS(232)
VESK_SERIAL_READS(Lora)
VESK_SERIAL_READS(HDMI)
VESK_SERIAL_READS(TTL)
VESK_SERIAL_READS(TTL_2)
#undef VESK_SERIAL_READS

Return<void> AidlDeviceManagerClient::getWatchDogCfg(getWatchDogCfg_cb _hidl_cb) {
    aidl::WatchDogCfg cfg;
    checkStatus(mProxy->getWatchDogCfg(&cfg));
    _hidl_cb(toHidl(cfg));
    return Void();
}

// The block reads: the bytes as they came.
#define VESK_BLOCK_READ(method)                                                    \
    Return<void> AidlDeviceManagerClient::method(uint32_t length, uint32_t offset, \
                                                 method##_cb _hidl_cb) {           \
        std::vector<uint8_t> data;                                                 \
        checkStatus(mProxy->method(toAidl(length), toAidl(offset), &data));        \
        _hidl_cb(toHidl(data));                                                    \
        return Void();                                                             \
    }
VESK_BLOCK_READ(readBlockDataDefined)
VESK_BLOCK_READ(readBlockDataScreen)
VESK_BLOCK_READ(getFPGAProgramBlockData)
#undef VESK_BLOCK_READ

Return<void> AidlDeviceManagerClient::readBlockData(const hidl_string& path, uint32_t offset,
                                                    uint32_t length, readBlockData_cb _hidl_cb) {
    std::vector<uint8_t> data;
    checkStatus(mProxy->readBlockData(toAidl(path), toAidl(offset), toAidl(length), &data));
    _hidl_cb(toHidl(data));
    return Void();
}

Return<void> AidlDeviceManagerClient::getProcessInfo(const hidl_string& name,
                                                     getProcessInfo_cb _hidl_cb) {
    aidl::ProcessInfo info;
    checkStatus(mProxy->getProcessInfo(toAidl(name), &info));
    _hidl_cb(toHidl(info));
    return Void();
}

Return<void> AidlDeviceManagerClient::getUsbList(getUsbList_cb _hidl_cb) {
    std::vector<aidl::UsbList> list;
    checkStatus(mProxy->getUsbList(&list));
    _hidl_cb(toHidl(list));
    return Void();
}

Return<void> AidlDeviceManagerClient::getCpuStatus(getCpuStatus_cb _hidl_cb) {
    aidl::CpuStatus status;
    checkStatus(mProxy->getCpuStatus(&status));
    _hidl_cb(toHidl(status));
    return Void();
}

Return<void> AidlDeviceManagerClient::getVndkVersion(getVndkVersion_cb _hidl_cb) {
    std::string version;
    checkStatus(mProxy->getVndkVersion(&version));
    _hidl_cb(version);
    return Void();
}

Return<void> AidlDeviceManagerClient::calculateResolutionParameters(
        uint32_t width, uint32_t height, uint32_t fps, calculateResolutionParameters_cb _hidl_cb) {
    aidl::VeskEffeResolution resolution;
    checkStatus(mProxy->calculateResolutionParameters(toAidl(width), toAidl(height), toAidl(fps),
                                                      &resolution));
    _hidl_cb(toHidl(resolution));
    return Void();
}

Return<void> AidlDeviceManagerClient::getResolutionParameters(getResolutionParameters_cb _hidl_cb) {
    aidl::VeskEffeResolution resolution;
    checkStatus(mProxy->getResolutionParameters(&resolution));
    _hidl_cb(toHidl(resolution));
    return Void();
}

Return<void> AidlDeviceManagerClient::getResolutionParametersList(
        getResolutionParametersList_cb _hidl_cb) {
    std::vector<aidl::VeskEffeResolution> list;
    checkStatus(mProxy->getResolutionParametersList(&list));
    _hidl_cb(toHidl(list));
    return Void();
}

Return<void> AidlDeviceManagerClient::wReadSpiFpga(const hidl_vec<uint8_t>& data,
                                                   wReadSpiFpga_cb _hidl_cb) {
    aidl::TransferResult result;
    checkStatus(mProxy->wReadSpiFpga(toAidl(data), &result));
    _hidl_cb(result.ret, toHidl(result.data));
    return Void();
}

Return<void> AidlDeviceManagerClient::readSpiFpga(int32_t size, readSpiFpga_cb _hidl_cb) {
    aidl::TransferResult result;
    checkStatus(mProxy->readSpiFpga(size, &result));
    _hidl_cb(result.ret, toHidl(result.data));
    return Void();
}

Return<void> AidlDeviceManagerClient::getVeskLogConfigure(getVeskLogConfigure_cb _hidl_cb) {
    aidl::LogConfigureResult result;
    checkStatus(mProxy->getVeskLogConfigure(&result));
    _hidl_cb(result.ret, toHidl(result.info));
    return Void();
}

Return<void> AidlDeviceManagerClient::getRtcBootTime(getRtcBootTime_cb _hidl_cb) {
    std::vector<int32_t> time;
    checkStatus(mProxy->getRtcBootTime(&time));
    _hidl_cb(toHidl(time));
    return Void();
}

Return<void> AidlDeviceManagerClient::getRtcWakeTime(getRtcWakeTime_cb _hidl_cb) {
    std::vector<int32_t> time;
    checkStatus(mProxy->getRtcWakeTime(&time));
    _hidl_cb(toHidl(time));
    return Void();
}

Return<void> AidlDeviceManagerClient::getEdidFromDefined(uint8_t index, uint16_t width,
                                                         uint16_t height, float refresh,
                                                         getEdidFromDefined_cb _hidl_cb) {
    std::vector<uint8_t> edid;
    checkStatus(mProxy->getEdidFromDefined(toAidl(index), toAidl(width), toAidl(height), refresh,
                                           &edid));
    _hidl_cb(toHidl(edid));
    return Void();
}

Return<void> AidlDeviceManagerClient::getEdidByModel(uint16_t width, uint16_t height, float refresh,
                                                     getEdidByModel_cb _hidl_cb) {
    std::vector<uint8_t> edid;
    checkStatus(mProxy->getEdidByModel(toAidl(width), toAidl(height), refresh, &edid));
    _hidl_cb(toHidl(edid));
    return Void();
}

Return<void> AidlDeviceManagerClient::getResolutionByEdid(const hidl_vec<uint8_t>& edid,
                                                          getResolutionByEdid_cb _hidl_cb) {
    aidl::VeskEffeResolution resolution;
    checkStatus(mProxy->getResolutionByEdid(toAidl(edid), &resolution));
    _hidl_cb(toHidl(resolution));
    return Void();
}

Return<void> AidlDeviceManagerClient::debug(const ::android::hardware::hidl_handle& fd,
                                            const hidl_vec<hidl_string>& options) {
    std::vector<const char*> args;
    for (const hidl_string& option : options) args.push_back(option.c_str());
    int out = fd != nullptr && fd->numFds > 0 ? fd->data[0] : -1;
    if (vesk_rpc_dump(mSocketPath.c_str(), args.data(), static_cast<uint32_t>(args.size()), out,
                      0) != VESK_RPC_OK) {
        throw TransportError(vesk_rpc_last_error());
    }
    return Void();
}

}  // namespace veskdm::aidlclient
