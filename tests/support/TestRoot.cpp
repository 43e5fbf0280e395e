#include "TestRoot.h"

#include <cutils/properties.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

#include "vesk/host/DeviceRoot.h"

namespace vesk::test {

TempRoot::TempRoot() {
    if (const char* previous = getenv("VESK_ROOT")) {
        mHadPrevious = true;
        mPrevious = previous;
    }
    const char* tmp = getenv("TMPDIR");
    std::string pattern =
            std::string(tmp != nullptr && tmp[0] != '\0' ? tmp : "/tmp") + "/vesk-root-XXXXXX";
    std::vector<char> buffer(pattern.begin(), pattern.end());
    buffer.push_back('\0');
    if (mkdtemp(buffer.data()) == nullptr) {
        ADD_FAILURE() << "mkdtemp failed";
    }
    mPath = buffer.data();
    vesk::host::setDeviceRoot(mPath);
}

TempRoot::~TempRoot() {
    if (getenv("VESK_KEEP_TEST_ROOT") == nullptr) {
        std::string command = "rm -rf '" + mPath + "'";
        if (system(command.c_str()) != 0) fprintf(stderr, "could not remove %s\n", mPath.c_str());
    }
    // The root before this one, where there was one still standing; otherwise only the
    // variable is put back.
    struct stat st;
    if (mHadPrevious && stat(mPrevious.c_str(), &st) == 0 && S_ISDIR(st.st_mode)) {
        vesk::host::setDeviceRoot(mPrevious);
    } else if (mHadPrevious) {
        setenv("VESK_ROOT", mPrevious.c_str(), 1);
    } else {
        unsetenv("VESK_ROOT");
    }
}

std::string TempRoot::operator/(const std::string& devicePath) const {
    return vesk::host::pathBelowRoot(mPath, devicePath);
}

void setProperty(const std::string& name, const std::string& value) {
    ASSERT_EQ(0, property_set(name.c_str(), value.c_str())) << name;
}

std::string getProperty(const std::string& name) {
    char value[PROPERTY_VALUE_MAX] = {};
    property_get(name.c_str(), value, "");
    return value;
}

std::string runCommand(const std::string& commandLine, int* status) {
    std::string output;
    FILE* pipe = popen(commandLine.c_str(), "r");
    if (pipe == nullptr) {
        if (status != nullptr) *status = -1;
        return output;
    }
    char buffer[4096];
    size_t n;
    while ((n = fread(buffer, 1, sizeof(buffer), pipe)) > 0) output.append(buffer, n);
    int raw = pclose(pipe);
    if (status != nullptr) *status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    return output;
}

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream content;
    content << in.rdbuf();
    return content.str();
}

std::string contentOf(int fd) {
    std::string text;
    char buffer[4096];
    ssize_t count;
    for (off_t at = 0; (count = pread(fd, buffer, sizeof(buffer), at)) > 0; at += count) {
        text.append(buffer, static_cast<size_t>(count));
    }
    return text;
}

void writeFile(const std::string& path, const std::string& content) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << content;
}

LogLines capturedLog() {
    return vesk::host::capturedLog();
}

LogLines capturedLogWithTag(const std::string& tag) {
    LogLines lines;
    for (auto& line : vesk::host::capturedLog()) {
        if (line.tag == tag) lines.push_back(line);
    }
    return lines;
}

}  // namespace vesk::test

namespace vesk::host {

bool operator==(const LogLine& a, const LogLine& b) {
    return a.priority == b.priority && a.tag == b.tag && a.message == b.message;
}

void PrintTo(const LogLine& line, std::ostream* os) {
    std::string escaped;
    for (char c : line.message) {
        if (c == '\n') {
            escaped += "\\n";
        } else {
            escaped += c;
        }
    }
    *os << "{" << line.priority << ", \"" << line.tag << "\", \"" << escaped << "\"}";
}

}  // namespace vesk::host
