/*
 * The device manager service: one method per slot of IVeskDeviceManager. Almost every method
 * traces the call and forwards it to one board function of libvesksdk.
 *
 * Where a method lives: one file per group of devices, holding every method of its group, the
 * simple forwarders included; a method belongs to its device, never to a file of its kind.
 *   VeskDeviceManager.cpp                  construction, the factory, hwInvoke, hwRegistCallback
 *   VeskDeviceManagerLeds.cpp              LEDs and relays
 *   VeskDeviceManagerWatchdogRtc.cpp       watchdog and RTC
 *   VeskDeviceManagerSerial.cpp            the seven serial channels
 *   VeskDeviceManagerBlocks.cpp            data blocks and the FPGA (load, firmware, SPI)
 *   VeskDeviceManagerProduct.cpp           product information
 *   VeskDeviceManagerSystem.cpp            system records (processes, USB list, CPU, version)
 *                                          and the shell's power-off
 *   VeskDeviceManagerResolution.cpp        display and resolution (output mode, EDIDs, HDMI)
 *   VeskDeviceManagerLog.cpp               the log daemon
 *   VeskDeviceManagerPictureQuality.cpp    picture quality and HDR
 *   VeskDeviceManagerPower.cpp             power and the other devices (fans, OPS, USB, audio,
 *                                          4G, sensors...)
 *   VeskDeviceManagerDebug.cpp             IBase::debug, the service's state for lshal
 * The trace's line numbers belong to the methods, not to these files: TraceLines.h holds them.
 */
#pragma once

#include <vesk/hardware/veskdevicemanager/1.0/IVeskDeviceManager.h>

namespace vesk::hardware::veskdevicemanager::implementation {

using ::android::sp;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;
using ::android::hardware::Void;
using ::vesk::hardware::veskdevicemanager::V1_0::CpuStatus;
using ::vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceCallback;
using ::vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceManager;
using ::vesk::hardware::veskdevicemanager::V1_0::ProcessInfo;
using ::vesk::hardware::veskdevicemanager::V1_0::ProductInfo;
using ::vesk::hardware::veskdevicemanager::V1_0::UsbList;
using ::vesk::hardware::veskdevicemanager::V1_0::VeskEffeResolution;
using ::vesk::hardware::veskdevicemanager::V1_0::VeskLogInfo;
using ::vesk::hardware::veskdevicemanager::V1_0::WatchDogCfg;

// Holds no state of its own: all device state lives in the board library, display modes and
// timings in the objects of one resolution call, and the boot-loader environment on its device.
struct VeskDeviceManager : public IVeskDeviceManager {
    VeskDeviceManager();

