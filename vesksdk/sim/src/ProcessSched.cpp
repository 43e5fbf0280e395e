// Processes and CPU scheduling, against the processes of the host the board runs on. Only the
// processes started through the simulator (vesk::sim::startProcess) may be killed.
#include <pwd.h>
#include <signal.h>
#include <unistd.h>

#include <cstring>
#include <mutex>
#include <set>
#include <string>

#include "HostProc.h"
#include "SimMacros.h"
#include "vesk/sim/StartedProcesses.h"
#include "vesksdk.h"
#include "vesksdk_sim_control.h"

using vesk::sim::BoardData;
using vesk::sim::SimCall;
using vesk::sim::text;

namespace {

// The record's names point at strings that must live as long as the process.
const char* keptString(const std::string& value) {
    static std::mutex mutex;
    static std::set<std::string> strings;
    std::lock_guard<std::mutex> lock(mutex);
    return strings.insert(value).first->c_str();
}

std::string userName(uid_t uid) {
    passwd entry{};
    passwd* found = nullptr;
    char buffer[1024];
    if (getpwuid_r(uid, &entry, buffer, sizeof(buffer), &found) == 0 && found) {
        return found->pw_name;
    }
    return std::to_string(uid);
}

// The 16-byte block: parent pid, thread count, nice value and kernel priority, each a 32-bit
// little-endian number.
void fillBlock(uint8_t* block, const vesk::sim::HostProcess& process) {
    const int32_t words[4] = {process.parent, process.threads, process.nice, process.priority};
    memcpy(block, words, sizeof(words));
}

bool isStartedProcess(const BoardData& data, int pid) {
    auto found = data.startedProcesses.find(pid);
    if (found == data.startedProcesses.end()) return false;
    auto process = vesk::sim::readProcess(pid);
    return process && process->startTicks == found->second;  // not a later process on the pid
}

}  // namespace

namespace vesk::sim {

int startProcess(const std::vector<std::string>& argv) {
    return startBoardProcess(argv);
}

}  // namespace vesk::sim

// How many host processes run under `name` (the name ps shows). `flag` is not used.
int bi_kill_get_process_num(const char* name, int flag) {
    return SimCall("bi_kill_get_process_num", {text(name), flag}).run([&] {
        if (!name) return -1;
        return static_cast<int>(vesk::sim::processesNamed(name).size());
    });
}

// 1 and the record filled for the first process named `name` (lowest pid); 0 when none runs.
// name1: the name, name2: the state letter, name3: the user; value64: the pid, valueReal: the
// average CPU use since start in percent, value32: the resident size in KiB.
int bi_get_process_info_by_name(const char* name, void* record) {
    return SimCall("bi_get_process_info_by_name", {text(name), vesk::sim::outputBuffer()})
            .out(record, sizeof(vesk_process_record))
            .run([&] {
                if (!record || !name) return 0;
                auto processes = vesk::sim::processesNamed(name);
                if (processes.empty()) return 0;
                const vesk::sim::HostProcess& process = processes.front();
                vesk_process_record info{};
                info.name1 = keptString(process.name);
                info.name2 = keptString(std::string(1, process.state));
                info.name3 = keptString(userName(process.uid));
                fillBlock(info.block, process);
                info.value64 = static_cast<uint64_t>(process.pid);
                info.valueReal = vesk::sim::cpuPercent(process);
                info.value32 = process.residentKib;
                memcpy(record, &info, sizeof(info));
                return 1;
            });
}

// Kills a process the simulator started (0); any other pid is refused (-1).
int bi_kill_process_num(int pid) {
    return SimCall("bi_kill_process_num", {pid}).run([&] {
        return vesk::sim::board().with([&](BoardData& data) {
            if (pid <= 0 || !isStartedProcess(data, pid)) return -1;
            if (kill(pid, SIGKILL) != 0) return -1;
            data.startedProcesses.erase(pid);
            return 0;
        });
    });
}

// Pinning needs a process that exists; the host's scheduling is left alone.
#define VESK_SIM_PID_ACTION(fn)                                                 \
    int fn(int pid) {                                                           \
        return SimCall(#fn, {pid}).run([&] {                                    \
            return pid > 0 && vesk::sim::readProcess(pid).has_value() ? 0 : -1; \
        });                                                                     \
    }
VESK_SIM_PID_ACTION(bi_sched_unbind_pid_from_main_core)
VESK_SIM_PID_ACTION(bi_sched_bind_pid_to_main_core)

// The CPU frequency governors of the board.
int bi_sched_adjust_cpu_freq(const char* mode) {
    return SimCall("bi_sched_adjust_cpu_freq", {text(mode)}).run([&] {
        if (!mode) return -1;
        for (const char* governor :
             {"performance", "powersave", "ondemand", "interactive", "schedutil"}) {
            if (strcmp(mode, governor) == 0) return 0;
        }
        return -1;
    });
}
