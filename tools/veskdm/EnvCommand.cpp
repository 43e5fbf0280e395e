/*
 * veskdm env: the boot loader's environment, read and written through Ubootenv, on the device
 * root's partition or on any image given with --device. The tool shows and writes only an
 * environment with a valid copy (the store itself takes a short copy B on trust), and creates
 * an image named with --device that does not exist yet.
 */
#include <errno.h>
#include <fcntl.h>
#include <linux/major.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <memory>

#include "Commands.h"
#include "DevicePaths.h"
#include "EnvImageCheck.h"
#include "RunLog.h"
#include "Ubootenv.h"
#include "VeskPlatform.h"

namespace veskdm {
namespace {

struct EnvOptions {
    std::string device;
    std::string name;
    std::string value;
};

// One environment, loaded and checked.
struct LoadedEnvironment {
    std::unique_ptr<Ubootenv> env;
    std::string label;  // the device as messages name it
};

[[noreturn]] void cannotRead(const std::string& label, const std::string& why) {
    throw CommandError("cannot read the boot loader's environment from " + label + ": " + why);
}

// What makes a file no environment device, or nothing: the store reads only these.
std::string typeProblem(const struct stat& st) {
    if (S_ISDIR(st.st_mode)) return "it is a directory";
    bool mtd = S_ISCHR(st.st_mode) && major(st.st_rdev) == MTD_CHAR_MAJOR;
    if (!S_ISREG(st.st_mode) && !S_ISBLK(st.st_mode) && !mtd) {
        return "not a regular file, a block device or an MTD device";
    }
    return "";
}

// A device named with --device: what stands in the way of reading it, or nothing.
std::string namedDeviceProblem(const std::string& device) {
    struct stat st;
    if (stat(device.c_str(), &st) != 0) return strerror(errno);
    return typeProblem(st);
}

// The device the object loaded, opened to check it (without waiting, as the store opens it);
// CommandError when it cannot be read.
int openLoaded(const EnvOptions& options, const Ubootenv& env, const std::string& label) {
    int fd = options.device.empty()
                     ? vesk::platform::openDevice(env.devicePath, O_RDONLY | O_NONBLOCK)
                     : open(options.device.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) cannotRead(label, strerror(errno));
    struct stat st;
    std::string problem = fstat(fd, &st) == 0 ? typeProblem(st) : strerror(errno);
    if (!problem.empty()) {
        close(fd);
        cannotRead(label, problem);
    }
    return fd;
}

// The device paths the store tries, for a root that has none of them.
std::string envDeviceList() {
    std::string list;
    for (const char* device : vesk::platform::kEnvDevices) {
        list += (list.empty() ? "" : ", ") + std::string(device);
    }
    return list;
}

// Loads the environment and checks its copies: CommandError unless one is valid. When copy A
// is not, says on stderr that copy B is the one in use. The store's own lines about the load
// are left to --log and -v: this says what was wrong in one line.
LoadedEnvironment loadEnvironment(const EnvOptions& options, Context& context) {
    LoadedEnvironment loaded;
    if (options.device.empty()) {
        context.useRoot();
        loaded.env = std::make_unique<Ubootenv>();
        loaded.label = loaded.env->devicePath;
    } else {
        loaded.label = options.device;
        std::string problem = namedDeviceProblem(options.device);
        if (!problem.empty()) cannotRead(loaded.label, problem);
        loaded.env = std::make_unique<Ubootenv>(options.device.c_str());
    }
    context.log->drop();
    Ubootenv& env = *loaded.env;
    if (env.devicePath[0] == '\0') {
        throw CommandError("no boot loader's environment in the device root: it has none of " +
                           envDeviceList());
    }
    int fd = openLoaded(options, env, loaded.label);
    EnvImageCheck check = checkEnvImage(fd, env.partitionSize, env.dataSize);
    close(fd);
    if (!check.copyA.valid && !check.copyB.valid) {
        cannotRead(loaded.label, describeNoEnvironment(check, env.partitionSize));
    }
    if (!env.initDone) cannotRead(loaded.label, "the environment store could not load it");
    if (!check.copyA.valid) {
        context.err << "veskdm: " << loaded.label << ": copy A "
                    << describeCopy(check.copyA, env.partitionSize) << "; copy B is used\n";
    }
    return loaded;
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
    if (options.device.empty()) context.useExistingRoot();  // showing it changes nothing
    LoadedEnvironment loaded = loadEnvironment(options, context);
    for (const EnvAttribute* node = &loaded.env->attributes; node != nullptr; node = node->next) {
        // A string without '=' leaves an empty node; it is no variable.
        if (node->key[0] == '\0' && node->value[0] == '\0') continue;
        context.out << node->key << "=" << node->value << "\n";
    }
}

void get(const EnvOptions& options, Context& context) {
    std::string name = variableName(options.name);
    if (options.device.empty()) context.useExistingRoot();
    LoadedEnvironment loaded = loadEnvironment(options, context);
    const char* value = loaded.env->getValue(name.c_str());
    if (value == nullptr) throw UsageError("no such variable: " + options.name);
    context.out << value << "\n";
}

// An image named with --device that does not exist yet: made at the partition's size (both
// copies) holding only this variable, through the store's own save.
void createImage(const EnvOptions& options, const std::string& name, Context& context) {
    int fd = open(options.device.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (fd < 0) {
        throw CommandError("cannot make " + options.device + ": " + strerror(errno));
    }
    close(fd);
    Ubootenv env(options.device.c_str());  // an empty file: the load fails, the list is empty
    int result = env.set(name.c_str() + strlen(PROFIX_UBOOTENV_VAR), options.value.c_str(), true);
    if (result >= 0) result = env.save();
    context.log->drop();  // the empty first node it skips, as every save of a new list does
    if (result < 0) {
        unlink(options.device.c_str());
        throw CommandError("cannot write the environment to " + options.device + " (" +
                           std::to_string(result) + ")");
    }
}

void set(const EnvOptions& options, Context& context) {
    std::string name = variableName(options.name);
    if (options.value.size() >= sizeof(EnvAttribute::value)) {
        throw UsageError("value longer than " + std::to_string(sizeof(EnvAttribute::value) - 1) +
                         " characters");
    }
    struct stat st;
    if (!options.device.empty() && lstat(options.device.c_str(), &st) != 0 && errno == ENOENT) {
        createImage(options, name, context);
        return;
    }
    LoadedEnvironment loaded = loadEnvironment(options, context);
    int result = loaded.env->updateValue(name.c_str(), options.value.c_str());
    if (result == -8) throw UsageError("no room in the environment for " + options.name);
    if (result < 0) {
        throw CommandError("cannot write the environment to " + loaded.label + " (" +
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

    auto* setCommand = env->add_subcommand(
            "set", "set a variable and save both copies (a --device that does not exist is made)");
    setCommand->add_option("NAME", options->name, "with or without the ubootenv.var. prefix")
            ->required();
    setCommand->add_option("VALUE", options->value)->required();
    addDeviceOption(setCommand, *options);
    setCommand->callback([options, &context] { set(*options, context); });
}

}  // namespace veskdm
