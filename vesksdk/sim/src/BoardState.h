/*
 * Everything the simulated board remembers between calls, in one place so that it can be
 * saved and restored as a whole.
 */
#pragma once

#include <array>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "vesksdk_records.h"

namespace vesk::sim {

struct WatchdogState {
    bool open = false;
    std::string device;
    unsigned int timeout = 0;
    unsigned int feeds = 0;
};

// Size of each fixed block area (defined, screen, FPGA program) and of a named block.
inline constexpr std::size_t kBlockAreaSize = 64 * 1024;

struct BoardData {
    BoardData();

    // Plain states and switches by name ("sysled", "usb_state/2", ...); absent reads as 0.
    std::map<std::string, int> values;
    WatchdogState watchdog;
    std::vector<uint8_t> definedArea, screenArea, fpgaProgram;
    std::map<std::string, std::vector<uint8_t>> namedBlocks;
    std::array<char, VESK_PRODUCT_RECORD_SIZE> product{};
    vesk_log_record log{};
    std::array<uint32_t, VESK_RTC_TIME_WORDS> rtcBoot{}, rtcWake{};
    vesk_resolution_record outputMode{};
};

class BoardState {
  public:
    static BoardState& instance();

    // Runs `action(data)` with the board locked.
    template <class Action>
    auto with(Action&& action) {
        std::lock_guard<std::mutex> lock(mMutex);
        return action(mData);
    }

    int value(const std::string& key);
    // Stores a state; returns 0, the board's success.
    int setValue(const std::string& key, int value);

    // For the calls that wait (blocking serial reads): the lock, and a signal of changes.
    std::unique_lock<std::mutex> lock() { return std::unique_lock<std::mutex>(mMutex); }
    BoardData& data() { return mData; }  // only with lock() held
    std::condition_variable& changed() { return mChanged; }

  private:
    std::mutex mMutex;
    std::condition_variable mChanged;
    BoardData mData;
};

inline BoardState& board() {
    return BoardState::instance();
}

// The key of one member of an indexed state: "usb_state/2".
std::string indexed(const char* key, long long index);

}  // namespace vesk::sim
