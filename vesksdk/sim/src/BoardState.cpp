#include "BoardState.h"

#include <cstdint>
#include <cstdio>
#include <cstring>

#include "StateRanges.h"
#include "vesk/sim/BoardStatus.h"

namespace vesk::sim {
namespace {

void putText(char* field, std::size_t size, const char* text) {
    memset(field, 0, size);
    strncpy(field, text, size - 1);
}

template <std::size_t N>
std::string fieldText(const char (&field)[N]) {
    return std::string(field, strnlen(field, N));
}

// A saved key the board cannot use is left at its default, alone: one line on stderr, and
// every other key is kept.
void warnDefault(const std::string& key, const std::string& reason) {
    fprintf(stderr, "vesksdk: %s: %s %s; its default used\n", stateFilePath().c_str(), key.c_str(),
            reason.c_str());
}

// Restores one key; a key of the wrong shape or type keeps its default.
template <typename Restore>
void restoreKey(const nlohmann::json& json, const std::string& key, Restore restore) {
    if (!json.contains(key)) return;
    try {
        if (!restore(json.at(key))) warnDefault(key, "has the wrong shape");
    } catch (const nlohmann::json::exception&) {
        warnDefault(key, "has the wrong type");
    }
}

template <std::size_t N>
bool restoreText(char (&field)[N], const nlohmann::json& json, const char* key) {
    if (!json.contains(key)) return true;
    const nlohmann::json& text = json.at(key);
    if (!text.is_string() || text.get_ref<const std::string&>().size() >= N) return false;
    putText(field, N, text.get_ref<const std::string&>().c_str());
    return true;
}

// The board keeps the six words of a time it is given.
nlohmann::json savedTime(const std::array<uint32_t, VESK_RTC_TIME_WORDS>& time) {
    return std::vector<uint32_t>(time.begin(), time.begin() + VESK_RTC_SET_WORDS);
}

bool restoreTime(std::array<uint32_t, VESK_RTC_TIME_WORDS>& time, const nlohmann::json& json) {
    if (!json.is_array() || json.size() > VESK_RTC_SET_WORDS) return false;
    std::array<uint32_t, VESK_RTC_TIME_WORDS> read = time;
    for (std::size_t i = 0; i < json.size(); ++i) {
        if (!json[i].is_number_unsigned()) return false;
        read[i] = json[i].get<uint32_t>();
    }
    time = read;
    return true;
}

// A process id as the state file keys it: decimal digits of a positive int, nothing else.
bool parsePid(const std::string& text, int* pid) {
    if (text.empty() || text.size() > 10) return false;
    long long value = 0;
    for (char c : text) {
        if (c < '0' || c > '9') return false;
        value = value * 10 + (c - '0');
    }
    if (value < 1 || value > INT32_MAX) return false;
    *pid = static_cast<int>(value);
    return true;
}

}  // namespace

BoardData::BoardData() {
    // Readings of a board that is switched on, with its HDMI output connected.
    values = {{"board_id", 3}, {"protocol_type", 1}, {"ap_channel", 6}, {"otg_mode", 1}};

    putText(log.level, sizeof(log.level), "I");
    putText(log.base, sizeof(log.base), "/data/vesk/log");
    putText(log.mode, sizeof(log.mode), "file");
    putText(log.total_size, sizeof(log.total_size), "200M");
    putText(log.once_size, sizeof(log.once_size), "20M");

    outputMode = {1920, 1080, 60, 1};
}

nlohmann::json savedState(const BoardData& data) {
    nlohmann::json started = nlohmann::json::object();
    for (const auto& [pid, startTime] : data.startedProcesses) {
        started[std::to_string(pid)] = startTime;
    }
    const WatchdogState& dog = data.watchdog;
    return {
            {"values", data.values},
            {statekey::kWatchdog,
             {{statekey::kWatchdogOpen, dog.open},
              {statekey::kWatchdogDevice, dog.device},
              {statekey::kWatchdogTimeout, dog.timeout},
              {statekey::kWatchdogFeeds, dog.feeds},
              {statekey::kWatchdogLastFeedMs, dog.lastFeedMs},
              {statekey::kWatchdogMissedFeeds, dog.missedFeeds},
              {statekey::kWatchdogLastMissMs, dog.lastMissMs}}},
            {"log",
             {{"level", fieldText(data.log.level)},
              {"base", fieldText(data.log.base)},
              {"mode", fieldText(data.log.mode)},
              {"total_size", fieldText(data.log.total_size)},
              {"once_size", fieldText(data.log.once_size)}}},
            {"rtc_boot_time", savedTime(data.rtcBoot)},
            {"rtc_wake_time", savedTime(data.rtcWake)},
            {"output_mode",
             {{"width", data.outputMode.width},
              {"height", data.outputMode.height},
              {"fps", data.outputMode.fps},
              {"status", data.outputMode.status}}},
            {"started_processes", started},
    };
}

void restoreSavedState(BoardData& data, const nlohmann::json& json) {
    restoreKey(json, "values", [&](const nlohmann::json& values) {
        if (!values.is_object()) return false;
        for (const auto& [key, value] : values.items()) {
            if (data.values.size() >= kMaxSavedValues && data.values.count(key) == 0) {
                warnDefault("values/" + key,
                            "is past the board's " + std::to_string(kMaxSavedValues) + " values");
            } else if (!value.is_number_integer() || value.get<long long>() < INT32_MIN ||
                       value.get<long long>() > INT32_MAX) {
                warnDefault("values/" + key, "is not a 32-bit integer");
            } else {
                data.values[key] = value.get<int>();
            }
        }
        return true;
    });
    restoreKey(json, statekey::kWatchdog, [&](const nlohmann::json& dog) {
        if (!dog.is_object()) return false;
        for (const char* count : {statekey::kWatchdogTimeout, statekey::kWatchdogFeeds,
                                  statekey::kWatchdogMissedFeeds}) {
            // A negative count would read as a huge one.
            if (dog.contains(count) && !dog.at(count).is_number_unsigned()) return false;
        }
        WatchdogState read = data.watchdog;
        read.open = dog.value(statekey::kWatchdogOpen, false);
        read.device = dog.value(statekey::kWatchdogDevice, "");
        if (read.device.size() > kMaxStoredText) return false;
        read.timeout = dog.value(statekey::kWatchdogTimeout, 0u);
        read.feeds = dog.value(statekey::kWatchdogFeeds, 0u);
        read.lastFeedMs = dog.value(statekey::kWatchdogLastFeedMs, int64_t{0});
        read.missedFeeds = dog.value(statekey::kWatchdogMissedFeeds, 0u);
        read.lastMissMs = dog.value(statekey::kWatchdogLastMissMs, int64_t{0});
        data.watchdog = read;
        return true;
    });
    restoreKey(json, "log", [&](const nlohmann::json& log) {
        if (!log.is_object()) return false;
        vesk_log_record read = data.log;
        bool good = restoreText(read.level, log, "level") && restoreText(read.base, log, "base") &&
                    restoreText(read.mode, log, "mode") &&
                    restoreText(read.total_size, log, "total_size") &&
                    restoreText(read.once_size, log, "once_size");
        if (good) data.log = read;
        return good;
    });
    restoreKey(json, "rtc_boot_time",
               [&](const nlohmann::json& time) { return restoreTime(data.rtcBoot, time); });
    restoreKey(json, "rtc_wake_time",
               [&](const nlohmann::json& time) { return restoreTime(data.rtcWake, time); });
    restoreKey(json, "output_mode", [&](const nlohmann::json& mode) {
        if (!mode.is_object()) return false;
        vesk_resolution_record read = data.outputMode;
        read.width = mode.value("width", read.width);
        read.height = mode.value("height", read.height);
        read.fps = mode.value("fps", read.fps);
        read.status = mode.value("status", read.status);
        data.outputMode = read;
        return true;
    });
    restoreKey(json, "started_processes", [&](const nlohmann::json& started) {
        if (!started.is_object()) return false;
        for (const auto& [key, startTime] : started.items()) {
            int pid = 0;
            if (data.startedProcesses.size() >= kMaxStartedProcesses) {
                warnDefault("started_processes/" + key,
                            "is past the board's " + std::to_string(kMaxStartedProcesses) +
                                    " processes");
            } else if (!parsePid(key, &pid) || !startTime.is_number_unsigned()) {
                warnDefault("started_processes/" + key, "is not a process id and start time");
            } else {
                data.startedProcesses[pid] = startTime.get<unsigned long long>();
            }
        }
        return true;
    });
}

BoardState::Saved::Saved(BoardData& data) : mData(data) {
    // Start from the factory state, so that what no process ever saved reads as new.
    // BoardData holds only what the file saves, so a member added later is reset here too.
    static const BoardData factory;
    data = factory;
    restoreSavedState(data, readJsonFile(stateFilePath()));
    mLoaded = savedState(data);
}

bool BoardState::Saved::save() {
    mSaved = true;
    nlohmann::json now = savedState(mData);
    return now == mLoaded || writeJsonFileAtomically(stateFilePath(), now);
}

BoardState::Saved::~Saved() {
    if (!mSaved) save();
}

BoardState& BoardState::instance() {
    static BoardState state;
    return state;
}

int BoardState::value(const std::string& key) {
    return with([&](BoardData& data) {
        auto found = data.values.find(key);
        return found == data.values.end() ? 0 : found->second;
    });
}

int BoardState::setValue(const std::string& key, long long value) {
    const StateRule* rule = stateRule(key.substr(0, key.find('/')));
    if (rule && !rule->value.holds(value)) return -1;
    return with([&](BoardData& data) {
        data.values[key] = static_cast<int>(value);
        return 0;
    });
}

int BoardState::indexedValue(const char* key, long long index) {
    const StateRule* rule = stateRule(key);
    if (rule && !rule->index.holds(index)) return -1;
    return value(indexed(key, index));
}

int BoardState::setIndexedValue(const char* key, long long index, long long value) {
    const StateRule* rule = stateRule(key);
    if (rule && !rule->index.holds(index)) return -1;
    return setValue(indexed(key, index), value);
}

std::string indexed(const char* key, long long index) {
    return std::string(key) + "/" + std::to_string(index);
}

}  // namespace vesk::sim
