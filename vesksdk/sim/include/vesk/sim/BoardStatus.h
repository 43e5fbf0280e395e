/*
 * What the simulated board shows of itself to other programs on the same device root (veskdm
 * board show): the watchdog as its state file keeps it, and the peer links of the open serial
 * channels. The names of the links and of the state file's watchdog keys are defined here once,
 * for the board that writes them and for the programs that ask.
 */
#pragma once

#include <cstddef>
#include <iterator>
#include <string>
#include <vector>

namespace vesk::sim {

// The links a serial channel makes to the far end of its pseudo-terminal while it is open, in
// channel order (485, 485_2, 232, LoRa, HDMI, TTL, TTL_2), below ROOT/dev.
inline constexpr const char* kSerialLinkNames[] = {"ttyVESK485",  "ttyVESK485_2", "ttyVESK232",
                                                   "ttyVESKLORA", "ttyVESKHDMI",  "ttyVESKTTL",
                                                   "ttyVESKTTL_2"};
inline constexpr std::size_t kSerialChannelCount = std::size(kSerialLinkNames);

// "/dev/NAME", the device path of the channel's link (below the device root).
std::string serialLinkDevicePath(std::size_t channel);

struct SerialLink {
    std::string name;    // kSerialLinkNames' entry
    std::string target;  // the terminal it points at
};
// The links present now, in channel order.
std::vector<SerialLink> serialLinks();

// The watchdog's object in the state file and its members.
namespace statekey {
inline constexpr char kWatchdog[] = "watchdog";
inline constexpr char kWatchdogOpen[] = "open";
inline constexpr char kWatchdogDevice[] = "device";
inline constexpr char kWatchdogTimeout[] = "timeout";
inline constexpr char kWatchdogFeeds[] = "feeds";
inline constexpr char kWatchdogLastFeedMs[] = "last_feed_ms";
inline constexpr char kWatchdogMissedFeeds[] = "missed_feeds";
inline constexpr char kWatchdogLastMissMs[] = "last_miss_ms";
}  // namespace statekey

struct WatchdogStatus {
    bool open = false;
    std::string device;
    unsigned timeout = 0;
    unsigned feeds = 0;
    // Feeds that came too late: the board would have reset before each of them.
    unsigned missedFeeds = 0;
};
// The watchdog as the board's state file holds it now (read under the board's file lock).
WatchdogStatus watchdogStatus();

}  // namespace vesk::sim
