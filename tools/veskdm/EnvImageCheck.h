/*
 * What is on a boot-loader environment device, copy by copy, as the boot loader would judge it:
 * a copy is valid when its CRC word is the CRC-32 of its data area. veskdm env shows and writes
 * an environment only when a copy is valid, and says which copy it shows.
 */
#pragma once

#include <stdint.h>

#include <string>

namespace veskdm {

struct CopyCheck {
    bool valid = false;
    size_t bytes = 0;  // of the copy's size that the device holds
    uint32_t storedCrc = 0;
    uint32_t computedCrc = 0;
};

struct EnvImageCheck {
    CopyCheck copyA;
    CopyCheck copyB;
    bool empty = false;  // the device holds no byte
};

// Reads both copies from `fd` (copy A at 0, copy B at 65536, `copySize` bytes each; the CRC
// covers the `dataSize` bytes after the CRC word).
EnvImageCheck checkEnvImage(int fd, uint32_t copySize, uint32_t dataSize);

// "valid", "fails its CRC (stored 0x..., computed 0x...)", "holds 100 of 65536 bytes",
// "is missing".
std::string describeCopy(const CopyCheck& copy, uint32_t copySize);

// Why `check` holds no environment ("it is empty", "no valid copy: copy A ..., copy B ...").
std::string describeNoEnvironment(const EnvImageCheck& check, uint32_t copySize);

}  // namespace veskdm
