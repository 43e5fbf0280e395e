/*
 * Everything the simulated board remembers between calls, in one place. What a board keeps
 * (states, times, configurations, the output mode, the watchdog) lives in the state file of the
 * device root: each with() reads it under the cross-process lock and writes it back when the
 * action changed it, so that a value set by one process is read by another.
 */
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>
#include <type_traits>
#include <vector>

#include "vesk/sim/StateFile.h"
#include "vesksdk_records.h"

namespace vesk::sim {

struct WatchdogState {
    bool open = false;
    std::string device;
    unsigned int timeout = 0;  // seconds
    unsigned int feeds = 0;
    int64_t lastFeedMs = 0;  // wall clock, ms since the epoch: shared by every process
    // Feeds (or a close) that came after the time-out: a board would have reset by then.
    unsigned int missedFeeds = 0;
    int64_t lastMissMs = 0;
};

// Bounds of what the board keeps, so that no call slows down on a huge state file: a text it is
// given (longer is refused), the plain states and switches, the processes it started.
inline constexpr std::size_t kMaxStoredText = 4096;
inline constexpr std::size_t kMaxSavedValues = 4096;
inline constexpr std::size_t kMaxStartedProcesses = 256;

// Size of each fixed block area (defined, screen, FPGA program) and of a named block.
inline constexpr std::size_t kBlockAreaSize = 64 * 1024;

struct BoardData {
    BoardData();

    // Every member is saved in the state file (a fresh read starts from a factory copy):
    // plain states and switches by name ("sysled", "usb_state/2", ...); absent reads as 0.
    std::map<std::string, int> values;
    WatchdogState watchdog;
    vesk_log_record log{};
    std::array<uint32_t, VESK_RTC_TIME_WORDS> rtcBoot{}, rtcWake{};
    vesk_resolution_record outputMode{};
    // Processes started through the simulator (pid and start time), the only ones it may kill.
    std::map<int, unsigned long long> startedProcesses;
};

// The saved part of BoardData as JSON, and back: members missing from `json`, or of the wrong
// shape or type, keep their factory values (one warning line on stderr for each bad one), and
// every other member is restored.
nlohmann::json savedState(const BoardData& data);
void restoreSavedState(BoardData& data, const nlohmann::json& json);

class BoardState {
  public:
    static BoardState& instance();

    // Runs `action(data)` with the board locked, in this process and against every other
    // process on the same root, on the state as saved; saves what the action changed. A change
    // that could not be saved is not kept: an action's success (a result of 0 or more) becomes
    // the board's failure, -1; for an action with no result, with() says whether it was kept.
    template <class Action>
    auto with(Action&& action) {
        std::lock_guard<std::mutex> lock(mMutex);
        Saved saved(mData);
        if constexpr (std::is_void_v<std::invoke_result_t<Action, BoardData&>>) {
            action(mData);
            return saved.save();
        } else {
            auto result = action(mData);
            if (!saved.save() && result >= 0) result = -1;
            return result;
        }
    }

    int value(const std::string& key);
    // Stores a state after checking it against the board's accepted values (StateRanges.h):
    // 0, the board's success, or -1 with nothing stored.
    int setValue(const std::string& key, long long value);
    // One member of an indexed state; -1 for an index the board does not have.
    int indexedValue(const char* key, long long index);
    int setIndexedValue(const char* key, long long index, long long value);

  private:
    // Loads the saved state on construction and saves it if it changed, with the state file's
    // lock held in between: save() says whether what changed reached the file (an action that
    // throws still has its change saved on destruction).
    class Saved {
      public:
        explicit Saved(BoardData& data);
        ~Saved();
        bool save();
        Saved(const Saved&) = delete;
        Saved& operator=(const Saved&) = delete;

      private:
        BoardFileLock mLock;
        BoardData& mData;
        nlohmann::json mLoaded;
        bool mSaved = false;
    };

    std::mutex mMutex;
    BoardData mData;
};

inline BoardState& board() {
    return BoardState::instance();
}

// The key of one member of an indexed state: "usb_state/2".
std::string indexed(const char* key, long long index);

}  // namespace vesk::sim
