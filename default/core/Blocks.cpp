/*
 * Data blocks (defined, screen, FPGA program, named, their check) and the FPGA's load, firmware
 * update and SPI calls.
 */
#include <android/log.h>
#include <unistd.h>
#include <vesksdk.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "BoardInput.h"
#include "DeviceManagerCore.h"
#include "ServiceTrace.h"
#include "TraceLines.h"
#include "VeskPlatform.h"

namespace vesk::hardware::veskdevicemanager::core {

using implementation::BoardInput;
using implementation::kTag;
using implementation::trace;

namespace {

bool blockExists(const std::string& path) {
    return access(vesk::platform::devicePath(path.c_str()).c_str(), F_OK) == 0;
}

}  // namespace

int32_t DeviceManagerCore::writeBlockDataDefined(InputView<uint8_t> data, uint32_t offset) {
    trace("writeBlockDataDefined", VESK_TRACE_LINE("writeBlockDataDefined"));
    return bi_block_write_defined(offset, data.data(), data.size());
}

std::vector<uint8_t> DeviceManagerCore::readBlockDataDefined(uint32_t length, uint32_t offset) {
    vesk::log::debug(kTag, "%s %d length = %u offset = %u\n", "readBlockDataDefined",
                     VESK_TRACE_LINE("readBlockDataDefined"), length, offset);
    std::vector<uint8_t> data(length);
    if (bi_block_read_defined(offset, data.data(), length) < 0) {
        vesk::log::error(kTag, "%s: bi_block_read_defined failed\n", "readBlockDataDefined");
        data.clear();
    }
    return data;
}

int32_t DeviceManagerCore::writeBlockDataScreen(InputView<uint8_t> data, uint32_t offset) {
    trace("writeBlockDataScreen", VESK_TRACE_LINE("writeBlockDataScreen"));
    return bi_block_write_screen(offset, data.data(), data.size());
}

std::vector<uint8_t> DeviceManagerCore::readBlockDataScreen(uint32_t length, uint32_t offset) {
    vesk::log::debug(kTag, "%s %d length = %u offset = %u\n", "readBlockDataScreen",
                     VESK_TRACE_LINE("readBlockDataScreen"), length, offset);
    std::vector<uint8_t> data(length);
    int ret = bi_block_read_screen(offset, data.data(), length);
    if (ret < 0) {
        vesk::log::error(kTag, "%s: bi_block_read_screen failed. ret = %d\n", "readBlockDataScreen",
                         ret);
        data.clear();
    }
    return data;
}

int32_t DeviceManagerCore::loadFPGAProgram() {
    trace("loadFPGAProgram", VESK_TRACE_LINE("loadFPGAProgram"));
    return bi_fpga_load_program();
}

int32_t DeviceManagerCore::loadFPGAParamBlockData() {
    trace("loadFPGAParamBlockData", VESK_TRACE_LINE("loadFPGAParamBlockData"));
    return bi_fpga_load_parameter();
}

// The board receives `length`, not the vector's size: kept as the FPGA tools use it.
int32_t DeviceManagerCore::setFPGAProgramBlockData(InputView<uint8_t> data, uint32_t length,
                                                   uint32_t offset) {
    trace("setFPGAProgramBlockData", VESK_TRACE_LINE("setFPGAProgramBlockData"));
    // The board reads `length` bytes: past a shorter vector it reads zeros.
    return bi_block_write_fpga_program(offset, BoardInput<uint8_t>(data, length).data(), length);
}

std::vector<uint8_t> DeviceManagerCore::getFPGAProgramBlockData(uint32_t length, uint32_t offset) {
    trace("getFPGAProgramBlockData", VESK_TRACE_LINE("getFPGAProgramBlockData"));
    std::vector<uint8_t> data(length);
    int ret = bi_block_read_fpga_program(offset, data.data(), length);
    if (ret < 0) {
        vesk::log::error(kTag, "%s: bi_block_read_fpga_program failed. ret = %d\n",
                         "getFPGAProgramBlockData", ret);
        data.clear();
    }
    return data;
}

// `length` is not used: the vector's size is what the board receives. A missing path answers 0.
int32_t DeviceManagerCore::writeBlockData(const std::string& path, uint32_t offset,
                                          uint32_t /* length */, InputView<uint8_t> data) {
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

std::vector<uint8_t> DeviceManagerCore::readBlockData(const std::string& path, uint32_t offset,
                                                      uint32_t length) {
    vesk::log::debug(kTag, "%s %d path = %s\n", "readBlockData", VESK_TRACE_LINE("readBlockData"),
                     path.c_str());
    std::vector<uint8_t> data;
    if (!blockExists(path)) {
        vesk::log::error(kTag, "%s: %s not exist\n", "readBlockData", path.c_str());
    } else {
        vesk::log::debug(kTag, "%s: %s exist\n", "readBlockData", path.c_str());
        data.resize(length);
        int ret = bi_block_read_data(path.c_str(), offset, data.data(), length);
        if (ret < 0) {
            vesk::log::error(kTag, "%s: bi_block_read_data failed. ret = %d\n", "readBlockData",
                             ret);
            data.clear();
        }
    }
    return data;
}

int32_t DeviceManagerCore::writeSpiFpga(InputView<uint8_t> data) {
    return bi_fpga_spi_write(data.data(), data.size());
}

// Full duplex in one buffer. A failed exchange hands back the whole buffer as the board left
// it; the client looks at `ret`.
TransferResult DeviceManagerCore::wReadSpiFpga(InputView<uint8_t> data) {
    std::vector<uint8_t> buffer(data.begin(), data.end());
    int ret = bi_fpga_spi_write_read(buffer.data(), buffer.size());
    if (ret >= 0 && static_cast<size_t>(ret) < buffer.size()) buffer.resize(ret);
    return {ret, std::move(buffer)};
}

// A negative size never reaches the board: the HIDL facade ends the process before it calls here
// (through its vector's own size check), and any other front end refuses it
// (spiReadSizeRefusal); one that does not ends the process here.
TransferResult DeviceManagerCore::readSpiFpga(int32_t size) {
    if (size < 0) {
        __android_log_assert(nullptr, kTag, "readSpiFpga: the size %d is negative", size);
    }
    std::vector<uint8_t> buffer(size);
    int ret = bi_fpga_spi_read(buffer.data(), size);
    if (ret >= 0 && ret < size) buffer.resize(ret);
    return {ret, std::move(buffer)};
}

std::optional<std::string> DeviceManagerCore::spiReadSizeRefusal(int32_t size) const {
    if (size >= 0) return std::nullopt;
    return "size: " + std::to_string(size) + ", a size cannot be negative";
}

int32_t DeviceManagerCore::fpgaFirmwareUpdate(const std::string& path) {
    trace("fpgaFirmwareUpdate", VESK_TRACE_LINE("fpgaFirmwareUpdate"));
    return bi_fpga_firmware_update(path.c_str());
}

int32_t DeviceManagerCore::checkBlock(const std::string& path) {
    trace("checkBlock", VESK_TRACE_LINE("checkBlock"));
    return bi_block_check(path.c_str());
}

}  // namespace vesk::hardware::veskdevicemanager::core
