#include "vesk/sim/BoardStatus.h"

#include <limits.h>
#include <unistd.h>

#include "vesk/host/DeviceRoot.h"
#include "vesk/sim/StateFile.h"

namespace vesk::sim {

std::string serialLinkPath(std::size_t channel) {
    return vesk::host::pathBelowRoot(vesk::host::deviceRoot(),
                                     std::string("/dev/") + kSerialLinkNames[channel]);
}

std::vector<SerialLink> serialLinks() {
    std::vector<SerialLink> links;
    for (std::size_t channel = 0; channel < kSerialChannelCount; ++channel) {
        char target[PATH_MAX];
        ssize_t length = readlink(serialLinkPath(channel).c_str(), target, sizeof(target) - 1);
        if (length < 0) continue;
        links.push_back({kSerialLinkNames[channel], std::string(target, length)});
    }
    return links;
}

WatchdogStatus watchdogStatus() {
    nlohmann::json state;
    {
        BoardFileLock lock;
        state = readJsonFile(stateFilePath());
    }
    const nlohmann::json watchdog = state.value(statekey::kWatchdog, nlohmann::json::object());
    WatchdogStatus status;
    status.open = watchdog.value(statekey::kWatchdogOpen, false);
    status.device = watchdog.value(statekey::kWatchdogDevice, "");
    status.timeout = watchdog.value(statekey::kWatchdogTimeout, 0u);
    status.feeds = watchdog.value(statekey::kWatchdogFeeds, 0u);
    status.missedFeeds = watchdog.value(statekey::kWatchdogMissedFeeds, 0u);
    return status;
}

}  // namespace vesk::sim
