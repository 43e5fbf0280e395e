// The hardware watchdog: its configuration, and open, feed and close of its device.
#include <time.h>

#include <cstring>

#include "SimMacros.h"
#include "vesksdk.h"

using vesk::sim::BoardData;
using vesk::sim::SimCall;
using vesk::sim::WatchdogState;

namespace {
constexpr char kWatchdogDevice[] = "/dev/watchdog";
constexpr unsigned int kTimeoutSeconds = 60;
constexpr unsigned int kFeedIntervalSeconds = 10;
constexpr unsigned int kMaxTimeoutSeconds = 3600;
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

namespace {

// Wall-clock milliseconds: the feed times are compared across processes and restarts.
int64_t nowMs() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1000000;
}

// A feed or close after the time-out: the board would have reset in between. Recorded so that
// a client developer sees it (veskdm board show).
void noteMissedFeed(WatchdogState& dog) {
    int64_t now = nowMs();
    if (now > dog.lastFeedMs + int64_t{dog.timeout} * 1000) {
        ++dog.missedFeeds;
        dog.lastMissMs = now;
    }
}

}  // namespace

// Starts the watchdog with a time-out of 1 to 3600 seconds, on a device named in at most
// 4096 bytes.
int bi_watchdog_open(const char* device, unsigned int timeout) {
    return SimCall("bi_watchdog_open", {vesk::sim::text(device), timeout}).run([&] {
        if (!device || !*device || timeout < 1 || timeout > kMaxTimeoutSeconds) return -1;
        // The board keeps the device's name: a name longer than it keeps is refused.
        if (strnlen(device, vesk::sim::kMaxStoredText + 1) > vesk::sim::kMaxStoredText) return -1;
        return vesk::sim::board().with([&](BoardData& data) {
            WatchdogState& dog = data.watchdog;
            dog.open = true;
            dog.device = device;
            dog.timeout = timeout;
            dog.feeds = 0;
            dog.lastFeedMs = nowMs();
            return 0;
        });
    });
}

// Feeding or closing needs the device that was opened.
int bi_watchdog_feed(const char* device) {
    return SimCall("bi_watchdog_feed", {vesk::sim::text(device)}).run([&] {
        return vesk::sim::board().with([&](BoardData& data) {
            WatchdogState& dog = data.watchdog;
            if (!device || !dog.open || dog.device != device) return -1;
            noteMissedFeed(dog);
            ++dog.feeds;
            dog.lastFeedMs = nowMs();
            return 0;
        });
    });
}

int bi_watchdog_close(const char* device) {
    return SimCall("bi_watchdog_close", {vesk::sim::text(device)}).run([&] {
        return vesk::sim::board().with([&](BoardData& data) {
            WatchdogState& dog = data.watchdog;
            if (!device || !dog.open || dog.device != device) return -1;
            noteMissedFeed(dog);
            dog.open = false;
            return 0;
        });
    });
}
