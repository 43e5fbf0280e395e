/*
 * An argument word for each parameter of veskdm's method table ("uint32_t data_size"), from its
 * type and, where the name says what the value is, from its name: the same words reach both
 * front ends.
 */
#pragma once

#include <string>
#include <vector>

#include "MethodBinder.h"

namespace veskdm::test {

// The size every read asks for: a scripted count below it is a short read, above it an
// over-long one.
inline constexpr int kSampleReadSize = 4;

std::string sampleArgument(const std::string& parameter);
std::vector<std::string> sampleArguments(const MethodBinder& method);

}  // namespace veskdm::test
