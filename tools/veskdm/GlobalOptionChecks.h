/*
 * The checks of veskdm's global options, made before any command runs, so that a bad path is
 * reported as bad input (one line, status 2) before anything is loaded, called or created.
 */
#pragma once

#include <string>

namespace veskdm {

// Whether PATH names a directory (following links, as the options' users do).
bool isDirectory(const std::string& path);

// A device root named by the user (`namedBy`: "--root" or "$VESK_ROOT"): an existing directory
// (a named root is never made); throws UsageError otherwise.
void checkRootPath(const std::string& root, const std::string& namedBy);
// A file option given as an empty word (--log "") names no file: UsageError.
void checkNotEmpty(const std::string& path, const std::string& option);
// A board journal the board can append to (an existing file, or a new one in an existing
// directory); nothing is created. Throws UsageError otherwise.
void checkJournalPath(const std::string& path);
// A board script that can be read and that the simulated board takes (known functions, results
// of the right kind, "out" bytes in hex that fit the buffer). Throws UsageError otherwise.
void checkScriptFile(const std::string& path);

}  // namespace veskdm
