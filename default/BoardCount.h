/*
 * The size of a result vector asked for by a signed count (a client's size, a board's count).
 * A negative count is not the service's to catch: the vector's own size check ends the process
 * with its fatal line. With a 64-bit size_t a negative count becomes a size above 2^32, which
 * that check refuses; with a 32-bit size_t it would wrap to a size the check lets through, and
 * the allocation would fail some other way. The check is made here in that case, with the
 * runtime's own fatal line, so that both ABIs end alike.
 */
#pragma once

#include <hidl/HidlSupport.h>

#include <cstddef>
#include <cstdint>

namespace vesk::hardware::veskdevicemanager::implementation {

inline size_t vectorSizeOf(int32_t count) {
    if (count < 0 && sizeof(size_t) < sizeof(int64_t)) {
        ::android::hardware::details::logAlwaysFatal(
                "hidl_vec can't hold more than 2^32 elements.");
    }
    return static_cast<size_t>(static_cast<int64_t>(count));
}

// Ends the process for a negative count as a vector sized to it does, through its size check;
// returns at once for any other count, which it leaves to the caller to allocate.
inline void endIfNegative(int32_t count) {
    if (count >= 0) return;
    ::android::hardware::hidl_vec<uint8_t> sized;
    sized.resize(vectorSizeOf(count));
}

}  // namespace vesk::hardware::veskdevicemanager::implementation
