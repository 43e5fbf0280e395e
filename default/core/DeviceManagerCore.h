/*
 * The device manager's core: one method per slot of IVeskDeviceManager, in slot order, with
 * plain C++ types. A front end (the HIDL facade VeskDeviceManager is one) makes one core per
 * service object, converts arguments, calls it and converts the result; the logic, every log
 * line and every board call is here. Nothing of HIDL or AIDL is included in the core: what
 * belongs to an interface's own types (a HIDL vector's size check) is its front end's. Almost
 * every method traces the call and forwards it to one board function of libvesksdk.
 *
 * Results: a single value is the return value; several values are one struct of CoreTypes.h.
 * Strings come in as std::string, a client's vector as an InputView of its elements.
 *
 * The core takes no lock of its own and keeps no state: device state lives in the board
 * library, display modes and timings in the objects of one resolution call, the boot-loader
 * environment on its device, and the product record in a cache of the process (Product.cpp).
 *
 * Inputs the core cannot take: some arguments end the process, as they always have (the log
 * record's checked copy); a front end that must answer them with an error instead asks the
 * matching ...Refusal() first, which changes nothing and gives the reason as text.
 *
 * Where a method lives: one file per group of devices, holding every method of its group, the
 * simple forwarders included; a method belongs to its device, never to a file of its kind.
 *   DeviceManagerCore.cpp   construction, hwInvoke, hwRegistCallback
 *   Leds.cpp                LEDs and relays
 *   WatchdogRtc.cpp         watchdog and RTC
 *   Serial.cpp              the seven serial channels (SerialChannel.cpp: their one implementation)
 *   Blocks.cpp              data blocks and the FPGA (load, firmware, SPI)
 *   Product.cpp             product information
 *   System.cpp              system records (processes, USB list, CPU, version) and the shell's
 *                           power-off
 *   Resolution.cpp          display and resolution (output mode, EDIDs, HDMI)
 *   Log.cpp                 the log daemon
 *   PictureQuality.cpp      picture quality and HDR
 *   Power.cpp               power and the other devices (fans, OPS, USB, audio, 4G, sensors...)
 *   Debug.cpp               the service's state as `lshal debug` prints it
 * The trace's line numbers belong to the methods, not to these files: TraceLines.h holds them.
 * The core's helpers, like the display-mode classes below it, keep the namespace of the
 * service's implementation.
 */
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "CoreTypes.h"

namespace vesk::hardware::veskdevicemanager::core {

class DeviceManagerCore {
  public:
    // Traces the construction and initialises the board library, once per core.
    DeviceManagerCore();

