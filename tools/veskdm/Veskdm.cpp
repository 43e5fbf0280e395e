/*
 * One run of veskdm: the global options, the commands of CommandList.cpp, and the mapping of
 * every failure to one line on stderr and an exit status.
 */
#include "Veskdm.h"

#include <stdlib.h>

#include <algorithm>
#include <utility>

#include "CommandLineErrors.h"
#include "Commands.h"
#include "GlobalOptionChecks.h"
#include "NotificationOutput.h"
#include "RunLog.h"
#include "ScopedEnvironment.h"

namespace veskdm {
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

// Whether the option was on the command line (an empty value included).
bool given(const CLI::App& app, const char* option) {
    return app.get_option(option)->count() > 0;
}

// Every path is checked before anything is loaded, called or created.
void applyGlobalOptions(const CLI::App& app, Context& context, const RootChoice& root, RunLog& log) {
    const GlobalOptions& options = context.options;
    log.setVerbose(options.verbose);
    if (context.rootOptionGiven) {
        checkRootPath(options.root, "--root");
    } else if (root.named) {
        checkRootPath(root.path, "$VESK_ROOT");
    }
    for (const auto& [option, value] :
         {std::pair{"--log", &options.log}, std::pair{"--board-journal", &options.boardJournal},
          std::pair{"--board-script", &options.boardScript}}) {
        if (given(app, option)) checkNotEmpty(*value, option);
    }
    std::string journal = effectivePath(options.boardJournal, "VESK_BOARD_JOURNAL");
    if (!journal.empty()) checkJournalPath(journal);
    std::string script = effectivePath(options.boardScript, "VESK_BOARD_SCRIPT");
    if (!script.empty()) checkScriptFile(script);
    if (!options.log.empty()) log.recordTo(options.log);
    exportPath("VESK_BOARD_JOURNAL", options.boardJournal);
    exportPath("VESK_BOARD_SCRIPT", options.boardScript);
}

}  // namespace

CLI::Option* addViaOption(CLI::App& app, Context& context) {
    return app
            .add_option("--via", context.options.via,
                        "how call, shell and debug reach the service: passthrough (default: "
                        "the implementation library, loaded here) or aidl (the service veskdm "
                        "serve started)")
            ->check(CLI::IsMember({"passthrough", "aidl"}));
}

namespace {

void addGlobalOptions(CLI::App& app, Context& context) {
    GlobalOptions& options = context.options;
    app.add_option("--root", options.root,
                   "device root (default: $VESK_ROOT, then "
                   "$XDG_STATE_HOME/veskdm/root)");
    app.add_option("--log", options.log, "append every log line as JSON to FILE");
    app.add_option("--board-journal", options.boardJournal,
                   "append one JSON line per board call to FILE");
    app.add_option("--board-script", options.boardScript, "JSON file of scripted board results");
    addViaOption(app, context);
    app.add_flag("-v,--verbose", options.verbose,
                 "show every log line on stderr (default: warnings and errors)");
}

int parseAndRun(CLI::App& app, std::vector<std::string> args, Context& context) {
    std::reverse(args.begin(), args.end());  // CLI11 takes the words last first
    return statusOf(
            [&] {
                try {
                    app.parse(args);
                } catch (const CLI::CallForHelp& e) {
                    throw ExitStatus(app.exit(e, context.out, context.err));
                } catch (const CLI::ParseError& e) {
                    throw UsageError(describeParseError(app, e));
                }
            },
            context.err);
}

}  // namespace

int runVeskdm(const std::vector<std::string>& args, const Streams& streams, const RootChoice& root) {
    ScopedEnvironment environment({"VESK_ROOT", "VESK_BOARD_JOURNAL", "VESK_BOARD_SCRIPT"});
    RunLog log(streams.err);
    NotificationOutput notifications(streams.out);
    Context context(streams, root);
    context.log = &log;
    CLI::App app{"veskdm: the device manager of the board, on the host", "veskdm"};
    app.require_subcommand(1);
    addGlobalOptions(app, context);
    app.parse_complete_callback([&app, &context, &root, &log] {
        context.rootOptionGiven = given(app, "--root");
        applyGlobalOptions(app, context, root, log);
    });
    for (AddCommand add : commandList()) add(app, context);
    int status = parseAndRun(app, args, context);
    if (status == 0) {
        log.release();
    } else {
        log.drop();
    }
    streams.out.flush();
    streams.err.flush();
    return status;
}

RootChoice rootFromEnvironment() {
    if (const char* env = getenv("VESK_ROOT"); env != nullptr && env[0] != '\0') {
        return {env, true};
    }
    if (const char* state = getenv("XDG_STATE_HOME"); state != nullptr && state[0] == '/') {
        return {std::string(state) + "/veskdm/root", false};
    }
    const char* home = getenv("HOME");
    return {std::string(home != nullptr ? home : "/tmp") + "/.local/state/veskdm/root", false};
}

}  // namespace veskdm
