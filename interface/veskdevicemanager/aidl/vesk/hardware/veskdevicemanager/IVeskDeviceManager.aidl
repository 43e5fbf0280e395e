package vesk.hardware.veskdevicemanager;

import vesk.hardware.veskdevicemanager.CpuStatus;
import vesk.hardware.veskdevicemanager.IVeskDeviceCallback;
import vesk.hardware.veskdevicemanager.LogConfigureResult;
import vesk.hardware.veskdevicemanager.ProcessInfo;
import vesk.hardware.veskdevicemanager.ProductInfo;
import vesk.hardware.veskdevicemanager.ReadResult;
import vesk.hardware.veskdevicemanager.TransferResult;
import vesk.hardware.veskdevicemanager.UsbList;
import vesk.hardware.veskdevicemanager.VeskEffeResolution;
import vesk.hardware.veskdevicemanager.VeskLogInfo;
import vesk.hardware.veskdevicemanager.WatchDogCfg;

/**
 * The board's device manager: the methods of vesk.hardware.veskdevicemanager@1.0, with the same
 * names, in the same order, for boards whose HALs are stable AIDL. Methods are only ever
 * appended.
 *
 * The board's results stay values, as in HIDL: a method returns what the board returned, and a
 * device failure is a value (a negative status, a short or empty buffer), never a binder error.
 * A binder error means the call itself was refused: EX_ILLEGAL_ARGUMENT, with a message, for an
 * argument out of its range (below), and the platform's own statuses for a parcel it cannot read
 * (a null where a value is needed is refused before the service sees the call).
 *
 * Types, from the HIDL interface's:
 *  - int32_t and uint32_t are int: the same 32 bits, as HIDL's Java bindings carry them (a
 *    uint32_t of 4294967295 is -1 here, and the other way round). Where the value is the size
 *    of a buffer the service reads into (data_size, length, size), it must be at least 0 and
 *    at most the largest reply a binder transaction carries on the board (1 MiB less two pages).
 *  - uint8_t, int8_t and uint16_t are int, checked against their range (0 to 255, -128 to 127,
 *    0 to 65535).
 *  - A method whose HIDL form hands several values to its callback returns one parcelable
 *    holding them, one parcelable per shape: ReadResult, TransferResult, LogConfigureResult.
 *  - hwInvoke is reserved and answers null; hwRegistCallback takes any callback, null too, and
 *    keeps none: no notification is ever sent.
 *  - IBase::debug (lshal debug) is dump() (dumpsys).
 */
