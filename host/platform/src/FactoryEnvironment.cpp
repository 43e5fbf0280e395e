#include "FactoryEnvironment.h"

#include <zlib.h>

#include <cstdint>
#include <cstring>

namespace vesk::host {
namespace {

constexpr size_t kCopySize = 65536;
constexpr size_t kCrcSize = 4;

constexpr const char* kFactoryVariables[] = {
        "bootdelay=1",
        "baudrate=115200",
        "bootcmd=run storeboot",
        "storeboot=run get_os_type; run storage_param; run boot_normal",
        "hdmimode=1080p60hz",
        "outputmode=1080p60hz",
        "is.bestmode=true",
        "custom_mode=0",
        "colorattribute=444,8bit",
        "cvbsmode=576cvbs",
        "display_width=1920",
        "display_height=1080",
        "firstboot=1",
        "lock=10101000",
        "upgrade_step=2",
};

}  // namespace

std::string factoryEnvironmentImage() {
    std::string copy(kCopySize, '\0');
    size_t pos = kCrcSize;
    for (const char* variable : kFactoryVariables) {
        std::memcpy(&copy[pos], variable, std::strlen(variable));
        pos += std::strlen(variable) + 1;
    }
    const auto* data = reinterpret_cast<const Bytef*>(copy.data() + kCrcSize);
    uint32_t crc = static_cast<uint32_t>(crc32(0, data, kCopySize - kCrcSize));
    std::memcpy(&copy[0], &crc, kCrcSize);  // the machine's own byte order, as the boot loader
    return copy + copy;
}

}  // namespace vesk::host
