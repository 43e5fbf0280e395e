#include "ServerProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include "BuiltProgram.h"

namespace vesk::test {

ServerProcess::ServerProcess(const std::string& program, const std::vector<std::string>& arguments,
                             const std::string& readyLine, const std::string& errorFile,
                             const Environment& environment) {
    int fds[2];
    if (pipe(fds) != 0) return;
    std::vector<std::string> words = builtProgramArgv(program);
    words.insert(words.end(), arguments.begin(), arguments.end());
    mChild = std::make_unique<Child>([&] {
        dup2(fds[1], STDOUT_FILENO);
        close(fds[0]);
        close(fds[1]);
        if (!errorFile.empty()) {
            int error = open(errorFile.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
            if (error < 0 || dup2(error, STDERR_FILENO) < 0) return 126;
        }
        for (const auto& [name, value] : environment) setenv(name.c_str(), value.c_str(), 1);
        std::vector<char*> argv;
        for (std::string& word : words) argv.push_back(word.data());
        argv.push_back(nullptr);
        execv(argv[0], argv.data());
        return 127;
    });
    close(fds[1]);
    mOutput = fds[0];
    mFirstLine = nextLine();
    mListening = mFirstLine == readyLine;
}

ServerProcess::~ServerProcess() {
    mChild.reset();
    if (mOutput >= 0) close(mOutput);
}

std::string ServerProcess::nextLine(std::chrono::milliseconds deadline) {
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

ChildEnd ServerProcess::stop(int signal) {
    ::kill(mChild->pid(), signal);
    return mChild->wait();
}

}  // namespace vesk::test
