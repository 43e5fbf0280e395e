/*
 * Splits a line of `veskdm shell` into words as a shell would, keeping JSON values whole:
 * - blanks separate words, except inside quotes and inside [...] or {...};
 * - '...' is taken literally, without the quotes (as in sh), so '{"a": 1}' is one word;
 * - "..." is a JSON string and keeps its quotes (backslash escapes stay as written), so
 *   "a b" is the word "a b" with its quotes, read later as the JSON string a b;
 * - a backslash outside quotes takes the next character literally;
 * - a # that begins a word starts a comment that runs to the end of the line.
 * A line without words (blank, or only a comment) gives no words.
 */
#pragma once

#include <string>
#include <vector>

namespace veskdm {

// Throws ArgumentError for an unterminated quote, an unbalanced bracket, a trailing backslash
// or a control byte other than a tab (a NUL, a carriage return...).
std::vector<std::string> splitShellLine(const std::string& line);

}  // namespace veskdm
