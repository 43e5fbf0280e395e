/*
 * Helpers of the environment tests: partition images built from the format's rules (zlib's
 * CRC-32 from 0 over the data area, the word in the machine's byte order), the attribute list
 * as pairs, and the module's log lines split into function and text.
 */
#pragma once

#include <stdint.h>

#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "Ubootenv.h"
#include "vesk/host/LogSink.h"

namespace vesk::test {

inline constexpr char kEnvDevice[] = "/dev/block/env";
inline constexpr int kInfo = 4;   // ANDROID_LOG_INFO
inline constexpr int kError = 6;  // ANDROID_LOG_ERROR

using Variables = std::vector<std::pair<std::string, std::string>>;

// The factory environment of a new device root, written down by hand.
Variables factoryVariables();

// The strings "key=value" of `variables`.
std::vector<std::string> envStrings(const Variables& variables);

// A data area of `size` bytes: each string NUL-terminated, in order, then zero bytes.
std::string dataArea(const std::vector<std::string>& strings, size_t size = 65532);
// One copy: the CRC word of `data` (the first `crcBytes` of it, all by default), then `data`.
std::string envCopy(const std::string& data, size_t crcBytes = std::string::npos);
// Copy A at 0 and copy B at 65536 (padded with `fill` between and after as needed).
std::string twoCopies(const std::string& copyA, const std::string& copyB, char fill = '\0');
// The usual partition: the same 65536-byte copy of `variables` twice.
std::string envImage(const Variables& variables);

uint32_t crcOf(const std::string& bytes);
uint32_t storedCrc(const std::string& image, size_t offset);
// True when the copy at `offset` holds the CRC of its `dataBytes`-byte data area.
bool copyValid(const std::string& image, size_t offset, size_t dataBytes = 65532);
std::string hex8(uint32_t value);

// The list of a loaded object, node by node (empty nodes included).
Variables attributeList(const Ubootenv& env);

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

// Repeats `lines` `count` times.
EnvLogs repeated(const EnvLogs& lines, int count);
EnvLogs operator+(EnvLogs a, const EnvLogs& b);

}  // namespace vesk::test
