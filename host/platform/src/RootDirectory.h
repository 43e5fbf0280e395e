/*
 * The device root's directory, opened once and kept for the opens below the root (RootFiles.cpp):
 * walking the root's own path and closing it again were two of the four system calls of each
 * open. It is opened anew for another root, after setDeviceRoot(), when the kept directory was
 * removed (another process may make the root again), and when the kept descriptor no longer
 * names it (closed, or its number taken by another file: that number is then left alone). A root
 * renamed away and replaced by another directory of its name is served from the first until
 * setDeviceRoot().
 */
#pragma once

#include <atomic>
#include <memory>
#include <string>

namespace vesk::host {

class RootDirectory {
  public:
    explicit RootDirectory(int fd) : mFd(fd) {}
    ~RootDirectory();
    RootDirectory(const RootDirectory&) = delete;
    RootDirectory& operator=(const RootDirectory&) = delete;

    int fd() const { return mFd; }
    // The descriptor number is no longer this directory's: it is not closed.
    void disown() const { mOwned.store(false); }

  private:
    const int mFd;
    mutable std::atomic<bool> mOwned{true};
};

// The directory `root` names, kept from an earlier call or opened now; null, with errno set,
// when it cannot be opened.
std::shared_ptr<const RootDirectory> openRootDirectory(const std::string& root);

}  // namespace vesk::host
