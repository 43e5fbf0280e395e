/*
 * veskdm's commands. Each command module is one source file with one function that adds its
 * subcommand to the application; CommandList.cpp lists them. A command writes only to the
 * context's streams and reports failure by throwing (Errors.h).
 */
#pragma once

#include <CLI/CLI.hpp>
#include <vector>

#include "Context.h"
#include "Errors.h"

namespace veskdm {

// Adds one subcommand whose callbacks work with `context`; option values live as long as the
// application (captured by its callbacks), so every run starts from their defaults.
using AddCommand = void (*)(CLI::App& app, Context& context);

// Every command, in the order of the help text.
const std::vector<AddCommand>& commandList();

// --via passthrough|aidl, a global option that the commands calling the service also take
// (`veskdm call --via aidl ...`).
CLI::Option* addViaOption(CLI::App& app, Context& context);

void addPropCommand(CLI::App& app, Context& context);
void addTimingCommand(CLI::App& app, Context& context);
void addEnvCommand(CLI::App& app, Context& context);
void addMethodsCommand(CLI::App& app, Context& context);
void addCallCommand(CLI::App& app, Context& context);
void addShellCommand(CLI::App& app, Context& context);
void addBoardCommand(CLI::App& app, Context& context);
void addDebugCommand(CLI::App& app, Context& context);
void addServeCommand(CLI::App& app, Context& context);

}  // namespace veskdm
