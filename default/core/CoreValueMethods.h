/*
 * The core's methods whose one result is the value the core returns, with the kind of each
 * parameter, in slot order: the table both front ends build these methods from. An entry is
 * XN(result type, method, KIND1, name1, ..., KINDN, nameN) for a method of N parameters; a kind
 * names the interface's type of the parameter (kind:: below) and gives the type the core takes.
 * Each front end maps a kind to its own parameter type and conversion; the methods with more
 * than one result, or a result the core hands over in a type of its own, are written out in
 * each front end.
 */
#pragma once

#include <cstdint>
#include <string>

#include "CoreTypes.h"

namespace vesk::hardware::veskdevicemanager::core::kind {

// int32_t in both interfaces.
struct Int32 {
    using Core = int32_t;
};
// uint32_t in HIDL.
struct Uint32 {
    using Core = uint32_t;
};
// uint32_t in HIDL, the size of a buffer the service makes: the core allocates that many bytes.
struct Size {
    using Core = uint32_t;
};
// uint8_t, int8_t and uint16_t in HIDL.
struct Uint8 {
    using Core = uint8_t;
};
struct Int8 {
    using Core = int8_t;
};
struct Uint16 {
    using Core = uint16_t;
};
// A string.
struct String {
    using Core = const std::string&;
};
// A client's bytes, and a client's 32-bit words (uint32_t in HIDL).
struct Bytes {
    using Core = InputView<uint8_t>;
};
struct Words {
    using Core = InputView<uint32_t>;
};
// The log daemon's configuration.
struct LogInfo {
    using Core = const VeskLogInfo&;
};

}  // namespace vesk::hardware::veskdevicemanager::core::kind

