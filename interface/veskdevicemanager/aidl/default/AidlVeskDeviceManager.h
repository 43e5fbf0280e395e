/*
 * The stable-AIDL front end: IVeskDeviceManager over the service's core. Each method checks and
 * converts its arguments (AidlArguments.h), calls the core (core/DeviceManagerCore.h, which says
 * where each method's logic lives) and converts the result (AidlConversions.h). Bad input never
 * ends the service: an argument the core could not take is answered with EX_ILLEGAL_ARGUMENT and
 * reaches neither the core nor the board. The board's results stay values, as in HIDL.
 *
 *   core/CoreValueMethods.h          the methods that hand the core's value back as it is (the
 *                                    core's table, shared with the HIDL facade)
 *   AidlVeskDeviceManager.cpp        the table's methods, hwInvoke, hwRegistCallback and dump
 *   AidlVeskDeviceManagerResults.cpp the methods whose result is a parcelable, a vector or text
 */
#pragma once

#include <aidl/vesk/hardware/veskdevicemanager/BnVeskDeviceManager.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "AidlArguments.h"
#include "CoreValueMethods.h"
#include "DeviceManagerCore.h"

namespace aidl::vesk::hardware::veskdevicemanager {

// Holds nothing but its core, made with it: the trace line of the construction and the board
// library's initialisation happen there.
class VeskDeviceManager : public BnVeskDeviceManager {
  public:
    // The methods of the core's table (slot order among themselves), then the rest.
#define VESK_P(Kind) AidlParameter<core::kind::Kind>
#define VESK_DECLARE0(R, method) ::ndk::ScopedAStatus method(R* _aidl_return) override;
#define VESK_DECLARE1(R, method, K1, a1) \
    ::ndk::ScopedAStatus method(VESK_P(K1) a1, R* _aidl_return) override;
#define VESK_DECLARE2(R, method, K1, a1, K2, a2) \
    ::ndk::ScopedAStatus method(VESK_P(K1) a1, VESK_P(K2) a2, R* _aidl_return) override;
#define VESK_DECLARE3(R, method, K1, a1, K2, a2, K3, a3)                                      \
    ::ndk::ScopedAStatus method(VESK_P(K1) a1, VESK_P(K2) a2, VESK_P(K3) a3, R* _aidl_return) \
            override;
#define VESK_DECLARE4(R, method, K1, a1, K2, a2, K3, a3, K4, a4)                            \
    ::ndk::ScopedAStatus method(VESK_P(K1) a1, VESK_P(K2) a2, VESK_P(K3) a3, VESK_P(K4) a4, \
                                R* _aidl_return) override;
    VESK_CORE_VALUE_METHODS(VESK_DECLARE0, VESK_DECLARE1, VESK_DECLARE2, VESK_DECLARE3,
                            VESK_DECLARE4)
#undef VESK_DECLARE0
#undef VESK_DECLARE1
#undef VESK_DECLARE2
#undef VESK_DECLARE3
#undef VESK_DECLARE4
#undef VESK_P

