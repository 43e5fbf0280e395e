#include "Context.h"

#include "Errors.h"
#include "GlobalOptionChecks.h"
#include "vesk/host/DeviceRoot.h"

namespace veskdm {

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
