/*
 * Command-line mistakes in the tool's own words: the word that was not understood and what
 * would have been, instead of the parser's generic text.
 */
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace veskdm {

// One line for a parse failure of `app` (after app.parse threw `error`): an unknown command or
// option is named with the valid ones; a missing command lists the commands; anything else is
// the parser's own message.
std::string describeParseError(CLI::App& app, const CLI::ParseError& error);

}  // namespace veskdm
