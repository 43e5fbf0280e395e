/*
 * veskdm shell: METHOD ARG... lines from the input, each called on one service object.
 */
#include <new>

#include "Commands.h"
#include "HalJson.h"
#include "LazyService.h"
#include "MethodTable.h"
#include "RunLog.h"
#include "ServiceProcess.h"
#include "ShellTokenizer.h"

namespace veskdm {
namespace {

// Runs each line on one service object. A bad line (one the service refused included) is
// reported and skipped; the status is 2 when any line was bad, else 1 when any call failed,
// else 0.
int runShell(Context& context) {
    LazyService service(context);
    bool badLine = false;
    bool failedCall = false;
    std::string line;
    for (size_t number = 1; std::getline(context.in, line); ++number) {
        std::string where = "veskdm: line " + std::to_string(number) + ": ";
        BoundCall call;
        try {
            std::vector<std::string> words = splitShellLine(line);
            if (words.empty()) continue;
            call = bindCall(words);
        } catch (const ArgumentError& error) {
            context.err << where << error.what() << "\n";
            badLine = true;
            continue;
        }
        context.markStep("line " + std::to_string(number));
        try {
            context.out << dumpJson(runCall(call, service.get())) << "\n";
            context.out.flush();  // a shell's client reads each answer before it writes the next
            context.log->release();
        } catch (const TransportError& error) {
            context.err << where << call.method->name << ": transport error: " << error.what()
                        << "\n";
            context.log->drop();
            failedCall = true;
        } catch (const ServiceRefusal& error) {
            context.err << where << error.what() << "\n";
            context.log->drop();
            badLine = true;
        } catch (const std::bad_alloc&) {
            context.log->drop();
            context.err << where << call.method->name
                        << ": out of memory: a size in the line cannot be allocated\n";
            failedCall = true;
        }
    }
    return badLine ? 2 : failedCall ? 1 : 0;
}

}  // namespace

void addShellCommand(CLI::App& app, Context& context) {
    auto* shell = app.add_subcommand("shell", "METHOD ARG... lines from stdin, on one object");
    shell->footer(
            "One JSON line per call, as veskdm call prints it. Blank lines and # comments are\n"
            "skipped; [...], {...}, \"...\" and '...' keep their blanks. A bad line is reported "
            "on\n"
            "stderr and nothing is called for it; later lines still run, and the exit status is "
            "2.\n"
            "A line that ends the service's process (it aborts on some inputs) ends the shell.");
    addViaOption(*shell, context);
    shell->callback([&context] {
        runInServiceProcess(context, [](Context& child) {
            int status = runShell(child);
            if (status != 0) throw ExitStatus(status);
        });
    });
}

}  // namespace veskdm
