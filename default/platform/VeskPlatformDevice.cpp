/*
 * The platform seams on the device: the real shell, paths and ioctls.
 */
#include <fcntl.h>
#include <stdlib.h>
#include <sys/ioctl.h>

#include "VeskPlatform.h"

namespace vesk::platform {

int runCommand(const char* commandLine) {
    return system(commandLine);
}

std::string devicePath(const char* path) {
    return path;
}

int openDevice(const char* path, int flags, mode_t mode) {
    return ::open(path, flags | O_CLOEXEC, mode);
}

int mtdGetInfo(int fd, mtd_info_user* info) {
    return ioctl(fd, MEMGETINFO, info);
}

int mtdErase(int fd, const erase_info_user* erase) {
    return ioctl(fd, MEMERASE, erase);
}

}  // namespace vesk::platform
