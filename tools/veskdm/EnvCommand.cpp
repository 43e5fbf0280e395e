/*
 * veskdm env: the boot loader's environment, read and written through Ubootenv, on the device
 * root's partition or on any image given with --device.
 */
#include <stdio.h>
#include <string.h>

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

EnvOptions gOptions;

std::string deviceLabel(const Ubootenv& env) {
    if (!gOptions.device.empty()) return gOptions.device;
    return env.devicePath[0] != '\0' ? env.devicePath : "any environment device";
}

std::unique_ptr<Ubootenv> loadEnvironment() {
    auto env = gOptions.device.empty() ? std::make_unique<Ubootenv>()
                                       : std::make_unique<Ubootenv>(gOptions.device.c_str());
    if (!env->initDone) {
        throw CommandError("cannot read the boot loader's environment from " + deviceLabel(*env));
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

void addDeviceOption(CLI::App* command) {
    command->add_option("--device", gOptions.device,
                        "environment device or image file (default: the device root's)");
}

void print() {
    auto env = loadEnvironment();
    for (const EnvAttribute* node = &env->attributes; node != nullptr; node = node->next) {
        // A string without '=' leaves an empty node; it is no variable.
        if (node->key[0] == '\0' && node->value[0] == '\0') continue;
        printf("%s=%s\n", node->key, node->value);
    }
}

void get() {
    std::string name = variableName(gOptions.name);
    auto env = loadEnvironment();
    const char* value = env->getValue(name.c_str());
    if (value == nullptr) throw UsageError("no such variable: " + gOptions.name);
    printf("%s\n", value);
}

void set() {
    std::string name = variableName(gOptions.name);
    if (gOptions.value.size() >= sizeof(EnvAttribute::value)) {
        throw UsageError("value longer than " + std::to_string(sizeof(EnvAttribute::value) - 1) +
                         " characters");
    }
    auto env = loadEnvironment();
    int result = env->updateValue(name.c_str(), gOptions.value.c_str());
    if (result == -8) throw UsageError("no room in the environment for " + gOptions.name);
    if (result < 0) {
        throw CommandError("cannot write the environment to " + deviceLabel(*env) + " (" +
                           std::to_string(result) + ")");
    }
}

}  // namespace

void addEnvCommand(CLI::App& app) {
    auto* env = app.add_subcommand("env", "the boot loader's environment");
    env->require_subcommand(1);

    auto* printCommand = env->add_subcommand("print", "print KEY=VALUE in partition order");
    addDeviceOption(printCommand);
    printCommand->callback(print);

    auto* getCommand = env->add_subcommand("get", "print a variable's value");
    getCommand->add_option("NAME", gOptions.name, "with or without the ubootenv.var. prefix")
            ->required();
    addDeviceOption(getCommand);
    getCommand->callback(get);

    auto* setCommand = env->add_subcommand("set", "set a variable and save both copies");
    setCommand->add_option("NAME", gOptions.name, "with or without the ubootenv.var. prefix")
            ->required();
    setCommand->add_option("VALUE", gOptions.value)->required();
    addDeviceOption(setCommand);
    setCommand->callback(set);
}

}  // namespace veskdm
