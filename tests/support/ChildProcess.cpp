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

size_t addressSpaceInUse() {
    FILE* status = fopen("/proc/self/status", "re");
    char line[256];
    size_t kib = 0;
    while (status != nullptr && fgets(line, sizeof(line), status) != nullptr) {
        if (strncmp(line, "VmSize:", 7) == 0) kib = strtoull(line + 7, nullptr, 10);
    }
    if (status != nullptr) fclose(status);
    return kib * 1024;
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
    pid_t pid = fork();
    if (pid == 0) {
        close(pipeFds[0]);
        gChildLogSize = 0;
        __android_log_set_logger(childLogger);
        limit();
        int result = body();
        writeAll(pipeFds[1], &result, sizeof(result));
        writeAll(pipeFds[1], gChildLog, gChildLogSize);
        _exit(0);
    }
    close(pipeFds[1]);
    std::string output;
    char buffer[65536];
    ssize_t n;
    while ((n = read(pipeFds[0], buffer, sizeof(buffer))) > 0) output.append(buffer, n);
    close(pipeFds[0]);
    int status = 0;
    EXPECT_EQ(pid, waitpid(pid, &status, 0));
    ChildOutcome outcome;
    outcome.exited = WIFEXITED(status) && WEXITSTATUS(status) == 0 && output.size() >= 4;
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

ChildOutcome runWithMemoryLimit(size_t headroom, const std::function<int()>& body) {
    return runInChild(
            [headroom] {
                rlimit limit{};
                limit.rlim_cur = limit.rlim_max = addressSpaceInUse() + headroom;
                if (setrlimit(RLIMIT_AS, &limit) != 0) _exit(4);
            },
            body);
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
