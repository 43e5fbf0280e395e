/*
 * Every device path the service opens and every command it runs on the board, in one table: the
 * code below uses these names, and the service's SELinux policy (sepolicy/) must label each
 * path and program (sepolicy/check_policy.py reads this file and checks that it does).
 * The texts are the board's own and are kept byte for byte.
 */
#pragma once

namespace vesk::platform {

// The boot loader's environment, tried in this order; the fourth is an MTD partition.
inline constexpr const char* kEnvDevices[] = {
        "/dev/nand_env", "/dev/block/env", "/dev/block/by-name/env", "/dev/block/by-name/ubootenv"};
inline constexpr int kEnvMtdDevice = 3;

// Command lines run through the shell, in the domain of the service's shell helper. A program
// named without a folder is found on the shell's path (/system/bin). Programs of /system run
// only on a board without full Treble; elsewhere their command fails.
inline constexpr char kSelectCustomModeCommand[] = "/vendor/bin/hdmimode 999p60hz";
inline constexpr char kPowerOffCommand[] = "/system/bin/reboot -p";
inline constexpr char kPictureQualityOnCommand[] = "test-systemcontrol --p 1 1";
inline constexpr char kPictureQualityOffCommand[] = "test-systemcontrol --p 0 1";
inline constexpr char kSdrCommand[] = "/system/bin/test-systemcontrol -d sdr rgb,8bit 2160p60hz";
inline constexpr char kHdrCommand[] = "/system/bin/test-systemcontrol -d hdr 422,10bit 2160p60hz";

// Written by the mode tool, which runs in a domain of its own.
inline constexpr char kDisplayModeNode[] = "/sys/class/display/mode";

}  // namespace vesk::platform
