/*
 * The methods whose result is a parcelable, a vector or text: the core's result, converted. A
 * result of several values is one parcelable of its shape; a board's failure stays in the value
 * (a negative count beside no data, an empty buffer, an empty list).
 */
#include <string>
#include <utility>
#include <vector>

#include "AidlConversions.h"
#include "AidlText.h"
#include "AidlVeskDeviceManager.h"

namespace aidl::vesk::hardware::veskdevicemanager {

using ::ndk::ScopedAStatus;
using Size = core::kind::Size;
using Bytes = core::kind::Bytes;
using Uint8 = core::kind::Uint8;
using Uint16 = core::kind::Uint16;
using Uint32 = core::kind::Uint32;

ScopedAStatus VeskDeviceManager::getProductInfo(ProductInfo* _aidl_return) {
    *_aidl_return = toAidl(mCore.getProductInfo());
    return ScopedAStatus::ok();
}

#define VESK_SERIAL_READS(suffix)                                                                  \
    ScopedAStatus VeskDeviceManager::readBlockingSerialPort##suffix(                               \
            int32_t data_size, int32_t timeout_ms, ReadResult* _aidl_return) {                     \
        Arguments args(mCore, "readBlockingSerialPort" #suffix);                                   \
        uint32_t size = args.take(Size{}, data_size, "data_size");                                 \
        uint32_t timeout = args.take(Uint32{}, timeout_ms, "timeout_ms");                          \
        if (args.refused()) return args.refusal();                                                 \
        *_aidl_return = toAidl(mCore.readBlockingSerialPort##suffix(size, timeout));               \
        return ScopedAStatus::ok();                                                                \
    }                                                                                              \
    ScopedAStatus VeskDeviceManager::readNonBlockingSerialPort##suffix(int32_t data_size,          \
                                                                       ReadResult* _aidl_return) { \
        Arguments args(mCore, "readNonBlockingSerialPort" #suffix);                                \
        uint32_t size = args.take(Size{}, data_size, "data_size");                                 \
        if (args.refused()) return args.refusal();                                                 \
        *_aidl_return = toAidl(mCore.readNonBlockingSerialPort##suffix(size));                     \
        return ScopedAStatus::ok();                                                                \
    }

VESK_SERIAL_READS(485)
VESK_SERIAL_READS(485_2)
VESK_SERIAL_READS(232)
VESK_SERIAL_READS(Lora)
VESK_SERIAL_READS(HDMI)
VESK_SERIAL_READS(TTL)
VESK_SERIAL_READS(TTL_2)

#undef VESK_SERIAL_READS

ScopedAStatus VeskDeviceManager::getWatchDogCfg(WatchDogCfg* _aidl_return) {
    *_aidl_return = toAidl(mCore.getWatchDogCfg());
    return ScopedAStatus::ok();
}

ScopedAStatus VeskDeviceManager::readBlockDataDefined(int32_t length, int32_t offset,
                                                      std::vector<uint8_t>* _aidl_return) {
    Arguments args(mCore, "readBlockDataDefined");
    uint32_t size = args.take(Size{}, length, "length");
    uint32_t at = args.take(Uint32{}, offset, "offset");
    if (args.refused()) return args.refusal();
    *_aidl_return = mCore.readBlockDataDefined(size, at);
    return ScopedAStatus::ok();
}

ScopedAStatus VeskDeviceManager::readBlockDataScreen(int32_t length, int32_t offset,
                                                     std::vector<uint8_t>* _aidl_return) {
    Arguments args(mCore, "readBlockDataScreen");
    uint32_t size = args.take(Size{}, length, "length");
    uint32_t at = args.take(Uint32{}, offset, "offset");
    if (args.refused()) return args.refusal();
    *_aidl_return = mCore.readBlockDataScreen(size, at);
    return ScopedAStatus::ok();
}

ScopedAStatus VeskDeviceManager::getFPGAProgramBlockData(int32_t length, int32_t offset,
                                                         std::vector<uint8_t>* _aidl_return) {
    Arguments args(mCore, "getFPGAProgramBlockData");
    uint32_t size = args.take(Size{}, length, "length");
    uint32_t at = args.take(Uint32{}, offset, "offset");
    if (args.refused()) return args.refusal();
    *_aidl_return = mCore.getFPGAProgramBlockData(size, at);
    return ScopedAStatus::ok();
}

ScopedAStatus VeskDeviceManager::readBlockData(const std::string& path, int32_t offset,
                                               int32_t length, std::vector<uint8_t>* _aidl_return) {
    Arguments args(mCore, "readBlockData");
    uint32_t at = args.take(Uint32{}, offset, "offset");
    uint32_t size = args.take(Size{}, length, "length");
    if (args.refused()) return args.refusal();
    *_aidl_return = mCore.readBlockData(path, at, size);
    return ScopedAStatus::ok();
}

ScopedAStatus VeskDeviceManager::getProcessInfo(const std::string& name, ProcessInfo* _aidl_return) {
    *_aidl_return = toAidl(mCore.getProcessInfo(name));
    return ScopedAStatus::ok();
}

ScopedAStatus VeskDeviceManager::getUsbList(std::vector<UsbList>* _aidl_return) {
    *_aidl_return = toAidl(mCore.getUsbList());
    return ScopedAStatus::ok();
}

ScopedAStatus VeskDeviceManager::getCpuStatus(CpuStatus* _aidl_return) {
    *_aidl_return = toAidl(mCore.getCpuStatus());
    return ScopedAStatus::ok();
}

ScopedAStatus VeskDeviceManager::getVndkVersion(std::string* _aidl_return) {
    *_aidl_return = aidlText(mCore.getVndkVersion());
    return ScopedAStatus::ok();
}

ScopedAStatus VeskDeviceManager::calculateResolutionParameters(int32_t width, int32_t height,
                                                               int32_t fps,
                                                               VeskEffeResolution* _aidl_return) {
    Arguments args(mCore, "calculateResolutionParameters");
    uint32_t w = args.take(Uint32{}, width, "width");
    uint32_t h = args.take(Uint32{}, height, "height");
    uint32_t f = args.take(Uint32{}, fps, "fps");
    if (args.refused()) return args.refusal();
    *_aidl_return = toAidl(mCore.calculateResolutionParameters(w, h, f));
    return ScopedAStatus::ok();
}

ScopedAStatus VeskDeviceManager::getResolutionParameters(VeskEffeResolution* _aidl_return) {
    *_aidl_return = toAidl(mCore.getResolutionParameters());
    return ScopedAStatus::ok();
}

// A negative count of the board's is its failure: the list is empty, as the core leaves it.
ScopedAStatus VeskDeviceManager::getResolutionParametersList(
        std::vector<VeskEffeResolution>* _aidl_return) {
    *_aidl_return = toAidl(mCore.getResolutionParametersList().list);
    return ScopedAStatus::ok();
}

ScopedAStatus VeskDeviceManager::wReadSpiFpga(const std::vector<uint8_t>& data,
                                              TransferResult* _aidl_return) {
    Arguments args(mCore, "wReadSpiFpga");
    core::InputView<uint8_t> sent = args.take(Bytes{}, data, "data");
    if (args.refused()) return args.refusal();
    *_aidl_return = toAidl(mCore.wReadSpiFpga(sent));
    return ScopedAStatus::ok();
}

ScopedAStatus VeskDeviceManager::readSpiFpga(int32_t size, TransferResult* _aidl_return) {
    Arguments args(mCore, "readSpiFpga");
    uint32_t wanted = args.take(Size{}, size, "size");
    if (args.refused()) return args.refusal();
    *_aidl_return = toAidl(mCore.readSpiFpga(static_cast<int32_t>(wanted)));
    return ScopedAStatus::ok();
}

ScopedAStatus VeskDeviceManager::getVeskLogConfigure(LogConfigureResult* _aidl_return) {
    *_aidl_return = toAidl(mCore.getVeskLogConfigure());
    return ScopedAStatus::ok();
}

ScopedAStatus VeskDeviceManager::getRtcBootTime(std::vector<int32_t>* _aidl_return) {
    *_aidl_return = toAidl(mCore.getRtcBootTime());
    return ScopedAStatus::ok();
}

ScopedAStatus VeskDeviceManager::getRtcWakeTime(std::vector<int32_t>* _aidl_return) {
    *_aidl_return = toAidl(mCore.getRtcWakeTime());
    return ScopedAStatus::ok();
}

ScopedAStatus VeskDeviceManager::getEdidFromDefined(int32_t index, int32_t width, int32_t height,
                                                    float refresh,
                                                    std::vector<uint8_t>* _aidl_return) {
    Arguments args(mCore, "getEdidFromDefined");
    uint8_t i = args.take(Uint8{}, index, "index");
    uint16_t w = args.take(Uint16{}, width, "width");
    uint16_t h = args.take(Uint16{}, height, "height");
    if (args.refused()) return args.refusal();
    *_aidl_return = mCore.getEdidFromDefined(i, w, h, refresh);
    return ScopedAStatus::ok();
}

ScopedAStatus VeskDeviceManager::getEdidByModel(int32_t width, int32_t height, float refresh,
                                                std::vector<uint8_t>* _aidl_return) {
    Arguments args(mCore, "getEdidByModel");
    uint16_t w = args.take(Uint16{}, width, "width");
    uint16_t h = args.take(Uint16{}, height, "height");
    if (args.refused()) return args.refusal();
    *_aidl_return = mCore.getEdidByModel(w, h, refresh);
    return ScopedAStatus::ok();
}

ScopedAStatus VeskDeviceManager::getResolutionByEdid(const std::vector<uint8_t>& edid,
                                                     VeskEffeResolution* _aidl_return) {
    Arguments args(mCore, "getResolutionByEdid");
    core::InputView<uint8_t> bytes = args.take(Bytes{}, edid, "edid");
    if (args.refused()) return args.refusal();
    *_aidl_return = toAidl(mCore.getResolutionByEdid(bytes));
    return ScopedAStatus::ok();
}

}  // namespace aidl::vesk::hardware::veskdevicemanager
