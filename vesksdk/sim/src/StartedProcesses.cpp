#include "vesk/sim/StartedProcesses.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "HostProc.h"
#include "vesk/sim/StateFile.h"

namespace vesk::sim {

namespace {

// Starts the program with /dev/null as its standard files: its pid, or -1 when it cannot be
// started. An exec that fails is told by the child through a close-on-exec pipe (end of file:
// the exec went through), which holds under an emulator too, where posix_spawn cannot learn
// of the failure from its child.
pid_t spawnDetached(const std::vector<std::string>& argv) {
    std::vector<char*> args;
    for (const std::string& arg : argv) args.push_back(const_cast<char*>(arg.c_str()));
    args.push_back(nullptr);
    int devNull = open("/dev/null", O_RDWR | O_CLOEXEC);
    int report[2];
    if (devNull < 0) return -1;
    if (pipe2(report, O_CLOEXEC) != 0) {
        close(devNull);
        return -1;
    }
    pid_t pid = fork();
    if (pid == 0) {
        // Only async-signal-safe calls from here on. Like a service of the board, it has no
        // terminal and holds no pipe of the caller open.
        close(report[0]);
        for (int fd = 0; fd < 3; ++fd) dup2(devNull, fd);
        execvp(args[0], args.data());
        int error = errno;
        ssize_t ignored = write(report[1], &error, sizeof(error));
        (void)ignored;
        _exit(127);
    }
    close(devNull);
    close(report[1]);
    if (pid < 0) {
        close(report[0]);
        return -1;
    }
    int error = 0;
    ssize_t count;
    do {
        count = read(report[0], &error, sizeof(error));
    } while (count < 0 && errno == EINTR);
    close(report[0]);
    if (count != 0) {
        while (waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
        }
        errno = error;  // why the program could not be run
        return -1;
    }
    return pid;
}

}  // namespace

int startBoardProcess(const std::vector<std::string>& argv) {
    if (argv.empty()) return -1;
    pid_t pid = spawnDetached(argv);
    if (pid < 0) return -1;
    auto process = readProcess(pid);
    // The same member of the state file as the board's own saves (BoardState.cpp).
    BoardFileLock lock;
    nlohmann::json state = readJsonFile(stateFilePath());
    if (!state.contains("started_processes") || !state["started_processes"].is_object()) {
        state["started_processes"] = nlohmann::json::object();
    }
    state["started_processes"][std::to_string(pid)] = process ? process->startTicks : 0;
    writeJsonFileAtomically(stateFilePath(), state);
    return pid;
}

}  // namespace vesk::sim
