#include "HostProc.h"

#include <dirent.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace vesk::sim {
namespace {

std::string firstLine(const std::string& path) {
    std::ifstream in(path);
    std::string line;
    std::getline(in, line);
    return line;
}

std::vector<std::string> directoryNames(const std::string& path) {
    std::vector<std::string> names;
    if (DIR* dir = opendir(path.c_str())) {
        while (dirent* entry = readdir(dir)) {
            if (entry->d_name[0] != '.') names.push_back(entry->d_name);
        }
        closedir(dir);
    }
    std::sort(names.begin(), names.end());
    return names;
}

bool isNumber(const std::string& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), ::isdigit);
}

}  // namespace

std::optional<HostProcess> readProcess(pid_t pid) {
    std::string base = "/proc/" + std::to_string(pid);
    std::string stat = firstLine(base + "/stat");
    // The name is in parentheses and may itself hold blanks and parentheses.
    std::size_t open = stat.find('('), close = stat.rfind(')');
    if (open == std::string::npos || close == std::string::npos || close < open) return {};
    HostProcess process;
    process.pid = pid;
    process.name = stat.substr(open + 1, close - open - 1);
    std::istringstream fields(stat.substr(close + 2));
    // Fields from the third on: state ppid pgrp session tty tpgid flags minflt cminflt majflt
    // cmajflt utime stime cutime cstime priority nice threads itrealvalue starttime.
    std::vector<std::string> rest;
    for (std::string field; fields >> field;) rest.push_back(field);
    if (rest.size() < 20) return {};
    process.state = rest[0][0];
    process.parent = std::atoi(rest[1].c_str());
    process.cpuTicks = std::strtoull(rest[11].c_str(), nullptr, 10) +
                       std::strtoull(rest[12].c_str(), nullptr, 10);
    process.priority = std::atoi(rest[15].c_str());
    process.nice = std::atoi(rest[16].c_str());
    process.threads = std::atoi(rest[17].c_str());
    process.startTicks = std::strtoull(rest[19].c_str(), nullptr, 10);

    std::ifstream status(base + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("Uid:", 0) == 0) process.uid = std::strtoul(line.c_str() + 4, nullptr, 10);
        if (line.rfind("VmRSS:", 0) == 0) {
            process.residentKib = std::strtoul(line.c_str() + 6, nullptr, 10);
        }
    }
    return process;
}

std::vector<HostProcess> processesNamed(const std::string& name) {
    std::vector<HostProcess> found;
    for (const std::string& entry : directoryNames("/proc")) {
        if (!isNumber(entry)) continue;
        auto process = readProcess(std::atoi(entry.c_str()));
        if (process && process->name == name) found.push_back(*process);
    }
    std::sort(found.begin(), found.end(),
              [](const HostProcess& a, const HostProcess& b) { return a.pid < b.pid; });
    return found;
}

double cpuPercent(const HostProcess& process) {
    double ticksPerSecond = static_cast<double>(sysconf(_SC_CLK_TCK));
    double uptime = std::strtod(firstLine("/proc/uptime").c_str(), nullptr);
    double running = uptime - static_cast<double>(process.startTicks) / ticksPerSecond;
    if (running <= 0) return 0;
    return 100.0 * static_cast<double>(process.cpuTicks) / ticksPerSecond / running;
}

std::optional<std::vector<unsigned long long>> cpuTimes() {
    std::istringstream line(firstLine("/proc/stat"));
    std::string label;
    line >> label;
    if (label != "cpu") return {};
    std::vector<unsigned long long> times;
    for (unsigned long long value; times.size() < 7 && line >> value;) times.push_back(value);
    if (times.size() < 7) return {};
    return times;
}

std::optional<long> thermalMilliCelsius() {
    const std::string base = "/sys/class/thermal";
    for (const std::string& zone : directoryNames(base)) {
        if (zone.rfind("thermal_zone", 0) != 0) continue;
        std::string text = firstLine(base + "/" + zone + "/temp");
        if (!text.empty()) return std::strtol(text.c_str(), nullptr, 10);
    }
    return {};
}

bool hasDefaultRoute() {
    std::ifstream routes("/proc/net/route");
    std::string line;
    std::getline(routes, line);  // the heading
    while (std::getline(routes, line)) {
        std::istringstream fields(line);
        std::string interface, destination, gateway;
        unsigned int flags = 0;
        fields >> interface >> destination >> gateway >> std::hex >> flags;
        if (destination == "00000000" && (flags & 0x1) != 0) return true;  // RTF_UP
    }
    return false;
}

std::vector<UsbDevice> usbDevices() {
    const std::string base = "/sys/bus/usb/devices";
    std::vector<UsbDevice> devices;
    for (const std::string& name : directoryNames(base)) {
        if (name.find(':') != std::string::npos) continue;  // an interface of a device
        std::string vid = firstLine(base + "/" + name + "/idVendor");
        std::string pid = firstLine(base + "/" + name + "/idProduct");
        if (vid.empty() || pid.empty()) continue;
        devices.push_back({static_cast<uint32_t>(std::strtoul(vid.c_str(), nullptr, 16)),
                           static_cast<uint32_t>(std::strtoul(pid.c_str(), nullptr, 16))});
    }
    return devices;
}

}  // namespace vesk::sim
