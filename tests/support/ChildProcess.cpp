#include "ChildProcess.h"

#include <android/log.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "TestRoot.h"

// Under the sanitizers an allocation that finds no memory returns null, as malloc does.
extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}
extern "C" const char* __tsan_default_options() {
    return "allocator_may_return_null=1";
}

namespace vesk::test {
namespace {

// The child's log: records of priority, tag and message, separated by control characters.
char gChildLog[1 << 20];
size_t gChildLogSize = 0;

void append(const char* text, size_t length) {
    length = std::min(length, sizeof(gChildLog) - gChildLogSize);
    memcpy(gChildLog + gChildLogSize, text, length);
    gChildLogSize += length;
}

void childLogger(const __android_logger_data* data, const char* message) {
    char priority = static_cast<char>('0' + data->priority);
    append(&priority, 1);
    append(data->tag, strlen(data->tag));
    append("\x1f", 1);
    append(message, strlen(message));
    append("\x1e", 1);
}

void writeAll(int fd, const void* data, size_t size) {
    const char* bytes = static_cast<const char*>(data);
    while (size > 0) {
        ssize_t n = write(fd, bytes, size);
        if (n <= 0) _exit(3);
        bytes += n;
        size -= static_cast<size_t>(n);
    }
}

ChildOutcome runInChild(const std::function<void()>& limit, const std::function<int()>& body) {
    getProperty("persist.vendor.sc.log.level");  // the property store is open before the fork
    int pipeFds[2];
    EXPECT_EQ(0, pipe(pipeFds));
    Child child([&] {
        close(pipeFds[0]);
        gChildLogSize = 0;
        __android_log_set_logger(childLogger);
        limit();
        int result = body();
        writeAll(pipeFds[1], &result, sizeof(result));
        writeAll(pipeFds[1], gChildLog, gChildLogSize);
        return 0;
    });
    close(pipeFds[1]);
    std::string output;
    char buffer[65536];
    ssize_t n;
    while ((n = read(pipeFds[0], buffer, sizeof(buffer))) > 0) output.append(buffer, n);
    close(pipeFds[0]);
    ChildEnd end = child.wait();
    ChildOutcome outcome;
    outcome.exited = end.exited && end.code == 0 && output.size() >= 4;
    if (!outcome.exited) return outcome;
    memcpy(&outcome.result, output.data(), sizeof(outcome.result));
    size_t pos = sizeof(outcome.result);
    while (pos < output.size()) {
        size_t tagEnd = output.find('\x1f', pos);
        size_t end = output.find('\x1e', pos);
        if (tagEnd == std::string::npos || end == std::string::npos) break;
        outcome.log.push_back({output[pos] - '0', output.substr(pos + 1, tagEnd - pos - 1),
                               output.substr(tagEnd + 1, end - tagEnd - 1)});
        pos = end + 1;
    }
    return outcome;
}

}  // namespace

Child::Child(const std::function<int()>& body) {
    mPid = fork();
    if (mPid == 0) _exit(body());
    EXPECT_GT(mPid, 0) << "fork: " << strerror(errno);
}

Child::~Child() {
    if (mPid > 0 && !mEnded) {
        ::kill(mPid, SIGKILL);
        waitpid(mPid, nullptr, 0);
    }
}

void Child::kill() {
    if (mPid > 0 && !mEnded) ::kill(mPid, SIGKILL);
}

namespace {

ChildEnd endOf(int status) {
    ChildEnd end;
    end.exited = WIFEXITED(status);
    end.code = end.exited ? WEXITSTATUS(status) : -1;
    end.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    return end;
}

}  // namespace

bool Child::ended() {
    if (mEnded || mPid <= 0) return true;
    int status = 0;
    pid_t waited = waitpid(mPid, &status, WNOHANG);
    if (waited == 0) return false;
    mEnded = true;
    if (waited == mPid) mEnd = endOf(status);
    return true;
}

ChildEnd Child::wait(std::chrono::milliseconds deadline) {
    const auto until = std::chrono::steady_clock::now() + deadline;
    while (!ended() && std::chrono::steady_clock::now() < until) usleep(1000);
    if (!ended()) {
        ::kill(mPid, SIGKILL);
        int status = 0;
        waitpid(mPid, &status, 0);
        mEnded = true;
        mEnd = endOf(status);
        mEnd.timedOut = true;
    }
    return mEnd;
}

int exitStatusInChild(const std::function<int()>& body, std::chrono::milliseconds deadline) {
    ChildEnd end = Child(body).wait(deadline);
    return end.exited && !end.timedOut ? end.code : -1;
}

ChildOutcome runWithFileSizeLimit(size_t limit, const std::function<int()>& body) {
    return runInChild(
            [limit] {
                signal(SIGXFSZ, SIG_IGN);  // a write past the limit then fails with EFBIG
                rlimit fileSize{};
                fileSize.rlim_cur = fileSize.rlim_max = limit;
                if (setrlimit(RLIMIT_FSIZE, &fileSize) != 0) _exit(4);
            },
            body);
}

}  // namespace vesk::test
