/*
 * veskdm methods, call and shell: the service driven through its interface, loaded as a
 * passthrough host loads it.
 */
#include <stdio.h>

#include <iostream>
#include <string>
#include <vector>

#include "Commands.h"
#include "HalJson.h"
#include "ImplLoader.h"
#include "MethodTable.h"
#include "ShellTokenizer.h"

namespace veskdm {

namespace {

void printLine(const Json& line) {
    printf("%s\n", dumpJson(line).c_str());
    fflush(stdout);  // a shell's client reads each answer before it writes the next line
}

// The service object, fetched when the first call is ready to be made.
class LazyService {
  public:
    IVeskDeviceManager& get() {
        if (mService == nullptr) {
            try {
                mService = fetchDeviceManager(implLibraryPath());
            } catch (const LoadError& error) {
                throw CommandError(error.what());
            }
        }
        return *mService;
    }

  private:
    ::android::sp<IVeskDeviceManager> mService;
};

void listMethods() {
    const std::vector<MethodBinder>& table = methodTable();
    for (size_t i = 0; i < table.size(); ++i) {
        printf("%zu %s\n", i + 1, table[i].signature().c_str());
    }
}

void callOnce(const std::vector<std::string>& words) {
    BoundCall call;
    try {
        call = bindCall(words);
    } catch (const ArgumentError& error) {
        throw UsageError(error.what());
    }
    LazyService service;
    try {
        printLine(runCall(call, service.get()));
    } catch (const TransportError& error) {
        throw CommandError(call.method->name + ": transport error: " + error.what());
    }
}

// Runs each line on one service object. A bad line is reported and skipped; the status is 2
// when any line was bad, else 1 when any call failed in transport, else 0.
int runShell(std::istream& in) {
    LazyService service;
    bool badLine = false;
    bool failedCall = false;
    std::string line;
    for (size_t number = 1; std::getline(in, line); ++number) {
        std::string where = "line " + std::to_string(number) + ": ";
        BoundCall call;
        try {
            std::vector<std::string> words = splitShellLine(line);
            if (words.empty()) continue;
            call = bindCall(words);
        } catch (const ArgumentError& error) {
            fprintf(stderr, "veskdm: %s%s\n", where.c_str(), error.what());
            badLine = true;
            continue;
        }
        try {
            printLine(runCall(call, service.get()));
        } catch (const TransportError& error) {
            fprintf(stderr, "veskdm: %s%s: transport error: %s\n", where.c_str(),
                    call.method->name.c_str(), error.what());
            failedCall = true;
        }
    }
    return badLine ? 2 : failedCall ? 1 : 0;
}

}  // namespace

void addServiceCommands(CLI::App& app) {
    auto* methods = app.add_subcommand("methods", "list the interface: slot, name, signature");
    methods->callback(listMethods);

    static std::string method;
    auto* call = app.add_subcommand("call", "one call: METHOD [ARG...]");
    call->footer(
            "Each ARG is a JSON value; a bare word that is not JSON is a string. Prints one line\n"
            "{\"method\":NAME,\"return\":VALUE,\"callbacks\":[[ARG...]...]}. The implementation "
            "is\n"
            "loaded from $VESK_IMPL_LIB, else ../lib/" +
            std::string(kImplLibraryName) + " beside veskdm.");
    // Everything after METHOD is an argument, also words such as -1.
    call->prefix_command();
    call->add_option("METHOD", method, "method name (veskdm methods lists them)")->required();
    call->callback([call] {
        std::vector<std::string> words{method};
        for (const std::string& word : call->remaining()) words.push_back(word);
        callOnce(words);
    });

    auto* shell = app.add_subcommand("shell", "METHOD ARG... lines from stdin, on one object");
    shell->footer(
            "One JSON line per call, as veskdm call prints it. Blank lines and # comments are\n"
            "skipped; [...], {...}, \"...\" and '...' keep their blanks. A bad line is reported "
            "on\n"
            "stderr and nothing is called for it; later lines still run, and the exit status is "
            "2.");
    shell->callback([] {
        int status = runShell(std::cin);
        if (status != 0) throw ExitStatus(status);
    });
}

}  // namespace veskdm
