/*
 * Small file helpers of the host platform.
 */
#pragma once

#include <sys/types.h>

#include <string>

namespace vesk::host {

bool fileExists(const std::string& path);
// mkdir -p; true when the directory exists afterwards.
bool makeDirectories(const std::string& path);
// Writes to a temporary file beside `path`, then renames it into place.
bool writeFileAtomically(const std::string& path, const std::string& content, mode_t mode);

}  // namespace vesk::host
