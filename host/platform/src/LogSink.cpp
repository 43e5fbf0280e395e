/*
 * The host's sink for liblog: logcat-style stderr lines, JSON lines in a file, or an in-memory
 * capture for tests, or nowhere (the fuzzers). Installed with every priority enabled when the
 * library is loaded.
 */
#include "vesk/host/LogSink.h"

#include <android/log.h>
#include <stdio.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include <mutex>
#include <nlohmann/json.hpp>

namespace vesk::host {
namespace {

std::mutex gMutex;
FILE* gJsonFile = nullptr;       // guarded by gMutex
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
    if (gJsonFile != nullptr) {
        fprintf(gJsonFile, "%s\n", text.c_str());
        fflush(gJsonFile);
    }
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
    FILE* file = fopen(path.c_str(), "ae");
    if (file == nullptr) return false;
    {
        std::lock_guard<std::mutex> lock(gMutex);
        if (gJsonFile != nullptr) fclose(gJsonFile);
        gJsonFile = file;
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
