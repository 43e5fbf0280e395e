#pragma once

#include <string>

namespace vesk::host {

// The boot-loader environment partition as the board leaves the factory: two identical
// 65536-byte copies (CRC-32 word, then the NUL-terminated key=value strings).
std::string factoryEnvironmentImage();

}  // namespace vesk::host
