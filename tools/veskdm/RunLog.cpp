#include "RunLog.h"

#include <android/log.h>
#include <errno.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Errors.h"

namespace veskdm {
namespace {

// An existing file that is not a directory and can be written, or a new name in a directory
// that can be written.
bool canAppendTo(const std::string& path) {
    struct stat st {};
    if (stat(path.c_str(), &st) == 0) {
        return !S_ISDIR(st.st_mode) && access(path.c_str(), W_OK) == 0;
    }
    if (errno != ENOENT) return false;
    std::string::size_type slash = path.rfind('/');
    std::string dir = slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
    return stat(dir.c_str(), &st) == 0 && S_ISDIR(st.st_mode) &&
           access(dir.c_str(), W_OK | X_OK) == 0;
}

}  // namespace

RunLog::RunLog(std::ostream& err) : mErr(err) {
    mHandler = std::make_unique<vesk::host::ScopedLogHandler>(
            [this](const vesk::host::LogLine& line) { write(line); });
}

RunLog::~RunLog() {
    mHandler.reset();  // no line arrives after this
    if (mJsonFile != nullptr) fclose(mJsonFile);
}

void RunLog::recordTo(const std::string& path) {
    if (!canAppendTo(path)) throw UsageError("cannot open log file " + path);
    mJsonPath = path;
}

void RunLog::release() {
    std::lock_guard<std::mutex> lock(mMutex);
    for (const std::string& text : mHeld) mErr << text;
    mErr.flush();
    mHeld.clear();
}

void RunLog::drop() {
    std::lock_guard<std::mutex> lock(mMutex);
    mHeld.clear();
}

// Called by the sink one line at a time.
void RunLog::write(const vesk::host::LogLine& line) {
    if (mVerbose) {
        std::lock_guard<std::mutex> lock(mMutex);
        mErr << vesk::host::formatLogcatLine(line);
        mErr.flush();
    } else if (line.priority >= ANDROID_LOG_WARN) {
        std::lock_guard<std::mutex> lock(mMutex);
        mHeld.push_back(vesk::host::formatLogcatLine(line));
    }
    if (mJsonPath.empty()) return;
    if (mJsonFile == nullptr) mJsonFile = fopen(mJsonPath.c_str(), "ae");
    if (mJsonFile == nullptr) return;
    fprintf(mJsonFile, "%s\n", vesk::host::formatJsonLogLine(line).c_str());
    fflush(mJsonFile);
}

}  // namespace veskdm
