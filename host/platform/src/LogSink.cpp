/*
 * The host's sink for liblog: logcat-style stderr lines, JSON lines in a file, or an in-memory
 * capture for tests, or nowhere (the fuzzers). Installed with every priority enabled when the
 * library is loaded.
 */
#include "vesk/host/LogSink.h"

#include <android/log.h>
#include <errno.h>
#include <stdio.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include <mutex>
#include <nlohmann/json.hpp>

namespace vesk::host {
namespace {

std::mutex gMutex;
std::string gJsonPath;           // guarded by gMutex
FILE* gJsonFile = nullptr;       // guarded by gMutex; opened at the first line
std::vector<LogLine> gCaptured;  // guarded by gMutex

char priorityLetter(int priority) {
    static constexpr char kLetters[] = "??VDIWEFS";
    return priority >= 0 && priority < 9 ? kLetters[priority] : '?';
}

void stderrLogger(const __android_logger_data* data, const char* message) {
    timeval now{};
    gettimeofday(&now, nullptr);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    char stamp[32];
    strftime(stamp, sizeof(stamp), "%m-%d %H:%M:%S", &local);
    std::string text = message;
    if (!text.empty() && text.back() == '\n') text.pop_back();
    std::lock_guard<std::mutex> lock(gMutex);
    fprintf(stderr, "%s.%03ld %5d %5ld %c %s: %s\n", stamp, static_cast<long>(now.tv_usec / 1000),
            getpid(), static_cast<long>(syscall(SYS_gettid)), priorityLetter(data->priority),
            data->tag != nullptr ? data->tag : "", text.c_str());
}

void jsonLogger(const __android_logger_data* data, const char* message) {
    nlohmann::json line = {{"priority", data->priority},
                           {"tag", data->tag != nullptr ? data->tag : ""},
                           {"message", message}};
    // Log messages are not always valid UTF-8; replace what is not rather than throw.
    std::string text = line.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
    std::lock_guard<std::mutex> lock(gMutex);
    if (gJsonFile == nullptr) gJsonFile = fopen(gJsonPath.c_str(), "ae");
    // Checked when chosen; should it have gone since, the line goes to stderr, not nowhere.
    FILE* out = gJsonFile != nullptr ? gJsonFile : stderr;
    fprintf(out, "%s\n", text.c_str());
    fflush(out);
}

// An existing file that is not a directory and can be written, or a new name in a directory
// that can be written.
bool canAppendTo(const std::string& path) {
    struct stat st {};
    if (stat(path.c_str(), &st) == 0)
        return !S_ISDIR(st.st_mode) && access(path.c_str(), W_OK) == 0;
    if (errno != ENOENT) return false;
    std::string::size_type slash = path.rfind('/');
    std::string dir = slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
    return stat(dir.c_str(), &st) == 0 && S_ISDIR(st.st_mode) &&
           access(dir.c_str(), W_OK | X_OK) == 0;
}

void captureLogger(const __android_logger_data* data, const char* message) {
    std::lock_guard<std::mutex> lock(gMutex);
    gCaptured.push_back({data->priority, data->tag != nullptr ? data->tag : "", message});
}

void discardLogger(const __android_logger_data*, const char*) {}

[[gnu::constructor]] void installDefaultSink() {
    __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE);
    __android_log_set_logger(stderrLogger);
}

}  // namespace

void logToStderr() {
    __android_log_set_logger(stderrLogger);
}

bool logToJsonFile(const std::string& path) {
    if (!canAppendTo(path)) return false;
    {
        std::lock_guard<std::mutex> lock(gMutex);
        if (gJsonFile != nullptr) fclose(gJsonFile);
        gJsonFile = nullptr;
        gJsonPath = path;
    }
    __android_log_set_logger(jsonLogger);
    return true;
}

void startLogCapture() {
    clearCapturedLog();
    __android_log_set_logger(captureLogger);
}

std::vector<LogLine> capturedLog() {
    std::lock_guard<std::mutex> lock(gMutex);
    return gCaptured;
}

void clearCapturedLog() {
    std::lock_guard<std::mutex> lock(gMutex);
    gCaptured.clear();
}

void discardLog() {
    __android_log_set_logger(discardLogger);
}

}  // namespace vesk::host
