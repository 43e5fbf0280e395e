/*
 * One open serial channel: a pseudo-terminal pair whose peer side is published as a symbolic
 * link (ROOT/dev/ttyVESK485 -> /dev/pts/N, made through the root's jail), so that any serial
 * program can be the far end.
 *
 * The simulator keeps the peer side open as well, so that the line stays usable (no hang-up,
 * no EIO) while no program is connected; what is written then waits in the line's buffer.
 * Reads, writes and close may come from different threads at once: close() wakes a read or a
 * write that is waiting, and the descriptors are released only when the last call using the
 * port has returned.
 */
#pragma once

#include <termios.h>

#include <atomic>
#include <memory>
#include <string>

namespace vesk::sim {

class PtyPort {
  public:
    // Opens a pair with `line` applied and publishes its peer at the device path `linkPath`
    // below `root` (replacing what was there); null on failure, with nothing left behind.
    static std::shared_ptr<PtyPort> open(const termios& line, const std::string& root,
                                         const std::string& linkPath);
    ~PtyPort();
    PtyPort(const PtyPort&) = delete;
    PtyPort& operator=(const PtyPort&) = delete;

    // Bytes read (0 when nothing came), or -1. A blocking read waits up to `timeoutMs` for the
    // first byte and returns what is there then; close() ends the wait with -1.
    int read(unsigned char* buffer, unsigned int capacity, unsigned int timeoutMs, bool blocking);
    // Bytes written, or -1 when none could be. Waits at most kWriteWaitMs for room in the
    // line's buffer (a peer that does not read); what did not fit by then is not written.
    int write(const unsigned char* bytes, unsigned int count);
    // Removes the link and wakes every waiting call; later calls fail.
    void close();

    const std::string& peerPath() const { return mPeerPath; }

    static constexpr int kWriteWaitMs = 1000;

  private:
    PtyPort() = default;
    // Waits until the line has `events` (ready) or the time runs out (not ready); false when
    // the port was closed or poll failed.
    bool waitFor(short events, long long timeoutMs, bool& ready);

    int mMaster = -1;
    int mPeer = -1;
    int mWake = -1;  // eventfd, readable once close() was called
    std::string mPeerPath;
    std::string mRoot, mLinkPath;  // the link: the device path mLinkPath below mRoot
    std::atomic<bool> mClosed{false};
};

}  // namespace vesk::sim
