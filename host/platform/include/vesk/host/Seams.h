/*
 * Test hooks behind the platform seams of VeskPlatform.h.
 */
#pragma once

#include <mtd/mtd-user.h>

#include <functional>
#include <string>

namespace vesk::host {

// Receives each command line instead of the shell; returns the status system() would.
using ShellRecorder = std::function<int(const std::string& commandLine)>;
// Installs a recorder; an empty function restores the shell of the device root.
void setShellRecorder(ShellRecorder recorder);

// An emulated MTD device for the MEMGETINFO and MEMERASE seam.
class MtdEmulation {
  public:
    virtual ~MtdEmulation() = default;
    virtual int getInfo(int fd, mtd_info_user* info) = 0;
    virtual int erase(int fd, const erase_info_user* erase) = 0;
};
// Routes the MTD ioctls to `emulation` (not owned); nullptr restores the real ioctls.
void setMtdEmulation(MtdEmulation* emulation);

}  // namespace vesk::host
