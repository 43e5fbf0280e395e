/*
 * Whether the simulated board takes a script, without installing it: veskdm checks the file
 * of --board-script with this before it loads anything.
 */
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace vesk::sim {

// False, with the reason in `error`, for a script the board would refuse.
bool checkScript(const nlohmann::json& script, std::string* error);

}  // namespace vesk::sim
