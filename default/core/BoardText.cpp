#include "BoardText.h"

#include <cstring>

namespace vesk::hardware::veskdevicemanager::implementation {

std::string recordText(const void* record, size_t recordSize, size_t offset) {
    if (offset >= recordSize) return std::string();
    const char* text = static_cast<const char*>(record) + offset;
    return std::string(text, strnlen(text, recordSize - offset));
}

}  // namespace vesk::hardware::veskdevicemanager::implementation
