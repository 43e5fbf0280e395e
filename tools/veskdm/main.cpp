/*
 * veskdm: drives the device manager on the host, as a passthrough HIDL host would, and
 * inspects the device root (properties, boot-loader environment, timings).
 */
#include <stdio.h>
#include <stdlib.h>

#include "Commands.h"
#include "GlobalOptionChecks.h"
#include "vesk/host/DeviceRoot.h"
#include "vesk/host/LogSink.h"

namespace {

// The board journal and script are read by the simulated board from the environment.
void exportPath(const char* variable, const std::string& path) {
    if (!path.empty()) setenv(variable, path.c_str(), 1);
}

// The journal and script in effect: the option's, else the environment's.
std::string effectivePath(const std::string& option, const char* variable) {
    if (!option.empty()) return option;
    const char* value = getenv(variable);
    return value != nullptr ? value : "";
}

// Every path is checked before the root is prepared or anything is loaded.
void applyGlobalOptions(const veskdm::GlobalOptions& options, bool rootGiven) {
    if (rootGiven) veskdm::checkRootPath(options.root);
    std::string journal = effectivePath(options.boardJournal, "VESK_BOARD_JOURNAL");
    if (!journal.empty()) veskdm::checkJournalPath(journal);
    std::string script = effectivePath(options.boardScript, "VESK_BOARD_SCRIPT");
    if (!script.empty()) veskdm::checkScriptFile(script);
    if (rootGiven) vesk::host::setDeviceRoot(options.root, false);
    if (!options.log.empty() && !vesk::host::logToJsonFile(options.log)) {
        throw veskdm::UsageError("cannot open log file " + options.log);
    }
    exportPath("VESK_BOARD_JOURNAL", options.boardJournal);
    exportPath("VESK_BOARD_SCRIPT", options.boardScript);
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app{"veskdm: the device manager of the board, on the host"};
    app.require_subcommand(1);
    veskdm::GlobalOptions options;
    CLI::Option* root = app.add_option("--root", options.root,
                                       "device root (default: $VESK_ROOT, then "
                                       "$XDG_STATE_HOME/veskdm/root)");
    app.add_option("--log", options.log, "append the log as JSON lines to FILE");
    app.add_option("--board-journal", options.boardJournal,
                   "append one JSON line per board call to FILE");
    app.add_option("--board-script", options.boardScript, "JSON file of scripted board results");
    app.parse_complete_callback([&] { applyGlobalOptions(options, root->count() > 0); });

    veskdm::addPropCommand(app);
    veskdm::addTimingCommand(app);
    veskdm::addEnvCommand(app);
    veskdm::addServiceCommands(app);
    veskdm::addBoardCommand(app);

    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp& e) {
        return app.exit(e);
    } catch (const CLI::ParseError& e) {
        fprintf(stderr, "veskdm: %s\n", e.what());
        return 2;
    } catch (const veskdm::UsageError& e) {
        fprintf(stderr, "veskdm: %s\n", e.what());
        return 2;
    } catch (const veskdm::CommandError& e) {
        fprintf(stderr, "veskdm: %s\n", e.what());
        return 1;
    } catch (const veskdm::ExitStatus& e) {
        return e.status();
    }
    return 0;
}
