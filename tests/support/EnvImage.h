/*
 * Boot-loader environment partitions for tests, benchmarks and fuzzers, built from the format's
 * own rules: NUL-terminated "key=value" strings ended by an empty one, zlib's CRC-32 from 0 over
 * the whole data area, the word in the machine's byte order, copy B at byte 65536.
 */
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <string>
#include <utility>
#include <vector>

namespace vesk::test {

using Variables = std::vector<std::pair<std::string, std::string>>;

// The strings "key=value" of `variables`.
std::vector<std::string> envStrings(const Variables& variables);
// A data area of `size` bytes: each string NUL-terminated, in order, then zero bytes.
std::string dataArea(const std::vector<std::string>& strings, size_t size = 65532);
// One copy: the CRC word of `data` (the first `crcBytes` of it, all by default), then `data`.
std::string envCopy(const std::string& data, size_t crcBytes = std::string::npos);
// Copy A at 0 and copy B at 65536 (padded with `fill` between and after as needed).
std::string twoCopies(const std::string& copyA, const std::string& copyB, char fill = '\0');
// The usual partition: the same 65536-byte copy of `variables` twice.
std::string envImage(const Variables& variables);

uint32_t crcOf(const std::string& bytes);
uint32_t crcOf(const uint8_t* bytes, size_t size);
uint32_t storedCrc(const std::string& image, size_t offset);
// True when the copy at `offset` holds the CRC of its `dataBytes`-byte data area.
bool copyValid(const std::string& image, size_t offset, size_t dataBytes = 65532);
// Writes the CRC word of the copy of `copySize` bytes at `copy` (over its data area).
void sealCopy(uint8_t* copy, size_t copySize);

}  // namespace vesk::test
