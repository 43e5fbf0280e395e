/*
 * What a folder holds, to compare before and after a run: every path below it with its content
 * ("<dir>" for a folder, "-> TARGET" for a symbolic link, which is not followed).
 */
#pragma once

#include <map>
#include <string>

namespace veskdm::test {

std::map<std::string, std::string> treeSnapshot(const std::string& dir);

}  // namespace veskdm::test
