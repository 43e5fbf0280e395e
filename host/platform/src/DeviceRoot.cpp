/*
 * The device root: resolution, path mapping and the factory layout made on first use.
 */
#include "vesk/host/DeviceRoot.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <mutex>
#include <set>
#include <vector>

#include "FactoryEnvironment.h"
#include "HostFiles.h"
#include "HostInternal.h"

namespace vesk::host {
namespace {

std::mutex gRootMutex;
std::string gRoot;                     // guarded by gRootMutex; empty until first resolved
std::set<std::string> gPrepared;       // roots whose layout this process has checked
std::atomic<uint64_t> gGeneration{1};  // bumped by each setDeviceRoot()

std::string resolveDefaultRoot() {
    if (const char* env = getenv("VESK_ROOT"); env != nullptr && env[0] != '\0') return env;
    if (const char* state = getenv("XDG_STATE_HOME"); state != nullptr && state[0] == '/') {
        return std::string(state) + "/veskdm/root";
    }
    const char* home = getenv("HOME");
    return std::string(home != nullptr ? home : "/tmp") + "/.local/state/veskdm/root";
}

// A stand-in tool records each invocation in the shell log below the root; the mode tool also
// keeps the mode it was asked for where the display driver would show it.
std::string standInScript(const std::string& devicePathOfTool, const std::string& extra) {
    return "#!/bin/sh\n"
           "# Host stand-in for " +
           devicePathOfTool +
           ": records how it was invoked.\n"
           "root=$(cd \"$(dirname \"$0\")/../..\" && pwd)\n"
           "mkdir -p \"$root/data/shell\"\n"
           "printf '%s\\n' \"" +
           devicePathOfTool + " $*\" >> \"$root" + kShellLog + "\"\n" + extra + "exit 0\n";
}

void prepareLayout(const std::string& root) {
    makeDirectories(root);
    // Serialises the first use of one root by several processes.
    int lockFd = open((root + "/.layout.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (lockFd >= 0) flock(lockFd, LOCK_EX);
    for (const char* dir : {"/dev/block", "/vendor/bin", "/system/bin", "/data/property",
                            "/data/vesksdk", "/data/shell", "/sys/class/display"}) {
        makeDirectories(root + dir);
    }
    const std::string modeExtra =
            "printf '%s\\n' \"$1\" > \"$root" + std::string(kDisplayMode) + "\"\n";
    const std::vector<std::pair<std::string, std::string>> tools = {
            {"/vendor/bin/hdmimode", standInScript("/vendor/bin/hdmimode", modeExtra)},
            {"/system/bin/test-systemcontrol", standInScript("/system/bin/test-systemcontrol", "")},
            {"/system/bin/reboot", standInScript("/system/bin/reboot", "")},
    };
    for (const auto& [path, script] : tools) {
        if (!fileExists(root + path)) writeFileAtomically(root + path, script, 0755);
    }
    if (!fileExists(root + kEnvPartition)) {
        writeFileAtomically(root + kEnvPartition, factoryEnvironmentImage(), 0644);
    }
    if (lockFd >= 0) close(lockFd);
}

}  // namespace

uint64_t rootGeneration() {
    return gGeneration.load(std::memory_order_acquire);
}

std::string deviceRoot() {
    std::lock_guard<std::mutex> lock(gRootMutex);
    if (gRoot.empty()) {
        gRoot = resolveDefaultRoot();
        setenv("VESK_ROOT", gRoot.c_str(), 1);
    }
    if (gPrepared.insert(gRoot).second) prepareLayout(gRoot);
    return gRoot;
}

void setDeviceRoot(const std::string& root) {
    {
        std::lock_guard<std::mutex> lock(gRootMutex);
        gRoot = root;
        setenv("VESK_ROOT", root.c_str(), 1);
        gGeneration.fetch_add(1, std::memory_order_release);
    }
    deviceRoot();
}

std::string pathBelowRoot(const std::string& root, const std::string& devicePath) {
    std::vector<std::string> parts;
    size_t pos = 0;
    while (pos <= devicePath.size()) {
        size_t slash = devicePath.find('/', pos);
        if (slash == std::string::npos) slash = devicePath.size();
        std::string part = devicePath.substr(pos, slash - pos);
        if (part == "..") {
            if (!parts.empty()) parts.pop_back();
        } else if (!part.empty() && part != ".") {
            parts.push_back(part);
        }
        pos = slash + 1;
    }
    std::string mapped = root;
    for (const auto& part : parts) mapped += "/" + part;
    return mapped;
}

}  // namespace vesk::host
