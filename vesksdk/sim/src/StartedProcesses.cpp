#include "vesk/sim/StartedProcesses.h"

#include <fcntl.h>
#include <spawn.h>

#include "HostProc.h"
#include "vesk/sim/StateFile.h"

extern char** environ;

namespace vesk::sim {

int startBoardProcess(const std::vector<std::string>& argv) {
    if (argv.empty()) return -1;
    std::vector<char*> args;
    for (const std::string& arg : argv) args.push_back(const_cast<char*>(arg.c_str()));
    args.push_back(nullptr);
    // Like a service of the board, it has no terminal: its standard files are /dev/null (and
    // it holds no pipe of the caller open).
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&files, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&files, 2, "/dev/null", O_WRONLY, 0);
    pid_t pid = 0;
    int error = posix_spawnp(&pid, args[0], &files, nullptr, args.data(), environ);
    posix_spawn_file_actions_destroy(&files);
    if (error != 0) return -1;
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
