#include "vesk/sim/ProductFile.h"

#include <cctype>
#include <cstring>

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

// Called with the board's file lock held.
ProductDescription loadLocked() {
    nlohmann::json file = readJsonFile(productFilePath());
    ProductDescription description;
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
    if (!complete) writeJsonFileAtomically(productFilePath(), nlohmann::json(description));
    return description;
}

}  // namespace

// The record's slots. The model number and the DHCP word are the ones the device manager reads
// for itself; the others are identity texts and three feature switches.
const std::vector<ProductField>& productFields() {
    static const std::vector<ProductField> fields = {
            {"vendor", 0, 64, ProductValue::Text, "VESK"},
            {"model_id", VESK_PRODUCT_MODEL_ID_OFFSET, 32, ProductValue::Decimal, "8470"},
            {"hardware_version", 96, 32, ProductValue::Text, "V1.2"},
            {"product_name", 128, 128, ProductValue::Text, "VESK media player"},
            {"serial_number", 256, 64, ProductValue::Text, "VSK8470A00012345"},
            {"manufacture_date", 320, 64, ProductValue::Text, "2024-03-18"},
            {"firmware_version", 384, 64, ProductValue::Text, "1.4.2"},
            {"mac", 448, 32, ProductValue::Mac, "02:56:45:53:4b:01"},
            {"ip_address", 480, 32, ProductValue::Text, "192.168.1.100"},
            {"netmask", 512, 32, ProductValue::Text, "255.255.255.0"},
            {"description", 544, 1024, ProductValue::Text, "Digital signage player"},
            {"has_4g", 1568, 32, ProductValue::Switch, "1"},
            {"gateway", 1600, 32, ProductValue::Text, "192.168.1.1"},
            {"dns1", 1632, 32, ProductValue::Text, "8.8.8.8"},
            {"dns2", 1664, 32, ProductValue::Text, "8.8.4.4"},
            {"wifi_mac", 1696, 32, ProductValue::Text, "02:56:45:53:4b:02"},
            {"bt_mac", 1728, 32, ProductValue::Text, "02:56:45:53:4b:03"},
            {"panel", 1760, 32, ProductValue::Text, "LVDS-1920x1080"},
            {"customer", 1792, 32, ProductValue::Text, "generic"},
            {"has_wifi", 1824, 32, ProductValue::Switch, "0"},
            {"android_version", 1856, 64, ProductValue::Text, "11"},
            {"has_ops", 1920, 32, ProductValue::Switch, "1"},
            {"region", 1952, 32, ProductValue::Text, "CN"},
            {"language", 1984, 32, ProductValue::Text, "en"},
            {"use_dhcp", VESK_PRODUCT_USE_DHCP_OFFSET, 32, ProductValue::Dhcp, "true"},
    };
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
    BoardFileLock lock;
    return loadLocked();
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
    memset(record, 0, VESK_PRODUCT_RECORD_SIZE);
    for (const ProductField& field : productFields()) {
        auto found = description.find(field.key);
        if (found == description.end()) continue;
        memcpy(record + field.offset, found->second.data(),
               std::min(found->second.size(), field.width - 1));
    }
}

}  // namespace vesk::sim
