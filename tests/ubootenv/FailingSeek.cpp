#include "FailingSeek.h"

#include <errno.h>
#include <sys/types.h>

#include <atomic>

// The C library's own types: lseek takes the native offset, lseek64 the 64-bit one (what a
// 32-bit build's lseek calls become with 64-bit file offsets).
extern "C" __off_t __real_lseek(int fd, __off_t offset, int whence);
extern "C" __off64_t __real_lseek64(int fd, __off64_t offset, int whence);

namespace {

std::atomic<bool> gSeeksFail{false};

// True, with errno set as a pipe sets it, while seeks fail.
bool seekRefused() {
    if (!gSeeksFail) return false;
    errno = ESPIPE;
    return true;
}

}  // namespace

namespace vesk::test {

SeeksFail::SeeksFail() {
    gSeeksFail = true;
}

SeeksFail::~SeeksFail() {
    gSeeksFail = false;
}

}  // namespace vesk::test

extern "C" __off_t __wrap_lseek(int fd, __off_t offset, int whence) {
    return seekRefused() ? -1 : __real_lseek(fd, offset, whence);
}

extern "C" __off64_t __wrap_lseek64(int fd, __off64_t offset, int whence) {
    return seekRefused() ? -1 : __real_lseek64(fd, offset, whence);
}
