/*
 * The jail of the device root: every open below it is relative to the root's directory and
 * follows no symbolic link; hard-linked files are never written.
 */
#include "vesk/host/RootFiles.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#if __has_include(<linux/openat2.h>)
#include <linux/openat2.h>
#define VESK_HAVE_OPENAT2 1
#endif

#include "RootDirectory.h"

namespace vesk::host {
namespace {

std::atomic<bool> gWalkOnly{false};

std::vector<std::string> components(const std::string& path) {
    std::vector<std::string> parts;
    size_t pos = 0;
    while (pos <= path.size()) {
        size_t slash = path.find('/', pos);
        if (slash == std::string::npos) slash = path.size();
        std::string part = path.substr(pos, slash - pos);
        if (part == "..") {
            if (!parts.empty()) parts.pop_back();
        } else if (!part.empty() && part != ".") {
            parts.push_back(part);
        }
        pos = slash + 1;
    }
    return parts;
}

std::string join(const std::vector<std::string>& parts, size_t count) {
    std::string joined;
    for (size_t i = 0; i < count; ++i) {
        if (i > 0) joined += '/';
        joined += parts[i];
    }
    return joined;
}

// Closes a descriptor at the end of a scope, keeping errno.
class Fd {
  public:
    explicit Fd(int fd = -1) : mFd(fd) {}
    ~Fd() { reset(); }
    Fd(const Fd&) = delete;
    Fd& operator=(const Fd&) = delete;
    int get() const { return mFd; }
    int release() {
        int fd = mFd;
        mFd = -1;
        return fd;
    }
    void reset(int fd = -1) {
        if (mFd >= 0) {
            int saved = errno;
            close(mFd);
            errno = saved;
        }
        mFd = fd;
    }

