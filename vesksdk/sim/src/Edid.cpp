#include "Edid.h"

#include <libxcvt/libxcvt.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "EdidLayout.h"

namespace vesk::sim {
namespace {

constexpr unsigned kMaxRate = 240;

// What a detailed timing descriptor and the range limits need of a mode.
struct Timing {
    unsigned h_active = 0, h_blank = 0, h_front_porch = 0, h_sync = 0, h_total = 0;
    unsigned v_active = 0, v_blank = 0, v_front_porch = 0, v_sync = 0;
    bool h_sync_polarity = false, v_sync_polarity = false;
    double pix_clock = 0;  // MHz
    double v_freq = 0;     // Hz, to the mHz
};

// The reduced-blanking CVT timing of the mode, its blanking and sync as libxcvt works them out
// (false when it cannot).
// A width that is not a whole number of 8-pixel cells takes the timing of the next whole number
// of cells, the extra pixels going to the front porch, so that the clock, the totals and the
// rate stay those of a CVT timing.
bool reducedBlankingTiming(unsigned width, unsigned height, unsigned rate, Timing& timing) {
    const unsigned cells = (width + 7) / 8 * 8;
    std::unique_ptr<libxcvt_mode_info, void (*)(void*)> mode(
            libxcvt_gen_mode_info(static_cast<int>(cells), static_cast<int>(height),
                                  static_cast<float>(rate), true, false),
            free);
    if (!mode || mode->htotal == 0 || mode->vtotal == 0) return false;
    unsigned hSyncStart = mode->hsync_start, hSyncEnd = mode->hsync_end;
    if (mode->hdisplay != cells) {
        // libxcvt names 1360 x 768 as the 1366-wide panels it stands for, a pixel earlier to
        // its sync; the monitor keeps the whole cells of the CVT timing.
        hSyncStart += 1;
        hSyncEnd += 1;
    }
    timing.h_active = cells;
    timing.h_total = mode->htotal;
    timing.h_blank = mode->htotal - cells;
    timing.h_front_porch = hSyncStart - cells;
    timing.h_sync = hSyncEnd - hSyncStart;
    timing.v_active = mode->vdisplay;
    timing.v_blank = mode->vtotal - mode->vdisplay;
    timing.v_front_porch = mode->vsync_start - mode->vdisplay;
    timing.v_sync = mode->vsync_end - mode->vsync_start;
    timing.h_sync_polarity = (mode->mode_flags & LIBXCVT_MODE_FLAG_HSYNC_POSITIVE) != 0;
    timing.v_sync_polarity = (mode->mode_flags & LIBXCVT_MODE_FLAG_VSYNC_POSITIVE) != 0;
    // libxcvt divides by an estimated line period for its clock; the published method takes
    // field rate x lines x pixels, rounded down to a whole 0.25 MHz.
    const uint64_t pixelsPerFrame = uint64_t(mode->htotal) * mode->vtotal;
    const uint64_t clockHz = uint64_t(rate) * pixelsPerFrame / 250000 * 250000;
    timing.pix_clock = clockHz / 1e6;
    timing.v_freq = std::round(double(clockHz) / double(pixelsPerFrame) * 1000) / 1000;

    const unsigned extra = cells - width;
    timing.h_active -= extra;
    timing.h_blank += extra;
    timing.h_front_porch += extra;
    return true;
}

bool fitsDescriptor(const Timing& t) {
    return t.h_active >= 1 && t.h_active <= 4095 && t.v_active >= 1 && t.v_active <= 4095 &&
           t.h_blank <= 4095 && t.v_blank <= 4095 && t.h_front_porch <= 1023 && t.h_sync <= 1023 &&
           t.v_front_porch <= 63 && t.v_sync <= 63 && t.pix_clock > 0 &&
           std::lround(t.pix_clock * 100) <= 65535;
}

// A believable pixel pitch: 96 pixels to the inch.
unsigned millimetres(unsigned pixels) {
    return static_cast<unsigned>(std::lround(pixels * 25.4 / 96));
}

void putDetailedTiming(uint8_t* d, const Timing& t) {
    const unsigned clock = static_cast<unsigned>(std::lround(t.pix_clock * 100));  // 10 kHz
    const unsigned hSize = millimetres(t.h_active), vSize = millimetres(t.v_active);
    d[0] = clock & 0xff;
    d[1] = clock >> 8;
    d[2] = t.h_active & 0xff;
    d[3] = t.h_blank & 0xff;
    d[4] = static_cast<uint8_t>((t.h_active >> 8) << 4 | t.h_blank >> 8);
    d[5] = t.v_active & 0xff;
    d[6] = t.v_blank & 0xff;
    d[7] = static_cast<uint8_t>((t.v_active >> 8) << 4 | t.v_blank >> 8);
    d[8] = t.h_front_porch & 0xff;
    d[9] = t.h_sync & 0xff;
    d[10] = static_cast<uint8_t>((t.v_front_porch & 0x0f) << 4 | (t.v_sync & 0x0f));
    d[11] = static_cast<uint8_t>((t.h_front_porch >> 8) << 6 | (t.h_sync >> 8) << 4 |
                                 (t.v_front_porch >> 4) << 2 | t.v_sync >> 4);
    d[12] = hSize & 0xff;
    d[13] = vSize & 0xff;
    d[14] = static_cast<uint8_t>((hSize >> 8) << 4 | vSize >> 8);
    // Digital separate sync with the timing's polarities.
    d[17] = static_cast<uint8_t>(0x18 | (t.v_sync_polarity ? 0x04 : 0) |
                                 (t.h_sync_polarity ? 0x02 : 0));
}

// A display descriptor holding text: the monitor name (0xfc) or serial number (0xff).
void putText(uint8_t* d, uint8_t tag, const char* text) {
    d[3] = tag;
    std::size_t length = strnlen(text, 13);
    memcpy(d + 5, text, length);
    if (length < 13) {
        d[5 + length] = '\n';
        memset(d + 6 + length, ' ', 12 - length);
    }
}

// A range field of the limits descriptor; rates above 255 take the descriptor's offset of 255.
uint8_t rangeByte(unsigned value, uint8_t& flags, uint8_t offsetFlag) {
    if (value <= 255) return static_cast<uint8_t>(value);
    flags |= offsetFlag;
    return static_cast<uint8_t>(value - 255);
}

// Range limits that hold the preferred timing and 640 x 480 at 60 Hz (the established timing
// and the CTA's VIC 1), within those of an ordinary monitor.
void putRangeLimits(uint8_t* d, const Timing& t) {
    const double lineKHz = t.pix_clock * 1000.0 / t.h_total;
    const unsigned vMin = std::min(56u, static_cast<unsigned>(std::floor(t.v_freq)));
    const unsigned vMax = std::max(75u, static_cast<unsigned>(std::ceil(t.v_freq)));
    const unsigned hMin = std::min(30u, static_cast<unsigned>(std::floor(lineKHz)));
    const unsigned hMax = std::max(83u, static_cast<unsigned>(std::ceil(lineKHz)));
    const unsigned clock10MHz = std::max(17u, static_cast<unsigned>(std::ceil(t.pix_clock / 10)));
    uint8_t flags = 0;
    d[3] = 0xfd;
    d[5] = rangeByte(vMin, flags, 0x01);
    d[6] = rangeByte(vMax, flags, 0x02);
    d[7] = rangeByte(hMin, flags, 0x04);
    d[8] = rangeByte(hMax, flags, 0x08);
    d[4] = flags;
    d[9] = static_cast<uint8_t>(clock10MHz);
    d[10] = 0x01;  // range limits only, no formula for other timings
    d[11] = '\n';
    memset(d + 12, ' ', 6);
}

// sRGB primaries and white point, 10-bit fractions of 1024.
void putSrgbChromaticity(uint8_t* base) {
    const unsigned rx = 655, ry = 338, gx = 307, gy = 614, bx = 154, by = 61, wx = 320, wy = 337;
    base[25] = static_cast<uint8_t>((rx & 3) << 6 | (ry & 3) << 4 | (gx & 3) << 2 | (gy & 3));
    base[26] = static_cast<uint8_t>((bx & 3) << 6 | (by & 3) << 4 | (wx & 3) << 2 | (wy & 3));
    const unsigned high[] = {rx, ry, gx, gy, bx, by, wx, wy};
    for (std::size_t i = 0; i < 8; ++i) base[27 + i] = static_cast<uint8_t>(high[i] >> 2);
}

void putBaseBlock(uint8_t* base, const EdidIdentity& identity, const Timing& t) {
    memcpy(base, kEdidHeader, sizeof(kEdidHeader));
    base[8] = 0x5a;  // manufacturer "VSK": three 5-bit letters, 22 19 11
    base[9] = 0x6b;
    base[10] = identity.productCode & 0xff;
    base[11] = identity.productCode >> 8;
    // Bytes 12-15 stay 0: the serial number is given as text, which tells the mode apart from
    // others of the same product.
    const unsigned serial = t.h_active * 10000u + t.v_active;
    base[16] = 12;  // week 12 of 2024
    base[17] = 2024 - 1990;
    base[18] = 1;  // EDID 1.4
    base[19] = 4;
    base[20] = 0xa0;  // digital, 8 bits per colour
    base[21] = static_cast<uint8_t>(std::lround(millimetres(t.h_active) / 10.0));
    base[22] = static_cast<uint8_t>(std::lround(millimetres(t.v_active) / 10.0));
    base[23] = 120;   // gamma 2.2
    base[24] = 0x06;  // RGB 4:4:4, sRGB, the preferred timing is the native mode
    putSrgbChromaticity(base);
    base[35] = 0x20;  // established 640 x 480 at 60 Hz
    for (std::size_t i = 38; i < kFirstDescriptor; ++i) base[i] = 0x01;  // no standard timings

    putDetailedTiming(base + kFirstDescriptor, t);
    putRangeLimits(base + kFirstDescriptor + kDescriptorSize, t);
    putText(base + kFirstDescriptor + 2 * kDescriptorSize, 0xfc, identity.name);
    char serialText[14];
    snprintf(serialText, sizeof(serialText), "VSK%08u", serial);
    putText(base + kFirstDescriptor + 3 * kDescriptorSize, 0xff, serialText);
    base[126] = 1;  // one extension block
    putChecksum(base);
}

void putCtaBlock(uint8_t* extension) {
    extension[0] = 0x02;  // CTA-861
    extension[1] = 0x03;
    const uint8_t dataBlocks[] = {
            0x41, 0x01,        // video: VIC 1, 640 x 480 at 60 Hz
            0xe2, 0x00, 0x4a,  // video capability: selectable RGB range, underscanned
    };
    memcpy(extension + 4, dataBlocks, sizeof(dataBlocks));
    extension[2] = 4 + sizeof(dataBlocks);  // no detailed timings after the data blocks
    extension[3] = 0x81;                    // underscanned; one native timing (the base block's)
    putChecksum(extension);
}

}  // namespace

bool writeEdid(uint8_t* edid, const EdidIdentity& identity, unsigned width, unsigned height,
               float refresh) {
    if (width == 0 || height == 0 || width > 4095 || height > 4095 ||
        !(refresh >= 0.5f && refresh < kMaxRate + 0.5f)) {
        return false;
    }
    Timing timing;
    if (!reducedBlankingTiming(width, height, static_cast<unsigned>(std::lround(refresh)), timing) ||
        !fitsDescriptor(timing)) {
        return false;
    }
    memset(edid, 0, VESK_EDID_SIZE);
    putBaseBlock(edid, identity, timing);
    putCtaBlock(edid + kEdidBlockSize);
    return true;
}

}  // namespace vesk::sim
