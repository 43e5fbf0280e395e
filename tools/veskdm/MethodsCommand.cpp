/*
 * veskdm methods: the interface, one line per slot: slot, name, signature.
 */
#include "Commands.h"
#include "MethodTable.h"

namespace veskdm {

void addMethodsCommand(CLI::App& app, Context& context) {
    auto* methods = app.add_subcommand("methods", "list the interface: slot, name, signature");
    methods->callback([&context] {
        const std::vector<MethodBinder>& table = methodTable();
        for (size_t i = 0; i < table.size(); ++i) {
            context.out << (i + 1) << " " << table[i].signature() << "\n";
        }
    });
}

}  // namespace veskdm
