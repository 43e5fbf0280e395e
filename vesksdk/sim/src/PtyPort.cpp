#include "PtyPort.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <climits>

#include "vesk/host/RootFiles.h"

namespace vesk::sim {
namespace {

using Clock = std::chrono::steady_clock;

long long millisecondsUntil(Clock::time_point deadline) {
    auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    return std::max<long long>(0, left.count());
}

}  // namespace

std::shared_ptr<PtyPort> PtyPort::open(const termios& line, const std::string& root,
                                       const std::string& linkPath) {
    std::shared_ptr<PtyPort> port(new PtyPort());
    port->mMaster = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    if (port->mMaster < 0 || grantpt(port->mMaster) != 0 || unlockpt(port->mMaster) != 0) {
        return nullptr;
    }
    char name[PATH_MAX];
    if (ptsname_r(port->mMaster, name, sizeof(name)) != 0) return nullptr;
    port->mPeerPath = name;
    port->mPeer = ::open(name, O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    port->mWake = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (port->mPeer < 0 || port->mWake < 0) return nullptr;
    // The settings belong to the peer's side; a program that opens it sees them. tcsetattr()
    // succeeds when any part of them was taken: a line whose speed did not take (one the
    // terminal layer does not carry) is no line at all. (A pseudo-terminal keeps no parity
    // enable bit, so the framing is not compared.)
    termios taken{};
    if (tcsetattr(port->mPeer, TCSANOW, &line) != 0 || tcgetattr(port->mPeer, &taken) != 0 ||
        cfgetospeed(&taken) != cfgetospeed(&line) || cfgetispeed(&taken) != cfgetispeed(&line)) {
        return nullptr;
    }
    // Through the root's jail: a link planted on the way out of the root is refused.
    if (!host::publishLinkBelowRoot(root, linkPath, port->mPeerPath)) return nullptr;
    port->mRoot = root;
    port->mLinkPath = linkPath;
    return port;
}

PtyPort::~PtyPort() {
    close();
    for (int fd : {mMaster, mPeer, mWake}) {
        if (fd >= 0) ::close(fd);
    }
}

void PtyPort::close() {
    if (mClosed.exchange(true)) return;
    // Another process may have published its own port at the same place since.
    if (!mLinkPath.empty()) host::removeLinkBelowRoot(mRoot, mLinkPath, mPeerPath);
    if (mWake >= 0) {
        uint64_t one = 1;
        (void)!::write(mWake, &one, sizeof(one));
    }
}

bool PtyPort::waitFor(short events, long long timeoutMs, bool& ready) {
    const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
    for (;;) {
        if (mClosed.load()) return false;
        pollfd fds[] = {{mMaster, events, 0}, {mWake, POLLIN, 0}};
        const long long left = millisecondsUntil(deadline);
        int result = poll(fds, 2, static_cast<int>(std::min<long long>(left, INT_MAX)));
        if (result < 0 && errno != EINTR) return false;
        if (fds[1].revents != 0) return false;
        if (result > 0 && fds[0].revents != 0) {
            ready = true;
            return true;
        }
        if (Clock::now() >= deadline) {
            ready = false;
            return true;
        }
    }
}

int PtyPort::read(unsigned char* buffer, unsigned int capacity, unsigned int timeoutMs,
                  bool blocking) {
    if (mClosed.load()) return -1;
    if (capacity == 0) return 0;
    if (blocking) {
        bool ready = false;
        if (!waitFor(POLLIN, timeoutMs, ready)) return -1;
        if (!ready) return 0;
    }
    for (;;) {
        ssize_t count = ::read(mMaster, buffer, capacity);
        if (count >= 0) return static_cast<int>(count);
        if (errno == EINTR) continue;
        return errno == EAGAIN ? 0 : -1;
    }
}

int PtyPort::write(const unsigned char* bytes, unsigned int count) {
    if (mClosed.load()) return -1;
    const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(kWriteWaitMs);
    unsigned int written = 0;
    while (written < count) {
        ssize_t result = ::write(mMaster, bytes + written, count - written);
        if (result > 0) {
            written += static_cast<unsigned int>(result);
            continue;
        }
        if (result < 0 && errno == EINTR) continue;
        if (result < 0 && errno != EAGAIN) break;
        bool ready = false;
        if (!waitFor(POLLOUT, millisecondsUntil(deadline), ready) || !ready) break;
    }
    if (written == 0 && count > 0) return -1;
    return static_cast<int>(written);
}

}  // namespace vesk::sim
