/*
 * Test support: every test runs against a fresh temporary device root, with the log captured
 * in memory, and leaves the process as it found it (device root, $VESK_ROOT, log sink), so
 * that a test program also passes with all its tests in one process, in any order.
 */
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "vesk/host/LogSink.h"

namespace vesk::test {

// Creates a fresh device root below $TMPDIR and makes it this process's root; removes it again
// and puts back the root (and $VESK_ROOT) that the process had before.
class TempRoot {
  public:
    TempRoot();
    ~TempRoot();
    TempRoot(const TempRoot&) = delete;
    TempRoot& operator=(const TempRoot&) = delete;

    const std::string& path() const { return mPath; }
    // The host location of a device path inside this root.
    std::string operator/(const std::string& devicePath) const;

  private:
    std::string mPath;
    bool mHadPrevious = false;  // $VESK_ROOT was set before
    std::string mPrevious;
};

// Base fixture: a fresh root (so a fresh property store: every property unset), the log
// captured; the log goes back to stderr, the process's default, afterwards.
class RootTest : public ::testing::Test {
  protected:
    RootTest() { vesk::host::startLogCapture(); }
    ~RootTest() override {
        vesk::host::clearCapturedLog();
        vesk::host::logToStderr();
    }
    TempRoot root;
};

void setProperty(const std::string& name, const std::string& value);
std::string getProperty(const std::string& name);

// Runs a shell command line and returns its standard output (exit status in *status).
std::string runCommand(const std::string& commandLine, int* status = nullptr);

std::string readFile(const std::string& path);
// The whole content of an open file, from its start (its offset is left as it was).
std::string contentOf(int fd);
void writeFile(const std::string& path, const std::string& content);

// Log lines as {priority, tag, message}; printable by gtest.
using LogLines = std::vector<vesk::host::LogLine>;
LogLines capturedLog();
LogLines capturedLogWithTag(const std::string& tag);

}  // namespace vesk::test

namespace vesk::host {
bool operator==(const LogLine& a, const LogLine& b);
void PrintTo(const LogLine& line, std::ostream* os);
}  // namespace vesk::host
