// Persistent data blocks (defined, screen, FPGA program, named by path) and the FPGA's SPI link.
// Each area is kBlockAreaSize bytes; an access that would pass its end is refused whole.
#include <algorithm>
#include <cstring>

#include "SimMacros.h"
#include "vesksdk.h"

namespace vesk::sim {
namespace {

constexpr int kOutOfRange = -22;

bool fits(unsigned int offset, unsigned int count) {
    return static_cast<std::size_t>(offset) + count <= kBlockAreaSize;
}

// Writes return the bytes written, reads the bytes read.
int writeArea(std::vector<uint8_t>& area, unsigned int offset, const unsigned char* bytes,
              unsigned int count) {
    if ((!bytes && count > 0) || !fits(offset, count)) return kOutOfRange;
    std::copy_n(bytes, count, area.begin() + offset);
    return static_cast<int>(count);
}

int readArea(const std::vector<uint8_t>& area, unsigned int offset, unsigned char* buffer,
             unsigned int length) {
    if ((!buffer && length > 0) || !fits(offset, length)) return kOutOfRange;
    std::copy_n(area.begin() + offset, length, buffer);
    return static_cast<int>(length);
}

template <class Area>
int writeTo(Area area, unsigned int offset, const unsigned char* bytes, unsigned int count) {
    return board().with(
        [&](BoardData& data) { return writeArea(area(data), offset, bytes, count); });
}

template <class Area>
int readFrom(Area area, unsigned int offset, unsigned char* buffer, unsigned int length) {
    return board().with(
        [&](BoardData& data) { return readArea(area(data), offset, buffer, length); });
}

std::vector<uint8_t>& defined(BoardData& data) {
    return data.definedArea;
}
std::vector<uint8_t>& screen(BoardData& data) {
    return data.screenArea;
}
std::vector<uint8_t>& fpgaProgram(BoardData& data) {
    return data.fpgaProgram;
}

}  // namespace
}  // namespace vesk::sim

using vesk::sim::BoardData;
using vesk::sim::inputBytes;
using vesk::sim::outputBuffer;
using vesk::sim::SimCall;
using vesk::sim::text;

#define VESK_SIM_BLOCK_AREA(write, read, area)                                                \
    int write(unsigned int offset, const unsigned char* data, unsigned int count) {           \
        return SimCall(#write, {offset, inputBytes(data, count), count}).run([&] {            \
            return vesk::sim::writeTo(vesk::sim::area, offset, data, count);                  \
        });                                                                                   \
    }                                                                                         \
    int read(unsigned int offset, unsigned char* buffer, unsigned int length) {               \
        return SimCall(#read, {offset, outputBuffer(), length}).out(buffer, length).run([&] { \
            return vesk::sim::readFrom(vesk::sim::area, offset, buffer, length);              \
        });                                                                                   \
    }

VESK_SIM_BLOCK_AREA(bi_block_write_defined, bi_block_read_defined, defined)
VESK_SIM_BLOCK_AREA(bi_block_write_screen, bi_block_read_screen, screen)
VESK_SIM_BLOCK_AREA(bi_block_write_fpga_program, bi_block_read_fpga_program, fpgaProgram)

// A named block comes into being, zero-filled, at its first write.
int bi_block_write_data(const char* path, unsigned int offset, const unsigned char* data,
                        unsigned int count) {
    return SimCall("bi_block_write_data", {text(path), offset, inputBytes(data, count), count})
        .run([&] {
            if (!path) return -1;
            return vesk::sim::board().with([&](BoardData& board) {
                std::vector<uint8_t>& block = board.namedBlocks[path];
                block.resize(vesk::sim::kBlockAreaSize);
                return vesk::sim::writeArea(block, offset, data, count);
            });
        });
}

// A named block never written reads as zeros.
int bi_block_read_data(const char* path, unsigned int offset, unsigned char* buffer,
                       unsigned int length) {
    return SimCall("bi_block_read_data", {text(path), offset, outputBuffer(), length})
        .out(buffer, length)
        .run([&] {
            if (!path) return -1;
            return vesk::sim::board().with([&](BoardData& board) {
                auto found = board.namedBlocks.find(path);
                if (found != board.namedBlocks.end()) {
                    return vesk::sim::readArea(found->second, offset, buffer, length);
                }
                static const std::vector<uint8_t> kBlank(vesk::sim::kBlockAreaSize);
                return vesk::sim::readArea(kBlank, offset, buffer, length);
            });
        });
}

// 0 for a named block that has been written, -1 otherwise.
int bi_block_check(const char* path) {
    return SimCall("bi_block_check", {text(path)}).run([&] {
        if (!path) return -1;
        return vesk::sim::board().with(
            [&](BoardData& board) { return board.namedBlocks.count(path) ? 0 : -1; });
    });
}

VESK_SIM_ACTION(bi_fpga_load_program, 0)
VESK_SIM_ACTION(bi_fpga_load_parameter, 0)

int bi_fpga_spi_write(const unsigned char* data, unsigned int count) {
    return SimCall("bi_fpga_spi_write", {inputBytes(data, count), count}).run([&] {
        return !data && count > 0 ? -1 : static_cast<int>(count);
    });
}

// The FPGA echoes what it is sent: the buffer keeps its bytes and the whole count comes back.
int bi_fpga_spi_write_read(unsigned char* buffer, unsigned int count) {
    return SimCall("bi_fpga_spi_write_read", {inputBytes(buffer, count), count})
        .out(buffer, count)
        .run([&] { return !buffer && count > 0 ? -1 : static_cast<int>(count); });
}

// Idle FPGA: reads zeros.
int bi_fpga_spi_read(unsigned char* buffer, int size) {
    std::size_t capacity = size > 0 ? static_cast<std::size_t>(size) : 0;
    return SimCall("bi_fpga_spi_read", {outputBuffer(), size}).out(buffer, capacity).run([&] {
        if (size < 0 || (!buffer && size > 0)) return -1;
        if (capacity > 0) memset(buffer, 0, capacity);
        return size;
    });
}

int bi_fpga_firmware_update(const char* path) {
    return SimCall("bi_fpga_firmware_update", {text(path)}).run([&] {
        return path && *path ? 0 : -1;
    });
}