    ::ndk::ScopedAStatus hwInvoke(const std::string& command,
                                  std::optional<std::string>* _aidl_return) override;
    ::ndk::ScopedAStatus hwRegistCallback(const std::shared_ptr<IVeskDeviceCallback>& callback,
                                          int32_t* _aidl_return) override;
    ::ndk::ScopedAStatus getProductInfo(ProductInfo* _aidl_return) override;
    ::ndk::ScopedAStatus readBlockingSerialPort485(int32_t data_size, int32_t timeout_ms,
                                                   ReadResult* _aidl_return) override;
    ::ndk::ScopedAStatus readNonBlockingSerialPort485(int32_t data_size,
                                                      ReadResult* _aidl_return) override;
    ::ndk::ScopedAStatus readBlockingSerialPort485_2(int32_t data_size, int32_t timeout_ms,
                                                     ReadResult* _aidl_return) override;
    ::ndk::ScopedAStatus readNonBlockingSerialPort485_2(int32_t data_size,
                                                        ReadResult* _aidl_return) override;
    ::ndk::ScopedAStatus readBlockingSerialPort232(int32_t data_size, int32_t timeout_ms,
                                                   ReadResult* _aidl_return) override;
    ::ndk::ScopedAStatus readNonBlockingSerialPort232(int32_t data_size,
                                                      ReadResult* _aidl_return) override;
    ::ndk::ScopedAStatus readBlockingSerialPortLora(int32_t data_size, int32_t timeout_ms,
                                                    ReadResult* _aidl_return) override;
    ::ndk::ScopedAStatus readNonBlockingSerialPortLora(int32_t data_size,
                                                       ReadResult* _aidl_return) override;
    ::ndk::ScopedAStatus readBlockingSerialPortHDMI(int32_t data_size, int32_t timeout_ms,
                                                    ReadResult* _aidl_return) override;
    ::ndk::ScopedAStatus readNonBlockingSerialPortHDMI(int32_t data_size,
                                                       ReadResult* _aidl_return) override;
    ::ndk::ScopedAStatus readBlockingSerialPortTTL(int32_t data_size, int32_t timeout_ms,
                                                   ReadResult* _aidl_return) override;
    ::ndk::ScopedAStatus readNonBlockingSerialPortTTL(int32_t data_size,
                                                      ReadResult* _aidl_return) override;
    ::ndk::ScopedAStatus readBlockingSerialPortTTL_2(int32_t data_size, int32_t timeout_ms,
                                                     ReadResult* _aidl_return) override;
    ::ndk::ScopedAStatus readNonBlockingSerialPortTTL_2(int32_t data_size,
                                                        ReadResult* _aidl_return) override;
    ::ndk::ScopedAStatus getWatchDogCfg(WatchDogCfg* _aidl_return) override;
    ::ndk::ScopedAStatus readBlockDataDefined(int32_t length, int32_t offset,
                                              std::vector<uint8_t>* _aidl_return) override;
    ::ndk::ScopedAStatus readBlockDataScreen(int32_t length, int32_t offset,
                                             std::vector<uint8_t>* _aidl_return) override;
    ::ndk::ScopedAStatus getFPGAProgramBlockData(int32_t length, int32_t offset,
                                                 std::vector<uint8_t>* _aidl_return) override;
    ::ndk::ScopedAStatus readBlockData(const std::string& path, int32_t offset, int32_t length,
                                       std::vector<uint8_t>* _aidl_return) override;
    ::ndk::ScopedAStatus getProcessInfo(const std::string& name, ProcessInfo* _aidl_return) override;
    ::ndk::ScopedAStatus getUsbList(std::vector<UsbList>* _aidl_return) override;
    ::ndk::ScopedAStatus getCpuStatus(CpuStatus* _aidl_return) override;
    ::ndk::ScopedAStatus getVndkVersion(std::string* _aidl_return) override;
    ::ndk::ScopedAStatus calculateResolutionParameters(int32_t width, int32_t height, int32_t fps,
                                                       VeskEffeResolution* _aidl_return) override;
    ::ndk::ScopedAStatus getResolutionParameters(VeskEffeResolution* _aidl_return) override;
    ::ndk::ScopedAStatus getResolutionParametersList(
            std::vector<VeskEffeResolution>* _aidl_return) override;
    ::ndk::ScopedAStatus wReadSpiFpga(const std::vector<uint8_t>& data,
                                      TransferResult* _aidl_return) override;
    ::ndk::ScopedAStatus readSpiFpga(int32_t size, TransferResult* _aidl_return) override;
    ::ndk::ScopedAStatus getVeskLogConfigure(LogConfigureResult* _aidl_return) override;
    ::ndk::ScopedAStatus getRtcBootTime(std::vector<int32_t>* _aidl_return) override;
    ::ndk::ScopedAStatus getRtcWakeTime(std::vector<int32_t>* _aidl_return) override;
    ::ndk::ScopedAStatus getEdidFromDefined(int32_t index, int32_t width, int32_t height,
                                            float refresh,
                                            std::vector<uint8_t>* _aidl_return) override;
    ::ndk::ScopedAStatus getEdidByModel(int32_t width, int32_t height, float refresh,
                                        std::vector<uint8_t>* _aidl_return) override;
    ::ndk::ScopedAStatus getResolutionByEdid(const std::vector<uint8_t>& edid,
                                             VeskEffeResolution* _aidl_return) override;

    // dumpsys: what `lshal debug` prints of the HIDL service, the sections named by args (all
    // of them when there is none).
    binder_status_t dump(int fd, const char** args, uint32_t numArgs) override;

  private:
    core::DeviceManagerCore mCore;
};

}  // namespace aidl::vesk::hardware::veskdevicemanager
