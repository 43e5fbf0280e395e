#include "Context.h"

#include <unistd.h>

#include <filesystem>
#include <system_error>

#include "Errors.h"
#include "GlobalOptionChecks.h"
#include "vesk/host/DeviceRoot.h"

namespace veskdm {

std::string Context::rootPath() const {
    return rootOptionGiven ? options.root : mDefaultRoot.path;
}

bool Context::rootNamed() const {
    return rootOptionGiven || mDefaultRoot.named;
}

std::string Context::useRoot() {
    std::string root = rootPath();
    if (mRootSet) return root;
    if (!rootNamed() && !isDirectory(root)) {
        std::error_code error;
        std::filesystem::create_directories(root, error);
        if (error) {
            throw CommandError("cannot make the device root " + root + ": " + error.message());
        }
    }
    vesk::host::setDeviceRoot(root);
    mRootSet = true;
    return root;
}

std::string Context::useExistingRoot() {
    std::string root = rootPath();
    if (mRootSet) return root;
    if (!isDirectory(root)) throw CommandError("no device root at " + root);
    vesk::host::useDeviceRootAsItIs(root);
    mRootSet = true;
    return root;
}

void Context::markStep(const std::string& where) const {
    if (stepFd < 0) return;
    std::string line = where + "\n";
    // One write of a short line: the reading process sees it whole.
    ssize_t written = write(stepFd, line.data(), line.size());
    static_cast<void>(written);
}

}  // namespace veskdm