// clang-format off
#define VESK_CORE_VALUE_METHODS(X0, X1, X2, X3, X4)                                             \
    X1(int32_t, setSysLedState, Int32, state)                                                   \
    X0(int32_t, getSysLedState)                                                                 \
    X1(int32_t, setNetLedState, Int32, state)                                                   \
    X0(int32_t, getNetLedState)                                                                 \
    X3(int32_t, setColorLedState, Int32, red, Int32, green, Int32, blue)                        \
    X0(int32_t, getColorLedState)                                                               \
    X1(int32_t, set4gLedState, Int32, state)                                                    \
    X0(int32_t, get4gLedState)                                                                  \
    X1(int32_t, setPositionLedState, Int32, state)                                              \
    X0(int32_t, getPositionLedState)                                                            \
    X1(int32_t, setSwitchLedState, Int32, state)                                                \
    X0(int32_t, getSwitchLedState)                                                              \
    X1(int32_t, setRunningLedState, Int32, state)                                               \
    X0(int32_t, getRunningLedState)                                                             \
    X1(int32_t, setCloudLedState, Int32, state)                                                 \
    X0(int32_t, getCloudLedState)                                                               \
    X1(int32_t, setProductInfo, Int32, useDhcp)                                                 \
    X0(int32_t, getProtocolType)                                                                \
    X4(int32_t, openSerialPort485, Int32, baudrate, Uint8, databits, Uint8, stopbits, Int8, parity) \
    X0(int32_t, closeSerialPort485)                                                             \
    X1(int32_t, writeSerialPort485, Bytes, data)                                                \
    X4(int32_t, openSerialPort485_2, Int32, baudrate, Uint8, databits, Uint8, stopbits, Int8, parity) \
    X0(int32_t, closeSerialPort485_2)                                                           \
    X1(int32_t, writeSerialPort485_2, Bytes, data)                                              \
    X4(int32_t, openSerialPort232, Int32, baudrate, Uint8, databits, Uint8, stopbits, Int8, parity) \
    X0(int32_t, closeSerialPort232)                                                             \
    X1(int32_t, writeSerialPort232, Bytes, data)                                                \
    X4(int32_t, openSerialPortLora, Int32, baudrate, Uint8, databits, Uint8, stopbits, Int8, parity) \
    X0(int32_t, closeSerialPortLora)                                                            \
    X1(int32_t, writeSerialPortLora, Bytes, data)                                               \
    X4(int32_t, openSerialPortHDMI, Int32, baudrate, Uint8, databits, Uint8, stopbits, Int8, parity) \
    X0(int32_t, closeSerialPortHDMI)                                                            \
    X1(int32_t, writeSerialPortHDMI, Bytes, data)                                               \
    X4(int32_t, openSerialPortTTL, Int32, baudrate, Uint8, databits, Uint8, stopbits, Int8, parity) \
    X0(int32_t, closeSerialPortTTL)                                                             \
    X1(int32_t, writeSerialPortTTL, Bytes, data)                                                \
    X4(int32_t, openSerialPortTTL_2, Int32, baudrate, Uint8, databits, Uint8, stopbits, Int8, parity) \
    X0(int32_t, closeSerialPortTTL_2)                                                           \
    X1(int32_t, writeSerialPortTTL_2, Bytes, data)                                              \
    X1(int32_t, setSimpleFanState, Int32, state)                                                \
    X0(int32_t, getSimPleFanState)                                                              \
    X1(int32_t, setFanSpeedLevel, Int32, state)                                                 \
    X0(int32_t, getFanSpeedLevel)                                                               \
    X0(int32_t, getFanSpeedPRM)                                                                 \
    X2(int32_t, startWatchDog, String, device, Uint32, timeout)                                 \
    X1(int32_t, feedWatchDog, String, device)                                                   \
    X1(int32_t, stopWatchDog, String, device)                                                   \
    X1(int32_t, setRelayState, Int32, state)                                                    \
    X0(int32_t, getRelayState)                                                                  \
    X2(int32_t, writeBlockDataDefined, Bytes, data, Uint32, offset)                             \
    X2(int32_t, writeBlockDataScreen, Bytes, data, Uint32, offset)                              \
    X0(int32_t, loadFPGAProgram)                                                                \
    X0(int32_t, loadFPGAParamBlockData)                                                         \
    X3(int32_t, setFPGAProgramBlockData, Bytes, data, Size, length, Uint32, offset)             \
    X4(int32_t, writeBlockData, String, path, Uint32, offset, Uint32, length, Bytes, data)      \
    X1(int32_t, setOpsUsbPort, Int32, state)                                                    \
    X0(int32_t, getOpsUsbPort)                                                                  \
    X1(int32_t, setOpsSwitchState, Int32, state)                                                \
    X0(int32_t, getOpsSwitchState)                                                              \
    X1(int32_t, setOpsOnState, Int32, state)                                                    \
    X0(int32_t, getOpsOnState)                                                                  \
    X1(int32_t, setOpsControlState, Int32, state)                                               \
    X0(int32_t, getOpsControlState)                                                             \
    X0(int32_t, getOpsDetectState)                                                              \
    X2(int32_t, getProcessNum, String, name, Int32, flag)                                       \
    X1(int32_t, killProcessNum, Int32, pid)                                                     \
    X0(int32_t, getOtgMode)                                                                     \
    X1(int32_t, setOtgMode, Uint32, mode)                                                       \
    X1(int32_t, setFactoryToolStatus, Int32, enable)                                            \
    X0(int32_t, getFactoryToolStatus)                                                           \
    X2(int32_t, setPeripheralRelayStatus, Uint32, dev_num, Int32, enable)                       \
    X1(int32_t, getPeripheralRelayStatus, Uint32, dev_num)                                      \
    X1(int32_t, setPcControlStatus, Int32, enable)                                              \
    X0(int32_t, getPcControlStatus)                                                             \
    X1(int32_t, setUsbSubCardLedStatus, Int32, enable)                                          \
    X0(int32_t, getUsbSubCardLedStatus)                                                         \
    X0(int32_t, getNetWorkState)                                                                \
    X1(int32_t, writeSpiFpga, Bytes, data)                                                      \
    X1(int32_t, setVeskLogConfigure, LogInfo, info)                                             \
    X2(int32_t, compressVeskLog, String, source, String, target)                                \
    X1(int32_t, clearVeskLog, String, path)                                                     \
    X1(int32_t, setUsbSwitchEnable, Uint32, enable)                                             \
    X0(int32_t, getUsbSwitchEnable)                                                             \
    X2(int32_t, setUsbState, Uint32, index, Uint32, enable)                                     \
    X1(int32_t, getUsbState, Uint32, index)                                                     \
    X1(int32_t, setRtcBootEnable, Uint32, enable)                                               \
    X1(int32_t, setRtcWakeEnable, Uint32, enable)                                               \
    X1(int32_t, setRtcBootTime, Words, time)                                                    \
    X1(int32_t, setRtcWakeTime, Words, time)                                                    \
    X0(int32_t, getAdcBoardId)                                                                  \
    X0(int32_t, setLowPowerMode)                                                                \
    X0(int32_t, setNormalPowerMode)                                                             \
    X0(int32_t, getApNetworkInsulation)                                                         \
    X1(int32_t, setApNetworkInsulation, Uint32, enable)                                         \
    X0(int32_t, getApChannel)                                                                   \
    X0(int32_t, setSystemShutDown)                                                              \
    X2(int32_t, setAudioEnable, Uint8, channel, Uint8, enable)                                  \
    X1(int32_t, getAudioEnable, Uint8, channel)                                                 \
    X2(int32_t, setVideoInputSrcVolume, Uint8, source, Uint8, volume)                           \
    X1(int32_t, getVideoInputSrcVolume, Uint8, source)                                          \
    X0(float, getBoardVoltage)                                                                  \
    X0(float, getBoardTemperature)                                                              \
    X0(int32_t, getLoraState)                                                                   \
    X0(int32_t, setInfrared)                                                                    \
    X1(int32_t, setRestoreFactorySetting, Int32, mode)                                          \
    X1(int32_t, set4gModuleState, Int32, state)                                                 \
    X0(int32_t, get4gModuleState)                                                               \
    X1(int32_t, set4gPowerState, Int32, state)                                                  \
    X0(int32_t, get4gPowerState)                                                                \
    X1(int32_t, setScreenModeState, Int32, state)                                               \
    X0(int32_t, getScreenModeState)                                                             \
    X1(int32_t, setHeadphonePowerState, Int32, state)                                           \
    X0(int32_t, getHeadphonePowerState)                                                         \
    X1(int32_t, setPQEnable, Int32, enable)                                                     \
    X0(int32_t, getPQEnable)                                                                    \
    X1(int32_t, getHdmiInStatus, Int32, port)                                                   \
    X1(int32_t, getHdmiOutStatus, Int32, port)                                                  \
    X1(int32_t, fpgaFirmwareUpdate, String, path)                                               \
    X1(int32_t, schedUnbindPidFromCore, Int32, pid)                                             \
    X1(int32_t, schedBindPidFromCore, Int32, pid)                                               \
    X1(int32_t, schedAdjustCpuFreq, String, mode)                                               \
    X1(int32_t, checkBlock, String, path)                                                       \
    X1(int32_t, setHDREnable, Int32, enable)                                                    \
    X1(int32_t, setPowerAmplifierState, Int32, state)                                           \
    X0(int32_t, getPowerAmplifierState)
// clang-format on
