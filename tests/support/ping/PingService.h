/*
 * IPing served: the floor of a call over the platform's binder (an empty call, an int round
 * trip) and what the tests of the registration seam ask of a server (a call that waits, a payload
 * of any size, callers meeting inside the server at once).
 */
#pragma once

// glibc's <assert.h> before the binder headers: on glibc, binder_status.h defines an __assert of
// its own that breaks a later <assert.h>.
#include <aidl/vesk/tests/BnPing.h>
#include <assert.h>

#include <condition_variable>
#include <mutex>

namespace vesk::test {

class PingService : public aidl::vesk::tests::BnPing {
  public:
    ndk::ScopedAStatus ping(int32_t value, int32_t* result) override;
    ndk::ScopedAStatus pingEmpty() override;
    ndk::ScopedAStatus waitFor(int32_t milliseconds) override;
    ndk::ScopedAStatus byteCount(const std::vector<uint8_t>& data, int32_t* result) override;
    ndk::ScopedAStatus meet(int32_t count, int32_t timeoutMs, int32_t* result) override;
    // "dump pid PID:" and each argument in brackets, one line.
    binder_status_t dump(int fd, const char** args, uint32_t numArgs) override;

  private:
    std::mutex mMutex;
    std::condition_variable mArrived;
    int mInside = 0;
    bool mMet = false;
};

}  // namespace vesk::test
