/*
 * A server program of this build in a process of its own: started with its arguments (under the
 * emulator in a cross build), waited for until it prints its first line (a server says where it
 * listens), its later lines of standard output read, stopped with SIGTERM or killed. Its standard
 * error goes to a file when one is named (a server that writes much cannot stall on a pipe no
 * one reads), else where this process's goes; variables of its own are set in its environment on
 * top of this process's.
 */
#pragma once

#include <signal.h>
#include <sys/types.h>

#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "ChildProcess.h"

namespace vesk::test {

class ServerProcess {
  public:
    using Environment = std::vector<std::pair<std::string, std::string>>;

    // Starts `program` with `arguments`; listening() tells whether its first line, within the
    // deadline, was `readyLine`.
    ServerProcess(const std::string& program, const std::vector<std::string>& arguments,
                  const std::string& readyLine, const std::string& errorFile = "",
                  const Environment& environment = {});
    ~ServerProcess();
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;

    bool listening() const { return mListening; }
    // The first line it printed ("" if none came within the deadline).
    const std::string& firstLine() const { return mFirstLine; }
    // Its next line of standard output; "" at its end or past the deadline.
    std::string nextLine(std::chrono::milliseconds deadline = std::chrono::seconds(30));
    pid_t pid() const { return mChild->pid(); }
    void kill() { mChild->kill(); }
    // SIGTERM (or the signal given), then how it ended.
    ChildEnd stop(int signal = SIGTERM);
    // Whether it has ended (without waiting for it).
    bool hasEnded() { return mChild->ended(); }
    // How it ended, once it has (at most `deadline`; killed past it).
    ChildEnd wait(std::chrono::milliseconds deadline = std::chrono::seconds(60)) {
        return mChild->wait(deadline);
    }

  private:
    std::unique_ptr<Child> mChild;
    int mOutput = -1;
    std::string mBuffered;
    std::string mFirstLine;
    bool mListening = false;
};

}  // namespace vesk::test
