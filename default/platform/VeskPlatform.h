/*
 * The few places where the service touches the platform beyond properties and the log:
 * shell commands, device paths and the MTD ioctls. The device build links
 * VeskPlatformDevice.cpp; the host build links its own implementation.
 */
#pragma once

#include <mtd/mtd-user.h>

#include <string>

namespace vesk::platform {

// Runs a shell command line and waits for it; returns system()'s status.
int runCommand(const char* commandLine);

// Where the device path (for example "/dev/block/env") can be opened.
std::string devicePath(const char* path);

// MEMGETINFO and MEMERASE on an open MTD character device; the ioctl's result.
int mtdGetInfo(int fd, mtd_info_user* info);
int mtdErase(int fd, const erase_info_user* erase);

}  // namespace vesk::platform
