/*
 * Host HIDL runtime: the owned string, vector and array types and the toString helpers that
 * the generated headers use, laid out as libhidlbase lays them out on the device (16-byte
 * hidl_string and hidl_vec, pointer first).
 */
#pragma once

#include <cutils/native_handle.h>
#include <hidl/Status.h>
#include <utils/Errors.h>
#include <utils/RefBase.h>
#include <utils/StrongPointer.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>
#include <type_traits>
#include <vector>

namespace android::hardware {

namespace details {

// Type tag of generated interface classes.
struct i_tag {};

// Logs at FATAL under the runtime's tag and aborts, as libhidlbase does.
[[noreturn]] void logAlwaysFatal(const char* message);

// A pointer held in a 64-bit slot, so that hidl_string and hidl_vec keep one layout (16 bytes,
// 8-aligned) on 32-bit and 64-bit ABIs alike, as libhidlbase's do.
template <typename T>
class hidl_pointer {
  public:
    hidl_pointer() { mSlot.pad = 0; }
    hidl_pointer(T* pointer) { set(pointer); }  // NOLINT
    hidl_pointer(const hidl_pointer& other) { set(other.mSlot.pointer); }
    hidl_pointer& operator=(const hidl_pointer& other) {
        mSlot.pointer = other.mSlot.pointer;
        return *this;
    }
    hidl_pointer& operator=(T* pointer) {
        mSlot.pointer = pointer;
        return *this;
    }
    operator T*() const { return mSlot.pointer; }  // NOLINT
    T& operator[](size_t index) const { return mSlot.pointer[index]; }
    T* operator->() const { return mSlot.pointer; }

  private:
    // The slot's upper half stays zero where a pointer has 32 bits.
    void set(T* pointer) {
        mSlot.pad = 0;
        mSlot.pointer = pointer;
    }

    union {
        T* pointer;
        uint64_t pad;
    } mSlot;
};

}  // namespace details

// A native handle (file descriptors and integers) passed through an interface, as libhidlbase
// has it: a copy clones the handle (its descriptors are duplicated) and owns the clone; a handle
// given by pointer is owned only when setTo() says so.
class hidl_handle {
  public:
    hidl_handle() = default;
    ~hidl_handle() { freeHandle(); }
    hidl_handle(const native_handle_t* handle) : mHandle(handle) {}  // NOLINT
    hidl_handle(const hidl_handle& other) { *this = other; }
    hidl_handle(hidl_handle&& other) noexcept { *this = std::move(other); }
    hidl_handle& operator=(const hidl_handle& other);
    hidl_handle& operator=(const native_handle_t* handle);
    hidl_handle& operator=(hidl_handle&& other) noexcept;

    void setTo(native_handle_t* handle, bool shouldOwn = false);
    const native_handle_t* operator->() const { return mHandle; }
    operator const native_handle_t*() const { return mHandle; }  // NOLINT
    const native_handle_t* getNativeHandle() const { return mHandle; }

  private:
    void freeHandle();

    details::hidl_pointer<const native_handle_t> mHandle = nullptr;
    bool mOwnsHandle = false;
    [[maybe_unused]] uint8_t mPad[7] = {};
};

static_assert(sizeof(hidl_handle) == 16 && alignof(hidl_handle) == 8);

class hidl_string {
  public:
    hidl_string() = default;
    hidl_string(const char* s) { copyFrom(s, s != nullptr ? strlen(s) : 0); }  // NOLINT
    hidl_string(const char* s, size_t length) { copyFrom(s, length); }
    hidl_string(const std::string& s) { copyFrom(s.data(), s.size()); }  // NOLINT
    hidl_string(const hidl_string& other) { copyFrom(other.mBuffer, other.mSize); }
    hidl_string(hidl_string&& other) noexcept { moveFrom(std::move(other)); }
    ~hidl_string() { clear(); }

    hidl_string& operator=(const hidl_string& other) {
        if (this != &other) {
            clear();
            copyFrom(other.mBuffer, other.mSize);
        }
        return *this;
    }
    hidl_string& operator=(hidl_string&& other) noexcept {
        if (this != &other) {
            clear();
            moveFrom(std::move(other));
        }
        return *this;
    }
    hidl_string& operator=(const char* s) { return *this = hidl_string(s); }
    hidl_string& operator=(const std::string& s) { return *this = hidl_string(s); }

