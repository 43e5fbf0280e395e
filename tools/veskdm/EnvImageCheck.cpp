#include "EnvImageCheck.h"

#include <errno.h>
#include <stdio.h>
#include <unistd.h>
#include <zlib.h>

#include <cstring>
#include <vector>

#include "Ubootenv.h"

namespace veskdm {
namespace {

constexpr uint32_t kCrcSize = 4;

CopyCheck checkCopy(int fd, off_t offset, uint32_t copySize, uint32_t dataSize) {
    CopyCheck copy;
    std::vector<uint8_t> bytes(copySize);
    while (copy.bytes < bytes.size()) {
        ssize_t n = pread(fd, bytes.data() + copy.bytes, bytes.size() - copy.bytes,
                          offset + static_cast<off_t>(copy.bytes));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        copy.bytes += static_cast<size_t>(n);
    }
    if (copy.bytes < copySize || dataSize + kCrcSize > copySize) return copy;
    memcpy(&copy.storedCrc, bytes.data(), kCrcSize);
    copy.computedCrc = static_cast<uint32_t>(crc32(0, bytes.data() + kCrcSize, dataSize));
    copy.valid = copy.storedCrc == copy.computedCrc;
    return copy;
}

std::string hex(uint32_t value) {
    char text[16];
    snprintf(text, sizeof(text), "0x%08x", value);
    return text;
}

}  // namespace

EnvImageCheck checkEnvImage(int fd, uint32_t copySize, uint32_t dataSize) {
    EnvImageCheck check;
    check.copyA = checkCopy(fd, 0, copySize, dataSize);
    check.copyB = checkCopy(fd, kEnvCopyBOffset, copySize, dataSize);
    check.empty = check.copyA.bytes == 0 && check.copyB.bytes == 0;
    return check;
}

std::string describeCopy(const CopyCheck& copy, uint32_t copySize) {
    if (copy.valid) return "valid";
    if (copy.bytes == 0) return "is missing";
    if (copy.bytes < copySize) {
        return "holds " + std::to_string(copy.bytes) + " of " + std::to_string(copySize) + " bytes";
    }
    return "fails its CRC (stored " + hex(copy.storedCrc) + ", computed " + hex(copy.computedCrc) +
           ")";
}

std::string describeNoEnvironment(const EnvImageCheck& check, uint32_t copySize) {
    if (check.empty) return "it is empty";
    return "no valid copy: copy A " + describeCopy(check.copyA, copySize) + ", copy B " +
           describeCopy(check.copyB, copySize);
}

}  // namespace veskdm
