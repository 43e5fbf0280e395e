#include "EnvFixture.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vesk::test {

void EnvTest::writeDevice(const std::string& device, const std::string& content) {
    std::string path = root / device;
    std::string command = "mkdir -p '" + path.substr(0, path.rfind('/')) + "'";
    ASSERT_EQ(0, system(command.c_str()));
    writeFile(path, content);
    ASSERT_EQ(content, readFile(path));
}

void EnvTest::removeDevice(const std::string& device) {
    ASSERT_EQ(0, unlink((root / device).c_str())) << device;
}

EnvLogs loadedLog(const std::string& device) {
    return {{kInfo, "init", "[ubootenv] using " + device + " with size(65536) (65532)"},
            {kInfo, "propertyLoad", "[ubootenv] set property count: 0\n"}};
}

FifoDevice::FifoDevice(const std::string& path) {
    unlink(path.c_str());
    EXPECT_EQ(0, mkfifo(path.c_str(), 0644)) << path;
    mFd = open(path.c_str(), O_RDWR | O_CLOEXEC);
    EXPECT_GE(mFd, 0) << path;
    EXPECT_GE(fcntl(mFd, F_SETPIPE_SZ, 1 << 20), 1 << 20);
    // The test's own reads and writes never wait.
    EXPECT_EQ(0, fcntl(mFd, F_SETFL, O_NONBLOCK));
}

FifoDevice::~FifoDevice() {
    if (mFd >= 0) close(mFd);
}

void FifoDevice::feed(const std::string& bytes) {
    ASSERT_EQ(static_cast<ssize_t>(bytes.size()), write(mFd, bytes.data(), bytes.size()));
}

std::string FifoDevice::drain(size_t count) {
    std::string bytes(count, '\0');
    size_t done = 0;
    while (done < count) {
        ssize_t n = read(mFd, &bytes[done], count - done);
        if (n <= 0) break;
        done += static_cast<size_t>(n);
    }
    bytes.resize(done);
    return bytes;
}

size_t FifoDevice::pending() const {
    int bytes = 0;
    EXPECT_EQ(0, ioctl(mFd, FIONREAD, &bytes));
    return static_cast<size_t>(bytes);
}

}  // namespace vesk::test
