/*
 * veskdm board: the simulated board's product description, its state file and the peer links
 * of its open serial channels, all in the device root; and processes the board may kill.
 */
#include <errno.h>
#include <string.h>

#include <memory>
#include <ostream>

#include "Commands.h"
#include "vesk/sim/BoardStatus.h"
#include "vesk/sim/ProductFile.h"
#include "vesk/sim/StartedProcesses.h"
#include "vesk/sim/StateFile.h"

namespace veskdm {
namespace {

void showWatchdog(std::ostream& out) {
    const vesk::sim::WatchdogStatus watchdog = vesk::sim::watchdogStatus();
    out << "watchdog_open=" << (watchdog.open ? 1 : 0) << "\n";
    out << "watchdog_device=" << watchdog.device << "\n";
    out << "watchdog_timeout=" << watchdog.timeout << "\n";
    out << "watchdog_feeds=" << watchdog.feeds << "\n";
    // Feeds that came too late: the board would have reset before each of them.
    out << "watchdog_missed_feeds=" << watchdog.missedFeeds << "\n";
}

void showSerialLinks(std::ostream& out) {
    for (const vesk::sim::SerialLink& link : vesk::sim::serialLinks()) {
        out << "serial " << link.name << " -> " << link.target << "\n";
    }
}

struct BoardOptions {
    std::string key;
    std::string value;
    std::vector<std::string> program;
};

}  // namespace

void addBoardCommand(CLI::App& app, Context& context) {
    auto* board = app.add_subcommand("board", "the simulated board: product description, state");
    board->require_subcommand(1);
    auto options = std::make_shared<BoardOptions>();

    auto* show = board->add_subcommand(
            "show",
            "print the product description (KEY=VALUE), the state file, the watchdog "
            "and the serial channels' peer links");
    show->callback([&context] {
        context.useExistingRoot();  // showing the board changes nothing
        std::ostream& out = context.out;
        vesk::sim::ProductDescription description = vesk::sim::loadProductDescription();
        for (const vesk::sim::ProductField& field : vesk::sim::productFields()) {
            out << field.key << "=" << description[field.key] << "\n";
        }
        out << "state_file=" << vesk::sim::stateFilePath() << "\n";
        showWatchdog(out);
        showSerialLinks(out);
    });

    auto* set = board->add_subcommand("set", "set one key of the product description");
    set->add_option("KEY", options->key)->required();
    set->add_option("VALUE", options->value)->required();
    set->callback([options, &context] {
        context.useRoot();
        std::string problem = vesk::sim::setProductValue(options->key, options->value);
        if (!problem.empty()) throw UsageError(problem);
    });

    // A process the board may kill (killProcessNum refuses every other one).
    auto* start = board->add_subcommand(
            "start", "start PROGRAM [ARG...] as the board's own process and print its pid");
    start->add_option("PROGRAM", options->program,
                      "program and its arguments (after -- if any starts "
                      "with -)")
            ->required()
            ->expected(-1);
    start->callback([options, &context] {
        if (options->program[0].empty()) {
            throw UsageError("board start: expected a program to start, got an empty word");
        }
        context.useRoot();
        int pid = vesk::sim::startBoardProcess(options->program);
        if (pid < 0) {
            throw CommandError("cannot start " + options->program[0] + ": " + strerror(errno));
        }
        context.out << pid << "\n";
    });
}

}  // namespace veskdm
