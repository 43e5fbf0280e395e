/*
 * The host property store beyond <cutils/properties.h>.
 */
#pragma once

#include <string>

namespace vesk::host {

// "NAME=VALUE\n" for every property set in the store of the device root.
std::string listProperties();

// Tests: called by property_set at each step of a write to the store (0 before the first value
// word, then 1..12 after each word is stored), so that a test can stop or kill the writer there.
using PropertyWriteHook = void (*)(int step);
void setPropertyWriteHook(PropertyWriteHook hook);

}  // namespace vesk::host
