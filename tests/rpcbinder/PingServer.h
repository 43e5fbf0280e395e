/*
 * A ping_server process of this build, serving IPing on a socket path through the host's
 * registration seam: started, waited for until it listens, read from, stopped or killed.
 */
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "ChildProcess.h"

namespace vesk::test {

class PingServer {
  public:
    // Starts ping_server on socketPath; listening() tells whether it came up.
    explicit PingServer(const std::string& socketPath, int maxThreads = 4);
    ~PingServer();
    PingServer(const PingServer&) = delete;
    PingServer& operator=(const PingServer&) = delete;

    // It printed "listening on SOCKET".
    bool listening() const { return mListening; }
    // The first line it printed ("" if none came within the deadline).
    const std::string& firstLine() const { return mFirstLine; }
    // Its next line of standard output; "" at its end or past the deadline.
    std::string nextLine(std::chrono::milliseconds deadline = std::chrono::seconds(30));
    void kill() { mChild->kill(); }
    // SIGTERM, then how it ended.
    ChildEnd stop();

  private:
    std::unique_ptr<Child> mChild;
    int mOutput = -1;
    std::string mBuffered;
    std::string mFirstLine;
    bool mListening = false;
};

}  // namespace vesk::test
