/*
 * The HIDL facade: IVeskDeviceManager over the service's core. Each method converts its
 * arguments, calls the core (core/DeviceManagerCore.h, which says where each method's logic
 * lives) and hands the result back, as a return value or through the result callback. What
 * belongs to HIDL's own types stays here: a negative size ends the process through the vector's
 * own size check (BoardCount.h), and a serial read's signed count reaches the client as the
 * interface's uint32_t.
 *
 *   core/CoreValueMethods.h          the methods that hand the core's value back as it is (the
 *                                    core's table; HidlParameters.h gives their HIDL types)
 *   VeskDeviceManager.cpp            construction, the factory, the forwarders, hwInvoke and
 *                                    hwRegistCallback
 *   VeskDeviceManagerResults.cpp     the methods with a result callback
 *   VeskDeviceManagerDebug.cpp       IBase::debug, for lshal
 *   HidlConversions.h                the core's types to HIDL's and back
 */
#pragma once

#include <vesk/hardware/veskdevicemanager/1.0/IVeskDeviceManager.h>

#include "CoreValueMethods.h"
#include "DeviceManagerCore.h"
#include "HidlParameters.h"

namespace vesk::hardware::veskdevicemanager::implementation {

using ::android::sp;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;
using ::android::hardware::Void;
using ::vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceCallback;
using ::vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceManager;
using ::vesk::hardware::veskdevicemanager::V1_0::VeskLogInfo;

// Holds nothing but its core, which is made with it: the trace line of the construction and the
// board library's initialisation happen there.
struct VeskDeviceManager : public IVeskDeviceManager {
    // Methods from ::vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceManager follow: first
    // those that forward the core's value (slot order among themselves), then the rest.
#define VESK_P(Kind) HidlParameter<core::kind::Kind>
#define VESK_DECLARE0(R, method) Return<R> method() override;
#define VESK_DECLARE1(R, method, K1, a1) Return<R> method(VESK_P(K1) a1) override;
#define VESK_DECLARE2(R, method, K1, a1, K2, a2) \
    Return<R> method(VESK_P(K1) a1, VESK_P(K2) a2) override;
#define VESK_DECLARE3(R, method, K1, a1, K2, a2, K3, a3) \
    Return<R> method(VESK_P(K1) a1, VESK_P(K2) a2, VESK_P(K3) a3) override;
#define VESK_DECLARE4(R, method, K1, a1, K2, a2, K3, a3, K4, a4) \
    Return<R> method(VESK_P(K1) a1, VESK_P(K2) a2, VESK_P(K3) a3, VESK_P(K4) a4) override;
    VESK_CORE_VALUE_METHODS(VESK_DECLARE0, VESK_DECLARE1, VESK_DECLARE2, VESK_DECLARE3,
                            VESK_DECLARE4)
#undef VESK_DECLARE0
#undef VESK_DECLARE1
#undef VESK_DECLARE2
#undef VESK_DECLARE3
#undef VESK_DECLARE4
#undef VESK_P

    Return<void> hwInvoke(const hidl_string& command, hwInvoke_cb _hidl_cb) override;
    Return<int32_t> hwRegistCallback(const sp<IVeskDeviceCallback>& callback) override;
    Return<void> getProductInfo(getProductInfo_cb _hidl_cb) override;
    Return<void> readBlockingSerialPort485(uint32_t data_size, uint32_t timeout_ms,
                                           readBlockingSerialPort485_cb _hidl_cb) override;
    Return<void> readNonBlockingSerialPort485(uint32_t data_size,
                                              readNonBlockingSerialPort485_cb _hidl_cb) override;
    Return<void> readBlockingSerialPort485_2(uint32_t data_size, uint32_t timeout_ms,
                                             readBlockingSerialPort485_2_cb _hidl_cb) override;
    Return<void> readNonBlockingSerialPort485_2(uint32_t data_size,
                                                readNonBlockingSerialPort485_2_cb _hidl_cb) override;
    Return<void> readBlockingSerialPort232(uint32_t data_size, uint32_t timeout_ms,
                                           readBlockingSerialPort232_cb _hidl_cb) override;
    Return<void> readNonBlockingSerialPort232(uint32_t data_size,
                                              readNonBlockingSerialPort232_cb _hidl_cb) override;
    Return<void> readBlockingSerialPortLora(uint32_t data_size, uint32_t timeout_ms,
                                            readBlockingSerialPortLora_cb _hidl_cb) override;
    Return<void> readNonBlockingSerialPortLora(uint32_t data_size,
                                               readNonBlockingSerialPortLora_cb _hidl_cb) override;
    Return<void> readBlockingSerialPortHDMI(uint32_t data_size, uint32_t timeout_ms,
                                            readBlockingSerialPortHDMI_cb _hidl_cb) override;
    Return<void> readNonBlockingSerialPortHDMI(uint32_t data_size,
                                               readNonBlockingSerialPortHDMI_cb _hidl_cb) override;
    Return<void> readBlockingSerialPortTTL(uint32_t data_size, uint32_t timeout_ms,
                                           readBlockingSerialPortTTL_cb _hidl_cb) override;
    Return<void> readNonBlockingSerialPortTTL(uint32_t data_size,
                                              readNonBlockingSerialPortTTL_cb _hidl_cb) override;
    Return<void> readBlockingSerialPortTTL_2(uint32_t data_size, uint32_t timeout_ms,
                                             readBlockingSerialPortTTL_2_cb _hidl_cb) override;
    Return<void> readNonBlockingSerialPortTTL_2(uint32_t data_size,
                                                readNonBlockingSerialPortTTL_2_cb _hidl_cb) override;
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

    // From ::android::hidl::base::V1_0::IBase, for `lshal debug` (VeskDeviceManagerDebug.cpp).
    Return<void> debug(const ::android::hardware::hidl_handle& fd,
                       const hidl_vec<hidl_string>& options) override;

  private:
    core::DeviceManagerCore mCore;
};

// The passthrough factory: the library's one exported symbol (everything else is built hidden).
extern "C" __attribute__((visibility("default"))) IVeskDeviceManager* HIDL_FETCH_IVeskDeviceManager(
        const char* name);

}  // namespace vesk::hardware::veskdevicemanager::implementation
