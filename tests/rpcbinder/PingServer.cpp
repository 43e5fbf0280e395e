#include "PingServer.h"

#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <vector>

#include "BuiltProgram.h"

namespace vesk::test {

PingServer::PingServer(const std::string& socketPath, int maxThreads) {
    int fds[2];
    if (pipe(fds) != 0) return;
    std::vector<std::string> words = builtProgramArgv(VESK_BINARY_DIR "/bin/ping_server");
    words.push_back(socketPath);
    words.push_back(std::to_string(maxThreads));
    mChild = std::make_unique<Child>([&] {
        dup2(fds[1], STDOUT_FILENO);
        close(fds[0]);
        close(fds[1]);
        std::vector<char*> argv;
        for (std::string& word : words) argv.push_back(word.data());
        argv.push_back(nullptr);
        execv(argv[0], argv.data());
        return 127;
    });
    close(fds[1]);
    mOutput = fds[0];
    mFirstLine = nextLine();
    mListening = mFirstLine == "listening on " + socketPath;
}

PingServer::~PingServer() {
    mChild.reset();
    if (mOutput >= 0) close(mOutput);
}

std::string PingServer::nextLine(std::chrono::milliseconds deadline) {
    auto end = std::chrono::steady_clock::now() + deadline;
    size_t newline;
    while ((newline = mBuffered.find('\n')) == std::string::npos) {
        auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                end - std::chrono::steady_clock::now());
        pollfd readable{mOutput, POLLIN, 0};
        if (left.count() <= 0 || poll(&readable, 1, static_cast<int>(left.count())) != 1) {
            return "";
        }
        char buffer[256];
        ssize_t n = read(mOutput, buffer, sizeof(buffer));
        if (n <= 0) return "";
        mBuffered.append(buffer, static_cast<size_t>(n));
    }
    std::string line = mBuffered.substr(0, newline);
    mBuffered.erase(0, newline + 1);
    return line;
}

ChildEnd PingServer::stop() {
    ::kill(mChild->pid(), SIGTERM);
    return mChild->wait();
}

}  // namespace vesk::test
