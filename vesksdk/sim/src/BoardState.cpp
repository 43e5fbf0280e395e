#include "BoardState.h"

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

template <std::size_t N>
void restoreText(char (&field)[N], const nlohmann::json& json, const char* key) {
    if (json.contains(key) && json[key].is_string()) {
        putText(field, N, json[key].get<std::string>().c_str());
    }
}

// The board keeps the six words of a time it is given.
nlohmann::json savedTime(const std::array<uint32_t, VESK_RTC_TIME_WORDS>& time) {
    return std::vector<uint32_t>(time.begin(), time.begin() + VESK_RTC_SET_WORDS);
}

void restoreTime(std::array<uint32_t, VESK_RTC_TIME_WORDS>& time, const nlohmann::json& json) {
    if (!json.is_array()) return;
    for (std::size_t i = 0; i < json.size() && i < VESK_RTC_SET_WORDS; ++i) {
        time[i] = json[i].get<uint32_t>();
    }
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
    if (json.contains("values") && json["values"].is_object()) {
        for (const auto& [key, value] : json["values"].items()) data.values[key] = value.get<int>();
    }
    if (json.contains(statekey::kWatchdog) && json[statekey::kWatchdog].is_object()) {
        const nlohmann::json& dog = json[statekey::kWatchdog];
        data.watchdog.open = dog.value(statekey::kWatchdogOpen, false);
        data.watchdog.device = dog.value(statekey::kWatchdogDevice, "");
        data.watchdog.timeout = dog.value(statekey::kWatchdogTimeout, 0u);
        data.watchdog.feeds = dog.value(statekey::kWatchdogFeeds, 0u);
        data.watchdog.lastFeedMs = dog.value(statekey::kWatchdogLastFeedMs, int64_t{0});
        data.watchdog.missedFeeds = dog.value(statekey::kWatchdogMissedFeeds, 0u);
        data.watchdog.lastMissMs = dog.value(statekey::kWatchdogLastMissMs, int64_t{0});
    }
    if (json.contains("log") && json["log"].is_object()) {
        const nlohmann::json& log = json["log"];
        restoreText(data.log.level, log, "level");
        restoreText(data.log.base, log, "base");
        restoreText(data.log.mode, log, "mode");
        restoreText(data.log.total_size, log, "total_size");
        restoreText(data.log.once_size, log, "once_size");
    }
    if (json.contains("rtc_boot_time")) restoreTime(data.rtcBoot, json["rtc_boot_time"]);
    if (json.contains("rtc_wake_time")) restoreTime(data.rtcWake, json["rtc_wake_time"]);
    if (json.contains("output_mode") && json["output_mode"].is_object()) {
        const nlohmann::json& mode = json["output_mode"];
        data.outputMode.width = mode.value("width", data.outputMode.width);
        data.outputMode.height = mode.value("height", data.outputMode.height);
        data.outputMode.fps = mode.value("fps", data.outputMode.fps);
        data.outputMode.status = mode.value("status", data.outputMode.status);
    }
    if (json.contains("started_processes") && json["started_processes"].is_object()) {
        for (const auto& [pid, startTime] : json["started_processes"].items()) {
            data.startedProcesses[std::stoi(pid)] = startTime.get<unsigned long long>();
        }
    }
}

BoardState::Saved::Saved(BoardData& data) : mData(data) {
    // Start from the factory state, so that what no process ever saved reads as new.
    // BoardData holds only what the file saves, so a member added later is reset here too.
    static const BoardData factory;
    data = factory;
    try {
        restoreSavedState(data, readJsonFile(stateFilePath()));
    } catch (const nlohmann::json::exception& e) {
        fprintf(stderr, "vesksdk: %s: %s; factory state used\n", stateFilePath().c_str(), e.what());
    }
    mLoaded = savedState(data);
}

BoardState::Saved::~Saved() {
    nlohmann::json now = savedState(mData);
    if (now != mLoaded) writeJsonFileAtomically(stateFilePath(), now);
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
