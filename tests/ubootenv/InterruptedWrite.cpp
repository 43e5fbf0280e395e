#include "InterruptedWrite.h"

#include <errno.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>

extern "C" ssize_t __real_write(int fd, const void* buffer, size_t count);

namespace {

std::atomic<off_t> gFailAt{-1};
std::atomic<int> gKillIndex{-1};
std::atomic<size_t> gKillBytes{0};

}  // namespace

namespace vesk::test {

void failWritesAt(off_t offset) {
    gFailAt = offset;
}

void killInWrite(int index, size_t bytes) {
    gKillBytes = bytes;
    gKillIndex = index;
}

}  // namespace vesk::test

extern "C" ssize_t __wrap_write(int fd, const void* buffer, size_t count) {
    off_t failAt = gFailAt;
    if (failAt >= 0 && lseek(fd, 0, SEEK_CUR) == failAt) {
        errno = EIO;
        return -1;
    }
    int index = gKillIndex;
    if (index == 0) {
        size_t bytes = std::min(count, gKillBytes.load());
        if (bytes > 0) __real_write(fd, buffer, bytes);
        kill(getpid(), SIGKILL);
    }
    if (index > 0) gKillIndex = index - 1;
    return __real_write(fd, buffer, count);
}
