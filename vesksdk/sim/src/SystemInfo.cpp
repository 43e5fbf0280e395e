// CPU load and temperature, network reachability (from the host the board runs on) and the
// access point's settings.
#include <time.h>

#include <cstring>

#include "HostProc.h"
#include "SimMacros.h"
#include "vesksdk.h"

namespace {

// The load over one tenth of a second, as top shows it: each share in percent of the time of
// all CPUs; the temperature in whole degrees (0 without a thermal zone).
bool measureCpu(vesk_cpu_record& cpu) {
    auto before = vesk::sim::cpuTimes();
    const timespec pause{0, 100 * 1000 * 1000};
    nanosleep(&pause, nullptr);
    auto after = vesk::sim::cpuTimes();
    if (!before || !after) return false;
    double share[7] = {};
    double total = 0;
    for (std::size_t i = 0; i < 7; ++i) {
        share[i] = static_cast<double>((*after)[i] - (*before)[i]);
        total += share[i];
    }
    if (total <= 0) {
        share[3] = total = 1;  // no tick passed: idle
    }
    float* fields[7] = {&cpu.usr,    &cpu.nic, &cpu.sys,    &cpu.idle,
                        &cpu.iowait, &cpu.irq, &cpu.softirq};
    for (std::size_t i = 0; i < 7; ++i) *fields[i] = static_cast<float>(100.0 * share[i] / total);
    auto milli = vesk::sim::thermalMilliCelsius();
    cpu.temperature = milli && *milli > 0 ? static_cast<uint32_t>(*milli / 1000) : 0;
    return true;
}

}  // namespace

int bi_info_get_cpu_state(void* record) {
    return vesk::sim::SimCall("bi_info_get_cpu_state", {vesk::sim::outputBuffer()})
            .out(record, sizeof(vesk_cpu_record))
            .run([&] {
                vesk_cpu_record cpu{};
                if (!record || !measureCpu(cpu)) return -1;
                memcpy(record, &cpu, sizeof(cpu));
                return 0;
            });
}

// 1 when the host has a default route that is up, 0 otherwise.
int bi_network_detection(void) {
    return vesk::sim::SimCall("bi_network_detection", {}).run([] {
        return vesk::sim::hasDefaultRoute() ? 1 : 0;
    });
}
VESK_SIM_GETTER(bi_network_get_ap_insulation, "ap_insulation")
VESK_SIM_SETTER(bi_network_set_ap_insulation, "ap_insulation", unsigned int)
VESK_SIM_GETTER(bi_network_get_ap_channel, "ap_channel")
