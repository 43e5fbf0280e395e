#include <unistd.h>

#include <climits>

#include "ChildProcess.h"

namespace vesk::test {

OtherProcess::OtherProcess(const std::function<int()>& action) {
    int fds[2];
    if (pipe(fds) != 0) return;
    mChild = std::make_unique<Child>([&] {
        close(fds[0]);
        int result = action();
        return write(fds[1], &result, sizeof(result)) == sizeof(result) ? 0 : 1;
    });
    close(fds[1]);
    mFd = fds[0];
}

int OtherProcess::result() {
    if (mChild == nullptr || mFd < 0) return INT_MIN;
    int result = INT_MIN;
    if (read(mFd, &result, sizeof(result)) != sizeof(result)) result = INT_MIN;
    close(mFd);
    mFd = -1;
    mChild->wait();
    mChild.reset();
    return result;
}

int inOtherProcess(const std::function<int()>& action) {
    return OtherProcess(action).result();
}

}  // namespace vesk::test
