#include "RootDirectory.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <mutex>

#include "HostInternal.h"

namespace vesk::host {
namespace {

struct Identity {
    uint32_t devMajor = 0;
    uint32_t devMinor = 0;
    uint64_t inode = 0;
    bool operator==(const Identity& other) const {
        return devMajor == other.devMajor && devMinor == other.devMinor && inode == other.inode;
    }
};

enum class State {
    Kept,     // the directory it was opened on, still named
    Removed,  // that directory, removed since
    Lost,     // not that directory: the descriptor was closed or its number reused
};

// Type, link count and identity only: asking for the times would change how the directory's
// next change is stamped.
bool describe(int fd, Identity& identity, bool& directory, bool& named) {
    struct statx st {};
    if (statx(fd, "", AT_EMPTY_PATH, STATX_TYPE | STATX_NLINK | STATX_INO, &st) != 0) return false;
    identity = {st.stx_dev_major, st.stx_dev_minor, st.stx_ino};
    directory = S_ISDIR(st.stx_mode);
    named = st.stx_nlink > 0;
    return true;
}

State stateOf(int fd, const Identity& expected) {
    Identity found;
    bool directory = false;
    bool named = false;
    if (!describe(fd, found, directory, named) || !directory || !(found == expected)) {
        return State::Lost;
    }
    return named ? State::Kept : State::Removed;
}

struct Kept {
    std::mutex mutex;
    std::string path;
    uint64_t generation = 0;
    Identity identity;
    std::shared_ptr<const RootDirectory> directory;
};

}  // namespace

RootDirectory::~RootDirectory() {
    if (mOwned.load()) {
        int saved = errno;
        close(mFd);
        errno = saved;
    }
}

std::shared_ptr<const RootDirectory> openRootDirectory(const std::string& root) {
    static Kept kept;
    const uint64_t generation = rootGeneration();
    std::shared_ptr<const RootDirectory> directory;
    Identity identity;
    {
        std::lock_guard<std::mutex> lock(kept.mutex);
        if (kept.path == root && kept.generation == generation) {
            directory = kept.directory;
            identity = kept.identity;
        }
    }
    if (directory != nullptr) {
        State state = stateOf(directory->fd(), identity);
        if (state == State::Kept) return directory;
        if (state == State::Lost) directory->disown();
        std::lock_guard<std::mutex> lock(kept.mutex);
        if (kept.directory == directory) kept.directory = nullptr;
    }
    auto fresh = std::make_shared<const RootDirectory>(
            open(root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    bool isDirectory = false;
    bool named = false;
    if (fresh->fd() < 0) {
        fresh->disown();
        return nullptr;
    }
    if (!describe(fresh->fd(), identity, isDirectory, named)) return nullptr;
    if (!named) {
        errno = ENOENT;  // removed as it was opened
        return nullptr;
    }
    std::lock_guard<std::mutex> lock(kept.mutex);
    kept.path = root;
    kept.generation = generation;
    kept.identity = identity;
    kept.directory = fresh;
    return fresh;
}

}  // namespace vesk::host
