/*
 * One call through a front end, as the differential test compares it: the answer (veskdm's
 * JSON line of the call, or how the call failed), the board calls it made and the log lines it
 * wrote, with the device root's path written as ROOT.
 *
 *   {"answer": {"method":...,"return":...,"callbacks":[...]}
 *              | {"refused": MESSAGE} | {"transport": MESSAGE} | {"out of memory": true}
 *              | {"ended by signal": N},
 *    "journal": [{"function":...,"args":[...],"return":...}...],
 *    "log": [[PRIORITY, TAG, TEXT]...]}
 */
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "MethodTable.h"

namespace veskdm::test {

// Makes the call on `service` and gives its answer.
nlohmann::json answerOf(const std::vector<std::string>& words, IVeskDeviceManager& service);

// Every occurrence of `root` in the strings of `value` replaced by ROOT.
nlohmann::json withoutRoot(const nlohmann::json& value, const std::string& root);

}  // namespace veskdm::test
