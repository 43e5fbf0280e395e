/*
 * veskdm prop: the property store of the device root. Names and values are held to what a
 * board's property service accepts, so that what works here works there.
 */
#include <cutils/properties.h>

#include <cctype>
#include <memory>
#include <nlohmann/json.hpp>

#include "Commands.h"
#include "vesk/host/Properties.h"

namespace veskdm {
namespace {

struct PropOptions {
    std::string name;
    std::string value;
};

// The longest name the device root's store holds (a board's has no lower limit).
constexpr size_t kNameMax = 255;

// A name a board's init takes: letters, digits and . - @ : _, dot-separated parts that are not
// empty (no leading, trailing or double dot).
void checkName(const std::string& name) {
    std::string expected =
            "a property name of letters, digits and . - @ : _ without an empty part between dots";
    if (name.empty()) throw UsageError("expected " + expected + ", got an empty name");
    if (name.size() > kNameMax) {
        throw UsageError("property name of " + std::to_string(name.size()) +
                         " bytes: the store takes at most " + std::to_string(kNameMax));
    }
    for (size_t i = 0; i < name.size(); ++i) {
        unsigned char c = static_cast<unsigned char>(name[i]);
        bool allowed = isalnum(c) || c == '.' || c == '-' || c == '@' || c == ':' || c == '_';
        bool emptyPart = c == '.' && (i == 0 || i + 1 == name.size() || name[i - 1] == '.');
        if (!allowed || emptyPart) {
            char shown[8];
            snprintf(shown, sizeof(shown), c < 0x20 || c >= 0x7f ? "0x%02x" : "'%c'", c);
            throw UsageError("expected " + expected + ", got " + shown + " at byte " +
                             std::to_string(i + 1) + " of " + nlohmann::json(name).dump());
        }
    }
}

// Valid UTF-8, as a board's property service requires of a value.
bool isUtf8(const std::string& text) {
    for (size_t i = 0; i < text.size();) {
        unsigned char c = static_cast<unsigned char>(text[i]);
        size_t length = c < 0x80           ? 1
                        : (c >> 5) == 0x6  ? 2
                        : (c >> 4) == 0xe  ? 3
                        : (c >> 3) == 0x1e ? 4
                                           : 0;
        if (length == 0 || i + length > text.size()) return false;
        for (size_t k = 1; k < length; ++k) {
            if ((static_cast<unsigned char>(text[i + k]) >> 6) != 0x2) return false;
        }
        i += length;
    }
    return true;
}

void checkValue(const std::string& value) {
    if (value.size() >= PROPERTY_VALUE_MAX) {
        throw UsageError("value longer than " + std::to_string(PROPERTY_VALUE_MAX - 1) + " bytes");
    }
    if (!isUtf8(value)) throw UsageError("expected a value in UTF-8, got other bytes");
}

}  // namespace

void addPropCommand(CLI::App& app, Context& context) {
    auto* prop = app.add_subcommand("prop", "system properties of the device root");
    prop->require_subcommand(1);
    auto options = std::make_shared<PropOptions>();

    auto* get = prop->add_subcommand("get", "print a property's value (empty line when unset)");
    get->add_option("NAME", options->name)->required();
    get->callback([options, &context] {
        checkName(options->name);
        context.useExistingRoot();  // reading makes nothing
        char buffer[PROPERTY_VALUE_MAX] = {};
        property_get(options->name.c_str(), buffer, "");
        context.out << buffer << "\n";
    });

    auto* set = prop->add_subcommand("set", "set a property");
    set->add_option("NAME", options->name)->required();
    set->add_option("VALUE", options->value)->required();
    set->callback([options, &context] {
        checkName(options->name);
        checkValue(options->value);
        context.useRoot();
        std::string problem = vesk::host::setProperty(options->name, options->value);
        if (!problem.empty()) {
            throw CommandError("cannot set property " + options->name + ": " + problem);
        }
    });

    auto* list = prop->add_subcommand("list", "print NAME=VALUE for every property set");
    list->callback([&context] {
        context.useExistingRoot();
        context.out << vesk::host::listProperties();
    });
}

}  // namespace veskdm
