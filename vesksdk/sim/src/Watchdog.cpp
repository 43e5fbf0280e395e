// The hardware watchdog: its configuration, and open, feed and close of its device.
#include <cstring>

#include "SimMacros.h"
#include "vesksdk.h"

using vesk::sim::BoardData;
using vesk::sim::SimCall;

namespace {
constexpr char kWatchdogDevice[] = "/dev/watchdog";
constexpr unsigned int kTimeoutSeconds = 60;
constexpr unsigned int kFeedIntervalSeconds = 10;
}  // namespace

int bi_watchdog_parse(void* record) {
    return SimCall("bi_watchdog_parse", {vesk::sim::outputBuffer()})
        .out(record, sizeof(vesk_watchdog_record))
        .run([&] {
            if (!record) return -1;
            vesk_watchdog_record config{};
            strncpy(config.wdtDevice, kWatchdogDevice, sizeof(config.wdtDevice) - 1);
            config.wdt_timeout = kTimeoutSeconds;
            config.wdt_interval = kFeedIntervalSeconds;
            memcpy(record, &config, sizeof(config));
            return 0;
        });
}

int bi_watchdog_open(const char* device, unsigned int timeout) {
    return SimCall("bi_watchdog_open", {vesk::sim::text(device), timeout}).run([&] {
        if (!device || !*device) return -1;
        return vesk::sim::board().with([&](BoardData& data) {
            data.watchdog = {true, device, timeout, 0};
            return 0;
        });
    });
}

// Feeding or closing needs the device that was opened.
int bi_watchdog_feed(const char* device) {
    return SimCall("bi_watchdog_feed", {vesk::sim::text(device)}).run([&] {
        return vesk::sim::board().with([&](BoardData& data) {
            if (!device || !data.watchdog.open || data.watchdog.device != device) return -1;
            ++data.watchdog.feeds;
            return 0;
        });
    });
}

int bi_watchdog_close(const char* device) {
    return SimCall("bi_watchdog_close", {vesk::sim::text(device)}).run([&] {
        return vesk::sim::board().with([&](BoardData& data) {
            if (!device || !data.watchdog.open || data.watchdog.device != device) return -1;
            data.watchdog.open = false;
            return 0;
        });
    });
}
