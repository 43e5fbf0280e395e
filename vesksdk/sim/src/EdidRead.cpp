// The preferred timing of an EDID that a client hands in: the first detailed timing descriptor,
// found where EDID 1.3/1.4 and CTA-861 put them.
#include <cmath>
#include <cstring>

#include "Edid.h"
#include "EdidLayout.h"

namespace vesk::sim {
namespace {

// A descriptor with a pixel clock is a detailed timing; display descriptors start with 0.
bool isDetailedTiming(const uint8_t* d) {
    return d[0] != 0 || d[1] != 0;
}

const uint8_t* firstDetailedTiming(const uint8_t* edid) {
    for (std::size_t i = 0; i < 4; ++i) {
        const uint8_t* d = edid + kFirstDescriptor + i * kDescriptorSize;
        if (isDetailedTiming(d)) return d;
    }
    const uint8_t* extension = edid + kEdidBlockSize;
    if (edid[kExtensionCount] == 0 || extension[0] != 0x02) return nullptr;
    // A CTA block's detailed timings start at the offset in its byte 2.
    const std::size_t start = extension[2];
    if (start < 4 || start + kDescriptorSize >= kEdidBlockSize) return nullptr;
    return isDetailedTiming(extension + start) ? extension + start : nullptr;
}

}  // namespace

bool readPreferredTiming(const uint8_t* edid, vesk_resolution_record& result) {
    if (memcmp(edid, kEdidHeader, sizeof(kEdidHeader)) != 0 || !checksumValid(edid)) return false;
    if (edid[kExtensionCount] != 0 && !checksumValid(edid + kEdidBlockSize)) return false;
    const uint8_t* d = firstDetailedTiming(edid);
    if (!d) return false;
    const unsigned clock = d[0] | d[1] << 8;  // 10 kHz
    const unsigned width = d[2] | (d[4] >> 4) << 8;
    const unsigned hBlank = d[3] | (d[4] & 0x0f) << 8;
    unsigned height = d[5] | (d[7] >> 4) << 8;
    const unsigned vBlank = d[6] | (d[7] & 0x0f) << 8;
    const bool interlaced = d[17] & 0x80;
    // An interlaced descriptor gives the lines of one field; its rate is the field rate.
    const double fieldLines = height + vBlank + (interlaced ? 0.5 : 0.0);
    if (width == 0 || height == 0) return false;
    if (interlaced) height *= 2;
    result.width = width;
    result.height = height;
    result.fps =
            static_cast<uint32_t>(std::lround(clock * 10000.0 / ((width + hBlank) * fieldLines)));
    result.status = 1;
    return true;
}

}  // namespace vesk::sim