    const char* c_str() const { return mBuffer; }
    size_t size() const { return mSize; }
    bool empty() const { return mSize == 0; }
    operator std::string() const { return std::string(mBuffer, mSize); }  // NOLINT

    void clear() {
        if (mOwnsBuffer) delete[] mBuffer;
        mBuffer = kEmpty;
        mSize = 0;
        mOwnsBuffer = false;
    }

  private:
    static constexpr const char* kEmpty = "";

    void copyFrom(const char* s, size_t length) {
        if (length > UINT32_MAX) details::logAlwaysFatal("string size can't exceed 2^32 bytes.");
        char* buffer = new char[length + 1];
        if (length > 0) memcpy(buffer, s, length);
        buffer[length] = '\0';
        mBuffer = buffer;
        mSize = static_cast<uint32_t>(length);
        mOwnsBuffer = true;
    }
    void moveFrom(hidl_string&& other) {
        mBuffer = other.mBuffer;
        mSize = other.mSize;
        mOwnsBuffer = other.mOwnsBuffer;
        other.mBuffer = kEmpty;
        other.mSize = 0;
        other.mOwnsBuffer = false;
    }

    details::hidl_pointer<const char> mBuffer = kEmpty;
    uint32_t mSize = 0;
    bool mOwnsBuffer = false;
    [[maybe_unused]] uint8_t mPad[3] = {};
};

static_assert(sizeof(hidl_string) == 16 && alignof(hidl_string) == 8);

inline bool operator==(const hidl_string& a, const hidl_string& b) {
    return a.size() == b.size() && memcmp(a.c_str(), b.c_str(), a.size()) == 0;
}
inline bool operator!=(const hidl_string& a, const hidl_string& b) {
    return !(a == b);
}
inline bool operator==(const hidl_string& a, const char* b) {
    return strcmp(a.c_str(), b) == 0;
}
inline bool operator!=(const hidl_string& a, const char* b) {
    return !(a == b);
}
inline bool operator==(const hidl_string& a, const std::string& b) {
    return a == hidl_string(b);
}
inline bool operator!=(const hidl_string& a, const std::string& b) {
    return !(a == b);
}

template <typename T>
class hidl_vec {
  public:
    using value_type = T;

    hidl_vec() = default;
    explicit hidl_vec(size_t size) { resize(size); }
    hidl_vec(std::initializer_list<T> list) { assign(list.begin(), list.size()); }
    hidl_vec(const std::vector<T>& v) { assign(v.data(), v.size()); }  // NOLINT
    hidl_vec(const hidl_vec& other) { assign(other.mBuffer, other.mSize); }
    hidl_vec(hidl_vec&& other) noexcept { moveFrom(std::move(other)); }
    template <typename It>
    hidl_vec(It first, It last) {
        std::vector<T> items(first, last);
        assign(items.data(), items.size());
    }
    ~hidl_vec() { release(); }

    hidl_vec& operator=(const hidl_vec& other) {
        if (this != &other) {
            release();
            assign(other.mBuffer, other.mSize);
        }
        return *this;
    }
    hidl_vec& operator=(hidl_vec&& other) noexcept {
        if (this != &other) {
            release();
            moveFrom(std::move(other));
        }
        return *this;
    }
    hidl_vec& operator=(const std::vector<T>& v) { return *this = hidl_vec(v); }

    // Points at memory owned elsewhere (or takes it over when shouldOwn).
    void setToExternal(T* data, size_t size, bool shouldOwn = false) {
        checkSize(size);
        release();
        mBuffer = data;
        mSize = static_cast<uint32_t>(size);
        mOwnsBuffer = shouldOwn;
    }

    // Grows with value-initialised elements or shrinks, keeping the leading elements.
    void resize(size_t size) {
        checkSize(size);
        T* buffer = size > 0 ? new T[size]() : nullptr;
        size_t keep = std::min<size_t>(size, mSize);
        for (size_t i = 0; i < keep; ++i) buffer[i] = std::move(mBuffer[i]);
        release();
        mBuffer = buffer;
        mSize = static_cast<uint32_t>(size);
        mOwnsBuffer = true;
    }

