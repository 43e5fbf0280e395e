#include "Context.h"

#include <sys/stat.h>

#include "Errors.h"
#include "vesk/host/DeviceRoot.h"

namespace veskdm {
namespace {

bool isDirectory(const std::string& path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

}  // namespace

std::string Context::chosenPath() const {
    return rootOptionGiven ? options.root : mDefaultRoot.path;
}

std::string Context::useRoot() {
    std::string root = chosenPath();
    bool named = rootOptionGiven || mDefaultRoot.named;
    if (named && !isDirectory(root)) throw CommandError("no device root at " + root);
    if (!mRootSet) vesk::host::setDeviceRoot(root);
    mRootSet = true;
    return root;
}

std::string Context::useExistingRoot() {
    std::string root = chosenPath();
    if (!isDirectory(root)) throw CommandError("no device root at " + root);
    return useRoot();
}

}  // namespace veskdm
