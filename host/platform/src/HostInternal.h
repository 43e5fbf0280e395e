/*
 * Shared between the host platform's own sources.
 */
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vesk::host {

// Changes whenever setDeviceRoot() picks another root; caches compare it.
uint64_t rootGeneration();

// The tools of the root's /system/bin and /vendor/bin that stand in for the device's.
inline constexpr const char* kStandInTools[] = {
        "/vendor/bin/hdmimode", "/system/bin/test-systemcontrol", "/system/bin/reboot"};

// Records an invocation of the stand-in `tool` (its device path) in the shell log below the root
// ("TOOL ARGS\n"); the mode tool also leaves its first argument in the display mode file.
// False (errno set) when a file could not be written, for example because of a planted link.
bool recordStandInInvocation(const std::string& root, const std::string& tool,
                             const std::vector<std::string>& args);

}  // namespace vesk::host
