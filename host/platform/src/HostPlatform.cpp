/*
 * The platform seams on the host: commands run under the device root (or go to a test's
 * recorder), device paths live below the root, MTD ioctls may be emulated.
 */
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/stat.h>

#include <atomic>
#include <mutex>

#include "VeskPlatform.h"
#include "vesk/host/DeviceRoot.h"
#include "vesk/host/Seams.h"

namespace vesk::host {
namespace {

std::mutex gRecorderMutex;
ShellRecorder gRecorder;  // guarded by gRecorderMutex
std::atomic<MtdEmulation*> gMtd{nullptr};

std::string shellQuote(const std::string& word) {
    std::string quoted = "'";
    for (char c : word) {
        if (c == '\'') {
            quoted += "'\\''";
        } else {
            quoted += c;
        }
    }
    return quoted + "'";
}

// The command's program below the root: an absolute path is mapped, a bare name is looked up
// in the device's search path (/system/bin, then /vendor/bin).
std::string hostCommandLine(const std::string& commandLine, const std::string& root) {
    size_t start = commandLine.find_first_not_of(' ');
    if (start == std::string::npos) return commandLine;
    size_t end = commandLine.find(' ', start);
    if (end == std::string::npos) end = commandLine.size();
    std::string program = commandLine.substr(start, end - start);
    std::string mapped;
    if (program[0] == '/') {
        mapped = pathBelowRoot(root, program);
    } else {
        mapped = pathBelowRoot(root, "/system/bin/" + program);
        struct stat st {};
        if (stat(mapped.c_str(), &st) != 0) {
            mapped = pathBelowRoot(root, "/vendor/bin/" + program);
        }
    }
    return shellQuote(mapped) + commandLine.substr(end);
}

}  // namespace

void setShellRecorder(ShellRecorder recorder) {
    std::lock_guard<std::mutex> lock(gRecorderMutex);
    gRecorder = std::move(recorder);
}

void setMtdEmulation(MtdEmulation* emulation) {
    gMtd.store(emulation);
}

}  // namespace vesk::host

namespace vesk::platform {

int runCommand(const char* commandLine) {
    {
        std::lock_guard<std::mutex> lock(host::gRecorderMutex);
        if (host::gRecorder) return host::gRecorder(commandLine);
    }
    return system(host::hostCommandLine(commandLine, host::deviceRoot()).c_str());
}

// An empty path names nothing, on the device as here; it must not map to the root itself.
std::string devicePath(const char* path) {
    if (path == nullptr || path[0] == '\0') return std::string();
    return host::pathBelowRoot(host::deviceRoot(), path);
}

int mtdGetInfo(int fd, mtd_info_user* info) {
    if (host::MtdEmulation* mtd = host::gMtd.load()) return mtd->getInfo(fd, info);
    return ioctl(fd, MEMGETINFO, info);
}

int mtdErase(int fd, const erase_info_user* erase) {
    if (host::MtdEmulation* mtd = host::gMtd.load()) return mtd->erase(fd, erase);
    return ioctl(fd, MEMERASE, erase);
}

}  // namespace vesk::platform
