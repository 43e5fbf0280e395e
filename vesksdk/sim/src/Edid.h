/*
 * A small EDID writer and reader: a base block whose first detailed timing is the mode
 * asked for, and one empty CTA extension block, both with valid checksums.
 */
#pragma once

#include <cstdint>

#include "vesksdk_records.h"

namespace vesk::sim {

// Fills 256 bytes for `width` x `height` at `refresh` Hz; false when the mode does not fit an
// EDID detailed timing (sizes 1 to 4095, a pixel clock up to 655.35 MHz).
bool writeEdid(uint8_t* edid, uint16_t productCode, unsigned width, unsigned height, float refresh);

// The preferred (first detailed) timing of `edid`; false without a valid header and timing.
bool readPreferredTiming(const uint8_t* edid, vesk_resolution_record& timing);

}  // namespace vesk::sim
