/*
 * The service's debug trace: where each method's lines say they come from. Every method has a
 * fixed line number of its own, the line at which its body began in the service's original
 * single source file; the number stays with the method whichever file holds it now. A method
 * that writes further numbered lines has a point for each, named by `where`.
 *
 * The one table of them: the service writes its lines from it, and its tests check against it.
 */
#pragma once

namespace vesk::hardware::veskdevicemanager::implementation {

struct TracePoint {
    const char* method;
    const char* where;  // "" for the method's own trace line
    int line;
};

// In the order of their lines.
inline constexpr TracePoint kTracePoints[] = {
        {"VeskDeviceManager", "", 30},
        {"hwInvoke", "", 36},
        {"hwRegistCallback", "", 42},
        {"setSysLedState", "", 48},
        {"getSysLedState", "", 54},
        {"setNetLedState", "", 60},
        {"getNetLedState", "", 66},
        {"setColorLedState", "", 72},
        {"getColorLedState", "", 79},
        {"set4gLedState", "", 85},
        {"get4gLedState", "", 91},
        {"setPositionLedState", "", 97},
        {"getPositionLedState", "", 103},
        {"setSwitchLedState", "", 109},
        {"getSwitchLedState", "", 115},
        {"setRunningLedState", "", 121},
        {"getRunningLedState", "", 127},
        {"setCloudLedState", "", 133},
        {"getCloudLedState", "", 139},
        {"getProductInfo", "", 146},
        {"getProtocolType", "", 221},
        {"openSerialPort485", "", 226},
        {"closeSerialPort485", "", 234},
        {"readBlockingSerialPort485", "", 242},
        {"readBlockingSerialPort485", "negative count", 256},
        {"readNonBlockingSerialPort485", "", 264},
        {"readNonBlockingSerialPort485", "negative count", 277},
        {"writeSerialPort485", "", 285},
        {"openSerialPort485_2", "", 291},
        {"closeSerialPort485_2", "", 299},
        {"readBlockingSerialPort485_2", "", 307},
        {"readBlockingSerialPort485_2", "negative count", 321},
        {"readNonBlockingSerialPort485_2", "", 329},
        {"readNonBlockingSerialPort485_2", "negative count", 342},
        {"writeSerialPort485_2", "", 350},
        {"openSerialPort232", "", 355},
        {"closeSerialPort232", "", 363},
        {"readBlockingSerialPort232", "", 371},
        {"readBlockingSerialPort232", "negative count", 385},
        {"readNonBlockingSerialPort232", "", 393},
        {"readNonBlockingSerialPort232", "negative count", 406},
        {"writeSerialPort232", "", 414},
        {"openSerialPortLora", "", 419},
        {"closeSerialPortLora", "", 427},
        {"readBlockingSerialPortLora", "", 435},
        {"readBlockingSerialPortLora", "negative count", 449},
        {"readNonBlockingSerialPortLora", "", 457},
        {"readNonBlockingSerialPortLora", "negative count", 470},
        {"writeSerialPortLora", "", 479},
        {"openSerialPortHDMI", "", 484},
        {"closeSerialPortHDMI", "", 492},
        {"readBlockingSerialPortHDMI", "", 500},
        {"readBlockingSerialPortHDMI", "negative count", 514},
        {"readNonBlockingSerialPortHDMI", "", 522},
        {"readNonBlockingSerialPortHDMI", "negative count", 535},
        {"writeSerialPortHDMI", "", 543},
        {"openSerialPortTTL", "", 548},
        {"closeSerialPortTTL", "", 556},
        {"readBlockingSerialPortTTL", "", 564},
        {"readBlockingSerialPortTTL", "negative count", 578},
        {"readNonBlockingSerialPortTTL", "", 586},
        {"readNonBlockingSerialPortTTL", "count", 594},
        {"readNonBlockingSerialPortTTL", "negative count", 599},
        {"writeSerialPortTTL", "", 607},
        {"openSerialPortTTL_2", "", 611},
        {"closeSerialPortTTL_2", "", 619},
        {"readBlockingSerialPortTTL_2", "", 627},
        {"readBlockingSerialPortTTL_2", "negative count", 641},
        {"readNonBlockingSerialPortTTL_2", "", 649},
        {"readNonBlockingSerialPortTTL_2", "count", 658},
        {"readNonBlockingSerialPortTTL_2", "negative count", 663},
        {"writeSerialPortTTL_2", "", 671},
        {"setSimpleFanState", "", 676},
        {"getSimPleFanState", "", 682},
        {"setFanSpeedLevel", "", 688},
        {"getFanSpeedLevel", "", 694},
        {"getFanSpeedPRM", "", 700},
        {"startWatchDog", "", 728},
        {"feedWatchDog", "", 733},
        {"stopWatchDog", "", 738},
        {"setRelayState", "", 743},
        {"getRelayState", "", 748},
        {"writeBlockDataDefined", "", 754},
        {"readBlockDataDefined", "", 762},
        {"writeBlockDataScreen", "", 778},
        {"readBlockDataScreen", "", 786},
        {"loadFPGAProgram", "", 802},
        {"loadFPGAParamBlockData", "", 807},
        {"setFPGAProgramBlockData", "", 812},
        {"getFPGAProgramBlockData", "", 818},
        {"writeBlockData", "", 838},
        {"readBlockData", "", 861},
        {"setOpsUsbPort", "", 885},
        {"getOpsUsbPort", "", 891},
        {"setOpsSwitchState", "", 897},
        {"getOpsSwitchState", "", 903},
        {"setOpsOnState", "", 910},
        {"getOpsOnState", "", 916},
        {"setOpsControlState", "", 922},
        {"getOpsControlState", "", 928},
        {"getOpsDetectState", "", 934},
        {"getProcessNum", "", 940},
        {"getProcessInfo", "", 949},
        {"killProcessNum", "", 990},
        {"getOtgMode", "", 996},
        {"setOtgMode", "", 1002},
        {"getUsbList", "", 1013},
        {"getCpuStatus", "", 1037},
        {"getVndkVersion", "", 1074},
        {"setFactoryToolStatus", "", 1088},
        {"getFactoryToolStatus", "", 1095},
        {"setPeripheralRelayStatus", "", 1101},
        {"getPeripheralRelayStatus", "", 1107},
        {"setPcControlStatus", "", 1113},
        {"getPcControlStatus", "", 1119},
        {"setUsbSubCardLedStatus", "", 1125},
        {"getUsbSubCardLedStatus", "", 1131},
        {"setUsbSwitchEnable", "", 1138},
        {"getUsbSwitchEnable", "", 1144},
        {"setUsbState", "", 1151},
        {"getUsbState", "", 1157},
        {"setRtcBootEnable", "", 1163},
        {"setRtcWakeEnable", "", 1169},
        {"setRtcBootTime", "", 1175},
        {"setRtcWakeTime", "", 1181},
        {"getRtcBootTime", "", 1188},
        {"getRtcWakeTime", "", 1205},
        {"calculateResolutionParameters", "", 1222},
        {"calculateResolutionParameters", "computed model", 1236},
        {"getResolutionParameters", "computed model", 1273},
        {"getResolutionParameters", "timing", 1276},
        {"getEdidFromDefined", "", 1316},
        {"getResolutionByEdid", "", 1346},
        {"getNetWorkState", "", 1367},
        {"getVeskLogConfigure", "", 1410},
        {"setVeskLogConfigure", "", 1436},
        {"compressVeskLog", "", 1457},
        {"clearVeskLog", "", 1462},
        {"getAdcBoardId", "", 1467},
        {"setLowPowerMode", "", 1472},
        {"setNormalPowerMode", "", 1477},
        {"getApNetworkInsulation", "", 1482},
        {"setApNetworkInsulation", "", 1487},
        {"getApChannel", "", 1492},
        {"setSystemShutDown", "", 1497},
        {"setAudioEnable", "", 1504},
        {"getAudioEnable", "", 1510},
        {"setVideoInputSrcVolume", "", 1517},
        {"getVideoInputSrcVolume", "", 1523},
        {"getBoardVoltage", "", 1528},
        {"getBoardTemperature", "", 1533},
        {"setInfrared", "", 1538},
        {"getLoraState", "", 1544},
        {"setRestoreFactorySetting", "", 1550},
        {"set4gModuleState", "", 1555},
        {"get4gModuleState", "", 1560},
        {"set4gPowerState", "", 1565},
        {"get4gPowerState", "", 1570},
        {"setScreenModeState", "", 1575},
        {"getScreenModeState", "", 1580},
        {"setHeadphonePowerState", "", 1585},
        {"getHeadphonePowerState", "", 1590},
        {"setPQEnable", "", 1595},
        {"getPQEnable", "", 1606},
        {"getHdmiInStatus", "", 1611},
        {"getHdmiOutStatus", "", 1616},
        {"fpgaFirmwareUpdate", "", 1621},
        {"schedUnbindPidFromCore", "", 1626},
        {"schedBindPidFromCore", "", 1631},
        {"schedAdjustCpuFreq", "", 1636},
        {"checkBlock", "", 1641},
        {"setHDREnable", "", 1646},
        {"setPowerAmplifierState", "", 1664},
        {"getPowerAmplifierState", "", 1670},
};

constexpr bool sameText(const char* a, const char* b) {
    while (*a != '\0' && *a == *b) {
        ++a;
        ++b;
    }
    return *a == *b;
}

// The line of a point; 0 when there is no such point.
constexpr int traceLine(const char* method, const char* where = "") {
    for (const TracePoint& point : kTracePoints) {
        if (sameText(point.method, method) && sameText(point.where, where)) return point.line;
    }
    return 0;
}

template <int Line>
struct KnownTraceLine {
    static_assert(Line > 0, "no such trace point");
    static constexpr int value = Line;
};

}  // namespace vesk::hardware::veskdevicemanager::implementation

// The line of a point that must exist, worked out when the service is compiled.
#define VESK_TRACE_LINE(...)                                              \
    (::vesk::hardware::veskdevicemanager::implementation::KnownTraceLine< \
            ::vesk::hardware::veskdevicemanager::implementation::traceLine(__VA_ARGS__)>::value)
