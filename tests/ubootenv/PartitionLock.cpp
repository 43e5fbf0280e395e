#include "PartitionLock.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <sstream>
#include <thread>

namespace vesk::test {

bool heldElsewhere(const std::string& path) {
    int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return false;
    bool held = flock(fd, LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    close(fd);  // releases the probe's own lock, if it got one
    return held;
}

namespace {

// A line of /proc/locks for a waiter: "N: -> FLOCK  ADVISORY  WRITE PID MAJ:MIN:INODE 0 EOF".
bool listedAsWaiting(pid_t pid, ino_t inode) {
    std::ifstream locks("/proc/locks");
    std::string line;
    while (std::getline(locks, line)) {
        std::istringstream words(line);
        std::string number, arrow, kind, mode, access, holder, file;
        words >> number >> arrow >> kind >> mode >> access >> holder >> file;
        if (arrow != "->" || kind != "FLOCK") continue;
        std::string fileInode = file.substr(file.rfind(':') + 1);
        if (holder == std::to_string(pid) && fileInode == std::to_string(inode)) return true;
    }
    return false;
}

}  // namespace

bool waitsForLock(pid_t pid, const std::string& path, std::chrono::milliseconds deadline) {
    struct stat st;
    if (stat(path.c_str(), &st) != 0) return false;
    auto end = std::chrono::steady_clock::now() + deadline;
    while (!listedAsWaiting(pid, st.st_ino)) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

Signal::Signal() {
    EXPECT_EQ(0, pipe2(mFds, O_CLOEXEC));
}

Signal::~Signal() {
    for (int fd : mFds) {
        if (fd >= 0) close(fd);
    }
}

void Signal::senderSide() {
    close(mFds[0]);
    mFds[0] = -1;
}

void Signal::receiverSide() {
    close(mFds[1]);
    mFds[1] = -1;
}

void Signal::give() {
    char byte = 1;
    EXPECT_EQ(1, write(mFds[1], &byte, 1));
}

bool Signal::await() {
    char byte = 0;
    ssize_t n;
    while ((n = read(mFds[0], &byte, 1)) < 0 && errno == EINTR) {
    }
    return n == 1;
}

}  // namespace vesk::test
