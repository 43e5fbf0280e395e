/*
 * The simulated monitor's EDID: a 128-byte EDID 1.4 base block whose preferred (first
 * detailed) timing is the reduced-blanking CVT timing of the mode asked for, and one CTA-861
 * extension block; and a reader of the preferred timing of any EDID.
 */
#pragma once

#include <cstdint>

#include "vesksdk_records.h"

namespace vesk::sim {

// Who the monitor says it is.
struct EdidIdentity {
    uint16_t productCode;
    const char* name;  // at most 13 characters
};

// Fills 256 bytes for `width` x `height` at `refresh` Hz (rounded to a whole rate of 1 to 240);
// false, with `edid` untouched, when the mode's timing does not fit a detailed timing
// descriptor (sizes and blanking up to 4095, a pixel clock up to 655.35 MHz).
bool writeEdid(uint8_t* edid, const EdidIdentity& identity, unsigned width, unsigned height,
               float refresh);

// The first detailed timing of `edid` (the base block's four descriptors, then those of a
// CTA-861 extension), with the whole-Hz rate; false when the header or a checksum is wrong or
// there is no detailed timing.
bool readPreferredTiming(const uint8_t* edid, vesk_resolution_record& timing);

}  // namespace vesk::sim
