#include <hidl/HidlSupport.h>

#define LOG_TAG "HidlSupport"
#include <log/log.h>

#include <cstdio>

namespace android::hardware {

namespace details {

void logAlwaysFatal(const char* message) {
    LOG_ALWAYS_FATAL("%s", message);
    __builtin_unreachable();
}

}  // namespace details

hidl_handle& hidl_handle::operator=(const hidl_handle& other) {
    if (this == &other) return *this;
    freeHandle();
    if (other.mHandle != nullptr) {
        mHandle = native_handle_clone(other.mHandle);
        if (mHandle == nullptr)
            details::logAlwaysFatal("Failed to clone native_handle in hidl_handle");
        mOwnsHandle = true;
    }
    return *this;
}

hidl_handle& hidl_handle::operator=(const native_handle_t* handle) {
    freeHandle();
    mHandle = handle;
    mOwnsHandle = false;
    return *this;
}

hidl_handle& hidl_handle::operator=(hidl_handle&& other) noexcept {
    if (this == &other) return *this;
    freeHandle();
    mHandle = other.mHandle;
    mOwnsHandle = other.mOwnsHandle;
    other.mHandle = nullptr;
    other.mOwnsHandle = false;
    return *this;
}

void hidl_handle::setTo(native_handle_t* handle, bool shouldOwn) {
    freeHandle();
    mHandle = handle;
    mOwnsHandle = shouldOwn;
}

void hidl_handle::freeHandle() {
    if (mOwnsHandle && mHandle != nullptr) {
        auto* handle = const_cast<native_handle_t*>(static_cast<const native_handle_t*>(mHandle));
        native_handle_close(handle);
        native_handle_delete(handle);
    }
    mHandle = nullptr;
    mOwnsHandle = false;
}

std::string toString(float value) {
    return std::to_string(value);
}

std::string toString(double value) {
    return std::to_string(value);
}

std::string toString(const hidl_string& value) {
    return "\"" + std::string(value) + "\"";
}

}  // namespace android::hardware
