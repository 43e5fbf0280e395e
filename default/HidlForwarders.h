/*
 * The methods of IVeskDeviceManager whose one result is the core's return value, handed back as
 * it is: X(result type, method, (HIDL parameters), (the core's arguments)), in slot order. A
 * hidl_string reaches the core as std::string (its own conversion), a vector as the core's view
 * of its elements, a struct converted (HidlConversions.h). VeskDeviceManager.h declares them
 * from this list and VeskDeviceManager.cpp defines them from it; the methods with a result
 * callback are written out in VeskDeviceManagerResults.cpp.
 */
#pragma once

#define VESK_HIDL_FORWARDERS(X)                                                                   \
    X(int32_t, setSysLedState, (int32_t state), (state))                                          \
    X(int32_t, getSysLedState, (), ())                                                            \
    X(int32_t, setNetLedState, (int32_t state), (state))                                          \
    X(int32_t, getNetLedState, (), ())                                                            \
    X(int32_t, setColorLedState, (int32_t red, int32_t green, int32_t blue), (red, green, blue))  \
    X(int32_t, getColorLedState, (), ())                                                          \
    X(int32_t, set4gLedState, (int32_t state), (state))                                           \
    X(int32_t, get4gLedState, (), ())                                                             \
    X(int32_t, setPositionLedState, (int32_t state), (state))                                     \
    X(int32_t, getPositionLedState, (), ())                                                       \
    X(int32_t, setSwitchLedState, (int32_t state), (state))                                       \
    X(int32_t, getSwitchLedState, (), ())                                                         \
    X(int32_t, setRunningLedState, (int32_t state), (state))                                      \
    X(int32_t, getRunningLedState, (), ())                                                        \
    X(int32_t, setCloudLedState, (int32_t state), (state))                                        \
    X(int32_t, getCloudLedState, (), ())                                                          \
    X(int32_t, setProductInfo, (int32_t useDhcp), (useDhcp))                                      \
    X(int32_t, getProtocolType, (), ())                                                           \
    X(int32_t, openSerialPort485,                                                                 \
      (int32_t baudrate, uint8_t databits, uint8_t stopbits, int8_t parity),                      \
      (baudrate, databits, stopbits, parity))                                                     \
    X(int32_t, closeSerialPort485, (), ())                                                        \
    X(int32_t, writeSerialPort485, (const hidl_vec<uint8_t>& data), (viewOf(data)))               \
    X(int32_t, openSerialPort485_2,                                                               \
      (int32_t baudrate, uint8_t databits, uint8_t stopbits, int8_t parity),                      \
      (baudrate, databits, stopbits, parity))                                                     \
    X(int32_t, closeSerialPort485_2, (), ())                                                      \
    X(int32_t, writeSerialPort485_2, (const hidl_vec<uint8_t>& data), (viewOf(data)))             \
    X(int32_t, openSerialPort232,                                                                 \
      (int32_t baudrate, uint8_t databits, uint8_t stopbits, int8_t parity),                      \
      (baudrate, databits, stopbits, parity))                                                     \
    X(int32_t, closeSerialPort232, (), ())                                                        \
    X(int32_t, writeSerialPort232, (const hidl_vec<uint8_t>& data), (viewOf(data)))               \
    X(int32_t, openSerialPortLora,                                                                \
      (int32_t baudrate, uint8_t databits, uint8_t stopbits, int8_t parity),                      \
      (baudrate, databits, stopbits, parity))                                                     \
    X(int32_t, closeSerialPortLora, (), ())                                                       \
    X(int32_t, writeSerialPortLora, (const hidl_vec<uint8_t>& data), (viewOf(data)))              \
    X(int32_t, openSerialPortHDMI,                                                                \
      (int32_t baudrate, uint8_t databits, uint8_t stopbits, int8_t parity),                      \
      (baudrate, databits, stopbits, parity))                                                     \
    X(int32_t, closeSerialPortHDMI, (), ())                                                       \
    X(int32_t, writeSerialPortHDMI, (const hidl_vec<uint8_t>& data), (viewOf(data)))              \
    X(int32_t, openSerialPortTTL,                                                                 \
      (int32_t baudrate, uint8_t databits, uint8_t stopbits, int8_t parity),                      \
      (baudrate, databits, stopbits, parity))                                                     \
    X(int32_t, closeSerialPortTTL, (), ())                                                        \
    X(int32_t, writeSerialPortTTL, (const hidl_vec<uint8_t>& data), (viewOf(data)))               \
    X(int32_t, openSerialPortTTL_2,                                                               \
      (int32_t baudrate, uint8_t databits, uint8_t stopbits, int8_t parity),                      \
      (baudrate, databits, stopbits, parity))                                                     \
    X(int32_t, closeSerialPortTTL_2, (), ())                                                      \
    X(int32_t, writeSerialPortTTL_2, (const hidl_vec<uint8_t>& data), (viewOf(data)))             \
    X(int32_t, setSimpleFanState, (int32_t state), (state))                                       \
    X(int32_t, getSimPleFanState, (), ())                                                         \
    X(int32_t, setFanSpeedLevel, (int32_t state), (state))                                        \
    X(int32_t, getFanSpeedLevel, (), ())                                                          \
    X(int32_t, getFanSpeedPRM, (), ())                                                            \
    X(int32_t, startWatchDog, (const hidl_string& device, uint32_t timeout), (device, timeout))   \
    X(int32_t, feedWatchDog, (const hidl_string& device), (device))                               \
    X(int32_t, stopWatchDog, (const hidl_string& device), (device))                               \
    X(int32_t, setRelayState, (int32_t state), (state))                                           \
    X(int32_t, getRelayState, (), ())                                                             \
    X(int32_t, writeBlockDataDefined, (const hidl_vec<uint8_t>& data, uint32_t offset),           \
      (viewOf(data), offset))                                                                     \
    X(int32_t, writeBlockDataScreen, (const hidl_vec<uint8_t>& data, uint32_t offset),            \
      (viewOf(data), offset))                                                                     \
    X(int32_t, loadFPGAProgram, (), ())                                                           \
    X(int32_t, loadFPGAParamBlockData, (), ())                                                    \
    X(int32_t, setFPGAProgramBlockData,                                                           \
      (const hidl_vec<uint8_t>& data, uint32_t length, uint32_t offset),                          \
      (viewOf(data), length, offset))                                                             \
    X(int32_t, writeBlockData,                                                                    \
      (const hidl_string& path, uint32_t offset, uint32_t length, const hidl_vec<uint8_t>& data), \
      (path, offset, length, viewOf(data)))                                                       \
    X(int32_t, setOpsUsbPort, (int32_t state), (state))                                           \
    X(int32_t, getOpsUsbPort, (), ())                                                             \
    X(int32_t, setOpsSwitchState, (int32_t state), (state))                                       \
    X(int32_t, getOpsSwitchState, (), ())                                                         \
    X(int32_t, setOpsOnState, (int32_t state), (state))                                           \
    X(int32_t, getOpsOnState, (), ())                                                             \
    X(int32_t, setOpsControlState, (int32_t state), (state))                                      \
    X(int32_t, getOpsControlState, (), ())                                                        \
    X(int32_t, getOpsDetectState, (), ())                                                         \
    X(int32_t, getProcessNum, (const hidl_string& name, int32_t flag), (name, flag))              \
    X(int32_t, killProcessNum, (int32_t pid), (pid))                                              \
    X(int32_t, getOtgMode, (), ())                                                                \
    X(int32_t, setOtgMode, (uint32_t mode), (mode))                                               \
    X(int32_t, setFactoryToolStatus, (int32_t enable), (enable))                                  \
    X(int32_t, getFactoryToolStatus, (), ())                                                      \
    X(int32_t, setPeripheralRelayStatus, (uint32_t dev_num, int32_t enable), (dev_num, enable))   \
    X(int32_t, getPeripheralRelayStatus, (uint32_t dev_num), (dev_num))                           \
    X(int32_t, setPcControlStatus, (int32_t enable), (enable))                                    \
    X(int32_t, getPcControlStatus, (), ())                                                        \
    X(int32_t, setUsbSubCardLedStatus, (int32_t enable), (enable))                                \
    X(int32_t, getUsbSubCardLedStatus, (), ())                                                    \
    X(int32_t, getNetWorkState, (), ())                                                           \
    X(int32_t, writeSpiFpga, (const hidl_vec<uint8_t>& data), (viewOf(data)))                     \
    X(int32_t, setVeskLogConfigure, (const VeskLogInfo& info), (toCore(info)))                    \
    X(int32_t, compressVeskLog, (const hidl_string& source, const hidl_string& target),           \
      (source, target))                                                                           \
    X(int32_t, clearVeskLog, (const hidl_string& path), (path))                                   \
    X(int32_t, setUsbSwitchEnable, (uint32_t enable), (enable))                                   \
    X(int32_t, getUsbSwitchEnable, (), ())                                                        \
    X(int32_t, setUsbState, (uint32_t index, uint32_t enable), (index, enable))                   \
    X(int32_t, getUsbState, (uint32_t index), (index))                                            \
    X(int32_t, setRtcBootEnable, (uint32_t enable), (enable))                                     \
    X(int32_t, setRtcWakeEnable, (uint32_t enable), (enable))                                     \
    X(int32_t, setRtcBootTime, (const hidl_vec<uint32_t>& time), (viewOf(time)))                  \
    X(int32_t, setRtcWakeTime, (const hidl_vec<uint32_t>& time), (viewOf(time)))                  \
    X(int32_t, getAdcBoardId, (), ())                                                             \
    X(int32_t, setLowPowerMode, (), ())                                                           \
    X(int32_t, setNormalPowerMode, (), ())                                                        \
    X(int32_t, getApNetworkInsulation, (), ())                                                    \
    X(int32_t, setApNetworkInsulation, (uint32_t enable), (enable))                               \
    X(int32_t, getApChannel, (), ())                                                              \
    X(int32_t, setSystemShutDown, (), ())                                                         \
    X(int32_t, setAudioEnable, (uint8_t channel, uint8_t enable), (channel, enable))              \
    X(int32_t, getAudioEnable, (uint8_t channel), (channel))                                      \
    X(int32_t, setVideoInputSrcVolume, (uint8_t source, uint8_t volume), (source, volume))        \
    X(int32_t, getVideoInputSrcVolume, (uint8_t source), (source))                                \
    X(float, getBoardVoltage, (), ())                                                             \
    X(float, getBoardTemperature, (), ())                                                         \
    X(int32_t, getLoraState, (), ())                                                              \
    X(int32_t, setInfrared, (), ())                                                               \
    X(int32_t, setRestoreFactorySetting, (int32_t mode), (mode))                                  \
    X(int32_t, set4gModuleState, (int32_t state), (state))                                        \
    X(int32_t, get4gModuleState, (), ())                                                          \
    X(int32_t, set4gPowerState, (int32_t state), (state))                                         \
    X(int32_t, get4gPowerState, (), ())                                                           \
    X(int32_t, setScreenModeState, (int32_t state), (state))                                      \
    X(int32_t, getScreenModeState, (), ())                                                        \
    X(int32_t, setHeadphonePowerState, (int32_t state), (state))                                  \
    X(int32_t, getHeadphonePowerState, (), ())                                                    \
    X(int32_t, setPQEnable, (int32_t enable), (enable))                                           \
    X(int32_t, getPQEnable, (), ())                                                               \
    X(int32_t, getHdmiInStatus, (int32_t port), (port))                                           \
    X(int32_t, getHdmiOutStatus, (int32_t port), (port))                                          \
    X(int32_t, fpgaFirmwareUpdate, (const hidl_string& path), (path))                             \
    X(int32_t, schedUnbindPidFromCore, (int32_t pid), (pid))                                      \
    X(int32_t, schedBindPidFromCore, (int32_t pid), (pid))                                        \
    X(int32_t, schedAdjustCpuFreq, (const hidl_string& mode), (mode))                             \
    X(int32_t, checkBlock, (const hidl_string& path), (path))                                     \
    X(int32_t, setHDREnable, (int32_t enable), (enable))                                          \
    X(int32_t, setPowerAmplifierState, (int32_t state), (state))                                  \
    X(int32_t, getPowerAmplifierState, (), ())
