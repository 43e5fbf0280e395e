/*
 * The far end of a simulated serial channel, as any serial program sees it: the terminal the
 * channel's link names, opened and read with plain system calls.
 */
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <climits>
#include <string>
#include <vector>

namespace vesk::test {

class SerialPeer {
  public:
    explicit SerialPeer(const std::string& path)
        : mFd(::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {}
    ~SerialPeer() {
        if (mFd >= 0) ::close(mFd);
    }
    SerialPeer(const SerialPeer&) = delete;
    SerialPeer& operator=(const SerialPeer&) = delete;

    bool isOpen() const { return mFd >= 0; }
    int fd() const { return mFd; }

    termios line() const {
        termios settings{};
        tcgetattr(mFd, &settings);
        return settings;
    }

    bool send(const std::vector<uint8_t>& bytes) {
        return ::write(mFd, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
    }

    // Up to `count` bytes, gathered until they are all there or `patienceMs` has passed.
    std::vector<uint8_t> receive(size_t count, int patienceMs = 5000) {
        std::vector<uint8_t> bytes;
        const auto deadline =
                std::chrono::steady_clock::now() + std::chrono::milliseconds(patienceMs);
        while (bytes.size() < count && std::chrono::steady_clock::now() < deadline) {
            pollfd fds{mFd, POLLIN, 0};
            if (poll(&fds, 1, 50) <= 0) continue;
            uint8_t buffer[256];
            ssize_t got = ::read(mFd, buffer, std::min(sizeof(buffer), count - bytes.size()));
            if (got <= 0) break;
            bytes.insert(bytes.end(), buffer, buffer + got);
        }
        return bytes;
    }

  private:
    int mFd;
};

// Where a symbolic link points; empty when `path` is not one.
inline std::string linkTarget(const std::string& path) {
    char buffer[PATH_MAX];
    ssize_t length = readlink(path.c_str(), buffer, sizeof(buffer) - 1);
    return length < 0 ? std::string() : std::string(buffer, static_cast<size_t>(length));
}

}  // namespace vesk::test
