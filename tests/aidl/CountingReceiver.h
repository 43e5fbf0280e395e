/*
 * A callback of the tests: counts the notifications it is sent (the service sends none).
 */
#pragma once

#include <aidl/vesk/hardware/veskdevicemanager/BnVeskDeviceCallback.h>

#include <atomic>

namespace vesk::test {

class CountingReceiver : public ::aidl::vesk::hardware::veskdevicemanager::BnVeskDeviceCallback {
  public:
    ::ndk::ScopedAStatus hwNotify(
            const ::aidl::vesk::hardware::veskdevicemanager::MessageParcel& /* parcel */) override {
        ++notifications;
        return ::ndk::ScopedAStatus::ok();
    }
    std::atomic<int> notifications{0};
};

}  // namespace vesk::test
