#include <sys/wait.h>
#include <unistd.h>

#include <climits>

#include "ChildProcess.h"

namespace vesk::test {

OtherProcess::OtherProcess(const std::function<int()>& action) {
    int fds[2];
    if (pipe(fds) != 0) return;
    mPid = fork();
    if (mPid == 0) {
        close(fds[0]);
        int result = action();
        ssize_t written = write(fds[1], &result, sizeof(result));
        _exit(written == sizeof(result) ? 0 : 1);
    }
    close(fds[1]);
    mFd = fds[0];
}

int OtherProcess::result() {
    if (mPid < 0 || mFd < 0) return INT_MIN;
    int result = INT_MIN;
    if (read(mFd, &result, sizeof(result)) != sizeof(result)) result = INT_MIN;
    close(mFd);
    mFd = -1;
    int status = 0;
    waitpid(mPid, &status, 0);
    mPid = -1;
    return result;
}

int inOtherProcess(const std::function<int()>& action) {
    return OtherProcess(action).result();
}

}  // namespace vesk::test
