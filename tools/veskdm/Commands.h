/*
 * veskdm's command modules. Each adds its subcommand to the application; main() applies the
 * global options before any command runs.
 */
#pragma once

#include <CLI/CLI.hpp>
#include <stdexcept>
#include <string>

namespace veskdm {

struct GlobalOptions {
    std::string root;
    std::string log;
    std::string boardJournal;
    std::string boardScript;
};

// Bad input (unknown names, wrong arguments, unreadable JSON): main() prints the message as one
// line on stderr and exits with status 2; nothing has been changed.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// A command failed on valid input (for example an unreadable device): one line on stderr,
// exit status 1.
class CommandError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// The command has already reported its problems (one line each on stderr): main() prints
// nothing more and exits with this status.
class ExitStatus {
  public:
    explicit ExitStatus(int status) : mStatus(status) {}
    int status() const { return mStatus; }

  private:
    int mStatus;
};

// Each registers one subcommand; its callback may throw UsageError or CommandError.
void addPropCommand(CLI::App& app);
void addServiceCommands(CLI::App& app);  // methods, call, shell
void addEnvCommand(CLI::App& app);
void addTimingCommand(CLI::App& app);
void addBoardCommand(CLI::App& app);  // board show, board set

}  // namespace veskdm
