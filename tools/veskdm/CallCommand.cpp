/*
 * veskdm call METHOD [ARG...]: one call of the service, loaded as a passthrough host loads it.
 */
#include <memory>

#include "Commands.h"
#include "HalJson.h"
#include "LazyService.h"
#include "MethodTable.h"
#include "ServiceProcess.h"

namespace veskdm {
namespace {

void callOnce(Context& context, const std::vector<std::string>& words) {
    BoundCall call;
    try {
        call = bindCall(words);
    } catch (const ArgumentError& error) {
        throw UsageError(error.what());
    }
    runInServiceProcess(context, [&call](Context& child) {
        LazyService service(child);
        try {
            child.out << dumpJson(runCall(call, service.get())) << "\n";
        } catch (const TransportError& error) {
            throw CommandError(call.method->name + ": transport error: " + error.what());
        } catch (const ServiceRefusal& error) {
            throw UsageError(error.what());
        }
    });
}

}  // namespace

void addCallCommand(CLI::App& app, Context& context) {
    auto method = std::make_shared<std::string>();
    auto* call = app.add_subcommand("call", "one call: METHOD [ARG...]");
    call->footer(
            "Each ARG is a JSON value; a bare word that is not JSON is a string. Prints one line\n"
            "{\"method\":NAME,\"return\":VALUE,\"callbacks\":[[ARG...]...]}. The implementation "
            "is\n"
            "loaded from $VESK_IMPL_LIB, else ../lib/" +
            std::string(kImplLibraryName) + " beside veskdm.");
    // Everything after METHOD is an argument, also words such as -1.
    call->prefix_command();
    addViaOption(*call, context);
    call->add_option("METHOD", *method, "method name (veskdm methods lists them)")->required();
    call->callback([call, method, &context] {
        std::vector<std::string> words{*method};
        for (const std::string& word : call->remaining()) words.push_back(word);
        callOnce(context, words);
    });
}

}  // namespace veskdm
