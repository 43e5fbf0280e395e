/*
 * Helpers of the environment tests: the factory list, the attribute list as pairs, and the
 * module's log lines split into function and text (images are built by EnvImage.h).
 */
#pragma once

#include <stdint.h>

#include <map>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "EnvImage.h"
#include "Ubootenv.h"
#include "vesk/host/LogSink.h"

namespace vesk::test {

inline constexpr char kEnvDevice[] = "/dev/block/env";
inline constexpr int kInfo = 4;   // ANDROID_LOG_INFO
inline constexpr int kError = 6;  // ANDROID_LOG_ERROR

// The factory environment of a new device root, written down by hand.
Variables factoryVariables();

std::string hex8(uint32_t value);

// The list of a loaded object, node by node (empty nodes included).
Variables attributeList(const Ubootenv& env);
// The same list by name (a later node of a name wins).
std::map<std::string, std::string> variablesOf(const Ubootenv& env);

// One log line of the module: priority, logging function and the text after the prefix.
struct EnvLog {
    int priority;
    std::string function;
    std::string text;
    int line = 0;  // the source line of the prefix; not compared
    bool operator==(const EnvLog& other) const;
};
void PrintTo(const EnvLog& line, std::ostream* os);
using EnvLogs = std::vector<EnvLog>;

// Every captured line, which must carry the tag "Ubootenv" and the prefix
// "[/Ubootenv.cpp, FUNCTION, LINE] ", LINE being a line of FUNCTION's body in the source file
// (so a line number is checked without being written into the tests). Clears the capture.
EnvLogs takeEnvLog();
// The same for lines logged elsewhere (by a child process).
EnvLogs parseEnvLog(const std::vector<vesk::host::LogLine>& captured);

// `text` as the log keeps it behind the prefix of `function` at `line`: liblog formats a
// message into 1024 bytes, terminator included.
std::string clipped(const std::string& function, int line, const std::string& text);

// The line of updateValue that names the variable it sets.
EnvLog updateLine(const std::string& name, const std::string& value);

// Repeats `lines` `count` times.
EnvLogs repeated(const EnvLogs& lines, int count);
EnvLogs operator+(EnvLogs a, const EnvLogs& b);

}  // namespace vesk::test
