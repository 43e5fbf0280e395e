/*
 * The host's device root: one directory below which every device path, tool stand-in,
 * the property store and the simulated board's state live.
 */
#pragma once

#include <string>

namespace vesk::host {

// The root chosen by setDeviceRoot(), else $VESK_ROOT, else $XDG_STATE_HOME/veskdm/root,
// else ~/.local/state/veskdm/root. Created with its factory layout on first use.
std::string deviceRoot();

// The root deviceRoot() would give, if that directory exists; else empty. Creates nothing, so
// that commands which only read (or work on a file named by an option) leave no root behind.
std::string existingDeviceRoot();

// Makes `root` the device root of this process and of the processes it starts
// (it is exported as $VESK_ROOT). With `prepare`, creates its layout if it is missing; without,
// the layout is made by the first deviceRoot().
void setDeviceRoot(const std::string& root, bool prepare = true);

// Makes `root` the device root of this process (and of the processes it starts) as it is: its
// layout is never made, neither now nor by a later deviceRoot(), so that a command which only
// reads leaves the root as it found it.
void useDeviceRootAsItIs(const std::string& root);
// Whether the device root is the one useDeviceRootAsItIs() chose: its users make nothing in it.
bool deviceRootLeftAsItIs();

// Maps an absolute device path below the root. Relative paths and ".." components never
// leave the root: they are resolved lexically first. The name is for messages and for readers;
// files below the root are opened through RootFiles.h, which follows no link.
std::string pathBelowRoot(const std::string& root, const std::string& devicePath);

// Relative locations inside the root.
inline constexpr char kEnvPartition[] = "/dev/block/env";
inline constexpr char kPropertyStore[] = "/data/property/store";
inline constexpr char kBoardStateDir[] = "/data/vesksdk";
inline constexpr char kShellLog[] = "/data/shell/invocations.log";
inline constexpr char kDisplayMode[] = "/sys/class/display/mode";
// The stable-AIDL service's socket: where a board has the service manager, the host service
// serves its object over RPC binder here.
inline constexpr char kServiceSocketFolder[] = "/dev/socket";
inline constexpr char kServiceSocket[] = "/dev/socket/veskdevicemanager";

}  // namespace vesk::host
