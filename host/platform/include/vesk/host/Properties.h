/*
 * The host property store beyond <cutils/properties.h>.
 */
#pragma once

#include <string>

namespace vesk::host {

// property_set, saying why it failed: empty when the value was stored, else one line such as
// "property store full: 2048 entries" or "property store ROOT/data/property/store cannot be
// opened: Not a directory".
std::string setProperty(const std::string& name, const std::string& value);

// "NAME=VALUE\n" for every property set in the store of the device root.
std::string listProperties();

// Tests: called by property_set at each step of a write to the store (0 before the first value
// word, then 1..12 after each word is stored), so that a test can stop or kill the writer there.
using PropertyWriteHook = void (*)(int step);
void setPropertyWriteHook(PropertyWriteHook hook);

}  // namespace vesk::host
