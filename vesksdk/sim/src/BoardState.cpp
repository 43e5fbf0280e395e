#include "BoardState.h"

#include <cstring>

namespace vesk::sim {
namespace {

void putText(std::array<char, VESK_PRODUCT_RECORD_SIZE>& record, std::size_t offset,
             const char* text) {
    strncpy(record.data() + offset, text, 31);
}

void putText(char* field, std::size_t size, const char* text) {
    strncpy(field, text, size - 1);
}

}  // namespace

BoardData::BoardData()
    : definedArea(kBlockAreaSize), screenArea(kBlockAreaSize), fpgaProgram(kBlockAreaSize) {
    // Readings of a board that is switched on, with its HDMI output connected.
    values = {{"board_id", 3}, {"protocol_type", 1}, {"ap_channel", 6}, {"otg_mode", 1}};

    // The factory product record of a model 8470 that uses DHCP.
    putText(product, 0, "VESK");
    putText(product, VESK_PRODUCT_MODEL_ID_OFFSET, "8470");
    putText(product, 96, "V1.2");
    putText(product, 128, "VESK media player");
    putText(product, 256, "VSK8470A00012345");
    putText(product, 320, "2024-03-18");
    putText(product, 1568, "1");
    putText(product, 1824, "0");
    putText(product, 1920, "1");
    putText(product, VESK_PRODUCT_USE_DHCP_OFFSET, "true");

    putText(log.level, sizeof(log.level), "I");
    putText(log.base, sizeof(log.base), "/data/vesk/log");
    putText(log.mode, sizeof(log.mode), "file");
    putText(log.total_size, sizeof(log.total_size), "200M");
    putText(log.once_size, sizeof(log.once_size), "20M");

    outputMode = {1920, 1080, 60, 1};
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

int BoardState::setValue(const std::string& key, int value) {
    return with([&](BoardData& data) {
        data.values[key] = value;
        return 0;
    });
}

std::string indexed(const char* key, long long index) {
    return std::string(key) + "/" + std::to_string(index);
}

}  // namespace vesk::sim
