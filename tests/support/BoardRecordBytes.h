/*
 * The simulated board's records as bytes, for the "out" of its scripts: a 32-bit word or a
 * float in the board's byte order (least significant first), a text placed in a record, and the
 * script's hex of any bytes. For the tests of programs that link the simulated board.
 */
#pragma once

#include <vesksdk_sim_control.h>

#include <cstdint>
#include <cstring>
#include <string>

namespace vesk::test {

inline std::string le32(uint32_t value) {
    std::string bytes(4, '\0');
    for (int i = 0; i < 4; ++i) bytes[i] = static_cast<char>((value >> (8 * i)) & 0xff);
    return bytes;
}

inline std::string floatBytes(float value) {
    uint32_t bits;
    memcpy(&bits, &value, sizeof(bits));
    return le32(bits);
}

// Places `text` at `offset` of a record of zero bytes (grown as needed).
inline void putText(std::string& record, size_t offset, const std::string& text) {
    if (record.size() < offset + text.size()) record.resize(offset + text.size());
    record.replace(offset, text.size(), text);
}

// Bytes as the script's "out" hex text.
inline std::string hexOf(const std::string& bytes) {
    return vesk::sim::scriptHex(bytes);
}

}  // namespace vesk::test