    // Reserved: traces the call and does nothing else (the command is not looked at).
    void hwInvoke(const std::string& command);
    // Traces the call and returns 0: notifications are not sent, so no callback is taken.
    int32_t hwRegistCallback();
    int32_t setSysLedState(int32_t state);
    int32_t getSysLedState();
    int32_t setNetLedState(int32_t state);
    int32_t getNetLedState();
    int32_t setColorLedState(int32_t red, int32_t green, int32_t blue);
    int32_t getColorLedState();
    int32_t set4gLedState(int32_t state);
    int32_t get4gLedState();
    int32_t setPositionLedState(int32_t state);
    int32_t getPositionLedState();
    int32_t setSwitchLedState(int32_t state);
    int32_t getSwitchLedState();
    int32_t setRunningLedState(int32_t state);
    int32_t getRunningLedState();
    int32_t setCloudLedState(int32_t state);
    int32_t getCloudLedState();
    ProductInfo getProductInfo();
    int32_t setProductInfo(int32_t useDhcp);
    int32_t getProtocolType();
    int32_t openSerialPort485(int32_t baudrate, uint8_t databits, uint8_t stopbits, int8_t parity);
    int32_t closeSerialPort485();
    ReadResult readBlockingSerialPort485(uint32_t data_size, uint32_t timeout_ms);
    ReadResult readNonBlockingSerialPort485(uint32_t data_size);
    int32_t writeSerialPort485(InputView<uint8_t> data);
    int32_t openSerialPort485_2(int32_t baudrate, uint8_t databits, uint8_t stopbits, int8_t parity);
    int32_t closeSerialPort485_2();
    ReadResult readBlockingSerialPort485_2(uint32_t data_size, uint32_t timeout_ms);
    ReadResult readNonBlockingSerialPort485_2(uint32_t data_size);
    int32_t writeSerialPort485_2(InputView<uint8_t> data);
    int32_t openSerialPort232(int32_t baudrate, uint8_t databits, uint8_t stopbits, int8_t parity);
    int32_t closeSerialPort232();
    ReadResult readBlockingSerialPort232(uint32_t data_size, uint32_t timeout_ms);
    ReadResult readNonBlockingSerialPort232(uint32_t data_size);
    int32_t writeSerialPort232(InputView<uint8_t> data);
    int32_t openSerialPortLora(int32_t baudrate, uint8_t databits, uint8_t stopbits, int8_t parity);
    int32_t closeSerialPortLora();
    ReadResult readBlockingSerialPortLora(uint32_t data_size, uint32_t timeout_ms);
    ReadResult readNonBlockingSerialPortLora(uint32_t data_size);
    int32_t writeSerialPortLora(InputView<uint8_t> data);
    int32_t openSerialPortHDMI(int32_t baudrate, uint8_t databits, uint8_t stopbits, int8_t parity);
    int32_t closeSerialPortHDMI();
    ReadResult readBlockingSerialPortHDMI(uint32_t data_size, uint32_t timeout_ms);
    ReadResult readNonBlockingSerialPortHDMI(uint32_t data_size);
    int32_t writeSerialPortHDMI(InputView<uint8_t> data);
    int32_t openSerialPortTTL(int32_t baudrate, uint8_t databits, uint8_t stopbits, int8_t parity);
    int32_t closeSerialPortTTL();
    ReadResult readBlockingSerialPortTTL(uint32_t data_size, uint32_t timeout_ms);
    ReadResult readNonBlockingSerialPortTTL(uint32_t data_size);
    int32_t writeSerialPortTTL(InputView<uint8_t> data);
    int32_t openSerialPortTTL_2(int32_t baudrate, uint8_t databits, uint8_t stopbits, int8_t parity);
    int32_t closeSerialPortTTL_2();
    ReadResult readBlockingSerialPortTTL_2(uint32_t data_size, uint32_t timeout_ms);
    ReadResult readNonBlockingSerialPortTTL_2(uint32_t data_size);
    int32_t writeSerialPortTTL_2(InputView<uint8_t> data);
    int32_t setSimpleFanState(int32_t state);
    int32_t getSimPleFanState();
    int32_t setFanSpeedLevel(int32_t state);
    int32_t getFanSpeedLevel();
    int32_t getFanSpeedPRM();
    WatchDogCfg getWatchDogCfg();
    int32_t startWatchDog(const std::string& device, uint32_t timeout);
    int32_t feedWatchDog(const std::string& device);
    int32_t stopWatchDog(const std::string& device);
    int32_t setRelayState(int32_t state);
    int32_t getRelayState();
    int32_t writeBlockDataDefined(InputView<uint8_t> data, uint32_t offset);
    std::vector<uint8_t> readBlockDataDefined(uint32_t length, uint32_t offset);
    int32_t writeBlockDataScreen(InputView<uint8_t> data, uint32_t offset);
    std::vector<uint8_t> readBlockDataScreen(uint32_t length, uint32_t offset);
    int32_t loadFPGAProgram();
    int32_t loadFPGAParamBlockData();
    int32_t setFPGAProgramBlockData(InputView<uint8_t> data, uint32_t length, uint32_t offset);
    std::vector<uint8_t> getFPGAProgramBlockData(uint32_t length, uint32_t offset);
    int32_t writeBlockData(const std::string& path, uint32_t offset, uint32_t length,
                           InputView<uint8_t> data);
    std::vector<uint8_t> readBlockData(const std::string& path, uint32_t offset, uint32_t length);
    int32_t setOpsUsbPort(int32_t state);
    int32_t getOpsUsbPort();
    int32_t setOpsSwitchState(int32_t state);
    int32_t getOpsSwitchState();
    int32_t setOpsOnState(int32_t state);
    int32_t getOpsOnState();
    int32_t setOpsControlState(int32_t state);
    int32_t getOpsControlState();
    int32_t getOpsDetectState();
    int32_t getProcessNum(const std::string& name, int32_t flag);
    ProcessInfo getProcessInfo(const std::string& name);
    int32_t killProcessNum(int32_t pid);
    int32_t getOtgMode();
    int32_t setOtgMode(uint32_t mode);
    std::vector<UsbList> getUsbList();
    CpuStatus getCpuStatus();
    std::string getVndkVersion();
    int32_t setFactoryToolStatus(int32_t enable);
    int32_t getFactoryToolStatus();
    int32_t setPeripheralRelayStatus(uint32_t dev_num, int32_t enable);
    int32_t getPeripheralRelayStatus(uint32_t dev_num);
    int32_t setPcControlStatus(int32_t enable);
    int32_t getPcControlStatus();
    int32_t setUsbSubCardLedStatus(int32_t enable);
    int32_t getUsbSubCardLedStatus();
    VeskEffeResolution calculateResolutionParameters(uint32_t width, uint32_t height, uint32_t fps);
    VeskEffeResolution getResolutionParameters();
    ResolutionListResult getResolutionParametersList();
    int32_t getNetWorkState();
    int32_t writeSpiFpga(InputView<uint8_t> data);
    TransferResult wReadSpiFpga(InputView<uint8_t> data);
    // A negative size ends the process (spiReadSizeRefusal).
    TransferResult readSpiFpga(int32_t size);
    // A field longer than the room left in the log record ends the process (logInfoRefusal).
    int32_t setVeskLogConfigure(const VeskLogInfo& info);
    LogConfigureResult getVeskLogConfigure();
    int32_t compressVeskLog(const std::string& source, const std::string& target);
    int32_t clearVeskLog(const std::string& path);
    int32_t setUsbSwitchEnable(uint32_t enable);
    int32_t getUsbSwitchEnable();
    int32_t setUsbState(uint32_t index, uint32_t enable);
    int32_t getUsbState(uint32_t index);
    int32_t setRtcBootEnable(uint32_t enable);
    int32_t setRtcWakeEnable(uint32_t enable);
    int32_t setRtcBootTime(InputView<uint32_t> time);
    int32_t setRtcWakeTime(InputView<uint32_t> time);
    std::vector<uint32_t> getRtcBootTime();
    std::vector<uint32_t> getRtcWakeTime();
    std::vector<uint8_t> getEdidFromDefined(uint8_t index, uint16_t width, uint16_t height,
                                            float refresh);
    std::vector<uint8_t> getEdidByModel(uint16_t width, uint16_t height, float refresh);
    VeskEffeResolution getResolutionByEdid(InputView<uint8_t> edid);
    int32_t getAdcBoardId();
    int32_t setLowPowerMode();
    int32_t setNormalPowerMode();
    int32_t getApNetworkInsulation();
    int32_t setApNetworkInsulation(uint32_t enable);
    int32_t getApChannel();
    int32_t setSystemShutDown();
    int32_t setAudioEnable(uint8_t channel, uint8_t enable);
    int32_t getAudioEnable(uint8_t channel);
    int32_t setVideoInputSrcVolume(uint8_t source, uint8_t volume);
    int32_t getVideoInputSrcVolume(uint8_t source);
    float getBoardVoltage();
    float getBoardTemperature();
    int32_t getLoraState();
    int32_t setInfrared();
    int32_t setRestoreFactorySetting(int32_t mode);
    int32_t set4gModuleState(int32_t state);
    int32_t get4gModuleState();
    int32_t set4gPowerState(int32_t state);
    int32_t get4gPowerState();
    int32_t setScreenModeState(int32_t state);
    int32_t getScreenModeState();
    int32_t setHeadphonePowerState(int32_t state);
    int32_t getHeadphonePowerState();
    int32_t setPQEnable(int32_t enable);
    int32_t getPQEnable();
    int32_t getHdmiInStatus(int32_t port);
    int32_t getHdmiOutStatus(int32_t port);
    int32_t fpgaFirmwareUpdate(const std::string& path);
    int32_t schedUnbindPidFromCore(int32_t pid);
    int32_t schedBindPidFromCore(int32_t pid);
    int32_t schedAdjustCpuFreq(const std::string& mode);
    int32_t checkBlock(const std::string& path);
    int32_t setHDREnable(int32_t enable);
    int32_t setPowerAmplifierState(int32_t state);
    int32_t getPowerAmplifierState();

    // The service's state for `lshal debug` (Debug.cpp), written to `fd`: the sections named by
    // `options`, all of them when there is none.
    void debug(int fd, const std::vector<std::string>& options);

    // Why the call would end the process, or nothing when it takes the input. Side-effect free:
    // no log line, no board call.
    // setVeskLogConfigure: a field longer than the room the record has left from its start.
    std::optional<std::string> logInfoRefusal(const VeskLogInfo& info) const;
    // readSpiFpga: a negative size.
    std::optional<std::string> spiReadSizeRefusal(int32_t size) const;
};

}  // namespace vesk::hardware::veskdevicemanager::core
