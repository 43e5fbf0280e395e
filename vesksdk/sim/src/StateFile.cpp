#include "vesk/sim/StateFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>

#include "vesk/host/DeviceRoot.h"

namespace vesk::sim {
namespace {

void makeDirectory(const std::string& path) {
    if (mkdir(path.c_str(), 0755) != 0 && errno != EEXIST) {
        fprintf(stderr, "vesksdk: cannot create %s: %s\n", path.c_str(), strerror(errno));
    }
}

std::string directoryOf(const std::string& path) {
    return path.substr(0, path.rfind('/'));
}

bool writeAll(int fd, const std::string& text) {
    std::size_t done = 0;
    while (done < text.size()) {
        ssize_t n = write(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        done += static_cast<std::size_t>(n);
    }
    return true;
}

}  // namespace

std::string boardDir() {
    std::string dir = host::pathBelowRoot(host::deviceRoot(), host::kBoardStateDir);
    makeDirectory(dir);
    return dir;
}

std::string stateFilePath() {
    return boardDir() + "/state.json";
}

std::string productFilePath() {
    return boardDir() + "/product.json";
}

std::string blockDir() {
    std::string dir = boardDir() + "/blocks";
    makeDirectory(dir);
    return dir;
}

BoardFileLock::BoardFileLock() {
    std::string path = boardDir() + "/state.lock";
    mFd = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
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
    std::ifstream in(path);
    if (!in) return nlohmann::json::object();
    std::stringstream text;
    text << in.rdbuf();
    nlohmann::json content = nlohmann::json::parse(text.str(), nullptr, false);
    if (!content.is_object()) {
        fprintf(stderr, "vesksdk: %s is not a JSON object; read as empty\n", path.c_str());
        return nlohmann::json::object();
    }
    return content;
}

bool writeJsonFileAtomically(const std::string& path, const nlohmann::json& content) {
    std::string temporary = path + ".tmp." + std::to_string(getpid());
    int fd = open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) return false;
    // Texts the board was given need not be UTF-8 (a device name is any bytes): the file keeps
    // U+FFFD for their bad bytes rather than failing to write.
    std::string text = content.dump(2, ' ', false, nlohmann::json::error_handler_t::replace);
    bool written = writeAll(fd, text + "\n") && fsync(fd) == 0;
    written = close(fd) == 0 && written;
    if (!written || rename(temporary.c_str(), path.c_str()) != 0) {
        unlink(temporary.c_str());
        fprintf(stderr, "vesksdk: cannot write %s\n", path.c_str());
        return false;
    }
    // The rename itself reaches the disk with the directory.
    int dirFd = open(directoryOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dirFd >= 0) {
        fsync(dirFd);
        close(dirFd);
    }
    return true;
}

}  // namespace vesk::sim
