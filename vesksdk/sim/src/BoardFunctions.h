/*
 * Every board function the simulator implements, with what a script may give it: the kind of
 * its result and the output buffer its "out" fills.
 */
#pragma once

#include <cstddef>
#include <string>

namespace vesk::sim {

enum class OutKind {
    None,           // no output buffer: "out" is refused
    Bytes,          // an output buffer of `capacity` bytes (0: the capacity is a call argument)
    ProcessRecord,  // the process record, given as a structured object
};

struct BoardFunction {
    const char* name;
    OutKind out;
    std::size_t capacity;
    bool returnsFloat;
};

// The function called `name`, or nullptr when the board has none.
const BoardFunction* findBoardFunction(const std::string& name);

}  // namespace vesk::sim
