/*
 * What a byte-vector result callback received, and how often it was called.
 */
#pragma once

#include <hidl/HidlSupport.h>

#include <cstdint>
#include <functional>
#include <vector>

namespace vesk::test {

struct BytesResult {
    std::vector<uint8_t> data;
    int calls = 0;
    std::function<void(const ::android::hardware::hidl_vec<uint8_t>&)> callback() {
        return [this](const ::android::hardware::hidl_vec<uint8_t>& got) {
            data = got;
            ++calls;
        };
    }
};

}  // namespace vesk::test
