/*
 * The methods with a result callback: the core's result, converted, goes to the callback once,
 * after every line the core writes and before the method returns. A vector of the core's is lent
 * to the callback, not copied.
 */
#include <cstdint>
#include <vector>

#include "BoardCount.h"
#include "HidlConversions.h"
#include "VeskDeviceManager.h"

namespace vesk::hardware::veskdevicemanager::implementation {
namespace {

// A vector of the core's to the callback, lent for the callback's run.
template <typename T, typename Callback>
void lendTo(const Callback& callback, std::vector<T> items) {
    callback(lend(items));
}

// A serial read: the board's signed count reaches the client as the interface's uint32_t, so a
// negative count arrives as a large one beside an empty vector.
template <typename Callback>
void deliverRead(core::ReadResult result, const Callback& callback) {
    callback(lend(result.data), static_cast<uint32_t>(result.bytesRead));
}

}  // namespace

Return<void> VeskDeviceManager::getProductInfo(getProductInfo_cb _hidl_cb) {
    _hidl_cb(toHidl(mCore.getProductInfo()));
    return Void();
}

#define VESK_SERIAL_READS(suffix)                                                           \
    Return<void> VeskDeviceManager::readBlockingSerialPort##suffix(                         \
            uint32_t data_size, uint32_t timeout_ms,                                        \
            readBlockingSerialPort##suffix##_cb _hidl_cb) {                                 \
        deliverRead(mCore.readBlockingSerialPort##suffix(data_size, timeout_ms), _hidl_cb); \
        return Void();                                                                      \
    }                                                                                       \
    Return<void> VeskDeviceManager::readNonBlockingSerialPort##suffix(                      \
            uint32_t data_size, readNonBlockingSerialPort##suffix##_cb _hidl_cb) {          \
        deliverRead(mCore.readNonBlockingSerialPort##suffix(data_size), _hidl_cb);          \
        return Void();                                                                      \
    }

VESK_SERIAL_READS(485)
VESK_SERIAL_READS(485_2)
VESK_SERIAL_READS(232)
VESK_SERIAL_READS(Lora)
VESK_SERIAL_READS(HDMI)
VESK_SERIAL_READS(TTL)
VESK_SERIAL_READS(TTL_2)

#undef VESK_SERIAL_READS

Return<void> VeskDeviceManager::getWatchDogCfg(getWatchDogCfg_cb _hidl_cb) {
    _hidl_cb(toHidl(mCore.getWatchDogCfg()));
    return Void();
}

Return<void> VeskDeviceManager::readBlockDataDefined(uint32_t length, uint32_t offset,
                                                     readBlockDataDefined_cb _hidl_cb) {
    lendTo(_hidl_cb, mCore.readBlockDataDefined(length, offset));
    return Void();
}

Return<void> VeskDeviceManager::readBlockDataScreen(uint32_t length, uint32_t offset,
                                                    readBlockDataScreen_cb _hidl_cb) {
    lendTo(_hidl_cb, mCore.readBlockDataScreen(length, offset));
    return Void();
}

Return<void> VeskDeviceManager::getFPGAProgramBlockData(uint32_t length, uint32_t offset,
                                                        getFPGAProgramBlockData_cb _hidl_cb) {
    lendTo(_hidl_cb, mCore.getFPGAProgramBlockData(length, offset));
    return Void();
}

Return<void> VeskDeviceManager::readBlockData(const hidl_string& path, uint32_t offset,
                                              uint32_t length, readBlockData_cb _hidl_cb) {
    lendTo(_hidl_cb, mCore.readBlockData(path, offset, length));
    return Void();
}

Return<void> VeskDeviceManager::getProcessInfo(const hidl_string& name, getProcessInfo_cb _hidl_cb) {
    _hidl_cb(toHidl(mCore.getProcessInfo(name)));
    return Void();
}

Return<void> VeskDeviceManager::getUsbList(getUsbList_cb _hidl_cb) {
    _hidl_cb(toHidl(mCore.getUsbList()));
    return Void();
}

Return<void> VeskDeviceManager::getCpuStatus(getCpuStatus_cb _hidl_cb) {
    _hidl_cb(toHidl(mCore.getCpuStatus()));
    return Void();
}

Return<void> VeskDeviceManager::getVndkVersion(getVndkVersion_cb _hidl_cb) {
    _hidl_cb(mCore.getVndkVersion());
    return Void();
}

Return<void> VeskDeviceManager::calculateResolutionParameters(
        uint32_t width, uint32_t height, uint32_t fps, calculateResolutionParameters_cb _hidl_cb) {
    _hidl_cb(toHidl(mCore.calculateResolutionParameters(width, height, fps)));
    return Void();
}

Return<void> VeskDeviceManager::getResolutionParameters(getResolutionParameters_cb _hidl_cb) {
    _hidl_cb(toHidl(mCore.getResolutionParameters()));
    return Void();
}

// A negative count of the board's ends the process, after the core's line that reports it.
Return<void> VeskDeviceManager::getResolutionParametersList(getResolutionParametersList_cb _hidl_cb) {
    core::ResolutionListResult result = mCore.getResolutionParametersList();
    endIfNegative(result.count);
    _hidl_cb(toHidl(result.list));
    return Void();
}

Return<void> VeskDeviceManager::wReadSpiFpga(const hidl_vec<uint8_t>& data,
                                             wReadSpiFpga_cb _hidl_cb) {
    core::TransferResult result = mCore.wReadSpiFpga(viewOf(data));
    _hidl_cb(result.ret, lend(result.data));
    return Void();
}

// A negative size ends the process here, before the core is called.
Return<void> VeskDeviceManager::readSpiFpga(int32_t size, readSpiFpga_cb _hidl_cb) {
    endIfNegative(size);
    core::TransferResult result = mCore.readSpiFpga(size);
    _hidl_cb(result.ret, lend(result.data));
    return Void();
}

Return<void> VeskDeviceManager::getVeskLogConfigure(getVeskLogConfigure_cb _hidl_cb) {
    core::LogConfigureResult result = mCore.getVeskLogConfigure();
    _hidl_cb(result.ret, toHidl(result.info));
    return Void();
}

Return<void> VeskDeviceManager::getRtcBootTime(getRtcBootTime_cb _hidl_cb) {
    lendTo(_hidl_cb, mCore.getRtcBootTime());
    return Void();
}

Return<void> VeskDeviceManager::getRtcWakeTime(getRtcWakeTime_cb _hidl_cb) {
    lendTo(_hidl_cb, mCore.getRtcWakeTime());
    return Void();
}

Return<void> VeskDeviceManager::getEdidFromDefined(uint8_t index, uint16_t width, uint16_t height,
                                                   float refresh, getEdidFromDefined_cb _hidl_cb) {
    lendTo(_hidl_cb, mCore.getEdidFromDefined(index, width, height, refresh));
    return Void();
}

Return<void> VeskDeviceManager::getEdidByModel(uint16_t width, uint16_t height, float refresh,
                                               getEdidByModel_cb _hidl_cb) {
    lendTo(_hidl_cb, mCore.getEdidByModel(width, height, refresh));
    return Void();
}

Return<void> VeskDeviceManager::getResolutionByEdid(const hidl_vec<uint8_t>& edid,
                                                    getResolutionByEdid_cb _hidl_cb) {
    _hidl_cb(toHidl(mCore.getResolutionByEdid(viewOf(edid))));
    return Void();
}

}  // namespace vesk::hardware::veskdevicemanager::implementation