@VintfStability
interface IVeskDeviceManager {
    @nullable String hwInvoke(in String command);
    int hwRegistCallback(@nullable IVeskDeviceCallback callback);
    int setSysLedState(int state);
    int getSysLedState();
    int setNetLedState(int state);
    int getNetLedState();
    int setColorLedState(int red, int green, int blue);
    int getColorLedState();
    int set4gLedState(int state);
    int get4gLedState();
    int setPositionLedState(int state);
    int getPositionLedState();
    int setSwitchLedState(int state);
    int getSwitchLedState();
    int setRunningLedState(int state);
    int getRunningLedState();
    int setCloudLedState(int state);
    int getCloudLedState();
    ProductInfo getProductInfo();
    int setProductInfo(int useDhcp);
    int getProtocolType();
    int openSerialPort485(int baudrate, int databits, int stopbits, int parity);
    int closeSerialPort485();
    ReadResult readBlockingSerialPort485(int data_size, int timeout_ms);
    ReadResult readNonBlockingSerialPort485(int data_size);
    int writeSerialPort485(in byte[] data);
    int openSerialPort485_2(int baudrate, int databits, int stopbits, int parity);
    int closeSerialPort485_2();
    ReadResult readBlockingSerialPort485_2(int data_size, int timeout_ms);
    ReadResult readNonBlockingSerialPort485_2(int data_size);
    int writeSerialPort485_2(in byte[] data);
    int openSerialPort232(int baudrate, int databits, int stopbits, int parity);
    int closeSerialPort232();
    ReadResult readBlockingSerialPort232(int data_size, int timeout_ms);
    ReadResult readNonBlockingSerialPort232(int data_size);
    int writeSerialPort232(in byte[] data);
    int openSerialPortLora(int baudrate, int databits, int stopbits, int parity);
    int closeSerialPortLora();
    ReadResult readBlockingSerialPortLora(int data_size, int timeout_ms);
    ReadResult readNonBlockingSerialPortLora(int data_size);
    int writeSerialPortLora(in byte[] data);
    int openSerialPortHDMI(int baudrate, int databits, int stopbits, int parity);
    int closeSerialPortHDMI();
    ReadResult readBlockingSerialPortHDMI(int data_size, int timeout_ms);
    ReadResult readNonBlockingSerialPortHDMI(int data_size);
    int writeSerialPortHDMI(in byte[] data);
    int openSerialPortTTL(int baudrate, int databits, int stopbits, int parity);
    int closeSerialPortTTL();
    ReadResult readBlockingSerialPortTTL(int data_size, int timeout_ms);
    ReadResult readNonBlockingSerialPortTTL(int data_size);
    int writeSerialPortTTL(in byte[] data);
    int openSerialPortTTL_2(int baudrate, int databits, int stopbits, int parity);
    int closeSerialPortTTL_2();
    ReadResult readBlockingSerialPortTTL_2(int data_size, int timeout_ms);
    ReadResult readNonBlockingSerialPortTTL_2(int data_size);
    int writeSerialPortTTL_2(in byte[] data);
    int setSimpleFanState(int state);
    int getSimPleFanState();
    int setFanSpeedLevel(int state);
    int getFanSpeedLevel();
    int getFanSpeedPRM();
    WatchDogCfg getWatchDogCfg();
    int startWatchDog(in String device, int timeout);
    int feedWatchDog(in String device);
    int stopWatchDog(in String device);
    int setRelayState(int state);
    int getRelayState();
    int writeBlockDataDefined(in byte[] data, int offset);
    byte[] readBlockDataDefined(int length, int offset);
    int writeBlockDataScreen(in byte[] data, int offset);
    byte[] readBlockDataScreen(int length, int offset);
    int loadFPGAProgram();
    int loadFPGAParamBlockData();
    int setFPGAProgramBlockData(in byte[] data, int length, int offset);
    byte[] getFPGAProgramBlockData(int length, int offset);
    int writeBlockData(in String path, int offset, int length, in byte[] data);
    byte[] readBlockData(in String path, int offset, int length);
    int setOpsUsbPort(int state);
    int getOpsUsbPort();
    int setOpsSwitchState(int state);
    int getOpsSwitchState();
    int setOpsOnState(int state);
    int getOpsOnState();
    int setOpsControlState(int state);
    int getOpsControlState();
    int getOpsDetectState();
    int getProcessNum(in String name, int flag);
    ProcessInfo getProcessInfo(in String name);
    int killProcessNum(int pid);
    int getOtgMode();
    int setOtgMode(int mode);
    UsbList[] getUsbList();
    CpuStatus getCpuStatus();
    String getVndkVersion();
    int setFactoryToolStatus(int enable);
    int getFactoryToolStatus();
    int setPeripheralRelayStatus(int dev_num, int enable);
    int getPeripheralRelayStatus(int dev_num);
    int setPcControlStatus(int enable);
    int getPcControlStatus();
    int setUsbSubCardLedStatus(int enable);
    int getUsbSubCardLedStatus();
    VeskEffeResolution calculateResolutionParameters(int width, int height, int fps);
    VeskEffeResolution getResolutionParameters();
    VeskEffeResolution[] getResolutionParametersList();
    int getNetWorkState();
    int writeSpiFpga(in byte[] data);
    TransferResult wReadSpiFpga(in byte[] data);
    TransferResult readSpiFpga(int size);
    int setVeskLogConfigure(in VeskLogInfo info);
    LogConfigureResult getVeskLogConfigure();
    int compressVeskLog(in String source, in String target);
    int clearVeskLog(in String path);
    int setUsbSwitchEnable(int enable);
    int getUsbSwitchEnable();
    int setUsbState(int index, int enable);
    int getUsbState(int index);
    int setRtcBootEnable(int enable);
    int setRtcWakeEnable(int enable);
    int setRtcBootTime(in int[] time);
    int setRtcWakeTime(in int[] time);
    int[] getRtcBootTime();
    int[] getRtcWakeTime();
    byte[] getEdidFromDefined(int index, int width, int height, float refresh);
    byte[] getEdidByModel(int width, int height, float refresh);
    VeskEffeResolution getResolutionByEdid(in byte[] edid);
    int getAdcBoardId();
    int setLowPowerMode();
    int setNormalPowerMode();
    int getApNetworkInsulation();
    int setApNetworkInsulation(int enable);
    int getApChannel();
    int setSystemShutDown();
    int setAudioEnable(int channel, int enable);
    int getAudioEnable(int channel);
    int setVideoInputSrcVolume(int source, int volume);
    int getVideoInputSrcVolume(int source);
    float getBoardVoltage();
    float getBoardTemperature();
    int getLoraState();
    int setInfrared();
    int setRestoreFactorySetting(int mode);
    int set4gModuleState(int state);
    int get4gModuleState();
    int set4gPowerState(int state);
    int get4gPowerState();
    int setScreenModeState(int state);
    int getScreenModeState();
    int setHeadphonePowerState(int state);
    int getHeadphonePowerState();
    int setPQEnable(int enable);
    int getPQEnable();
    int getHdmiInStatus(int port);
    int getHdmiOutStatus(int port);
    int fpgaFirmwareUpdate(in String path);
    int schedUnbindPidFromCore(int pid);
    int schedBindPidFromCore(int pid);
    int schedAdjustCpuFreq(in String mode);
    int checkBlock(in String path);
    int setHDREnable(int enable);
    int setPowerAmplifierState(int state);
    int getPowerAmplifierState();
}
