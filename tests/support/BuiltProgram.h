/*
 * How a test starts a program of this build (veskdm, a test program): the program itself on
 * the build machine, or under its emulator in a cross build, where an ARM program cannot be
 * started directly.
 */
#pragma once

#include <string>
#include <vector>

namespace vesk::test {

// The program's argument list: the emulator's words, if any, then the program.
std::vector<std::string> builtProgramArgv(const std::string& program);

// The same as one shell command prefix, each word quoted.
std::string builtProgramCommand(const std::string& program);

// builtProgramCommand() of the veskdm program of this build.
std::string veskdmCommand();

}  // namespace vesk::test
