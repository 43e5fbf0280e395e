/*
 * Shared between the host platform's own sources.
 */
#pragma once

#include <cstdint>
#include <string>

namespace vesk::host {

// Changes whenever setDeviceRoot() picks another root; caches compare it.
uint64_t rootGeneration();

}  // namespace vesk::host
