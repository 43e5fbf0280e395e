/*
 * Where the host's Android log lines go. The library installs the logcat-style stderr sink
 * with every priority enabled when it is loaded.
 */
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace vesk::host {

struct LogLine {
    int priority;
    std::string tag;
    std::string message;  // exactly as formatted, line end included
};

// logcat-style lines on stderr (the default).
void logToStderr();
// One JSON object per line, {"priority":3,"tag":"...","message":"..."}, appended to a file
// that is made at the first line (a run that logs nothing leaves no file); false if it could
// not be appended to or made.
bool logToJsonFile(const std::string& path);
// Keeps every line in memory (tests); replaces the other sinks until logToStderr().
void startLogCapture();
std::vector<LogLine> capturedLog();
void clearCapturedLog();
// Formats every line and keeps none (fuzzing: one input can log hundreds of thousands of
// lines, which a capture would hold until the input ends).
void discardLog();

// A line as the stderr sink prints it (logcat style, line end included) and as the JSON-file
// sink writes it (without the line end).
std::string formatLogcatLine(const LogLine& line);
std::string formatJsonLogLine(const LogLine& line);

// Every line goes to `handler` (called one line at a time) while this object lives; the sink
// in place before comes back when it goes.
using LogHandler = std::function<void(const LogLine&)>;
class ScopedLogHandler {
  public:
    explicit ScopedLogHandler(LogHandler handler);
    ~ScopedLogHandler();
    ScopedLogHandler(const ScopedLogHandler&) = delete;
    ScopedLogHandler& operator=(const ScopedLogHandler&) = delete;

  private:
    void (*mPrevious)();
};

}  // namespace vesk::host
