/*
 * veskdm env: the boot loader's environment, read and written through Ubootenv, on the device
 * root's partition or on any image given with --device.
 */
#include <string.h>
#include <sys/stat.h>

#include <memory>

#include "Commands.h"
#include "Ubootenv.h"

namespace veskdm {
namespace {

struct EnvOptions {
    std::string device;
    std::string name;
    std::string value;
};

std::string deviceLabel(const EnvOptions& options, const Ubootenv& env) {
    if (!options.device.empty()) return options.device;
    return env.devicePath[0] != '\0' ? env.devicePath : "any environment device";
}

// A device named with --device is used as it is, outside the device root; it must be there.
std::unique_ptr<Ubootenv> loadEnvironment(const EnvOptions& options, Context& context) {
    if (options.device.empty()) {
        context.useRoot();
    } else {
        // Checked here: the environment library would log every failed attempt at it.
        struct stat st;
        if (stat(options.device.c_str(), &st) != 0 || S_ISDIR(st.st_mode)) {
            throw CommandError("cannot read the boot loader's environment from " + options.device);
        }
    }
    auto env = options.device.empty() ? std::make_unique<Ubootenv>()
                                      : std::make_unique<Ubootenv>(options.device.c_str());
    if (!env->initDone) {
        throw CommandError("cannot read the boot loader's environment from " +
                           deviceLabel(options, *env));
    }
    return env;
}

// The name as callers of Ubootenv give it: with the "ubootenv.var." prefix.
std::string variableName(const std::string& name) {
    std::string prefix = PROFIX_UBOOTENV_VAR;
    std::string key =
            name.compare(0, prefix.size(), prefix) == 0 ? name.substr(prefix.size()) : name;
    if (key.empty()) throw UsageError("empty variable name");
    if (key.size() >= sizeof(EnvAttribute::key)) {
        throw UsageError("variable name longer than " +
                         std::to_string(sizeof(EnvAttribute::key) - 1) + " characters");
    }
    if (key.find('=') != std::string::npos) throw UsageError("variable name contains '='");
    return prefix + key;
}

void addDeviceOption(CLI::App* command, EnvOptions& options) {
    command->add_option("--device", options.device,
                        "environment device or image file (default: the device root's)");
}

void print(const EnvOptions& options, Context& context) {
    auto env = loadEnvironment(options, context);
    for (const EnvAttribute* node = &env->attributes; node != nullptr; node = node->next) {
        // A string without '=' leaves an empty node; it is no variable.
        if (node->key[0] == '\0' && node->value[0] == '\0') continue;
        context.out << node->key << "=" << node->value << "\n";
    }
}

void get(const EnvOptions& options, Context& context) {
    std::string name = variableName(options.name);
    auto env = loadEnvironment(options, context);
    const char* value = env->getValue(name.c_str());
    if (value == nullptr) throw UsageError("no such variable: " + options.name);
    context.out << value << "\n";
}

void set(const EnvOptions& options, Context& context) {
    std::string name = variableName(options.name);
    if (options.value.size() >= sizeof(EnvAttribute::value)) {
        throw UsageError("value longer than " + std::to_string(sizeof(EnvAttribute::value) - 1) +
                         " characters");
    }
    auto env = loadEnvironment(options, context);
    int result = env->updateValue(name.c_str(), options.value.c_str());
    if (result == -8) throw UsageError("no room in the environment for " + options.name);
    if (result < 0) {
        throw CommandError("cannot write the environment to " + deviceLabel(options, *env) + " (" +
                           std::to_string(result) + ")");
    }
}

}  // namespace

void addEnvCommand(CLI::App& app, Context& context) {
    auto* env = app.add_subcommand("env", "the boot loader's environment");
    env->require_subcommand(1);
    auto options = std::make_shared<EnvOptions>();

    auto* printCommand = env->add_subcommand("print", "print KEY=VALUE in partition order");
    addDeviceOption(printCommand, *options);
    printCommand->callback([options, &context] { print(*options, context); });

    auto* getCommand = env->add_subcommand("get", "print a variable's value");
    getCommand->add_option("NAME", options->name, "with or without the ubootenv.var. prefix")
            ->required();
    addDeviceOption(getCommand, *options);
    getCommand->callback([options, &context] { get(*options, context); });

    auto* setCommand = env->add_subcommand("set", "set a variable and save both copies");
    setCommand->add_option("NAME", options->name, "with or without the ubootenv.var. prefix")
            ->required();
    setCommand->add_option("VALUE", options->value)->required();
    addDeviceOption(setCommand, *options);
    setCommand->callback([options, &context] { set(*options, context); });
}

}  // namespace veskdm
