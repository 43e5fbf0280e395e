/*
 * The board scripts both front ends run under: every board function answers with a scripted
 * result (so that no state of the board changes and nothing depends on the host), one script
 * per path of a method: a value, a failure, a short read and an over-long one.
 */
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace veskdm::test {

struct BoardScript {
    std::string name;
    nlohmann::json script;
};

// The board functions the simulated board takes a script for.
std::vector<std::string> boardFunctions();

// "value", "failure", "short read", "over-long read": every method runs under each.
const std::vector<BoardScript>& boardScripts();
// Scripts of one function for one case: "text not UTF-8".
const std::vector<BoardScript>& otherBoardScripts();
const BoardScript& boardScript(const std::string& name);

}  // namespace veskdm::test
