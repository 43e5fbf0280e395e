/*
 * Text slots of the board's fixed-size records: read as C strings, never past the record's end.
 */
#pragma once

#include <cstddef>
#include <string>

namespace vesk::hardware::veskdevicemanager::implementation {

// The NUL-terminated text at `offset` of a record of `recordSize` bytes. A slot that fills its
// width runs on into the next slot, as the board's readers expect, but stops at the record's end.
std::string recordText(const void* record, size_t recordSize, size_t offset);

}  // namespace vesk::hardware::veskdevicemanager::implementation
