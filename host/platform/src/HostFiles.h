/*
 * Small file helpers of the host platform.
 */
#pragma once

#include <sys/types.h>

#include <string>

namespace vesk::host {

// mkdir -p of the root directory itself (its own path may hold links); true when it exists
// afterwards. Everything below the root is made through RootFiles.h.
bool makeDirectories(const std::string& path);

}  // namespace vesk::host
