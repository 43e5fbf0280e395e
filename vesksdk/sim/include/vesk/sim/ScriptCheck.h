/*
 * Whether the simulated board takes a script, without installing it: veskdm checks the file
 * of --board-script with this before it loads anything.
 */
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace vesk::sim {

// False, with the reason in `error`, for a script the board would refuse.
bool checkScript(const nlohmann::json& script, std::string* error);

// The name of every board function a script may answer for, in the board library's order.
std::vector<std::string> scriptableFunctions();

}  // namespace vesk::sim
