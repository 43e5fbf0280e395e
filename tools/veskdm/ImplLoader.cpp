#include "ImplLoader.h"

#include <dlfcn.h>
#include <limits.h>
#include <stdlib.h>
#include <unistd.h>

namespace veskdm {

using ::vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceManager;

namespace {

std::string programDirectory() {
    char path[PATH_MAX];
    ssize_t length = readlink("/proc/self/exe", path, sizeof(path) - 1);
    if (length <= 0) throw LoadError("cannot find the running program (/proc/self/exe)");
    std::string program(path, static_cast<size_t>(length));
    return program.substr(0, program.rfind('/'));
}

}  // namespace

std::string implLibraryPath() {
    const char* chosen = getenv(kImplLibraryVariable);
    if (chosen != nullptr && chosen[0] != '\0') return chosen;
    return besideProgram(std::string("../lib/") + kImplLibraryName);
}

std::string besideProgram(const std::string& relative) {
    return programDirectory() + "/" + relative;
}

::android::sp<IVeskDeviceManager> fetchDeviceManager(const std::string& libraryPath,
                                                     const char* instance) {
    void* library = dlopen(libraryPath.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        const char* reason = dlerror();
        throw LoadError("cannot load " + libraryPath + ": " + (reason != nullptr ? reason : "?"));
    }
    using Factory = IVeskDeviceManager* (*)(const char*);
    auto factory = reinterpret_cast<Factory>(dlsym(library, "HIDL_FETCH_IVeskDeviceManager"));
    if (factory == nullptr) {
        throw LoadError(libraryPath + " exports no HIDL_FETCH_IVeskDeviceManager");
    }
    ::android::sp<IVeskDeviceManager> service = factory(instance);
    if (service == nullptr) throw LoadError("HIDL_FETCH_IVeskDeviceManager returned no object");
    return service;
}

}  // namespace veskdm
