#include "MethodTable.h"

#include <new>
#include <stdexcept>
#include <unordered_map>

namespace veskdm {

namespace {

std::vector<MethodBinder> buildTable() {
    // Argument names and result-callback argument names as in IVeskDeviceManager.hal; types
    // come from the generated methods.
    return {
            VESKDM_BIND(hwInvoke, "command", "result"),
            VESKDM_BIND(hwRegistCallback, "callback", ""),
            VESKDM_BIND(setSysLedState, "state", ""),
            VESKDM_BIND(getSysLedState, "", ""),
            VESKDM_BIND(setNetLedState, "state", ""),
            VESKDM_BIND(getNetLedState, "", ""),
            VESKDM_BIND(setColorLedState, "red green blue", ""),
            VESKDM_BIND(getColorLedState, "", ""),
            VESKDM_BIND(set4gLedState, "state", ""),
            VESKDM_BIND(get4gLedState, "", ""),
            VESKDM_BIND(setPositionLedState, "state", ""),
            VESKDM_BIND(getPositionLedState, "", ""),
            VESKDM_BIND(setSwitchLedState, "state", ""),
            VESKDM_BIND(getSwitchLedState, "", ""),
            VESKDM_BIND(setRunningLedState, "state", ""),
            VESKDM_BIND(getRunningLedState, "", ""),
            VESKDM_BIND(setCloudLedState, "state", ""),
            VESKDM_BIND(getCloudLedState, "", ""),
            VESKDM_BIND(getProductInfo, "", "info"),
            VESKDM_BIND(setProductInfo, "useDhcp", ""),
            VESKDM_BIND(getProtocolType, "", ""),
            VESKDM_BIND(openSerialPort485, "baudrate databits stopbits parity", ""),
            VESKDM_BIND(closeSerialPort485, "", ""),
            VESKDM_BIND(readBlockingSerialPort485, "data_size timeout_ms", "data bytes_read"),
            VESKDM_BIND(readNonBlockingSerialPort485, "data_size", "data bytes_read"),
            VESKDM_BIND(writeSerialPort485, "data", ""),
            VESKDM_BIND(openSerialPort485_2, "baudrate databits stopbits parity", ""),
            VESKDM_BIND(closeSerialPort485_2, "", ""),
            VESKDM_BIND(readBlockingSerialPort485_2, "data_size timeout_ms", "data bytes_read"),
            VESKDM_BIND(readNonBlockingSerialPort485_2, "data_size", "data bytes_read"),
            VESKDM_BIND(writeSerialPort485_2, "data", ""),
            VESKDM_BIND(openSerialPort232, "baudrate databits stopbits parity", ""),
            VESKDM_BIND(closeSerialPort232, "", ""),
            VESKDM_BIND(readBlockingSerialPort232, "data_size timeout_ms", "data bytes_read"),
            VESKDM_BIND(readNonBlockingSerialPort232, "data_size", "data bytes_read"),
            VESKDM_BIND(writeSerialPort232, "data", ""),
            VESKDM_BIND(openSerialPortLora, "baudrate databits stopbits parity", ""),
            VESKDM_BIND(closeSerialPortLora, "", ""),
            VESKDM_BIND(readBlockingSerialPortLora, "data_size timeout_ms", "data bytes_read"),
            VESKDM_BIND(readNonBlockingSerialPortLora, "data_size", "data bytes_read"),
            VESKDM_BIND(writeSerialPortLora, "data", ""),
            VESKDM_BIND(openSerialPortHDMI, "baudrate databits stopbits parity", ""),
            VESKDM_BIND(closeSerialPortHDMI, "", ""),
            VESKDM_BIND(readBlockingSerialPortHDMI, "data_size timeout_ms", "data bytes_read"),
            VESKDM_BIND(readNonBlockingSerialPortHDMI, "data_size", "data bytes_read"),
            VESKDM_BIND(writeSerialPortHDMI, "data", ""),
            VESKDM_BIND(openSerialPortTTL, "baudrate databits stopbits parity", ""),
            VESKDM_BIND(closeSerialPortTTL, "", ""),
            VESKDM_BIND(readBlockingSerialPortTTL, "data_size timeout_ms", "data bytes_read"),
            VESKDM_BIND(readNonBlockingSerialPortTTL, "data_size", "data bytes_read"),
            VESKDM_BIND(writeSerialPortTTL, "data", ""),
            VESKDM_BIND(openSerialPortTTL_2, "baudrate databits stopbits parity", ""),
            VESKDM_BIND(closeSerialPortTTL_2, "", ""),
            VESKDM_BIND(readBlockingSerialPortTTL_2, "data_size timeout_ms", "data bytes_read"),
            VESKDM_BIND(readNonBlockingSerialPortTTL_2, "data_size", "data bytes_read"),
            VESKDM_BIND(writeSerialPortTTL_2, "data", ""),
            VESKDM_BIND(setSimpleFanState, "state", ""),
            VESKDM_BIND(getSimPleFanState, "", ""),
            VESKDM_BIND(setFanSpeedLevel, "state", ""),
            VESKDM_BIND(getFanSpeedLevel, "", ""),
            VESKDM_BIND(getFanSpeedPRM, "", ""),
            VESKDM_BIND(getWatchDogCfg, "", "cfg"),
            VESKDM_BIND(startWatchDog, "device timeout", ""),
            VESKDM_BIND(feedWatchDog, "device", ""),
            VESKDM_BIND(stopWatchDog, "device", ""),
            VESKDM_BIND(setRelayState, "state", ""),
            VESKDM_BIND(getRelayState, "", ""),
            VESKDM_BIND(writeBlockDataDefined, "data offset", ""),
            VESKDM_BIND(readBlockDataDefined, "length offset", "data"),
            VESKDM_BIND(writeBlockDataScreen, "data offset", ""),
            VESKDM_BIND(readBlockDataScreen, "length offset", "data"),
            VESKDM_BIND(loadFPGAProgram, "", ""),
            VESKDM_BIND(loadFPGAParamBlockData, "", ""),
            VESKDM_BIND(setFPGAProgramBlockData, "data length offset", ""),
            VESKDM_BIND(getFPGAProgramBlockData, "length offset", "data"),
            VESKDM_BIND(writeBlockData, "path offset length data", ""),
            VESKDM_BIND(readBlockData, "path offset length", "data"),
            VESKDM_BIND(setOpsUsbPort, "state", ""),
            VESKDM_BIND(getOpsUsbPort, "", ""),
            VESKDM_BIND(setOpsSwitchState, "state", ""),
            VESKDM_BIND(getOpsSwitchState, "", ""),
            VESKDM_BIND(setOpsOnState, "state", ""),
            VESKDM_BIND(getOpsOnState, "", ""),
            VESKDM_BIND(setOpsControlState, "state", ""),
            VESKDM_BIND(getOpsControlState, "", ""),
            VESKDM_BIND(getOpsDetectState, "", ""),
            VESKDM_BIND(getProcessNum, "name flag", ""),
            VESKDM_BIND(getProcessInfo, "name", "info"),
            VESKDM_BIND(killProcessNum, "pid", ""),
            VESKDM_BIND(getOtgMode, "", ""),
            VESKDM_BIND(setOtgMode, "mode", ""),
            VESKDM_BIND(getUsbList, "", "list"),
            VESKDM_BIND(getCpuStatus, "", "status"),
            VESKDM_BIND(getVndkVersion, "", "version"),
            VESKDM_BIND(setFactoryToolStatus, "enable", ""),
            VESKDM_BIND(getFactoryToolStatus, "", ""),
            VESKDM_BIND(setPeripheralRelayStatus, "dev_num enable", ""),
            VESKDM_BIND(getPeripheralRelayStatus, "dev_num", ""),
            VESKDM_BIND(setPcControlStatus, "enable", ""),
            VESKDM_BIND(getPcControlStatus, "", ""),
            VESKDM_BIND(setUsbSubCardLedStatus, "enable", ""),
            VESKDM_BIND(getUsbSubCardLedStatus, "", ""),
            VESKDM_BIND(calculateResolutionParameters, "width height fps", "resolution"),
            VESKDM_BIND(getResolutionParameters, "", "resolution"),
            VESKDM_BIND(getResolutionParametersList, "", "list"),
            VESKDM_BIND(getNetWorkState, "", ""),
            VESKDM_BIND(writeSpiFpga, "data", ""),
            VESKDM_BIND(wReadSpiFpga, "data", "ret received"),
            VESKDM_BIND(readSpiFpga, "size", "ret data"),
            VESKDM_BIND(setVeskLogConfigure, "info", ""),
            VESKDM_BIND(getVeskLogConfigure, "", "ret info"),
            VESKDM_BIND(compressVeskLog, "source target", ""),
            VESKDM_BIND(clearVeskLog, "path", ""),
            VESKDM_BIND(setUsbSwitchEnable, "enable", ""),
            VESKDM_BIND(getUsbSwitchEnable, "", ""),
            VESKDM_BIND(setUsbState, "index enable", ""),
            VESKDM_BIND(getUsbState, "index", ""),
            VESKDM_BIND(setRtcBootEnable, "enable", ""),
            VESKDM_BIND(setRtcWakeEnable, "enable", ""),
            VESKDM_BIND(setRtcBootTime, "time", ""),
            VESKDM_BIND(setRtcWakeTime, "time", ""),
            VESKDM_BIND(getRtcBootTime, "", "time"),
            VESKDM_BIND(getRtcWakeTime, "", "time"),
            VESKDM_BIND(getEdidFromDefined, "index width height refresh", "edid"),
            VESKDM_BIND(getEdidByModel, "width height refresh", "edid"),
            VESKDM_BIND(getResolutionByEdid, "edid", "resolution"),
            VESKDM_BIND(getAdcBoardId, "", ""),
            VESKDM_BIND(setLowPowerMode, "", ""),
            VESKDM_BIND(setNormalPowerMode, "", ""),
            VESKDM_BIND(getApNetworkInsulation, "", ""),
            VESKDM_BIND(setApNetworkInsulation, "enable", ""),
            VESKDM_BIND(getApChannel, "", ""),
            VESKDM_BIND(setSystemShutDown, "", ""),
            VESKDM_BIND(setAudioEnable, "channel enable", ""),
            VESKDM_BIND(getAudioEnable, "channel", ""),
            VESKDM_BIND(setVideoInputSrcVolume, "source volume", ""),
            VESKDM_BIND(getVideoInputSrcVolume, "source", ""),
            VESKDM_BIND(getBoardVoltage, "", ""),
            VESKDM_BIND(getBoardTemperature, "", ""),
            VESKDM_BIND(getLoraState, "", ""),
            VESKDM_BIND(setInfrared, "", ""),
            VESKDM_BIND(setRestoreFactorySetting, "mode", ""),
            VESKDM_BIND(set4gModuleState, "state", ""),
            VESKDM_BIND(get4gModuleState, "", ""),
            VESKDM_BIND(set4gPowerState, "state", ""),
            VESKDM_BIND(get4gPowerState, "", ""),
            VESKDM_BIND(setScreenModeState, "state", ""),
            VESKDM_BIND(getScreenModeState, "", ""),
            VESKDM_BIND(setHeadphonePowerState, "state", ""),
            VESKDM_BIND(getHeadphonePowerState, "", ""),
            VESKDM_BIND(setPQEnable, "enable", ""),
            VESKDM_BIND(getPQEnable, "", ""),
            VESKDM_BIND(getHdmiInStatus, "port", ""),
            VESKDM_BIND(getHdmiOutStatus, "port", ""),
            VESKDM_BIND(fpgaFirmwareUpdate, "path", ""),
            VESKDM_BIND(schedUnbindPidFromCore, "pid", ""),
            VESKDM_BIND(schedBindPidFromCore, "pid", ""),
            VESKDM_BIND(schedAdjustCpuFreq, "mode", ""),
            VESKDM_BIND(checkBlock, "path", ""),
            VESKDM_BIND(setHDREnable, "enable", ""),
            VESKDM_BIND(setPowerAmplifierState, "state", ""),
            VESKDM_BIND(getPowerAmplifierState, "", ""),
    };
}

}  // namespace

const std::vector<MethodBinder>& methodTable() {
    static const std::vector<MethodBinder> table = buildTable();
    return table;
}

const MethodBinder* findMethod(const std::string& name) {
    static const auto index = [] {
        std::unordered_map<std::string, const MethodBinder*> byName;
        for (const MethodBinder& method : methodTable()) byName.emplace(method.name, &method);
        return byName;
    }();
    auto found = index.find(name);
    return found == index.end() ? nullptr : found->second;
}

BoundCall bindCall(const std::vector<std::string>& words) {
    if (words.empty()) throw ArgumentError("no method given");
    const MethodBinder* method = findMethod(words[0]);
    if (method == nullptr) {
        throw ArgumentError("unknown method \"" + words[0] + "\" (veskdm methods lists them)");
    }
    std::vector<std::string> arguments(words.begin() + 1, words.end());
    return BoundCall{method, method->prepare(arguments)};
}

Json runCall(const BoundCall& call, IVeskDeviceManager& service) {
    CallOutcome outcome;
    try {
        outcome = call.call(service);
    } catch (const std::length_error&) {
        throw std::bad_alloc();  // the size could not be allocated either
    }
    Json line = Json::object();
    line["method"] = call.method->name;
    line["return"] = std::move(outcome.returned);
    line["callbacks"] = std::move(outcome.callbacks);
    return line;
}

}  // namespace veskdm
