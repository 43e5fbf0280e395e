#include "vesk/sim/StateFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "vesk/host/DeviceRoot.h"
#include "vesk/host/RootFiles.h"

namespace vesk::sim {
namespace {

// The board's folders are made through the root's jail: a planted link on the way is refused.
void makeDirectory(const std::string& root, const std::string& devicePath) {
    if (!host::makeDirectoriesBelowRoot(root, devicePath)) {
        fprintf(stderr, "vesksdk: cannot create %s: %s\n",
                host::pathBelowRoot(root, devicePath).c_str(), strerror(errno));
    }
}

// The device path of a file below the root named by its host path; empty when it is not below.
std::string devicePathOf(const std::string& root, const std::string& path) {
    if (path.compare(0, root.size() + 1, root + "/") != 0) return std::string();
    return path.substr(root.size());
}

std::string parentOf(const std::string& devicePath) {
    return devicePath.substr(0, devicePath.rfind('/'));
}

}  // namespace

int openBoardFile(const std::string& devicePath, int flags, mode_t mode) {
    std::string root = host::deviceRoot();
    int fd = host::openBelowRoot(root, devicePath, flags, mode);
    if (fd < 0 && errno == ENOENT && (flags & O_CREAT) != 0) {
        makeDirectory(root, parentOf(devicePath));
        fd = host::openBelowRoot(root, devicePath, flags, mode);
    }
    return fd;
}

std::string boardDir() {
    return host::pathBelowRoot(host::deviceRoot(), host::kBoardStateDir);
}

std::string stateFilePath() {
    return boardDir() + "/state.json";
}

std::string productFilePath() {
    return boardDir() + "/product.json";
}

BoardFileLock::BoardFileLock() {
    std::string path = boardDir() + "/state.lock";
    // A root left as it is (a command that only reads) gets no lock file: no writer has come
    // where there is none, and its readers change nothing.
    bool leftAsItIs = host::deviceRootLeftAsItIs();
    mFd = openBoardFile(std::string(host::kBoardStateDir) + "/state.lock",
                        leftAsItIs ? O_RDWR : O_RDWR | O_CREAT);
    if (mFd < 0 && leftAsItIs && errno == ENOENT) return;
    if (mFd < 0) {
        fprintf(stderr, "vesksdk: cannot open %s: %s\n", path.c_str(), strerror(errno));
        return;
    }
    while (flock(mFd, LOCK_EX) != 0 && errno == EINTR) {
    }
}

BoardFileLock::~BoardFileLock() {
    if (mFd >= 0) close(mFd);  // releases the flock
}

std::optional<std::string> readBoardFileText(const std::string& path, bool reportFailure) {
    // Read through the root's jail: a link planted at the file or on its way is not followed.
    std::string root = host::deviceRoot();
    std::string devicePath = devicePathOf(root, path);
    if (devicePath.empty()) errno = EXDEV;
    std::string text;
    if (devicePath.empty() || !host::readFileBelowRoot(root, devicePath, text)) {
        if (reportFailure && errno != ENOENT) {
            fprintf(stderr, "vesksdk: cannot read %s: %s; read as empty\n", path.c_str(),
                    strerror(errno));
        }
        return std::nullopt;
    }
    return text;
}

nlohmann::json parseBoardJson(const std::string& path, const std::optional<std::string>& text) {
    if (!text) return nlohmann::json::object();
    nlohmann::json content = nlohmann::json::parse(*text, nullptr, false);
    if (!content.is_object()) {
        fprintf(stderr, "vesksdk: %s is not a JSON object; read as empty\n", path.c_str());
        return nlohmann::json::object();
    }
    return content;
}

nlohmann::json readJsonFile(const std::string& path) {
    return parseBoardJson(path, readBoardFileText(path));
}

bool writeJsonFileAtomically(const std::string& path, const nlohmann::json& content) {
    // Texts the board was given need not be UTF-8 (a device name is any bytes): the file keeps
    // U+FFFD for their bad bytes rather than failing to write.
    std::string text = content.dump(2, ' ', false, nlohmann::json::error_handler_t::replace);
    // Written through the root's jail: temporaries of killed writers are removed, and a link
    // planted at the file or on its way is refused.
    std::string root = host::deviceRoot();
    std::string devicePath = devicePathOf(root, path);
    if (devicePath.empty()) errno = EXDEV;
    bool written =
            !devicePath.empty() && host::replaceFileBelowRoot(root, devicePath, text + "\n", 0644);
    if (!written && !devicePath.empty() && errno == ENOENT) {  // a fresh root: its folder is made
        makeDirectory(root, parentOf(devicePath));
        written = host::replaceFileBelowRoot(root, devicePath, text + "\n", 0644);
    }
    if (!written) {
        fprintf(stderr, "vesksdk: cannot write %s: %s\n", path.c_str(), strerror(errno));
        return false;
    }
    return true;
}

}  // namespace vesk::sim
