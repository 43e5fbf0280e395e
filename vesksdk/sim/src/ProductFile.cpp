#include "vesk/sim/ProductFile.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstring>
#include <mutex>
#include <optional>

#include "vesk/sim/StateFile.h"
#include "vesksdk_records.h"

namespace vesk::sim {
namespace {

bool allDigits(const std::string& value) {
    if (value.empty()) return false;
    for (char c : value) {
        if (!isdigit(static_cast<unsigned char>(c))) return false;
    }
    return true;
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

// The last complete description made, its record, and the text of the file they came from. The
// board library reads the file on every call that asks for the model (each output-mode change
// does), and parsing it and filling the record cost more than the rest of such a call: the same
// text gives the same description and record without either.
struct ParsedProduct {
    std::mutex mutex;
    std::string text;
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
    if (!text) return false;
    ParsedProduct& parsed = lastParsed();
    std::lock_guard<std::mutex> lock(parsed.mutex);
    if (parsed.text.empty() || parsed.text != *text) return false;
    use(static_cast<const ParsedProduct&>(parsed));
    return true;
}

// Called with the board's file lock held.
ProductDescription loadLocked() {
    const std::string path = productFilePath();
    const std::optional<std::string> text = readBoardFileText(path);
    ProductDescription description;
    if (useMadeBefore(text, [&](const ParsedProduct& made) { description = made.description; }))
        return description;
    nlohmann::json file = parseBoardJson(path, text);
    bool complete = true;
    for (const ProductField& field : productFields()) {
        auto found = file.find(field.key);
        if (found != file.end() && found->is_string()) {
            description[field.key] = found->get<std::string>();
        } else {
            description[field.key] = field.factoryValue;
            complete = false;
        }
    }
    if (!complete) {
        writeJsonFileAtomically(path, nlohmann::json(description));
    } else if (text) {
        std::string record(sizeof(vesk_product_record), '\0');
        fillProductRecord(description, record.data());
        ParsedProduct& parsed = lastParsed();
        std::lock_guard<std::mutex> lock(parsed.mutex);
        parsed.text = *text;
        parsed.description = description;
        parsed.record = std::move(record);
    }
    return description;
}

// The file is only ever replaced whole, so a text read without the lock is one a writer
// finished; a text seen before needs nothing written back. Any other (or a failure, reported
// then) is read again under the lock.
std::optional<std::string> textReadWithoutTheLock() {
    return readBoardFileText(productFilePath(), false);
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
            return allDigits(value) ? "" : std::string(field.key) + " takes decimal digits";
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
    ProductDescription description;
    if (useMadeBefore(textReadWithoutTheLock(),
                      [&](const ParsedProduct& made) { description = made.description; }))
        return description;
    BoardFileLock lock;
    return loadLocked();
}

void loadProductRecord(char* record) {
    if (useMadeBefore(textReadWithoutTheLock(), [&](const ParsedProduct& made) {
            std::copy(made.record.begin(), made.record.end(), record);
        }))
        return;
    fillProductRecord(loadProductDescription(), record);
}

std::string setProductValue(const std::string& key, const std::string& value) {
    const ProductField* field = findProductField(key);
    if (!field) return "unknown product key " + key;
    std::string problem = checkProductValue(*field, value);
    if (!problem.empty()) return problem;
    BoardFileLock lock;
    ProductDescription description = loadLocked();
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
