#include "vesk/sim/BoardStatus.h"

#include "vesk/host/DeviceRoot.h"
#include "vesk/host/RootFiles.h"
#include "vesk/sim/StateFile.h"

namespace vesk::sim {

std::string serialLinkDevicePath(std::size_t channel) {
    return std::string("/dev/") + kSerialLinkNames[channel];
}

std::vector<SerialLink> serialLinks() {
    std::vector<SerialLink> links;
    const std::string root = vesk::host::deviceRoot();
    for (std::size_t channel = 0; channel < kSerialChannelCount; ++channel) {
        std::string target = vesk::host::readLinkBelowRoot(root, serialLinkDevicePath(channel));
        if (!target.empty()) links.push_back({kSerialLinkNames[channel], target});
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
