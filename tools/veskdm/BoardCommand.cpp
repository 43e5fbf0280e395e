/*
 * veskdm board: the simulated board's product description, its state file and the peer links
 * of its open serial channels, all in the device root; and processes the board may kill.
 */
#include <stdio.h>

#include "Commands.h"
#include "vesk/sim/BoardStatus.h"
#include "vesk/sim/ProductFile.h"
#include "vesk/sim/StartedProcesses.h"
#include "vesk/sim/StateFile.h"

namespace veskdm {
namespace {

void showWatchdog() {
    const vesk::sim::WatchdogStatus watchdog = vesk::sim::watchdogStatus();
    printf("watchdog_open=%d\n", watchdog.open ? 1 : 0);
    printf("watchdog_device=%s\n", watchdog.device.c_str());
    printf("watchdog_timeout=%u\n", watchdog.timeout);
    printf("watchdog_feeds=%u\n", watchdog.feeds);
    printf("watchdog_missed_feeds=%u\n", watchdog.missedFeeds);
}

void showSerialLinks() {
    for (const vesk::sim::SerialLink& link : vesk::sim::serialLinks()) {
        printf("serial %s -> %s\n", link.name.c_str(), link.target.c_str());
    }
}

}  // namespace

void addBoardCommand(CLI::App& app) {
    auto* board = app.add_subcommand("board", "the simulated board: product description, state");
    board->require_subcommand(1);

    auto* show = board->add_subcommand(
            "show",
            "print the product description (KEY=VALUE), the state file, the watchdog "
            "and the serial channels' peer links");
    show->callback([] {
        vesk::sim::ProductDescription description = vesk::sim::loadProductDescription();
        for (const vesk::sim::ProductField& field : vesk::sim::productFields()) {
            printf("%s=%s\n", field.key, description[field.key].c_str());
        }
        printf("state_file=%s\n", vesk::sim::stateFilePath().c_str());
        showWatchdog();
        showSerialLinks();
    });

    static std::string key;
    static std::string value;
    auto* set = board->add_subcommand("set", "set one key of the product description");
    set->add_option("KEY", key)->required();
    set->add_option("VALUE", value)->required();
    set->callback([] {
        std::string problem = vesk::sim::setProductValue(key, value);
        if (!problem.empty()) throw UsageError(problem);
    });

    // A process the board may kill (killProcessNum refuses every other one).
    static std::vector<std::string> program;
    auto* start = board->add_subcommand(
            "start", "start PROGRAM [ARG...] as the board's own process and print its pid");
    start->add_option("PROGRAM", program,
                      "program and its arguments (after -- if any starts "
                      "with -)")
            ->required()
            ->expected(-1);
    start->callback([] {
        int pid = vesk::sim::startBoardProcess(program);
        if (pid < 0) throw CommandError("cannot start " + program[0]);
        printf("%d\n", pid);
    });
}

}  // namespace veskdm
