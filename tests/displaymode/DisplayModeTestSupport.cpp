#include "DisplayModeTestSupport.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

namespace vesk::test {
namespace {

constexpr size_t kCopySize = 65536;
constexpr size_t kDataSize = 65532;

// Sets or clears the immutable flag; false when the file system or the process cannot.
bool setImmutable(const std::string& path, bool on) {
    int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return false;
    int flags = 0;
    bool done = ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0;
    if (done) {
        flags = on ? (flags | FS_IMMUTABLE_FL) : (flags & ~FS_IMMUTABLE_FL);
        done = ioctl(fd, FS_IOC_SETFLAGS, &flags) == 0;
    }
    close(fd);
    return done;
}

}  // namespace

LogLines capturedLogWithTags(std::initializer_list<const char*> tags) {
    LogLines lines;
    for (const auto& line : capturedLog()) {
        for (const char* tag : tags) {
            if (line.tag == tag) {
                lines.push_back(line);
                break;
            }
        }
    }
    return lines;
}

int countLines(const char* tag, const std::string& text) {
    int count = 0;
    for (const auto& line : capturedLog()) {
        if (line.tag == tag && line.message.find(text) != std::string::npos) ++count;
    }
    return count;
}

int indexOfLine(const char* tag, const std::string& text) {
    LogLines lines = capturedLog();
    for (size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].tag == tag && lines[i].message.find(text) != std::string::npos) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

std::vector<std::string> fieldsOf(const std::string& text) {
    std::vector<std::string> fields;
    size_t start = 0;
    for (;;) {
        size_t comma = text.find(',', start);
        fields.push_back(text.substr(start, comma - start));
        if (comma == std::string::npos) return fields;
        start = comma + 1;
    }
}

std::string partitionBytes(const TempRoot& root) {
    return readFile(root / kEnvPartition);
}

void writeEnvironment(const TempRoot& root, const Variables& variables) {
    std::string text;
    for (const auto& [key, value] : variables) text += key + "=" + value + "\n";
    std::string input = root / "/data/env.txt";
    std::string copy = root / "/data/env-copy.bin";
    writeFile(input, text);
    int status = -1;
    std::string output =
            runCommand("mkenvimage -s 0x10000 -o '" + copy + "' '" + input + "' 2>&1", &status);
    ASSERT_EQ(0, status) << output;
    std::string bytes = readFile(copy);
    ASSERT_EQ(kCopySize, bytes.size());
    writeFile(root / kEnvPartition, bytes + bytes);
}

Variables filledUpTo(Variables variables, size_t spare) {
    // The list takes each "key=value" with its NUL, then the NUL that ends it.
    size_t used = 1;
    for (const auto& [key, value] : variables) used += key.size() + 1 + value.size() + 1;
    size_t left = kDataSize - spare - used;
    constexpr size_t kOverhead = 10;  // "fillerNN", '=' and the NUL
    constexpr size_t kLongest = 4000;
    for (int n = 0; left > 0; ++n) {
        size_t length = kLongest;
        if (left <= kLongest + kOverhead) {
            length = left - kOverhead;  // the last one
        } else if (left - kLongest - kOverhead <= kOverhead) {
            length = left - 2 * kOverhead - 1;  // leave the last one a character
        }
        std::string key = "filler" + std::to_string(n / 10) + std::to_string(n % 10);
        variables.emplace_back(key, std::string(length, 'f'));
        left -= kOverhead + length;
    }
    return variables;
}

std::string printenv(const TempRoot& root, int copy, const std::string& name) {
    std::string config = root / (copy == 0 ? "/data/copy-0.config" : "/data/copy-1.config");
    writeFile(config, (root / kEnvPartition) + (copy == 0 ? " 0x0" : " 0x10000") + " 0x10000\n");
    int status = -1;
    std::string output =
            runCommand("fw_printenv -c '" + config + "' -n " + name + " 2>/dev/null", &status);
    if (status != 0) return "<absent>";
    if (!output.empty() && output.back() == '\n') output.pop_back();
    return output;
}

UnwritableFile::UnwritableFile(std::string path) : mPath(std::move(path)) {
    if (geteuid() == 0) {
        mImmutable = setImmutable(mPath, true);
        EXPECT_TRUE(mImmutable) << "cannot make " << mPath << " immutable";
    } else {
        EXPECT_EQ(0, chmod(mPath.c_str(), 0444)) << mPath;
    }
    int fd = open(mPath.c_str(), O_RDWR | O_CLOEXEC);
    EXPECT_LT(fd, 0) << mPath << " is still writable";
    if (fd >= 0) close(fd);
}

UnwritableFile::~UnwritableFile() {
    if (mImmutable) setImmutable(mPath, false);
    chmod(mPath.c_str(), 0644);
}

}  // namespace vesk::test
