/*
 * Data blocks (defined, screen, FPGA program, named, their check) and the FPGA's load, firmware
 * update and SPI calls.
 */
#include <unistd.h>
#include <vesksdk.h>

#include "BoardCount.h"
#include "BoardInput.h"
#include "ServiceTrace.h"
#include "TraceLines.h"
#include "VeskDeviceManager.h"
#include "VeskPlatform.h"

namespace vesk::hardware::veskdevicemanager::implementation {
namespace {

bool blockExists(const hidl_string& path) {
    return access(vesk::platform::devicePath(path.c_str()).c_str(), F_OK) == 0;
}

}  // namespace

Return<int32_t> VeskDeviceManager::writeBlockDataDefined(const hidl_vec<uint8_t>& data,
                                                         uint32_t offset) {
    trace("writeBlockDataDefined", VESK_TRACE_LINE("writeBlockDataDefined"));
    return bi_block_write_defined(offset, data.data(), data.size());
}

Return<void> VeskDeviceManager::readBlockDataDefined(uint32_t length, uint32_t offset,
                                                     readBlockDataDefined_cb _hidl_cb) {
    vesk::log::debug(kTag, "%s %d length = %u offset = %u\n", "readBlockDataDefined",
                     VESK_TRACE_LINE("readBlockDataDefined"), length, offset);
    hidl_vec<uint8_t> data(length);
    if (bi_block_read_defined(offset, data.data(), length) < 0) {
        vesk::log::error(kTag, "%s: bi_block_read_defined failed\n", "readBlockDataDefined");
        data.resize(0);
    }
    _hidl_cb(data);
    return Void();
}

Return<int32_t> VeskDeviceManager::writeBlockDataScreen(const hidl_vec<uint8_t>& data,
                                                        uint32_t offset) {
    trace("writeBlockDataScreen", VESK_TRACE_LINE("writeBlockDataScreen"));
    return bi_block_write_screen(offset, data.data(), data.size());
}

Return<void> VeskDeviceManager::readBlockDataScreen(uint32_t length, uint32_t offset,
                                                    readBlockDataScreen_cb _hidl_cb) {
    vesk::log::debug(kTag, "%s %d length = %u offset = %u\n", "readBlockDataScreen",
                     VESK_TRACE_LINE("readBlockDataScreen"), length, offset);
    hidl_vec<uint8_t> data(length);
    int ret = bi_block_read_screen(offset, data.data(), length);
    if (ret < 0) {
        vesk::log::error(kTag, "%s: bi_block_read_screen failed. ret = %d\n", "readBlockDataScreen",
                         ret);
        data.resize(0);
    }
    _hidl_cb(data);
    return Void();
}

Return<int32_t> VeskDeviceManager::loadFPGAProgram() {
    trace("loadFPGAProgram", VESK_TRACE_LINE("loadFPGAProgram"));
    return bi_fpga_load_program();
}

Return<int32_t> VeskDeviceManager::loadFPGAParamBlockData() {
    trace("loadFPGAParamBlockData", VESK_TRACE_LINE("loadFPGAParamBlockData"));
    return bi_fpga_load_parameter();
}

// The board receives `length`, not the vector's size: kept as the FPGA tools use it.
Return<int32_t> VeskDeviceManager::setFPGAProgramBlockData(const hidl_vec<uint8_t>& data,
                                                           uint32_t length, uint32_t offset) {
    trace("setFPGAProgramBlockData", VESK_TRACE_LINE("setFPGAProgramBlockData"));
    // The board reads `length` bytes: past a shorter vector it reads zeros.
    return bi_block_write_fpga_program(offset, BoardInput<uint8_t>(data, length).data(), length);
}

Return<void> VeskDeviceManager::getFPGAProgramBlockData(uint32_t length, uint32_t offset,
                                                        getFPGAProgramBlockData_cb _hidl_cb) {
    trace("getFPGAProgramBlockData", VESK_TRACE_LINE("getFPGAProgramBlockData"));
    hidl_vec<uint8_t> data(length);
    int ret = bi_block_read_fpga_program(offset, data.data(), length);
    if (ret < 0) {
        vesk::log::error(kTag, "%s: bi_block_read_fpga_program failed. ret = %d\n",
                         "getFPGAProgramBlockData", ret);
        data.resize(0);
    }
    _hidl_cb(data);
    return Void();
}

// `length` is not used: the vector's size is what the board receives. A missing path answers 0.
Return<int32_t> VeskDeviceManager::writeBlockData(const hidl_string& path, uint32_t offset,
                                                  uint32_t /* length */,
                                                  const hidl_vec<uint8_t>& data) {
    vesk::log::debug(kTag, "%s %d path = %s\n", "writeBlockData", VESK_TRACE_LINE("writeBlockData"),
                     path.c_str());
    if (!blockExists(path)) {
        vesk::log::error(kTag, "%s: %s not exist\n", "writeBlockData", path.c_str());
        return 0;
    }
    vesk::log::debug(kTag, "%s: %s exist\n", "writeBlockData", path.c_str());
    int ret = bi_block_write_data(path.c_str(), offset, data.data(), data.size());
    if (ret < 0) {
        vesk::log::error(kTag, "%s: bi_block_write_data(%s) failed\n", "writeBlockData",
                         path.c_str());
    }
    return ret;
}

Return<void> VeskDeviceManager::readBlockData(const hidl_string& path, uint32_t offset,
                                              uint32_t length, readBlockData_cb _hidl_cb) {
    vesk::log::debug(kTag, "%s %d path = %s\n", "readBlockData", VESK_TRACE_LINE("readBlockData"),
                     path.c_str());
    hidl_vec<uint8_t> data;
    if (!blockExists(path)) {
        vesk::log::error(kTag, "%s: %s not exist\n", "readBlockData", path.c_str());
    } else {
        vesk::log::debug(kTag, "%s: %s exist\n", "readBlockData", path.c_str());
        data.resize(length);
        int ret = bi_block_read_data(path.c_str(), offset, data.data(), length);
        if (ret < 0) {
            vesk::log::error(kTag, "%s: bi_block_read_data failed. ret = %d\n", "readBlockData",
                             ret);
            data.resize(0);
        }
    }
    _hidl_cb(data);
    return Void();
}

Return<int32_t> VeskDeviceManager::writeSpiFpga(const hidl_vec<uint8_t>& data) {
    return bi_fpga_spi_write(data.data(), data.size());
}

// Full duplex in one buffer. A failed exchange hands back the whole buffer as the board left
// it; the client looks at `ret`.
Return<void> VeskDeviceManager::wReadSpiFpga(const hidl_vec<uint8_t>& data,
                                             wReadSpiFpga_cb _hidl_cb) {
    hidl_vec<uint8_t> buffer(data);
    int ret = bi_fpga_spi_write_read(buffer.data(), buffer.size());
    if (ret >= 0 && static_cast<size_t>(ret) < buffer.size()) buffer.resize(ret);
    _hidl_cb(ret, buffer);
    return Void();
}

// A negative size is not caught here: the vector's own size check ends the process.
Return<void> VeskDeviceManager::readSpiFpga(int32_t size, readSpiFpga_cb _hidl_cb) {
    hidl_vec<uint8_t> buffer;
    buffer.resize(vectorSizeOf(size));
    int ret = bi_fpga_spi_read(buffer.data(), size);
    if (ret >= 0 && ret < size) buffer.resize(ret);
    _hidl_cb(ret, buffer);
    return Void();
}

Return<int32_t> VeskDeviceManager::fpgaFirmwareUpdate(const hidl_string& path) {
    trace("fpgaFirmwareUpdate", VESK_TRACE_LINE("fpgaFirmwareUpdate"));
    return bi_fpga_firmware_update(path.c_str());
}

Return<int32_t> VeskDeviceManager::checkBlock(const hidl_string& path) {
    trace("checkBlock", VESK_TRACE_LINE("checkBlock"));
    return bi_block_check(path.c_str());
}

}  // namespace vesk::hardware::veskdevicemanager::implementation
