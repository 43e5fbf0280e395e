/*
 * Files below the device root, which is a jail: every path is opened relative to the root's
 * directory descriptor and no symbolic link is followed on the way (openat2 with
 * RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS where the kernel has it, else one component at a time
 * with O_NOFOLLOW), and a file with more than one hard link is never opened for writing.
 *
 * Paths are device paths ("/data/property/store"); "." and ".." are resolved lexically and
 * never climb above the root. The root directory itself is taken as it is named.
 *
 * Errors come back as -1 / false with errno set: ELOOP for a symbolic link on the way (EXDEV for
 * one leaving the root, openDeviceBelowRoot), EMLINK
 * for a hard-linked file opened for writing, ENOTDIR, ENOENT, ... as the kernel says.
 */
#pragma once

#include <sys/types.h>

#include <string>

namespace vesk::host {

// open(2) below the root. O_CLOEXEC is always added. With write access or O_TRUNC, a regular file
// with more than one link is refused before anything is truncated.
int openBelowRoot(const std::string& root, const std::string& path, int flags, mode_t mode = 0);

// The same for a device path (the device-path seam): device nodes are reached through links on
// the device ("/dev/block/by-name/env" -> "../mmcblk0p5"), so a relative symbolic link is followed
// as long as it stays below the root (openat2's RESOLVE_BENEATH); one that leaves it, by an
// absolute target or by "..", gives EXDEV.
int openDeviceBelowRoot(const std::string& root, const std::string& path, int flags,
                        mode_t mode = 0);

// mkdir -p below the root; true when the directory exists afterwards (and was reached without
// following a link).
bool makeDirectoriesBelowRoot(const std::string& root, const std::string& path, mode_t mode = 0755);

// Whether something (a file, a directory, a link) has the name `path` below the root.
bool existsBelowRoot(const std::string& root, const std::string& path);

// Replaces the file atomically: a temporary "NAME.tmp.PID" beside it is written, flushed and
// renamed into place, so that readers see the old or the new content. Temporaries that writers
// killed on the way left beside it are removed first. A link at `path` (symbolic, or a file with
// several hard links) or a missing directory is refused and nothing is written.
bool replaceFileBelowRoot(const std::string& root, const std::string& path,
                          const std::string& content, mode_t mode);

// The whole content of the file (reached, like every file here, through no link); false with
// errno set when it cannot be read.
bool readFileBelowRoot(const std::string& root, const std::string& path, std::string& content);

// Points the symbolic link `path` at `target` in one step: a temporary link "NAME.tmp.PID" beside
// it is renamed over what has the name (a link there is replaced, never followed). Temporaries
// that killed writers left beside it are removed first.
bool publishLinkBelowRoot(const std::string& root, const std::string& path,
                          const std::string& target);

// What the symbolic link `path` points at; empty, with errno set, when it is not one.
std::string readLinkBelowRoot(const std::string& root, const std::string& path);

// Removes the symbolic link `path` if it still points at `target` (another writer may have
// published its own link there since); true when it was removed.
bool removeLinkBelowRoot(const std::string& root, const std::string& path,
                         const std::string& target);

// Appends `text` with one write(2) in O_APPEND mode, creating the file when missing.
bool appendToFileBelowRoot(const std::string& root, const std::string& path,
                           const std::string& text, mode_t mode = 0644);

// The path relative to the root, "a/b/c" (empty for the root itself), as the functions above
// resolve it.
std::string relativeBelowRoot(const std::string& path);

// Tests: walk component by component even where openat2 is available.
void setComponentWalkForTesting(bool on);

}  // namespace vesk::host
