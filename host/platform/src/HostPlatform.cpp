/*
 * The platform seams on the host: commands run under the device root (or go to a test's
 * recorder), device paths live below the root and are opened through its jail, MTD ioctls may be
 * emulated.
 */
#include <android/log.h>
#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <mutex>
#include <vector>

#include "HostInternal.h"
#include "VeskPlatform.h"
#include "vesk/host/DeviceRoot.h"
#include "vesk/host/RootFiles.h"
#include "vesk/host/Seams.h"

namespace vesk::host {
namespace {

constexpr char kTag[] = "veskplatform";

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

struct HostCommand {
    std::string program;  // the device path of the program ("/vendor/bin/hdmimode")
    std::string rest;     // the command line after the program, as given
};

// The command's program as a device path: an absolute path as it is, a bare name looked up in
// the device's search path (/system/bin, then /vendor/bin) below the root.
HostCommand splitCommand(const std::string& commandLine, const std::string& root) {
    size_t start = commandLine.find_first_not_of(' ');
    if (start == std::string::npos) return {};
    size_t end = commandLine.find(' ', start);
    if (end == std::string::npos) end = commandLine.size();
    std::string program = commandLine.substr(start, end - start);
    if (program[0] != '/') {
        program = existsBelowRoot(root, "/system/bin/" + program) ? "/system/bin/" + program
                                                                  : "/vendor/bin/" + program;
    }
    return {program, commandLine.substr(end)};
}

std::vector<std::string> words(const std::string& text) {
    std::vector<std::string> list;
    size_t pos = text.find_first_not_of(" \t");
    while (pos != std::string::npos) {
        size_t end = text.find_first_of(" \t", pos);
        list.push_back(text.substr(pos, end == std::string::npos ? end : end - pos));
        pos = text.find_first_not_of(" \t", end);
    }
    return list;
}

// The stand-ins record in this process, through the jail; the program itself must be reached
// without links, or the shell would run whatever a planted link names.
int runBelowRoot(const std::string& commandLine, const std::string& root) {
    HostCommand command = splitCommand(commandLine, root);
    if (command.program.empty()) return system(commandLine.c_str());
    int programFd = openBelowRoot(root, command.program, O_RDONLY | O_NONBLOCK);
    if (programFd < 0 && errno != ENOENT) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "cannot run %s below %s: %s\n",
                            command.program.c_str(), root.c_str(), strerror(errno));
        return -1;
    }
    if (programFd >= 0) {
        close(programFd);
        std::string relative = "/" + relativeBelowRoot(command.program);
        for (const char* tool : kStandInTools) {
            if (relative != tool) continue;
            if (!recordStandInInvocation(root, tool, words(command.rest))) {
                __android_log_print(ANDROID_LOG_ERROR, kTag, "cannot record %s below %s: %s\n",
                                    tool, root.c_str(), strerror(errno));
                return -1;
            }
        }
    }
    return system((shellQuote(pathBelowRoot(root, command.program)) + command.rest).c_str());
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
    return host::runBelowRoot(commandLine, host::deviceRoot());
}

// An empty path names nothing, on the device as here; it must not map to the root itself.
std::string devicePath(const char* path) {
    if (path == nullptr || path[0] == '\0') return std::string();
    return host::pathBelowRoot(host::deviceRoot(), path);
}

int openDevice(const char* path, int flags, mode_t mode) {
    if (path == nullptr || path[0] == '\0') {
        errno = ENOENT;
        return -1;
    }
    // A device node keeps no access time worth a write; a plain file standing in for one
    // does, and each read would dirty its inode for the next sync. O_NOATIME is refused
    // (EPERM) on a file of another owner: open it as asked then.
    int fd = host::openDeviceBelowRoot(host::deviceRoot(), path, flags | O_NOATIME, mode);
    if (fd < 0 && errno == EPERM)
        fd = host::openDeviceBelowRoot(host::deviceRoot(), path, flags, mode);
    return fd;
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
