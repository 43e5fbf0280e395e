/*
 * Test support: every test runs in its own process against a fresh temporary device root,
 * with the log captured in memory.
 */
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "vesk/host/LogSink.h"

namespace vesk::test {

// Creates a fresh device root below $TMPDIR and makes it this process's root; removes it again.
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
};

// Base fixture: a fresh root, the log captured, the level property unset.
class RootTest : public ::testing::Test {
  protected:
    RootTest() { vesk::host::startLogCapture(); }
    TempRoot root;
};

void setProperty(const std::string& name, const std::string& value);
std::string getProperty(const std::string& name);

// Runs a shell command line and returns its standard output (exit status in *status).
std::string runCommand(const std::string& commandLine, int* status = nullptr);

std::string readFile(const std::string& path);
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
