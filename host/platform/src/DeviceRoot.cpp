/*
 * The device root: resolution, path mapping and the factory layout made on first use.
 */
#include "vesk/host/DeviceRoot.h"

#include <android/log.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <set>
#include <vector>

#include "FactoryEnvironment.h"
#include "HostFiles.h"
#include "HostInternal.h"
#include "vesk/host/RootFiles.h"

namespace vesk::host {
namespace {

std::mutex gRootMutex;
std::string gRoot;                     // guarded by gRootMutex; empty until first resolved
std::set<std::string> gPrepared;       // roots whose layout this process has checked
bool gLeftAsItIs = false;              // guarded by gRootMutex; the root's layout is never made
std::atomic<uint64_t> gGeneration{1};  // bumped by each setDeviceRoot()

std::string resolveDefaultRoot() {
    if (const char* env = getenv("VESK_ROOT"); env != nullptr && env[0] != '\0') return env;
    if (const char* state = getenv("XDG_STATE_HOME"); state != nullptr && state[0] == '/') {
        return std::string(state) + "/veskdm/root";
    }
    const char* home = getenv("HOME");
    return std::string(home != nullptr ? home : "/tmp") + "/.local/state/veskdm/root";
}

// The stand-in tools only succeed: the host's shell runner records each invocation (and the mode
// asked of the mode tool) below the root itself, so that no planted link can redirect it.
std::string standInScript(const std::string& devicePathOfTool) {
    return "#!/bin/sh\n"
           "# Host stand-in for " +
           devicePathOfTool +
           ": the shell runner of the host platform records how it was invoked.\n"
           "exit 0\n";
}

// Earlier stand-ins recorded their own invocations through the shell; they are replaced.
bool isOlderStandIn(const std::string& root, const std::string& path, const std::string& current) {
    int fd = openBelowRoot(root, path, O_RDONLY | O_NONBLOCK);
    if (fd < 0) return false;
    char buffer[4096];
    ssize_t n = read(fd, buffer, sizeof(buffer));
    close(fd);
    if (n <= 0) return false;
    std::string content(buffer, static_cast<size_t>(n));
    return content != current && content.rfind("#!/bin/sh\n# Host stand-in for ", 0) == 0;
}

// An error line of the log: a command that fails for it says so in its own words.
void reportLayoutError(const std::string& root, const char* path) {
    __android_log_print(ANDROID_LOG_ERROR, "veskplatform", "cannot prepare %s%s: %s\n",
                        root.c_str(), path, strerror(errno));
}

void prepareLayout(const std::string& root) {
    makeDirectories(root);
    // Serialises the first use of one root by several processes.
    int lockFd = openBelowRoot(root, "/.layout.lock", O_RDWR | O_CREAT, 0644);
    if (lockFd >= 0) flock(lockFd, LOCK_EX);
    for (const char* dir : {"/dev/block", "/vendor/bin", "/system/bin", "/data/property",
                            "/data/vesksdk", "/data/shell", "/sys/class/display"}) {
        if (!makeDirectoriesBelowRoot(root, dir)) reportLayoutError(root, dir);
    }
    for (const char* path : kStandInTools) {
        std::string script = standInScript(path);
        if (!existsBelowRoot(root, path) || isOlderStandIn(root, path, script)) {
            if (!replaceFileBelowRoot(root, path, script, 0755)) reportLayoutError(root, path);
        }
    }
    if (!existsBelowRoot(root, kEnvPartition) &&
        !replaceFileBelowRoot(root, kEnvPartition, factoryEnvironmentImage(), 0644)) {
        reportLayoutError(root, kEnvPartition);
    }
    if (!existsBelowRoot(root, kPropertyStore)) {
        int store = openBelowRoot(root, kPropertyStore, O_RDWR | O_CREAT, 0644);
        if (store < 0) reportLayoutError(root, kPropertyStore);
        if (store >= 0) close(store);
    }
    if (lockFd >= 0) close(lockFd);
}

}  // namespace

uint64_t rootGeneration() {
    return gGeneration.load(std::memory_order_acquire);
}

namespace {

// The caller holds gRootMutex.
void resolveRoot() {
    if (gRoot.empty()) {
        gRoot = resolveDefaultRoot();
        setenv("VESK_ROOT", gRoot.c_str(), 1);
    }
}

}  // namespace

std::string deviceRoot() {
    std::lock_guard<std::mutex> lock(gRootMutex);
    resolveRoot();
    if (!gLeftAsItIs && gPrepared.insert(gRoot).second) prepareLayout(gRoot);
    return gRoot;
}

std::string existingDeviceRoot() {
    std::lock_guard<std::mutex> lock(gRootMutex);
    resolveRoot();
    struct stat st {};
    if (stat(gRoot.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) return std::string();
    return gRoot;
}

void setDeviceRoot(const std::string& root, bool prepare) {
    {
        std::lock_guard<std::mutex> lock(gRootMutex);
        gRoot = root;
        gLeftAsItIs = false;
        setenv("VESK_ROOT", root.c_str(), 1);
        gGeneration.fetch_add(1, std::memory_order_release);
    }
    if (prepare) deviceRoot();
}

void useDeviceRootAsItIs(const std::string& root) {
    std::lock_guard<std::mutex> lock(gRootMutex);
    gRoot = root;
    setenv("VESK_ROOT", root.c_str(), 1);
    gLeftAsItIs = true;
    gGeneration.fetch_add(1, std::memory_order_release);
}

bool deviceRootLeftAsItIs() {
    std::lock_guard<std::mutex> lock(gRootMutex);
    return gLeftAsItIs;
}

bool recordStandInInvocation(const std::string& root, const std::string& tool,
                             const std::vector<std::string>& args) {
    std::string line = tool + " ";
    for (size_t i = 0; i < args.size(); ++i) line += (i > 0 ? " " : "") + args[i];
    if (!appendToFileBelowRoot(root, kShellLog, line + "\n")) return false;
    if (tool == "/vendor/bin/hdmimode") {
        // The mode tool leaves the mode it was asked for where the display driver shows it.
        return replaceFileBelowRoot(root, kDisplayMode, (args.empty() ? "" : args[0]) + "\n", 0644);
    }
    return true;
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
