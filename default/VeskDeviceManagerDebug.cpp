/*
 * IBase::debug, for `lshal debug`: the core writes the service's state to the handle's first
 * descriptor. A handle without one gets nothing.
 */
#include <string>
#include <vector>

#include "VeskDeviceManager.h"

namespace vesk::hardware::veskdevicemanager::implementation {

Return<void> VeskDeviceManager::debug(const ::android::hardware::hidl_handle& handle,
                                      const hidl_vec<hidl_string>& options) {
    const native_handle_t* native = handle.getNativeHandle();
    if (native == nullptr || native->numFds < 1 || native->data[0] < 0) return Void();
    mCore.debug(native->data[0], std::vector<std::string>(options.begin(), options.end()));
    return Void();
}

}  // namespace vesk::hardware::veskdevicemanager::implementation
