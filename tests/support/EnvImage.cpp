#include "EnvImage.h"

#include <zlib.h>

#include <cstring>

namespace vesk::test {

std::vector<std::string> envStrings(const Variables& variables) {
    std::vector<std::string> strings;
    for (const auto& [key, value] : variables) strings.push_back(key + "=" + value);
    return strings;
}

std::string dataArea(const std::vector<std::string>& strings, size_t size) {
    std::string area;
    for (const auto& text : strings) area += text + std::string(1, '\0');
    if (area.size() < size) area.resize(size, '\0');
    return area.substr(0, size);
}

uint32_t crcOf(const uint8_t* bytes, size_t size) {
    return static_cast<uint32_t>(crc32(0, bytes, static_cast<uInt>(size)));
}

uint32_t crcOf(const std::string& bytes) {
    return crcOf(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
}

std::string envCopy(const std::string& data, size_t crcBytes) {
    uint32_t crc = crcOf(data.substr(0, crcBytes));
    std::string copy(4, '\0');
    memcpy(&copy[0], &crc, 4);
    return copy + data;
}

std::string twoCopies(const std::string& copyA, const std::string& copyB, char fill) {
    std::string image = copyA;
    if (image.size() < 65536) image.resize(65536, fill);
    image.resize(65536);
    return image + copyB;
}

std::string envImage(const Variables& variables) {
    std::string copy = envCopy(dataArea(envStrings(variables)));
    return copy + copy;
}

uint32_t storedCrc(const std::string& image, size_t offset) {
    uint32_t crc = 0;
    memcpy(&crc, image.data() + offset, 4);
    return crc;
}

bool copyValid(const std::string& image, size_t offset, size_t dataBytes) {
    if (image.size() < offset + 4 + dataBytes) return false;
    return storedCrc(image, offset) == crcOf(image.substr(offset + 4, dataBytes));
}

void sealCopy(uint8_t* copy, size_t copySize) {
    uint32_t crc = crcOf(copy + 4, copySize - 4);
    memcpy(copy, &crc, sizeof(crc));
}

}  // namespace vesk::test
