/*
 * veskdm prop: the property store of the device root.
 */
#include <cutils/properties.h>

#include <memory>

#include "Commands.h"
#include "vesk/host/Properties.h"

namespace veskdm {
namespace {

struct PropOptions {
    std::string name;
    std::string value;
};

}  // namespace

void addPropCommand(CLI::App& app, Context& context) {
    auto* prop = app.add_subcommand("prop", "system properties of the device root");
    prop->require_subcommand(1);
    auto options = std::make_shared<PropOptions>();

    auto* get = prop->add_subcommand("get", "print a property's value (empty line when unset)");
    get->add_option("NAME", options->name)->required();
    get->callback([options, &context] {
        context.useExistingRoot();  // reading makes nothing
        char buffer[PROPERTY_VALUE_MAX] = {};
        property_get(options->name.c_str(), buffer, "");
        context.out << buffer << "\n";
    });

    auto* set = prop->add_subcommand("set", "set a property");
    set->add_option("NAME", options->name)->required();
    set->add_option("VALUE", options->value)->required();
    set->callback([options, &context] {
        if (options->value.size() >= PROPERTY_VALUE_MAX) {
            throw UsageError("value longer than " + std::to_string(PROPERTY_VALUE_MAX - 1) +
                             " bytes");
        }
        context.useRoot();
        if (property_set(options->name.c_str(), options->value.c_str()) != 0) {
            throw UsageError("cannot set property " + options->name);
        }
    });

    auto* list = prop->add_subcommand("list", "print NAME=VALUE for every property set");
    list->callback([&context] {
        context.useExistingRoot();
        context.out << vesk::host::listProperties();
    });
}

}  // namespace veskdm
