/*
 * The few places where the service touches the platform beyond properties and the log:
 * shell commands, device paths and files, and the MTD ioctls. The device build links
 * VeskPlatformDevice.cpp; the host build links its own implementation.
 */
#pragma once

#include <mtd/mtd-user.h>
#include <sys/types.h>

#include <string>

namespace vesk::platform {

// Runs a shell command line and waits for it; returns system()'s status.
int runCommand(const char* commandLine);

// Where the device path (for example "/dev/block/env") lives, for stat() and access().
std::string devicePath(const char* path);

// open(2) of the device path (for example "/dev/block/env"), close-on-exec; -1 with errno on
// failure. Every device file the service writes is opened here.
int openDevice(const char* path, int flags, mode_t mode = 0);

// MEMGETINFO and MEMERASE on an open MTD character device; the ioctl's result.
int mtdGetInfo(int fd, mtd_info_user* info);
int mtdErase(int fd, const erase_info_user* erase);

}  // namespace vesk::platform
