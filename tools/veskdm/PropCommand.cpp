/*
 * veskdm prop: the property store of the device root.
 */
#include <cutils/properties.h>
#include <stdio.h>

#include "Commands.h"
#include "vesk/host/Properties.h"

namespace veskdm {

void addPropCommand(CLI::App& app) {
    auto* prop = app.add_subcommand("prop", "system properties of the device root");
    prop->require_subcommand(1);

    static std::string name;
    static std::string value;
    auto* get = prop->add_subcommand("get", "print a property's value (empty line when unset)");
    get->add_option("NAME", name)->required();
    get->callback([] {
        char buffer[PROPERTY_VALUE_MAX] = {};
        property_get(name.c_str(), buffer, "");
        printf("%s\n", buffer);
    });

    auto* set = prop->add_subcommand("set", "set a property");
    set->add_option("NAME", name)->required();
    set->add_option("VALUE", value)->required();
    set->callback([] {
        if (value.size() >= PROPERTY_VALUE_MAX) {
            throw UsageError("value longer than " + std::to_string(PROPERTY_VALUE_MAX - 1) +
                             " bytes");
        }
        if (property_set(name.c_str(), value.c_str()) != 0) {
            throw UsageError("cannot set property " + name);
        }
    });

    auto* list = prop->add_subcommand("list", "print NAME=VALUE for every property set");
    list->callback([] { fputs(vesk::host::listProperties().c_str(), stdout); });
}

}  // namespace veskdm