    size_t size() const { return mSize; }
    T* data() { return mBuffer; }
    const T* data() const { return mBuffer; }
    T& operator[](size_t i) { return mBuffer[i]; }
    const T& operator[](size_t i) const { return mBuffer[i]; }
    T* begin() { return mBuffer; }
    T* end() { return mBuffer + mSize; }
    const T* begin() const { return mBuffer; }
    const T* end() const { return mBuffer + mSize; }
    operator std::vector<T>() const { return std::vector<T>(begin(), end()); }  // NOLINT

  private:
    static void checkSize(size_t size) {
        if (size > UINT32_MAX) {
            details::logAlwaysFatal("hidl_vec can't hold more than 2^32 elements.");
        }
    }
    void assign(const T* items, size_t size) {
        checkSize(size);
        mBuffer = size > 0 ? new T[size]() : nullptr;
        for (size_t i = 0; i < size; ++i) mBuffer[i] = items[i];
        mSize = static_cast<uint32_t>(size);
        mOwnsBuffer = true;
    }
    void moveFrom(hidl_vec&& other) {
        mBuffer = other.mBuffer;
        mSize = other.mSize;
        mOwnsBuffer = other.mOwnsBuffer;
        other.mBuffer = nullptr;
        other.mSize = 0;
        other.mOwnsBuffer = false;
    }
    void release() {
        if (mOwnsBuffer) delete[] mBuffer;
        mBuffer = nullptr;
        mSize = 0;
        mOwnsBuffer = false;
    }

    // Null by the default constructor: g++ 12 for armhf leaves the converting constructor
    // undefined when a default member initializer calls it here.
    details::hidl_pointer<T> mBuffer;
    uint32_t mSize = 0;
    bool mOwnsBuffer = false;
    [[maybe_unused]] uint8_t mPad[3] = {};
};

template <typename T>
bool operator==(const hidl_vec<T>& a, const hidl_vec<T>& b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin());
}
template <typename T>
bool operator!=(const hidl_vec<T>& a, const hidl_vec<T>& b) {
    return !(a == b);
}

// Fixed-size array of a HIDL struct (one dimension, the only kind this package uses).
template <typename T, size_t N>
class hidl_array {
  public:
    hidl_array() = default;
    T* data() { return mBuffer; }
    const T* data() const { return mBuffer; }
    T& operator[](size_t i) { return mBuffer[i]; }
    const T& operator[](size_t i) const { return mBuffer[i]; }
    static constexpr size_t size() { return N; }
    bool operator==(const hidl_array& other) const {
        return std::equal(mBuffer, mBuffer + N, other.mBuffer);
    }
    bool operator!=(const hidl_array& other) const { return !(*this == other); }

  private:
    T mBuffer[N] = {};
};

// toString of every field type, as the generated toString of a struct calls it.
template <typename T, typename = std::enable_if_t<std::is_integral_v<T>>>
std::string toString(T value) {
    if constexpr (std::is_same_v<T, bool>) {
        return value ? "true" : "false";
    } else if constexpr (std::is_signed_v<T>) {
        return std::to_string(static_cast<long long>(value));
    } else {
        return std::to_string(static_cast<unsigned long long>(value));
    }
}
std::string toString(float value);
std::string toString(double value);
std::string toString(const hidl_string& value);

template <typename T>
std::string toString(const hidl_vec<T>& vec) {
    std::string out = "[";
    for (size_t i = 0; i < vec.size(); ++i) {
        if (i > 0) out += ", ";
        out += toString(vec[i]);
    }
    return out + "]";
}

template <typename T, size_t N>
std::string toString(const hidl_array<T, N>& array) {
    std::string out = "[" + std::to_string(N) + "]{";
    for (size_t i = 0; i < N; ++i) {
        if (i > 0) out += ", ";
        out += toString(array[i]);
    }
    return out + "}";
}

}  // namespace android::hardware
