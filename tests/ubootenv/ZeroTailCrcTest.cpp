// The CRC of a data area that ends in zero bytes, against zlib's byte-by-byte pass and against
// values computed elsewhere (Python's zlib.crc32, the CRC-32 check value).
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "EnvImage.h"
#include "ZeroTailCrc.h"

namespace vesk::test {
namespace {

uint32_t zeroTailCrcOf(const std::string& bytes) {
    return zeroTailCrc32(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
}

TEST(ZeroTailCrcTest, KnownValues) {
    EXPECT_EQ(0xcbf43926u, zeroTailCrcOf("123456789"));  // the CRC-32 check value
    EXPECT_EQ(0u, zeroTailCrcOf(""));
    // python3 -c 'import zlib; print(hex(zlib.crc32(bytes(65532))))'
    EXPECT_EQ(0x510b66bfu, zeroTailCrcOf(std::string(65532, '\0')));
    // python3 -c 'import zlib; print(hex(zlib.crc32(b"bootdelay=1\0" + bytes(65520))))'
    EXPECT_EQ(0xde228114u, zeroTailCrcOf(dataArea({"bootdelay=1"})));
}

// Heads of every length around the scan's 1024-byte steps, each with its last byte non-zero,
// in areas of the default size and of sizes that are not a whole number of steps.
TEST(ZeroTailCrcTest, EqualsZlibForEveryHeadAroundTheScansSteps) {
    std::mt19937 random(29);
    for (size_t size :
         {size_t{1}, size_t{1023}, size_t{1024}, size_t{1025}, size_t{4096}, size_t{65532}}) {
        std::vector<size_t> heads = {0, 1, 2, size - 1, size};
        for (size_t step = 1024; step <= size; step += 1024) {
            for (size_t head : {step - 1, step, step + 1}) {
                if (head <= size) heads.push_back(head);
            }
        }
        for (size_t head : heads) {
            std::string area(size, '\0');
            for (size_t i = 0; i < head; ++i) area[i] = static_cast<char>(random());
            if (head > 0) area[head - 1] = '\x5a';
            EXPECT_EQ(crcOf(area), zeroTailCrcOf(area)) << "size " << size << ", head " << head;
        }
    }
}

// A lone non-zero byte anywhere in a zero area, so that the scan stops at each place.
TEST(ZeroTailCrcTest, EqualsZlibForALoneByteAnywhere) {
    for (size_t at = 0; at < 65532; at += 509) {
        std::string area(65532, '\0');
        area[at] = '\x01';
        EXPECT_EQ(crcOf(area), zeroTailCrcOf(area)) << "byte at " << at;
    }
    std::string area(65532, '\0');
    area[65531] = '\x80';
    EXPECT_EQ(crcOf(area), zeroTailCrcOf(area));
}

TEST(ZeroTailCrcTest, TailLengthCountsTheZeroBytesAtTheEnd) {
    const std::string area = std::string("a\0b", 3) + std::string(2000, '\0');
    const auto* bytes = reinterpret_cast<const uint8_t*>(area.data());
    EXPECT_EQ(2000u, zeroTailLength(bytes, area.size()));
    EXPECT_EQ(0u, zeroTailLength(bytes, 3));
    EXPECT_EQ(1u, zeroTailLength(bytes, 2));
    EXPECT_EQ(0u, zeroTailLength(bytes, 0));
}

}  // namespace
}  // namespace vesk::test
