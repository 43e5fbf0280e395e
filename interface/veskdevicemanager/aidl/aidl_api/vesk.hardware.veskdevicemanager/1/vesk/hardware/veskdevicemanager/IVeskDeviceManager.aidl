///////////////////////////////////////////////////////////////////////////////
// THIS FILE IS IMMUTABLE. DO NOT EDIT IN ANY CASE.                          //
///////////////////////////////////////////////////////////////////////////////

// This file is a snapshot of an AIDL file. Do not edit it manually. There are
// two cases:
// 1). this is a frozen version file - do not edit this in any case.
// 2). this is a 'current' file. If you make a backwards compatible change to
//     the interface (from the latest frozen version), the build system will
//     prompt you to update this file with `m <name>-update-api`.
//
// You must not make a backward incompatible change to any AIDL file built
// with the aidl_interface module type with versions property set. The module
// type is used to build AIDL files in a way that they can be used across
// independently updatable components of the system. If a device is shipped
// with such a backward incompatible change, it has a high risk of breaking
// later when a module using the interface is updated, e.g., Mainline modules.

package vesk.hardware.veskdevicemanager;
@VintfStability
interface IVeskDeviceManager {
  @nullable String hwInvoke(in String command);
  int hwRegistCallback(@nullable vesk.hardware.veskdevicemanager.IVeskDeviceCallback callback);
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
  vesk.hardware.veskdevicemanager.ProductInfo getProductInfo();
  int setProductInfo(int useDhcp);
  int getProtocolType();
  int openSerialPort485(int baudrate, int databits, int stopbits, int parity);
  int closeSerialPort485();
  vesk.hardware.veskdevicemanager.ReadResult readBlockingSerialPort485(int data_size, int timeout_ms);
  vesk.hardware.veskdevicemanager.ReadResult readNonBlockingSerialPort485(int data_size);
  int writeSerialPort485(in byte[] data);
  int openSerialPort485_2(int baudrate, int databits, int stopbits, int parity);
  int closeSerialPort485_2();
  vesk.hardware.veskdevicemanager.ReadResult readBlockingSerialPort485_2(int data_size, int timeout_ms);
  vesk.hardware.veskdevicemanager.ReadResult readNonBlockingSerialPort485_2(int data_size);
  int writeSerialPort485_2(in byte[] data);
  int openSerialPort232(int baudrate, int databits, int stopbits, int parity);
  int closeSerialPort232();
  vesk.hardware.veskdevicemanager.ReadResult readBlockingSerialPort232(int data_size, int timeout_ms);
  vesk.hardware.veskdevicemanager.ReadResult readNonBlockingSerialPort232(int data_size);
  int writeSerialPort232(in byte[] data);
  int openSerialPortLora(int baudrate, int databits, int stopbits, int parity);
  int closeSerialPortLora();
  vesk.hardware.veskdevicemanager.ReadResult readBlockingSerialPortLora(int data_size, int timeout_ms);
  vesk.hardware.veskdevicemanager.ReadResult readNonBlockingSerialPortLora(int data_size);
  int writeSerialPortLora(in byte[] data);
  int openSerialPortHDMI(int baudrate, int databits, int stopbits, int parity);
  int closeSerialPortHDMI();
  vesk.hardware.veskdevicemanager.ReadResult readBlockingSerialPortHDMI(int data_size, int timeout_ms);
  vesk.hardware.veskdevicemanager.ReadResult readNonBlockingSerialPortHDMI(int data_size);
  int writeSerialPortHDMI(in byte[] data);
  int openSerialPortTTL(int baudrate, int databits, int stopbits, int parity);
  int closeSerialPortTTL();
  vesk.hardware.veskdevicemanager.ReadResult readBlockingSerialPortTTL(int data_size, int timeout_ms);
  vesk.hardware.veskdevicemanager.ReadResult readNonBlockingSerialPortTTL(int data_size);
  int writeSerialPortTTL(in byte[] data);
  int openSerialPortTTL_2(int baudrate, int databits, int stopbits, int parity);
  int closeSerialPortTTL_2();
  vesk.hardware.veskdevicemanager.ReadResult readBlockingSerialPortTTL_2(int data_size, int timeout_ms);
  vesk.hardware.veskdevicemanager.ReadResult readNonBlockingSerialPortTTL_2(int data_size);
  int writeSerialPortTTL_2(in byte[] data);
  int setSimpleFanState(int state);
  int getSimPleFanState();
  int setFanSpeedLevel(int state);
  int getFanSpeedLevel();
  int getFanSpeedPRM();
  vesk.hardware.veskdevicemanager.WatchDogCfg getWatchDogCfg();
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
  vesk.hardware.veskdevicemanager.ProcessInfo getProcessInfo(in String name);
  int killProcessNum(int pid);
  int getOtgMode();
  int setOtgMode(int mode);
  vesk.hardware.veskdevicemanager.UsbList[] getUsbList();
  vesk.hardware.veskdevicemanager.CpuStatus getCpuStatus();
  String getVndkVersion();
  int setFactoryToolStatus(int enable);
  int getFactoryToolStatus();
  int setPeripheralRelayStatus(int dev_num, int enable);
  int getPeripheralRelayStatus(int dev_num);
  int setPcControlStatus(int enable);
  int getPcControlStatus();
  int setUsbSubCardLedStatus(int enable);
  int getUsbSubCardLedStatus();
  vesk.hardware.veskdevicemanager.VeskEffeResolution calculateResolutionParameters(int width, int height, int fps);
  vesk.hardware.veskdevicemanager.VeskEffeResolution getResolutionParameters();
  vesk.hardware.veskdevicemanager.VeskEffeResolution[] getResolutionParametersList();
  int getNetWorkState();
  int writeSpiFpga(in byte[] data);
  vesk.hardware.veskdevicemanager.TransferResult wReadSpiFpga(in byte[] data);
  vesk.hardware.veskdevicemanager.TransferResult readSpiFpga(int size);
  int setVeskLogConfigure(in vesk.hardware.veskdevicemanager.VeskLogInfo info);
  vesk.hardware.veskdevicemanager.LogConfigureResult getVeskLogConfigure();
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
  vesk.hardware.veskdevicemanager.VeskEffeResolution getResolutionByEdid(in byte[] edid);
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
