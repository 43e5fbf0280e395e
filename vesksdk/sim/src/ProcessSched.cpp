// Processes and CPU scheduling. The board knows a few system processes and the calling process.
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "SimMacros.h"
#include "vesksdk.h"

using vesk::sim::SimCall;
using vesk::sim::text;

namespace {

struct KnownProcess {
    const char* name;
    const char* state;
    const char* user;
    uint64_t pid;
    double cpuPercent;
    uint32_t residentKib;
};

const KnownProcess kSystemProcesses[] = {
    {"init", "S", "root", 1, 0.1, 10240},
    {"surfaceflinger", "S", "system", 412, 3.5, 65536},
    {"system_server", "S", "system", 876, 6.25, 262144},
};

// The name as ps shows it (program_invocation_short_name is GNU's; /proc would do as well).
std::string ownName() {
    return program_invocation_short_name;
}

bool findProcess(const char* name, KnownProcess& found) {
    if (!name) return false;
    for (const KnownProcess& process : kSystemProcesses) {
        if (strcmp(process.name, name) == 0) {
            found = process;
            return true;
        }
    }
    static const std::string self = ownName();
    if (self != name) return false;
    found = {self.c_str(), "R", "root", static_cast<uint64_t>(getpid()), 1.5, 8192};
    return true;
}

}  // namespace

// How many processes run under `name`: one for a known name, none otherwise.
int bi_kill_get_process_num(const char* name, int flag) {
    return SimCall("bi_kill_get_process_num", {text(name), flag}).run([&] {
        KnownProcess process{};
        return findProcess(name, process) ? 1 : 0;
    });
}

// 1 and the record filled for a known process; 0 otherwise. The record's names point at
// strings that live as long as the process.
int bi_get_process_info_by_name(const char* name, void* record) {
    return SimCall("bi_get_process_info_by_name", {text(name), vesk::sim::outputBuffer()})
        .out(record, sizeof(vesk_process_record))
        .run([&] {
            KnownProcess process{};
            if (!record || !findProcess(name, process)) return 0;
            vesk_process_record info{};
            info.name1 = process.name;
            info.name2 = process.state;
            info.name3 = process.user;
            info.value64 = process.pid;
            info.valueReal = process.cpuPercent;
            info.value32 = process.residentKib;
            memcpy(record, &info, sizeof(info));
            return 1;
        });
}

#define VESK_SIM_PID_ACTION(fn)                                           \
    int fn(int pid) {                                                     \
        return SimCall(#fn, {pid}).run([&] { return pid > 0 ? 0 : -1; }); \
    }
VESK_SIM_PID_ACTION(bi_kill_process_num)
VESK_SIM_PID_ACTION(bi_sched_unbind_pid_from_main_core)
VESK_SIM_PID_ACTION(bi_sched_bind_pid_to_main_core)

int bi_sched_adjust_cpu_freq(const char* mode) {
    return SimCall("bi_sched_adjust_cpu_freq", {text(mode)}).run([&] {
        return mode && *mode ? 0 : -1;
    });
}