    // Methods from ::vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceManager follow.
    Return<void> hwInvoke(const hidl_string& command, hwInvoke_cb _hidl_cb) override;
    Return<int32_t> hwRegistCallback(const sp<IVeskDeviceCallback>& callback) override;
    Return<int32_t> setSysLedState(int32_t state) override;
    Return<int32_t> getSysLedState() override;
    Return<int32_t> setNetLedState(int32_t state) override;
    Return<int32_t> getNetLedState() override;
    Return<int32_t> setColorLedState(int32_t red, int32_t green, int32_t blue) override;
    Return<int32_t> getColorLedState() override;
    Return<int32_t> set4gLedState(int32_t state) override;
    Return<int32_t> get4gLedState() override;
    Return<int32_t> setPositionLedState(int32_t state) override;
    Return<int32_t> getPositionLedState() override;
    Return<int32_t> setSwitchLedState(int32_t state) override;
    Return<int32_t> getSwitchLedState() override;
    Return<int32_t> setRunningLedState(int32_t state) override;
    Return<int32_t> getRunningLedState() override;
    Return<int32_t> setCloudLedState(int32_t state) override;
    Return<int32_t> getCloudLedState() override;
    Return<void> getProductInfo(getProductInfo_cb _hidl_cb) override;
    Return<int32_t> setProductInfo(int32_t useDhcp) override;
    Return<int32_t> getProtocolType() override;
    Return<int32_t> openSerialPort485(int32_t baudrate, uint8_t databits, uint8_t stopbits,
                                      int8_t parity) override;
    Return<int32_t> closeSerialPort485() override;
    Return<void> readBlockingSerialPort485(uint32_t data_size, uint32_t timeout_ms,
                                           readBlockingSerialPort485_cb _hidl_cb) override;
    Return<void> readNonBlockingSerialPort485(uint32_t data_size,
                                              readNonBlockingSerialPort485_cb _hidl_cb) override;
    Return<int32_t> writeSerialPort485(const hidl_vec<uint8_t>& data) override;
    Return<int32_t> openSerialPort485_2(int32_t baudrate, uint8_t databits, uint8_t stopbits,
                                        int8_t parity) override;
    Return<int32_t> closeSerialPort485_2() override;
    Return<void> readBlockingSerialPort485_2(uint32_t data_size, uint32_t timeout_ms,
                                             readBlockingSerialPort485_2_cb _hidl_cb) override;
    Return<void> readNonBlockingSerialPort485_2(uint32_t data_size,
                                                readNonBlockingSerialPort485_2_cb _hidl_cb) override;
    Return<int32_t> writeSerialPort485_2(const hidl_vec<uint8_t>& data) override;
    Return<int32_t> openSerialPort232(int32_t baudrate, uint8_t databits, uint8_t stopbits,
                                      int8_t parity) override;
    Return<int32_t> closeSerialPort232() override;
    Return<void> readBlockingSerialPort232(uint32_t data_size, uint32_t timeout_ms,
                                           readBlockingSerialPort232_cb _hidl_cb) override;
    Return<void> readNonBlockingSerialPort232(uint32_t data_size,
                                              readNonBlockingSerialPort232_cb _hidl_cb) override;
    Return<int32_t> writeSerialPort232(const hidl_vec<uint8_t>& data) override;
    Return<int32_t> openSerialPortLora(int32_t baudrate, uint8_t databits, uint8_t stopbits,
                                       int8_t parity) override;
    Return<int32_t> closeSerialPortLora() override;
    Return<void> readBlockingSerialPortLora(uint32_t data_size, uint32_t timeout_ms,
                                            readBlockingSerialPortLora_cb _hidl_cb) override;
    Return<void> readNonBlockingSerialPortLora(uint32_t data_size,
                                               readNonBlockingSerialPortLora_cb _hidl_cb) override;
    Return<int32_t> writeSerialPortLora(const hidl_vec<uint8_t>& data) override;
    Return<int32_t> openSerialPortHDMI(int32_t baudrate, uint8_t databits, uint8_t stopbits,
                                       int8_t parity) override;
    Return<int32_t> closeSerialPortHDMI() override;
    Return<void> readBlockingSerialPortHDMI(uint32_t data_size, uint32_t timeout_ms,
                                            readBlockingSerialPortHDMI_cb _hidl_cb) override;
    Return<void> readNonBlockingSerialPortHDMI(uint32_t data_size,
                                               readNonBlockingSerialPortHDMI_cb _hidl_cb) override;
    Return<int32_t> writeSerialPortHDMI(const hidl_vec<uint8_t>& data) override;
    Return<int32_t> openSerialPortTTL(int32_t baudrate, uint8_t databits, uint8_t stopbits,
                                      int8_t parity) override;
    Return<int32_t> closeSerialPortTTL() override;
    Return<void> readBlockingSerialPortTTL(uint32_t data_size, uint32_t timeout_ms,
                                           readBlockingSerialPortTTL_cb _hidl_cb) override;
    Return<void> readNonBlockingSerialPortTTL(uint32_t data_size,
                                              readNonBlockingSerialPortTTL_cb _hidl_cb) override;
    Return<int32_t> writeSerialPortTTL(const hidl_vec<uint8_t>& data) override;
    Return<int32_t> openSerialPortTTL_2(int32_t baudrate, uint8_t databits, uint8_t stopbits,
                                        int8_t parity) override;
    Return<int32_t> closeSerialPortTTL_2() override;
    Return<void> readBlockingSerialPortTTL_2(uint32_t data_size, uint32_t timeout_ms,
                                             readBlockingSerialPortTTL_2_cb _hidl_cb) override;
    Return<void> readNonBlockingSerialPortTTL_2(uint32_t data_size,
                                                readNonBlockingSerialPortTTL_2_cb _hidl_cb) override;
    Return<int32_t> writeSerialPortTTL_2(const hidl_vec<uint8_t>& data) override;
    Return<int32_t> setSimpleFanState(int32_t state) override;
    Return<int32_t> getSimPleFanState() override;
    Return<int32_t> setFanSpeedLevel(int32_t state) override;
    Return<int32_t> getFanSpeedLevel() override;
    Return<int32_t> getFanSpeedPRM() override;
    Return<void> getWatchDogCfg(getWatchDogCfg_cb _hidl_cb) override;
    Return<int32_t> startWatchDog(const hidl_string& device, uint32_t timeout) override;
    Return<int32_t> feedWatchDog(const hidl_string& device) override;
    Return<int32_t> stopWatchDog(const hidl_string& device) override;
    Return<int32_t> setRelayState(int32_t state) override;
    Return<int32_t> getRelayState() override;
    Return<int32_t> writeBlockDataDefined(const hidl_vec<uint8_t>& data, uint32_t offset) override;
    Return<void> readBlockDataDefined(uint32_t length, uint32_t offset,
                                      readBlockDataDefined_cb _hidl_cb) override;
    Return<int32_t> writeBlockDataScreen(const hidl_vec<uint8_t>& data, uint32_t offset) override;
    Return<void> readBlockDataScreen(uint32_t length, uint32_t offset,
                                     readBlockDataScreen_cb _hidl_cb) override;
    Return<int32_t> loadFPGAProgram() override;
    Return<int32_t> loadFPGAParamBlockData() override;
    Return<int32_t> setFPGAProgramBlockData(const hidl_vec<uint8_t>& data, uint32_t length,
                                            uint32_t offset) override;
    Return<void> getFPGAProgramBlockData(uint32_t length, uint32_t offset,
                                         getFPGAProgramBlockData_cb _hidl_cb) override;
    Return<int32_t> writeBlockData(const hidl_string& path, uint32_t offset, uint32_t length,
                                   const hidl_vec<uint8_t>& data) override;
    Return<void> readBlockData(const hidl_string& path, uint32_t offset, uint32_t length,
                               readBlockData_cb _hidl_cb) override;
    Return<int32_t> setOpsUsbPort(int32_t state) override;
    Return<int32_t> getOpsUsbPort() override;
    Return<int32_t> setOpsSwitchState(int32_t state) override;
    Return<int32_t> getOpsSwitchState() override;
    Return<int32_t> setOpsOnState(int32_t state) override;
    Return<int32_t> getOpsOnState() override;
    Return<int32_t> setOpsControlState(int32_t state) override;
    Return<int32_t> getOpsControlState() override;
    Return<int32_t> getOpsDetectState() override;
    Return<int32_t> getProcessNum(const hidl_string& name, int32_t flag) override;
    Return<void> getProcessInfo(const hidl_string& name, getProcessInfo_cb _hidl_cb) override;
    Return<int32_t> killProcessNum(int32_t pid) override;
    Return<int32_t> getOtgMode() override;
    Return<int32_t> setOtgMode(uint32_t mode) override;
    Return<void> getUsbList(getUsbList_cb _hidl_cb) override;
    Return<void> getCpuStatus(getCpuStatus_cb _hidl_cb) override;
    Return<void> getVndkVersion(getVndkVersion_cb _hidl_cb) override;
    Return<int32_t> setFactoryToolStatus(int32_t enable) override;
    Return<int32_t> getFactoryToolStatus() override;
    Return<int32_t> setPeripheralRelayStatus(uint32_t dev_num, int32_t enable) override;
    Return<int32_t> getPeripheralRelayStatus(uint32_t dev_num) override;
    Return<int32_t> setPcControlStatus(int32_t enable) override;
    Return<int32_t> getPcControlStatus() override;
    Return<int32_t> setUsbSubCardLedStatus(int32_t enable) override;
    Return<int32_t> getUsbSubCardLedStatus() override;
    Return<void> calculateResolutionParameters(uint32_t width, uint32_t height, uint32_t fps,
                                               calculateResolutionParameters_cb _hidl_cb) override;
    Return<void> getResolutionParameters(getResolutionParameters_cb _hidl_cb) override;
    Return<void> getResolutionParametersList(getResolutionParametersList_cb _hidl_cb) override;
    Return<int32_t> getNetWorkState() override;
    Return<int32_t> writeSpiFpga(const hidl_vec<uint8_t>& data) override;
    Return<void> wReadSpiFpga(const hidl_vec<uint8_t>& data, wReadSpiFpga_cb _hidl_cb) override;
    Return<void> readSpiFpga(int32_t size, readSpiFpga_cb _hidl_cb) override;
    Return<int32_t> setVeskLogConfigure(const VeskLogInfo& info) override;
    Return<void> getVeskLogConfigure(getVeskLogConfigure_cb _hidl_cb) override;
    Return<int32_t> compressVeskLog(const hidl_string& source, const hidl_string& target) override;
    Return<int32_t> clearVeskLog(const hidl_string& path) override;
    Return<int32_t> setUsbSwitchEnable(uint32_t enable) override;
    Return<int32_t> getUsbSwitchEnable() override;
    Return<int32_t> setUsbState(uint32_t index, uint32_t enable) override;
    Return<int32_t> getUsbState(uint32_t index) override;
    Return<int32_t> setRtcBootEnable(uint32_t enable) override;
    Return<int32_t> setRtcWakeEnable(uint32_t enable) override;
    Return<int32_t> setRtcBootTime(const hidl_vec<uint32_t>& time) override;
    Return<int32_t> setRtcWakeTime(const hidl_vec<uint32_t>& time) override;
    Return<void> getRtcBootTime(getRtcBootTime_cb _hidl_cb) override;
    Return<void> getRtcWakeTime(getRtcWakeTime_cb _hidl_cb) override;
    Return<void> getEdidFromDefined(uint8_t index, uint16_t width, uint16_t height, float refresh,
                                    getEdidFromDefined_cb _hidl_cb) override;
    Return<void> getEdidByModel(uint16_t width, uint16_t height, float refresh,
                                getEdidByModel_cb _hidl_cb) override;
    Return<void> getResolutionByEdid(const hidl_vec<uint8_t>& edid,
                                     getResolutionByEdid_cb _hidl_cb) override;
    Return<int32_t> getAdcBoardId() override;
    Return<int32_t> setLowPowerMode() override;
    Return<int32_t> setNormalPowerMode() override;
    Return<int32_t> getApNetworkInsulation() override;
    Return<int32_t> setApNetworkInsulation(uint32_t enable) override;
    Return<int32_t> getApChannel() override;
    Return<int32_t> setSystemShutDown() override;
    Return<int32_t> setAudioEnable(uint8_t channel, uint8_t enable) override;
    Return<int32_t> getAudioEnable(uint8_t channel) override;
    Return<int32_t> setVideoInputSrcVolume(uint8_t source, uint8_t volume) override;
    Return<int32_t> getVideoInputSrcVolume(uint8_t source) override;
    Return<float> getBoardVoltage() override;
    Return<float> getBoardTemperature() override;
    Return<int32_t> getLoraState() override;
    Return<int32_t> setInfrared() override;
    Return<int32_t> setRestoreFactorySetting(int32_t mode) override;
    Return<int32_t> set4gModuleState(int32_t state) override;
    Return<int32_t> get4gModuleState() override;
    Return<int32_t> set4gPowerState(int32_t state) override;
    Return<int32_t> get4gPowerState() override;
    Return<int32_t> setScreenModeState(int32_t state) override;
    Return<int32_t> getScreenModeState() override;
    Return<int32_t> setHeadphonePowerState(int32_t state) override;
    Return<int32_t> getHeadphonePowerState() override;
    Return<int32_t> setPQEnable(int32_t enable) override;
    Return<int32_t> getPQEnable() override;
    Return<int32_t> getHdmiInStatus(int32_t port) override;
    Return<int32_t> getHdmiOutStatus(int32_t port) override;
    Return<int32_t> fpgaFirmwareUpdate(const hidl_string& path) override;
    Return<int32_t> schedUnbindPidFromCore(int32_t pid) override;
    Return<int32_t> schedBindPidFromCore(int32_t pid) override;
    Return<int32_t> schedAdjustCpuFreq(const hidl_string& mode) override;
    Return<int32_t> checkBlock(const hidl_string& path) override;
    Return<int32_t> setHDREnable(int32_t enable) override;
    Return<int32_t> setPowerAmplifierState(int32_t state) override;
    Return<int32_t> getPowerAmplifierState() override;

    // From ::android::hidl::base::V1_0::IBase, for `lshal debug` (VeskDeviceManagerDebug.cpp).
    Return<void> debug(const ::android::hardware::hidl_handle& fd,
                       const hidl_vec<hidl_string>& options) override;
};

// The passthrough factory: the library's one exported symbol (everything else is built hidden).
extern "C" __attribute__((visibility("default"))) IVeskDeviceManager* HIDL_FETCH_IVeskDeviceManager(
        const char* name);

}  // namespace vesk::hardware::veskdevicemanager::implementation
