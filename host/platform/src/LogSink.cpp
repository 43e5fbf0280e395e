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

#include <atomic>
#include <mutex>
#include <nlohmann/json.hpp>

namespace vesk::host {
namespace {

std::mutex gMutex;
std::string gJsonPath;           // guarded by gMutex
FILE* gJsonFile = nullptr;       // guarded by gMutex; opened at the first line
std::vector<LogLine> gCaptured;  // guarded by gMutex
LogHandler gHandler;             // guarded by gMutex
using Logger = void (*)(const __android_logger_data*, const char*);
std::atomic<Logger> gLogger{nullptr};  // the sink in place, restored by ScopedLogHandler

void install(Logger logger) {
    gLogger.store(logger);
    __android_log_set_logger(logger);
}

char priorityLetter(int priority) {
    static constexpr char kLetters[] = "??VDIWEFS";
    return priority >= 0 && priority < 9 ? kLetters[priority] : '?';
}

}  // namespace

std::string formatLogcatLine(const LogLine& line) {
    timeval now{};
    gettimeofday(&now, nullptr);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    char stamp[32];
    strftime(stamp, sizeof(stamp), "%m-%d %H:%M:%S", &local);
    std::string text = line.message;
    if (!text.empty() && text.back() == '\n') text.pop_back();
    char head[96];
    snprintf(head, sizeof(head), "%s.%03ld %5d %5ld %c ", stamp,
             static_cast<long>(now.tv_usec / 1000), getpid(),
             static_cast<long>(syscall(SYS_gettid)), priorityLetter(line.priority));
    return head + line.tag + ": " + text + "\n";
}

std::string formatJsonLogLine(const LogLine& line) {
    nlohmann::json json = {
            {"priority", line.priority}, {"tag", line.tag}, {"message", line.message}};
    // Log messages are not always valid UTF-8; replace what is not rather than throw.
    return json.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

namespace {

LogLine lineOf(const __android_logger_data* data, const char* message) {
    return {data->priority, data->tag != nullptr ? data->tag : "", message};
}

void stderrLogger(const __android_logger_data* data, const char* message) {
    std::string text = formatLogcatLine(lineOf(data, message));
    std::lock_guard<std::mutex> lock(gMutex);
    fputs(text.c_str(), stderr);
}

void handlerLogger(const __android_logger_data* data, const char* message) {
    LogLine line = lineOf(data, message);
    std::lock_guard<std::mutex> lock(gMutex);
    if (gHandler) gHandler(line);
}

void jsonLogger(const __android_logger_data* data, const char* message) {
    std::string text = formatJsonLogLine(lineOf(data, message));
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
    gCaptured.push_back(lineOf(data, message));
}

void discardLogger(const __android_logger_data*, const char*) {}

[[gnu::constructor]] void installDefaultSink() {
    __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE);
    install(stderrLogger);
}

}  // namespace

void logToStderr() {
    install(stderrLogger);
}

bool logToJsonFile(const std::string& path) {
    if (!canAppendTo(path)) return false;
    {
        std::lock_guard<std::mutex> lock(gMutex);
        if (gJsonFile != nullptr) fclose(gJsonFile);
        gJsonFile = nullptr;
        gJsonPath = path;
    }
    install(jsonLogger);
    return true;
}

void startLogCapture() {
    clearCapturedLog();
    install(captureLogger);
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
    install(discardLogger);
}

ScopedLogHandler::ScopedLogHandler(LogHandler handler)
    : mPrevious(reinterpret_cast<void (*)()>(gLogger.load())) {
    {
        std::lock_guard<std::mutex> lock(gMutex);
        gHandler = std::move(handler);
    }
    install(handlerLogger);
}

ScopedLogHandler::~ScopedLogHandler() {
    install(reinterpret_cast<Logger>(mPrevious));
    std::lock_guard<std::mutex> lock(gMutex);
    gHandler = nullptr;
}

}  // namespace vesk::host
