/*
 * The product description of the simulated board (ROOT/data/vesksdk/product.json): one text
 * per slot of the 2048-byte product record, at its factory value until it is set. Read by
 * the board library and by `veskdm board`, so that both agree on keys, slots and checks.
 */
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace vesk::sim {

enum class ProductValue {
    Text,     // any text that fits the slot
    Decimal,  // digits only (the model number)
    Switch,   // "0" or "1"
    Mac,      // six hex pairs separated by ':'
    Dhcp,     // "true" or "false"
};

struct ProductField {
    const char* key;
    std::size_t offset;  // in the record
    std::size_t width;   // slot width; the text takes at most width - 1 bytes
    ProductValue kind;
    const char* factoryValue;
};

// Every slot, in record order.
const std::vector<ProductField>& productFields();
const ProductField* findProductField(const std::string& key);

// Empty when `value` suits `field`; otherwise why not, as one line.
std::string checkProductValue(const ProductField& field, const std::string& value);

using ProductDescription = std::map<std::string, std::string>;

// The product description in the root; keys missing from the file (or a missing file) read as
// their factory value. Nothing is written.
ProductDescription loadProductDescription();
// Sets one key after checking it (under the board's file lock). Returns the reason for a
// refusal, nothing written; empty on success.
std::string setProductValue(const std::string& key, const std::string& value);

// Fills the 2048-byte record: each slot's text, NUL-padded.
void fillProductRecord(const ProductDescription& description, char* record);
// fillProductRecord(loadProductDescription(), record), without parsing a text parsed before.
void loadProductRecord(char* record);

}  // namespace vesk::sim
