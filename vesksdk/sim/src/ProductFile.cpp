#include "vesk/sim/ProductFile.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <optional>

#include "vesk/sim/StateFile.h"
#include "vesksdk_records.h"

namespace vesk::sim {
namespace {

// The model number is read as an int by the device manager: 0 to 2147483647.
bool isModelNumber(const std::string& value) {
    if (value.empty() || value.size() > 10) return false;
    for (char c : value) {
        if (!isdigit(static_cast<unsigned char>(c))) return false;
    }
    return std::stoll(value) <= INT32_MAX;
}

bool isMac(const std::string& value) {
    if (value.size() != 17) return false;
    for (std::size_t i = 0; i < value.size(); ++i) {
        bool separator = i % 3 == 2;
        if (separator ? value[i] != ':' : !isxdigit(static_cast<unsigned char>(value[i]))) {
            return false;
        }
    }
    return true;
}

// The last description made, its record, and the text of the file they came from (none when
// there was no file to read: a root whose product was never changed has none). The board
// library reads the file on every call that asks for the model (each output-mode change does),
// and parsing it and filling the record cost more than the rest of such a call: the same text,
// or the same lack of one, gives the same description and record without either.
struct ParsedProduct {
    std::mutex mutex;
    bool made = false;
    std::optional<std::string> text;
    ProductDescription description;
    std::string record;
};

ParsedProduct& lastParsed() {
    static ParsedProduct parsed;
    return parsed;
}

// Calls `use` with what was made before from exactly `text`; false when nothing was.
template <typename Use>
bool useMadeBefore(const std::optional<std::string>& text, Use&& use) {
    ParsedProduct& parsed = lastParsed();
    std::lock_guard<std::mutex> lock(parsed.mutex);
    if (!parsed.made || parsed.text != text) return false;
    use(static_cast<const ParsedProduct&>(parsed));
    return true;
}

// The file's text as it is, every key it lacks at its factory value. Reading writes nothing (the
// file is replaced whole by its writers, so a reader needs no lock): a command that only shows
// the board leaves the root as it found it.
ProductDescription describe(const std::string& path, const std::optional<std::string>& text) {
    nlohmann::json file = parseBoardJson(path, text);
    ProductDescription description;
    for (const ProductField& field : productFields()) {
        auto found = file.find(field.key);
        bool stored = found != file.end() && found->is_string();
        description[field.key] = stored ? found->get<std::string>() : field.factoryValue;
    }
    std::string record(sizeof(vesk_product_record), '\0');
    fillProductRecord(description, record.data());
    ParsedProduct& parsed = lastParsed();
    std::lock_guard<std::mutex> lock(parsed.mutex);
    parsed.made = true;
    parsed.text = text;
    parsed.description = description;
    parsed.record = std::move(record);
    return description;
}

ProductDescription readDescription() {
    const std::string path = productFilePath();
    const std::optional<std::string> text = readBoardFileText(path);
    ProductDescription description;
    if (useMadeBefore(text, [&](const ParsedProduct& made) { description = made.description; }))
        return description;
    return describe(path, text);
}

}  // namespace

// The record's slots (vesk_product_record), keyed by their field names. The model number and the
// DHCP word are the ones the device manager reads for itself; the others are identity texts and
// three feature switches.
const std::vector<ProductField>& productFields() {
// A field's key, offset and width.
#define SLOT(member) \
#member, offsetof(vesk_product_record, member), sizeof(vesk_product_record::member)
    static const std::vector<ProductField> fields = {
            {SLOT(vendor), ProductValue::Text, "VESK"},
            {SLOT(model_id), ProductValue::Decimal, "8470"},
            {SLOT(hardware_version), ProductValue::Text, "V1.2"},
            {SLOT(product_name), ProductValue::Text, "VESK media player"},
            {SLOT(serial_number), ProductValue::Text, "VSK8470A00012345"},
            {SLOT(manufacture_date), ProductValue::Text, "2024-03-18"},
            {SLOT(firmware_version), ProductValue::Text, "1.4.2"},
            {SLOT(mac), ProductValue::Mac, "02:56:45:53:4b:01"},
            {SLOT(ip_address), ProductValue::Text, "192.168.1.100"},
            {SLOT(netmask), ProductValue::Text, "255.255.255.0"},
            {SLOT(description), ProductValue::Text, "Digital signage player"},
            {SLOT(has_4g), ProductValue::Switch, "1"},
            {SLOT(gateway), ProductValue::Text, "192.168.1.1"},
            {SLOT(dns1), ProductValue::Text, "8.8.8.8"},
            {SLOT(dns2), ProductValue::Text, "8.8.4.4"},
            {SLOT(wifi_mac), ProductValue::Text, "02:56:45:53:4b:02"},
            {SLOT(bt_mac), ProductValue::Text, "02:56:45:53:4b:03"},
            {SLOT(panel), ProductValue::Text, "LVDS-1920x1080"},
            {SLOT(customer), ProductValue::Text, "generic"},
            {SLOT(has_wifi), ProductValue::Switch, "0"},
            {SLOT(android_version), ProductValue::Text, "11"},
            {SLOT(has_ops), ProductValue::Switch, "1"},
            {SLOT(region), ProductValue::Text, "CN"},
            {SLOT(language), ProductValue::Text, "en"},
            {SLOT(use_dhcp), ProductValue::Dhcp, "true"},
    };
#undef SLOT
    return fields;
}

const ProductField* findProductField(const std::string& key) {
    for (const ProductField& field : productFields()) {
        if (key == field.key) return &field;
    }
    return nullptr;
}

std::string checkProductValue(const ProductField& field, const std::string& value) {
    if (value.size() >= field.width) {
        return std::string(field.key) + " takes at most " + std::to_string(field.width - 1) +
               " bytes";
    }
    if (value.find('\0') != std::string::npos) return std::string(field.key) + " holds a NUL";
    switch (field.kind) {
        case ProductValue::Text:
            return "";
        case ProductValue::Decimal:
            return isModelNumber(value) ? ""
                                        : std::string(field.key) +
                                                  " takes a decimal number from 0 to 2147483647";
        case ProductValue::Switch:
            return value == "0" || value == "1" ? "" : std::string(field.key) + " takes 0 or 1";
        case ProductValue::Mac:
            return isMac(value) ? "" : std::string(field.key) + " takes a MAC (xx:xx:xx:xx:xx:xx)";
        case ProductValue::Dhcp:
            return value == "true" || value == "false"
                           ? ""
                           : std::string(field.key) + " takes true or false";
    }
    return "";
}

ProductDescription loadProductDescription() {
    return readDescription();
}

void loadProductRecord(char* record) {
    const std::string path = productFilePath();
    const std::optional<std::string> text = readBoardFileText(path);
    if (useMadeBefore(text, [&](const ParsedProduct& made) {
            std::copy(made.record.begin(), made.record.end(), record);
        }))
        return;
    fillProductRecord(describe(path, text), record);
}

std::string setProductValue(const std::string& key, const std::string& value) {
    const ProductField* field = findProductField(key);
    if (!field) {
        std::string keys;
        for (const ProductField& known : productFields()) {
            keys += (keys.empty() ? "" : ", ") + std::string(known.key);
        }
        return "unknown product key " + key + " (keys: " + keys + ")";
    }
    std::string problem = checkProductValue(*field, value);
    if (!problem.empty()) return problem;
    BoardFileLock lock;
    ProductDescription description = readDescription();
    description[key] = value;
    if (!writeJsonFileAtomically(productFilePath(), nlohmann::json(description))) {
        return "cannot write " + productFilePath();
    }
    return "";
}

void fillProductRecord(const ProductDescription& description, char* record) {
    memset(record, 0, sizeof(vesk_product_record));
    for (const ProductField& field : productFields()) {
        auto found = description.find(field.key);
        if (found == description.end()) continue;
        memcpy(record + field.offset, found->second.data(),
               std::min(found->second.size(), field.width - 1));
    }
}

}  // namespace vesk::sim
