#include "HostFiles.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vesk::host {

bool fileExists(const std::string& path) {
    struct stat st {};
    return stat(path.c_str(), &st) == 0;
}

bool makeDirectories(const std::string& path) {
    for (size_t pos = 1; pos <= path.size(); ++pos) {
        if (pos == path.size() || path[pos] == '/') {
            std::string prefix = path.substr(0, pos);
            if (mkdir(prefix.c_str(), 0755) != 0 && errno != EEXIST) return false;
        }
    }
    return true;
}

bool writeFileAtomically(const std::string& path, const std::string& content, mode_t mode) {
    std::string temp = path + ".tmp." + std::to_string(getpid());
    int fd = open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, mode);
    if (fd < 0) return false;
    size_t done = 0;
    while (done < content.size()) {
        ssize_t n = write(fd, content.data() + done, content.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        done += static_cast<size_t>(n);
    }
    bool ok = done == content.size() && fsync(fd) == 0;
    ok = close(fd) == 0 && ok;
    if (ok) ok = fchmodat(AT_FDCWD, temp.c_str(), mode, 0) == 0;
    if (ok) ok = rename(temp.c_str(), path.c_str()) == 0;
    if (!ok) unlink(temp.c_str());
    return ok;
}

}  // namespace vesk::host
