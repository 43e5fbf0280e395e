#include "Journal.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace vesk::sim {

Journal& Journal::instance() {
    static Journal journal;
    return journal;
}

bool Journal::openFile(const std::string& path, std::string* error) {
    int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    if (fd < 0) {
        if (error) *error = path + ": " + strerror(errno);
        return false;
    }
    std::lock_guard<std::mutex> lock(mMutex);
    if (mFd >= 0) close(mFd);
    mFd = fd;
    return true;
}

void Journal::startMemory() {
    std::lock_guard<std::mutex> lock(mMutex);
    mKeepInMemory = true;
    mMemory.clear();
}

void Journal::stop() {
    std::lock_guard<std::mutex> lock(mMutex);
    if (mFd >= 0) close(mFd);
    mFd = -1;
    mKeepInMemory = false;
    mMemory.clear();
}

void Journal::clearMemory() {
    std::lock_guard<std::mutex> lock(mMutex);
    mMemory.clear();
}

std::vector<nlohmann::json> Journal::memory() {
    std::lock_guard<std::mutex> lock(mMutex);
    return mMemory;
}

void Journal::record(const char* function, const nlohmann::json& args,
                     const nlohmann::json& result) {
    std::lock_guard<std::mutex> lock(mMutex);
    if (mFd >= 0) {
        // Built by hand so that the members keep this order in the file. A string argument need
        // not be UTF-8 (a path is any bytes): its bad bytes are written as U+FFFD. Only made when
        // there is a file to write it to: every board call passes here.
        constexpr auto kReplace = nlohmann::json::error_handler_t::replace;
        std::string line =
                "{\"function\":" + nlohmann::json(function).dump(-1, ' ', false, kReplace) +
                ",\"args\":" + args.dump(-1, ' ', false, kReplace) +
                ",\"return\":" + result.dump(-1, ' ', false, kReplace) + "}\n";
        // One write per line: with O_APPEND, lines of concurrent writers never interleave.
        const char* data = line.data();
        std::size_t left = line.size();
        while (left > 0) {
            ssize_t written = write(mFd, data, left);
            if (written < 0 && errno == EINTR) continue;
            if (written <= 0) break;
            data += written;
            left -= static_cast<std::size_t>(written);
        }
    }
    if (mKeepInMemory) {
        mMemory.push_back({{"function", function}, {"args", args}, {"return", result}});
    }
}

}  // namespace vesk::sim
