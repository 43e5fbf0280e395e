#include "PingService.h"

#include <stdio.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>

namespace vesk::test {

ndk::ScopedAStatus PingService::ping(int32_t value, int32_t* result) {
    *result = value;
    return ndk::ScopedAStatus::ok();
}

ndk::ScopedAStatus PingService::pingEmpty() {
    return ndk::ScopedAStatus::ok();
}

ndk::ScopedAStatus PingService::waitFor(int32_t milliseconds) {
    printf("waiting\n");
    fflush(stdout);
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    return ndk::ScopedAStatus::ok();
}

binder_status_t PingService::dump(int fd, const char** args, uint32_t numArgs) {
    std::string line = "dump pid " + std::to_string(getpid()) + ":";
    for (uint32_t i = 0; i < numArgs; ++i) line += std::string(" [") + args[i] + "]";
    line += "\n";
    return write(fd, line.data(), line.size()) == static_cast<ssize_t>(line.size())
                   ? STATUS_OK
                   : STATUS_UNKNOWN_ERROR;
}

ndk::ScopedAStatus PingService::byteCount(const std::vector<uint8_t>& data, int32_t* result) {
    *result = static_cast<int32_t>(data.size());
    return ndk::ScopedAStatus::ok();
}

ndk::ScopedAStatus PingService::meet(int32_t count, int32_t timeoutMs, int32_t* result) {
    std::unique_lock<std::mutex> lock(mMutex);
    if (++mInside >= count) mMet = true;
    mArrived.notify_all();
    mArrived.wait_for(lock, std::chrono::milliseconds(timeoutMs), [this] { return mMet; });
    *result = mMet ? count : mInside;
    --mInside;
    return ndk::ScopedAStatus::ok();
}

}  // namespace vesk::test
