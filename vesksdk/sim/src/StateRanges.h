/*
 * The values the simulated board accepts for each state it keeps, and the indexes of its
 * indexed states (relays, USB ports, audio channels, video sources). A value outside them is
 * refused with -1 and changes nothing, as the board's drivers refuse it. vesksdk/sim/README.md
 * lists the same table.
 */
#pragma once

#include <string>

namespace vesk::sim {

struct Range {
    long long low;
    long long high;
    bool holds(long long value) const { return value >= low && value <= high; }
};

struct StateRule {
    const char* key;
    Range value;
    Range index;  // {0, -1} (empty) for a plain state
};

// The rule of `key` ("usb_state", not "usb_state/2"); null for a key the board does not know.
const StateRule* stateRule(const std::string& key);

}  // namespace vesk::sim
