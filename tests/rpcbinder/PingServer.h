/*
 * A ping_server process of this build, serving IPing on a socket path through the host's
 * registration seam: started, waited for until it listens, read from, stopped or killed.
 */
#pragma once

#include <string>

#include "ServerProcess.h"

namespace vesk::test {

class PingServer : public ServerProcess {
  public:
    explicit PingServer(const std::string& socketPath, int maxThreads = 4)
        : ServerProcess(VESK_BINARY_DIR "/bin/ping_server",
                        {socketPath, std::to_string(maxThreads)}, "listening on " + socketPath) {}
};

}  // namespace vesk::test
