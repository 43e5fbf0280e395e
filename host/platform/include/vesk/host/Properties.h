/*
 * The host property store beyond <cutils/properties.h>.
 */
#pragma once

#include <string>

namespace vesk::host {

// "NAME=VALUE\n" for every property set in the store of the device root.
std::string listProperties();

}  // namespace vesk::host
