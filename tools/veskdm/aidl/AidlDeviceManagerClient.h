/*
 * The HIDL interface over the AIDL service's proxy: the inverse of the service's front end, so
 * that veskdm's method table, argument binding and printing serve both. Each method converts its
 * HIDL arguments to the AIDL types (AidlClientConversions.h), calls the proxy, and hands the
 * result back as the HIDL method does: as its value, or as its result callback's arguments (a
 * parcelable of several values taken apart again).
 *
 * A call the service refuses (EX_ILLEGAL_ARGUMENT, with its message) throws ServiceRefusal; a
 * call that does not reach the service or whose answer does not come back (the service died:
 * DEAD_OBJECT) throws TransportError (MethodBinder.h). Neither is a value of the HIDL interface.
 */
#pragma once

#include <aidl/vesk/hardware/veskdevicemanager/IVeskDeviceManager.h>
#include <vesk/hardware/veskdevicemanager/1.0/IVeskDeviceManager.h>

#include <functional>
#include <memory>
#include <string>

#include "CoreValueMethods.h"
#include "HidlParameters.h"

namespace veskdm::aidlclient {

class AidlDeviceManagerClient
    : public ::vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceManager {
  public:
    // `proxy` is the service's, served on socketPath; `onRelease` runs when this object goes (it
    // ends the session).
    AidlDeviceManagerClient(
            std::shared_ptr<::aidl::vesk::hardware::veskdevicemanager::IVeskDeviceManager> proxy,
            std::string socketPath, std::function<void()> onRelease);
    ~AidlDeviceManagerClient() override;

#define VESK_H(Kind)                                                    \
    ::vesk::hardware::veskdevicemanager::implementation::HidlParameter< \
            ::vesk::hardware::veskdevicemanager::core::kind::Kind>
#define VESK_DECLARE0(R, method) ::android::hardware::Return<R> method() override;
#define VESK_DECLARE1(R, method, K1, a1) \
    ::android::hardware::Return<R> method(VESK_H(K1) a1) override;
#define VESK_DECLARE2(R, method, K1, a1, K2, a2) \
    ::android::hardware::Return<R> method(VESK_H(K1) a1, VESK_H(K2) a2) override;
#define VESK_DECLARE3(R, method, K1, a1, K2, a2, K3, a3) \
    ::android::hardware::Return<R> method(VESK_H(K1) a1, VESK_H(K2) a2, VESK_H(K3) a3) override;
#define VESK_DECLARE4(R, method, K1, a1, K2, a2, K3, a3, K4, a4)                       \
    ::android::hardware::Return<R> method(VESK_H(K1) a1, VESK_H(K2) a2, VESK_H(K3) a3, \
                                          VESK_H(K4) a4) override;
    VESK_CORE_VALUE_METHODS(VESK_DECLARE0, VESK_DECLARE1, VESK_DECLARE2, VESK_DECLARE3,
                            VESK_DECLARE4)
#undef VESK_DECLARE0
#undef VESK_DECLARE1
#undef VESK_DECLARE2
#undef VESK_DECLARE3
#undef VESK_DECLARE4
#undef VESK_H

    using hidl_string = ::android::hardware::hidl_string;
    template <typename T>
    using hidl_vec = ::android::hardware::hidl_vec<T>;
    template <typename T>
    using Return = ::android::hardware::Return<T>;

    Return<void> hwInvoke(const hidl_string& command, hwInvoke_cb _hidl_cb) override;
    Return<int32_t> hwRegistCallback(
            const ::android::sp<::vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceCallback>&
                    callback) override;
    Return<void> getProductInfo(getProductInfo_cb _hidl_cb) override;
#define VESK_SERIAL_READS(suffix)                                                             \
    Return<void> readBlockingSerialPort##suffix(uint32_t data_size, uint32_t timeout_ms,      \
                                                readBlockingSerialPort##suffix##_cb _hidl_cb) \
            override;                                                                         \
    Return<void> readNonBlockingSerialPort##suffix(                                           \
            uint32_t data_size, readNonBlockingSerialPort##suffix##_cb _hidl_cb) override;
    VESK_SERIAL_READS(485)
    VESK_SERIAL_READS(485_2)
    VESK_SERIAL_READS(232)
    VESK_SERIAL_READS(Lora)
    VESK_SERIAL_READS(HDMI)
    VESK_SERIAL_READS(TTL)
    VESK_SERIAL_READS(TTL_2)
#undef VESK_SERIAL_READS
    Return<void> getWatchDogCfg(getWatchDogCfg_cb _hidl_cb) override;
    Return<void> readBlockDataDefined(uint32_t length, uint32_t offset,
                                      readBlockDataDefined_cb _hidl_cb) override;
    Return<void> readBlockDataScreen(uint32_t length, uint32_t offset,
                                     readBlockDataScreen_cb _hidl_cb) override;
    Return<void> getFPGAProgramBlockData(uint32_t length, uint32_t offset,
                                         getFPGAProgramBlockData_cb _hidl_cb) override;
    Return<void> readBlockData(const hidl_string& path, uint32_t offset, uint32_t length,
                               readBlockData_cb _hidl_cb) override;
    Return<void> getProcessInfo(const hidl_string& name, getProcessInfo_cb _hidl_cb) override;
    Return<void> getUsbList(getUsbList_cb _hidl_cb) override;
    Return<void> getCpuStatus(getCpuStatus_cb _hidl_cb) override;
    Return<void> getVndkVersion(getVndkVersion_cb _hidl_cb) override;
    Return<void> calculateResolutionParameters(uint32_t width, uint32_t height, uint32_t fps,
                                               calculateResolutionParameters_cb _hidl_cb) override;
    Return<void> getResolutionParameters(getResolutionParameters_cb _hidl_cb) override;
    Return<void> getResolutionParametersList(getResolutionParametersList_cb _hidl_cb) override;
    Return<void> wReadSpiFpga(const hidl_vec<uint8_t>& data, wReadSpiFpga_cb _hidl_cb) override;
    Return<void> readSpiFpga(int32_t size, readSpiFpga_cb _hidl_cb) override;
    Return<void> getVeskLogConfigure(getVeskLogConfigure_cb _hidl_cb) override;
    Return<void> getRtcBootTime(getRtcBootTime_cb _hidl_cb) override;
    Return<void> getRtcWakeTime(getRtcWakeTime_cb _hidl_cb) override;
    Return<void> getEdidFromDefined(uint8_t index, uint16_t width, uint16_t height, float refresh,
                                    getEdidFromDefined_cb _hidl_cb) override;
    Return<void> getEdidByModel(uint16_t width, uint16_t height, float refresh,
                                getEdidByModel_cb _hidl_cb) override;
    Return<void> getResolutionByEdid(const hidl_vec<uint8_t>& edid,
                                     getResolutionByEdid_cb _hidl_cb) override;

    // IBase::debug as dump(): RPC binder carries no file descriptor, so the service's process
    // writes it to the dump socket beside its own (vesk_rpc_dump), and it is copied to fd.
    Return<void> debug(const ::android::hardware::hidl_handle& fd,
                       const hidl_vec<hidl_string>& options) override;

  private:
    std::shared_ptr<::aidl::vesk::hardware::veskdevicemanager::IVeskDeviceManager> mProxy;
    std::string mSocketPath;
    std::function<void()> mOnRelease;
};

// Throws for a call that did not succeed: ServiceRefusal for EX_ILLEGAL_ARGUMENT, else
// TransportError naming the status.
void checkStatus(const ::ndk::ScopedAStatus& status);

}  // namespace veskdm::aidlclient
