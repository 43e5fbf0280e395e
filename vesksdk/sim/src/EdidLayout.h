/*
 * Where things are in an EDID, for its writer and its reader.
 */
#pragma once

#include <cstddef>
#include <cstdint>

namespace vesk::sim {

inline constexpr uint8_t kEdidHeader[8] = {0x00, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0x00};
inline constexpr std::size_t kEdidBlockSize = 128;
inline constexpr std::size_t kFirstDescriptor = 54;  // four descriptors of 18 bytes
inline constexpr std::size_t kDescriptorSize = 18;
inline constexpr std::size_t kExtensionCount = 126;

// A block is valid when its 128 bytes add up to 0 modulo 256.
inline bool checksumValid(const uint8_t* block) {
    unsigned sum = 0;
    for (std::size_t i = 0; i < kEdidBlockSize; ++i) sum += block[i];
    return sum % 256 == 0;
}

inline void putChecksum(uint8_t* block) {
    unsigned sum = 0;
    for (std::size_t i = 0; i + 1 < kEdidBlockSize; ++i) sum += block[i];
    block[kEdidBlockSize - 1] = static_cast<uint8_t>((256 - sum % 256) % 256);
}

}  // namespace vesk::sim