  private:
    int mFd;
};

int openRoot(const std::string& root) {
    return open(root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

// One component at a time: every directory on the way and the last component with O_NOFOLLOW.
int walkOpen(int rootFd, const std::vector<std::string>& parts, int flags, mode_t mode) {
    if (parts.empty()) return openat(rootFd, ".", flags, mode);
    Fd dir(fcntl(rootFd, F_DUPFD_CLOEXEC, 0));
    for (size_t i = 0; dir.get() >= 0 && i + 1 < parts.size(); ++i) {
        dir.reset(openat(dir.get(), parts[i].c_str(),
                         O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    }
    if (dir.get() < 0) return -1;
    return openat(dir.get(), parts.back().c_str(), flags | O_NOFOLLOW, mode);
}

int jailedOpen(int rootFd, const std::vector<std::string>& parts, int flags, mode_t mode) {
#ifdef VESK_HAVE_OPENAT2
    if (!gWalkOnly.load(std::memory_order_relaxed)) {
        open_how how{};
        how.flags = static_cast<uint64_t>(flags);
        how.mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? mode : 0;
        how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS;
        std::string relative = parts.empty() ? "." : join(parts, parts.size());
        long fd = syscall(SYS_openat2, rootFd, relative.c_str(), &how, sizeof(how));
        if (fd >= 0 || (errno != ENOSYS && errno != EINVAL && errno != EPERM)) {
            return static_cast<int>(fd);
        }
    }
#endif
    return walkOpen(rootFd, parts, flags, mode);
}

// The real names below the root that `parts` reaches when symbolic links are followed as long
// as they stay below it: a link with an absolute target, or one that climbs above the root,
// gives EXDEV (as openat2 with RESOLVE_BENEATH does); more than 40 links ELOOP.
bool resolveBeneath(int rootFd, const std::vector<std::string>& parts,
                    std::vector<std::string>& resolved) {
    std::vector<std::string> queue(parts.rbegin(), parts.rend());  // next name at the back
    int links = 0;
    resolved.clear();
    while (!queue.empty()) {
        std::string name = queue.back();
        queue.pop_back();
        if (name.empty() || name == ".") continue;
        if (name == "..") {
            if (resolved.empty()) {
                errno = EXDEV;
                return false;
            }
            resolved.pop_back();
            continue;
        }
        Fd dir(walkOpen(rootFd, resolved, O_RDONLY | O_DIRECTORY, 0));
        if (dir.get() < 0) return false;
        struct stat st {};
        if (fstatat(dir.get(), name.c_str(), &st, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(st.st_mode)) {
            if (++links > 40) {
                errno = ELOOP;
                return false;
            }
            char target[4096];
            ssize_t n = readlinkat(dir.get(), name.c_str(), target, sizeof(target) - 1);
            if (n < 0) return false;
            target[n] = '\0';
            if (target[0] == '/') {
                errno = EXDEV;
                return false;
            }
            std::string text(target);
            size_t pos = 0;
            std::vector<std::string> spliced;
            while (pos <= text.size()) {
                size_t slash = text.find('/', pos);
                if (slash == std::string::npos) slash = text.size();
                spliced.push_back(text.substr(pos, slash - pos));
                pos = slash + 1;
            }
            queue.insert(queue.end(), spliced.rbegin(), spliced.rend());
            continue;
        }
        resolved.push_back(name);
    }
    return true;
}

// Like jailedOpen, but symbolic links that stay below the root are followed.
int beneathOpen(int rootFd, const std::vector<std::string>& parts, int flags, mode_t mode) {
#ifdef VESK_HAVE_OPENAT2
    if (!gWalkOnly.load(std::memory_order_relaxed)) {
        open_how how{};
        how.flags = static_cast<uint64_t>(flags);
        how.mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? mode : 0;
        how.resolve = RESOLVE_BENEATH | RESOLVE_NO_MAGICLINKS;
        std::string relative = parts.empty() ? "." : join(parts, parts.size());
        long fd = syscall(SYS_openat2, rootFd, relative.c_str(), &how, sizeof(how));
        if (fd >= 0 || (errno != ENOSYS && errno != EINVAL && errno != EPERM)) {
            return static_cast<int>(fd);
        }
    }
#endif
    std::vector<std::string> resolved;
    if (!resolveBeneath(rootFd, parts, resolved)) return -1;
    // Every name is real now; should one have changed into a link meanwhile, it is refused.
    return walkOpen(rootFd, resolved, flags, mode);
}

bool writesTo(int flags) {
    return (flags & O_ACCMODE) != O_RDONLY || (flags & O_TRUNC) != 0;
}

// A regular file reachable under another name may be outside the root.
bool hardLinked(mode_t mode, nlink_t links) {
    return S_ISREG(mode) && links > 1;
}

bool writeAll(int fd, const std::string& text) {
    size_t done = 0;
    while (done < text.size()) {
        ssize_t n = write(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) {
            if (n == 0) errno = EIO;
            return false;
        }
        done += static_cast<size_t>(n);
    }
    return true;
}

bool allDigits(const char* text) {
    if (*text == '\0') return false;
    for (; *text != '\0'; ++text) {
        if (*text < '0' || *text > '9') return false;
    }
    return true;
}

// Removes "NAME.tmp.PID" files whose writer is gone (or is this process: a leftover of its own).
void removeStaleTemporaries(int dirFd, const std::string& name) {
    int listFd = openat(dirFd, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (listFd < 0) return;
    DIR* dir = fdopendir(listFd);
    if (dir == nullptr) {
        close(listFd);
        return;
    }
    const std::string prefix = name + ".tmp.";
    std::vector<std::string> stale;
    while (dirent* entry = readdir(dir)) {
        if (strncmp(entry->d_name, prefix.c_str(), prefix.size()) != 0) continue;
        const char* pidText = entry->d_name + prefix.size();
        if (!allDigits(pidText) || strlen(pidText) > 9) continue;
        pid_t pid = static_cast<pid_t>(atol(pidText));
        if (pid == getpid() || (pid > 0 && kill(pid, 0) != 0 && errno == ESRCH)) {
            stale.push_back(entry->d_name);
        }
    }
    closedir(dir);
    for (const auto& file : stale) unlinkat(dirFd, file.c_str(), 0);
}

}  // namespace

std::string relativeBelowRoot(const std::string& path) {
    std::vector<std::string> parts = components(path);
    return join(parts, parts.size());
}

void setComponentWalkForTesting(bool on) {
    gWalkOnly.store(on, std::memory_order_relaxed);
}

namespace {

using Opener = int (*)(int rootFd, const std::vector<std::string>& parts, int flags, mode_t mode);

int openWith(Opener opener, const std::string& root, const std::string& path, int flags,
             mode_t mode) {
    std::shared_ptr<const RootDirectory> rootDir = openRootDirectory(root);
    if (rootDir == nullptr) return -1;
    const bool truncate = (flags & O_TRUNC) != 0;
    // Truncation waits until the file is known to be this one name's alone.
    Fd fd(opener(rootDir->fd(), components(path), (flags & ~O_TRUNC) | O_CLOEXEC, mode));
    if (fd.get() < 0) return -1;
    if (writesTo(flags)) {
        // Type and link count only: asking for the times as well would make the next write
        // stamp a fine-grained time, and every sync of the file would then write its inode.
        struct statx st {};
        if (statx(fd.get(), "", AT_EMPTY_PATH, STATX_TYPE | STATX_NLINK, &st) != 0) return -1;
        if (hardLinked(st.stx_mode, st.stx_nlink)) {
            errno = EMLINK;
            return -1;
        }
        if (truncate && S_ISREG(st.stx_mode) && ftruncate(fd.get(), 0) != 0) return -1;
    }
    return fd.release();
}

}  // namespace

int openBelowRoot(const std::string& root, const std::string& path, int flags, mode_t mode) {
    return openWith(jailedOpen, root, path, flags, mode);
}

int openDeviceBelowRoot(const std::string& root, const std::string& path, int flags, mode_t mode) {
    return openWith(beneathOpen, root, path, flags, mode);
}

bool makeDirectoriesBelowRoot(const std::string& root, const std::string& path, mode_t mode) {
    Fd dir(openRoot(root));
    for (const auto& part : components(path)) {
        if (dir.get() < 0) return false;
        if (mkdirat(dir.get(), part.c_str(), mode) != 0 && errno != EEXIST) return false;
        dir.reset(openat(dir.get(), part.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    }
    return dir.get() >= 0;
}

bool existsBelowRoot(const std::string& root, const std::string& path) {
    std::vector<std::string> parts = components(path);
    if (parts.empty()) return access(root.c_str(), F_OK) == 0;
    Fd parent(openBelowRoot(root, join(parts, parts.size() - 1), O_RDONLY | O_DIRECTORY));
    if (parent.get() < 0) return errno != ENOENT;
    struct stat st {};
    return fstatat(parent.get(), parts.back().c_str(), &st, AT_SYMLINK_NOFOLLOW) == 0 ||
           errno != ENOENT;
}

bool replaceFileBelowRoot(const std::string& root, const std::string& path,
                          const std::string& content, mode_t mode) {
    std::vector<std::string> parts = components(path);
    if (parts.empty()) {
        errno = EISDIR;
        return false;
    }
    const std::string& name = parts.back();
    Fd dir(openBelowRoot(root, join(parts, parts.size() - 1), O_RDONLY | O_DIRECTORY));
    if (dir.get() < 0) return false;
    struct stat st {};
    if (fstatat(dir.get(), name.c_str(), &st, AT_SYMLINK_NOFOLLOW) == 0) {
        if (S_ISLNK(st.st_mode)) {
            errno = ELOOP;
            return false;
        }
        if (S_ISDIR(st.st_mode)) {
            errno = EISDIR;
            return false;
        }
        if (hardLinked(st.st_mode, st.st_nlink)) {
            errno = EMLINK;
            return false;
        }
    } else if (errno != ENOENT) {
        return false;
    }
    removeStaleTemporaries(dir.get(), name);
    const std::string temporary = name + ".tmp." + std::to_string(getpid());
    Fd fd(openat(dir.get(), temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                 mode));
    if (fd.get() < 0) return false;
    bool ok = writeAll(fd.get(), content) && fchmod(fd.get(), mode) == 0 && fsync(fd.get()) == 0;
    int closed = close(fd.release());
    ok = ok && closed == 0;
    if (ok) ok = renameat(dir.get(), temporary.c_str(), dir.get(), name.c_str()) == 0;
    if (!ok) {
        int saved = errno;
        unlinkat(dir.get(), temporary.c_str(), 0);
        errno = saved;
        return false;
    }
    fsync(dir.get());  // the rename itself reaches the disk with the directory
    return true;
}

bool readFileBelowRoot(const std::string& root, const std::string& path, std::string& content) {
    Fd fd(openBelowRoot(root, path, O_RDONLY));
    if (fd.get() < 0) return false;
    content.clear();
    char buffer[65536];
    for (;;) {
        ssize_t n = read(fd.get(), buffer, sizeof(buffer));
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) return false;
        if (n == 0) return true;
        content.append(buffer, static_cast<size_t>(n));
    }
}

namespace {

// The directory holding `path`, opened through the jail, and the name in it.
Fd openParentBelowRoot(const std::string& root, const std::string& path, std::string& name) {
    std::vector<std::string> parts = components(path);
    if (parts.empty()) {
        errno = EISDIR;
        return Fd();
    }
    name = parts.back();
    return Fd(openBelowRoot(root, join(parts, parts.size() - 1), O_RDONLY | O_DIRECTORY));
}

std::string readLinkAt(int dirFd, const std::string& name) {
    std::vector<char> buffer(PATH_MAX);
    ssize_t length = readlinkat(dirFd, name.c_str(), buffer.data(), buffer.size());
    if (length < 0) return std::string();
    if (static_cast<size_t>(length) == buffer.size()) {
        errno = ENAMETOOLONG;
        return std::string();
    }
    return std::string(buffer.data(), static_cast<size_t>(length));
}

}  // namespace

bool publishLinkBelowRoot(const std::string& root, const std::string& path,
                          const std::string& target) {
    std::string name;
    Fd dir(openParentBelowRoot(root, path, name));
    if (dir.get() < 0) return false;
    removeStaleTemporaries(dir.get(), name);
    const std::string temporary = name + ".tmp." + std::to_string(getpid());
    if (symlinkat(target.c_str(), dir.get(), temporary.c_str()) != 0) return false;
    if (renameat(dir.get(), temporary.c_str(), dir.get(), name.c_str()) != 0) {
        int saved = errno;
        unlinkat(dir.get(), temporary.c_str(), 0);
        errno = saved;
        return false;
    }
    return true;
}

std::string readLinkBelowRoot(const std::string& root, const std::string& path) {
    std::string name;
    Fd dir(openParentBelowRoot(root, path, name));
    if (dir.get() < 0) return std::string();
    return readLinkAt(dir.get(), name);
}

bool removeLinkBelowRoot(const std::string& root, const std::string& path,
                         const std::string& target) {
    std::string name;
    Fd dir(openParentBelowRoot(root, path, name));
    if (dir.get() < 0 || readLinkAt(dir.get(), name) != target) return false;
    return unlinkat(dir.get(), name.c_str(), 0) == 0;
}

bool appendToFileBelowRoot(const std::string& root, const std::string& path,
                           const std::string& text, mode_t mode) {
    Fd fd(openBelowRoot(root, path, O_WRONLY | O_APPEND | O_CREAT, mode));
    return fd.get() >= 0 && writeAll(fd.get(), text);
}

}  // namespace vesk::host
