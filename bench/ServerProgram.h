/*
 * A server program of this build in a process of its own for a benchmark: started with its
 * arguments in this process's environment, its first line (where it listens) read, stopped with
 * SIGTERM at the end. Its standard error goes to this process's. A server that fails ends, so
 * reading its first line never waits for ever.
 */
#pragma once

#include <signal.h>
#include <spawn.h>
#include <stdio.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

extern char** environ;

class ServerProgram {
  public:
    ServerProgram(const std::string& program, const std::vector<std::string>& arguments) {
        int fds[2];
        if (pipe(fds) != 0) return;
        std::vector<std::string> words{program};
        words.insert(words.end(), arguments.begin(), arguments.end());
        std::vector<char*> argv;
        for (std::string& word : words) argv.push_back(word.data());
        argv.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, fds[1], STDOUT_FILENO);
        posix_spawn_file_actions_addclose(&actions, fds[0]);
        posix_spawn_file_actions_addclose(&actions, fds[1]);
        if (posix_spawn(&mPid, argv[0], &actions, nullptr, argv.data(), environ) != 0) {
            mPid = -1;
        }
        posix_spawn_file_actions_destroy(&actions);
        close(fds[1]);
        mOutput = fdopen(fds[0], "r");
        char line[4096];
        if (mPid > 0 && mOutput != nullptr && fgets(line, sizeof(line), mOutput) != nullptr) {
            mFirstLine = line;
            if (!mFirstLine.empty() && mFirstLine.back() == '\n') mFirstLine.pop_back();
        }
    }
    ~ServerProgram() {
        if (mPid > 0) {
            kill(mPid, SIGTERM);
            waitpid(mPid, nullptr, 0);
        }
        if (mOutput != nullptr) fclose(mOutput);
    }
    ServerProgram(const ServerProgram&) = delete;
    ServerProgram& operator=(const ServerProgram&) = delete;

    // What it printed first ("" if it ended without a line).
    const std::string& firstLine() const { return mFirstLine; }

  private:
    pid_t mPid = -1;
    FILE* mOutput = nullptr;
    std::string mFirstLine;
};
