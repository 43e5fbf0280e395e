/*
 * veskdm board: the simulated board's product description, its state file and the peer links
 * of its open serial channels, all in the device root; and processes the board may kill.
 */
#include <limits.h>
#include <stdio.h>
#include <unistd.h>

#include "Commands.h"
#include "vesk/host/DeviceRoot.h"
#include "vesk/sim/ProductFile.h"
#include "vesk/sim/StartedProcesses.h"
#include "vesk/sim/StateFile.h"

namespace veskdm {
namespace {

// The links a serial channel makes to the far end of its pseudo-terminal while it is open.
const char* const kSerialLinks[] = {"ttyVESK485",  "ttyVESK485_2", "ttyVESK232",  "ttyVESKLORA",
                                    "ttyVESKHDMI", "ttyVESKTTL",   "ttyVESKTTL_2"};

void showWatchdog() {
    nlohmann::json state;
    {
        vesk::sim::BoardFileLock lock;
        state = vesk::sim::readJsonFile(vesk::sim::stateFilePath());
    }
    const nlohmann::json watchdog = state.value("watchdog", nlohmann::json::object());
    printf("watchdog_open=%d\n", watchdog.value("open", false) ? 1 : 0);
    printf("watchdog_device=%s\n", watchdog.value("device", "").c_str());
    printf("watchdog_timeout=%u\n", watchdog.value("timeout", 0u));
    printf("watchdog_feeds=%u\n", watchdog.value("feeds", 0u));
    // Feeds that came too late: the board would have reset before each of them.
    printf("watchdog_missed_feeds=%u\n", watchdog.value("missed_feeds", 0u));
}

void showSerialLinks() {
    const std::string root = vesk::host::deviceRoot();
    for (const char* name : kSerialLinks) {
        std::string link = vesk::host::pathBelowRoot(root, std::string("/dev/") + name);
        char target[PATH_MAX];
        ssize_t length = readlink(link.c_str(), target, sizeof(target) - 1);
        if (length < 0) continue;
        target[length] = '\0';
        printf("serial %s -> %s\n", name, target);
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
