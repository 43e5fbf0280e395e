#include "Edid.h"

#include <cmath>
#include <cstring>

namespace vesk::sim {
namespace {

constexpr uint8_t kHeader[8] = {0x00, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0x00};
// Reduced blanking: fixed porches and sync widths, enough for any panel the board drives.
constexpr unsigned kHBlank = 160, kHFront = 48, kHSync = 32;
constexpr unsigned kVBlank = 30, kVFront = 3, kVSync = 5;
constexpr std::size_t kTimingOffset = 54;
constexpr std::size_t kBlockSize = 128;

void checksum(uint8_t* block) {
    unsigned sum = 0;
    for (std::size_t i = 0; i + 1 < kBlockSize; ++i) sum += block[i];
    block[kBlockSize - 1] = static_cast<uint8_t>(256 - sum % 256);
}

void putName(uint8_t* descriptor, const char* text) {
    descriptor[3] = 0xfc;
    std::size_t length = strlen(text);
    memcpy(descriptor + 5, text, length);
    if (length < 13) {
        descriptor[5 + length] = '\n';
        memset(descriptor + 6 + length, ' ', 12 - length);
    }
}

}  // namespace

bool writeEdid(uint8_t* edid, uint16_t productCode, unsigned width, unsigned height, float refresh) {
    if (width == 0 || height == 0 || width > 4095 || height > 4095 || !(refresh > 0)) {
        return false;
    }
    const unsigned htotal = width + kHBlank, vtotal = height + kVBlank;
    const double clock10kHz = std::round(double(htotal) * vtotal * refresh / 10000.0);
    if (clock10kHz > 65535) return false;

    memset(edid, 0, VESK_EDID_SIZE);
    uint8_t* base = edid;
    memcpy(base, kHeader, sizeof(kHeader));
    base[8] = 0x5a;  // manufacturer "VSK", three 5-bit letters
    base[9] = 0x6b;
    base[10] = productCode & 0xff;
    base[11] = productCode >> 8;
    base[16] = 1;   // week
    base[17] = 34;  // 2024
    base[18] = 1;   // EDID 1.4
    base[19] = 4;
    base[20] = 0x80;  // digital input
    base[21] = 60;    // 60 x 34 cm
    base[22] = 34;
    base[23] = 0x78;                                       // gamma 2.2
    base[24] = 0x0a;                                       // RGB, preferred timing is native
    base[35] = 0x20;                                       // established 640x480 at 60 Hz
    for (std::size_t i = 38; i < 54; ++i) base[i] = 0x01;  // no standard timings

    uint8_t* timing = base + kTimingOffset;
    const unsigned clock = static_cast<unsigned>(clock10kHz);
    timing[0] = clock & 0xff;
    timing[1] = clock >> 8;
    timing[2] = width & 0xff;
    timing[3] = kHBlank & 0xff;
    timing[4] = static_cast<uint8_t>((width >> 8) << 4 | kHBlank >> 8);
    timing[5] = height & 0xff;
    timing[6] = kVBlank & 0xff;
    timing[7] = static_cast<uint8_t>((height >> 8) << 4 | kVBlank >> 8);
    timing[8] = kHFront;
    timing[9] = kHSync;
    timing[10] = static_cast<uint8_t>(kVFront << 4 | kVSync);
    timing[12] = 0x58;  // 600 x 340 mm
    timing[13] = 0x54;
    timing[14] = 0x21;
    timing[17] = 0x1e;  // digital separate sync, both polarities positive

    putName(base + 72, "VESK SIM");
    uint8_t* limits = base + 90;
    limits[3] = 0xfd;
    limits[5] = 24;  // 24-75 Hz vertical, 15-160 kHz horizontal, up to 660 MHz
    limits[6] = 75;
    limits[7] = 15;
    limits[8] = 160;
    limits[9] = 66;
    limits[10] = 0x01;  // range limits only
    limits[11] = '\n';
    memset(limits + 12, ' ', 6);
    base[108 + 3] = 0x10;  // dummy descriptor
    base[126] = 1;         // one extension block
    checksum(base);

    uint8_t* extension = edid + kBlockSize;
    extension[0] = 0x02;  // CTA-861
    extension[1] = 0x03;
    const uint8_t dataBlocks[] = {
        0x41, 0x01,       // video: VIC 1, 640x480 at 60 Hz
        0xe2, 0x00, 0x4a  // video capability: selectable RGB range, underscanned
    };
    memcpy(extension + 4, dataBlocks, sizeof(dataBlocks));
    extension[2] = 4 + sizeof(dataBlocks);  // no detailed timings after the data blocks
    extension[3] = 0x81;  // underscanned; one native detailed timing (the base block's)
    checksum(extension);
    return true;
}

bool readPreferredTiming(const uint8_t* edid, vesk_resolution_record& result) {
    if (memcmp(edid, kHeader, sizeof(kHeader)) != 0) return false;
    const uint8_t* timing = edid + kTimingOffset;
    const unsigned clock = timing[0] | timing[1] << 8;
    if (clock == 0) return false;
    const unsigned width = timing[2] | (timing[4] >> 4) << 8;
    const unsigned hblank = timing[3] | (timing[4] & 0x0f) << 8;
    const unsigned height = timing[5] | (timing[7] >> 4) << 8;
    const unsigned vblank = timing[6] | (timing[7] & 0x0f) << 8;
    const double total = double(width + hblank) * (height + vblank);
    if (total == 0) return false;
    result.width = width;
    result.height = height;
    result.fps = static_cast<uint32_t>(std::lround(clock * 10000.0 / total));
    result.status = 1;
    return true;
}

}  // namespace vesk::sim
