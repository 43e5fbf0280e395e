/*
 * The methods of IVeskDeviceManager in slot order, each bound to text (MethodBinder.h), and the
 * making of one call from the words of a command line.
 */
#pragma once

#include <string>
#include <vector>

#include "MethodBinder.h"

namespace veskdm {

// All 162 methods; a method's slot is its index plus one.
const std::vector<MethodBinder>& methodTable();

// The method of that name, or null.
const MethodBinder* findMethod(const std::string& name);

// A method with its arguments read, not yet called.
struct BoundCall {
    const MethodBinder* method = nullptr;
    PreparedCall call;
};

// Reads METHOD ARG...: throws ArgumentError for an unknown method, the wrong number of
// arguments or an argument that cannot be read as its type.
BoundCall bindCall(const std::vector<std::string>& words);

// Makes the call: {"method":NAME,"return":VALUE,"callbacks":[[ARG...]...]}. Throws
// TransportError when the transport fails, std::bad_alloc when a size cannot be allocated
// (a buffer longer than a vector holds included, 2 GiB on a 32-bit ABI).
Json runCall(const BoundCall& call, IVeskDeviceManager& service);

}  // namespace veskdm
