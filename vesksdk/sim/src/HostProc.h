/*
 * What the simulated board reads from the host it runs on: /proc for processes, CPU load and
 * routes, /sys for temperatures and USB devices. The board's own system data, taken live.
 */
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vesk::sim {

struct HostProcess {
    pid_t pid = 0;
    std::string name;  // comm, as ps shows it
    char state = '?';
    pid_t parent = 0;
    int32_t priority = 0;
    int32_t nice = 0;
    int32_t threads = 0;
    unsigned long long startTicks = 0;  // clock ticks after boot
    unsigned long long cpuTicks = 0;    // user + system
    uid_t uid = 0;
    uint32_t residentKib = 0;
};

std::optional<HostProcess> readProcess(pid_t pid);
// Every process of the host whose name is `name`, by rising pid.
std::vector<HostProcess> processesNamed(const std::string& name);
// Average CPU use of the process since it started, in percent of one CPU.
double cpuPercent(const HostProcess& process);

// The "cpu" line of /proc/stat: user, nice, system, idle, iowait, irq, softirq (ticks).
std::optional<std::vector<unsigned long long>> cpuTimes();
// The first readable thermal zone, in milli-degrees Celsius.
std::optional<long> thermalMilliCelsius();
// True when the routing table has a default route that is up.
bool hasDefaultRoute();

struct UsbDevice {
    uint32_t vid;
    uint32_t pid;
};
// The devices in /sys/bus/usb/devices (not their interfaces), by name.
std::vector<UsbDevice> usbDevices();

}  // namespace vesk::sim
