/*
 * Host HIDL runtime: the transport status and the Return<T> wrapper of every method.
 */
#pragma once

#include <utils/Errors.h>

#include <cstdint>
#include <string>
#include <utility>

namespace android::hardware {

class Status {
  public:
    enum Exception : int32_t {
        EX_NONE = 0,
        EX_TRANSACTION_FAILED = -129,
    };

    static Status ok() { return Status(); }
    static Status fromExceptionCode(int32_t code) { return Status(code); }

    bool isOk() const { return mException == EX_NONE; }
    int32_t exceptionCode() const { return mException; }
    std::string description() const {
        return isOk() ? "No error" : "Status(EX_TRANSACTION_FAILED)";
    }

  private:
    Status() = default;
    explicit Status(int32_t code) : mException(code) {}
    int32_t mException = EX_NONE;
};

namespace details {

class return_status {
  public:
    return_status() = default;
    explicit return_status(Status status) : mStatus(status) {}
    bool isOk() const { return mStatus.isOk(); }
    bool isDeadObject() const { return false; }
    std::string description() const { return mStatus.description(); }

  private:
    Status mStatus = Status::ok();
};

}  // namespace details

template <typename T>
class Return : public details::return_status {
  public:
    Return(T value) : mValue(std::move(value)) {}  // NOLINT: implicit, as on the device
    Return(Status status) : details::return_status(status), mValue() {}  // NOLINT
    operator T() const { return mValue; }                                // NOLINT
    T withDefault(T defaultValue) const { return isOk() ? mValue : defaultValue; }

  private:
    T mValue;
};

template <>
class Return<void> : public details::return_status {
  public:
    Return() = default;
    Return(Status status) : details::return_status(status) {}  // NOLINT
};

inline Return<void> Void() {
    return Return<void>();
}

}  // namespace android::hardware
