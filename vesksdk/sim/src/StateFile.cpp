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

}  // namespace

std::string boardDir() {
    std::string root = host::deviceRoot();
    makeDirectory(root, host::kBoardStateDir);
    return host::pathBelowRoot(root, host::kBoardStateDir);
}

std::string stateFilePath() {
    return boardDir() + "/state.json";
}

std::string productFilePath() {
    return boardDir() + "/product.json";
}

std::string blockDir() {
    std::string root = host::deviceRoot();
    makeDirectory(root, std::string(host::kBoardStateDir) + "/blocks");
    return host::pathBelowRoot(root, std::string(host::kBoardStateDir) + "/blocks");
}

BoardFileLock::BoardFileLock() {
    std::string path = boardDir() + "/state.lock";
    mFd = host::openBelowRoot(host::deviceRoot(), std::string(host::kBoardStateDir) + "/state.lock",
                              O_RDWR | O_CREAT, 0644);
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

nlohmann::json readJsonFile(const std::string& path) {
    // Read through the root's jail: a link planted at the file or on its way is not followed.
    std::string root = host::deviceRoot();
    std::string devicePath = devicePathOf(root, path);
    if (devicePath.empty()) errno = EXDEV;
    std::string text;
    if (devicePath.empty() || !host::readFileBelowRoot(root, devicePath, text)) {
        if (errno != ENOENT) {
            fprintf(stderr, "vesksdk: cannot read %s: %s; read as empty\n", path.c_str(),
                    strerror(errno));
        }
        return nlohmann::json::object();
    }
    nlohmann::json content = nlohmann::json::parse(text, nullptr, false);
    if (!content.is_object()) {
        fprintf(stderr, "vesksdk: %s is not a JSON object; read as empty\n", path.c_str());
        return nlohmann::json::object();
    }
    return content;
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
    if (devicePath.empty() || !host::replaceFileBelowRoot(root, devicePath, text + "\n", 0644)) {
        fprintf(stderr, "vesksdk: cannot write %s: %s\n", path.c_str(), strerror(errno));
        return false;
    }
    return true;
}

}  // namespace vesk::sim
