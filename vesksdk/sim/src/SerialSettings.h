/*
 * The line settings a serial channel accepts, as termios flags.
 *
 * Baud rate: one of the standard rates from 50 to 4000000 (B50 ... B4000000).
 * Data bits: 5 to 8. Stop bits: 1 or 2.
 * Parity: 0 or 'N'/'n' none, 1 or 'O'/'o' odd, 2 or 'E'/'e' even.
 */
#pragma once

#include <termios.h>

namespace vesk::sim {

// Raw mode with the given settings laid over `line`; false, with `line` unchanged, when one of
// them is not supported.
bool applyLineSettings(int baudrate, unsigned char databits, unsigned char stopbits,
                       signed char parity, termios& line);

}  // namespace vesk::sim
