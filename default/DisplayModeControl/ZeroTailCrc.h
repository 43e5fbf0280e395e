/*
 * zlib's CRC-32 of a buffer that ends in a run of zero bytes, as the boot loader's environment
 * does: its list fills the first few kilobytes of a 64 KiB data area and the rest is zero. The
 * bytes up to the last non-zero one go through crc32(); the zero run is accounted for with
 * crc32_combine() in a few hundred operations instead of a pass over each of its bytes, which
 * was most of the work of a load and of a save.
 */
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <string.h>
#include <zlib.h>

// How many bytes at the end of `data` are zero.
inline size_t zeroTailLength(const uint8_t* data, size_t size) {
    static const uint8_t kZeros[1024] = {};
    size_t end = size;
    while (end >= sizeof(kZeros) &&
           memcmp(data + end - sizeof(kZeros), kZeros, sizeof(kZeros)) == 0) {
        end -= sizeof(kZeros);
    }
    while (end > 0 && data[end - 1] == 0) --end;
    return size - end;
}

// crc32(0, data, size), whatever the bytes.
inline uint32_t zeroTailCrc32(const uint8_t* data, size_t size) {
    const size_t zeros = zeroTailLength(data, size);
    const uLong head = crc32(0, data, static_cast<uInt>(size - zeros));
    if (zeros == 0) return static_cast<uint32_t>(head);
    // n zero bytes carry the CRC register through a linear map M, and zlib inverts the register
    // before and after: crc(head, zeros) = M(crc(head) ^ ~0) ^ ~0. crc32_combine(a, b, n) is
    // M(a) ^ b.
    constexpr uLong kInverted = 0xffffffffUL;
    return static_cast<uint32_t>(
            crc32_combine(head ^ kInverted, kInverted, static_cast<z_off_t>(zeros)));
}
