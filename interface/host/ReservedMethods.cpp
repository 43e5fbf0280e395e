/*
 * The bodies of the base interface's reserved methods that hidl-gen's generated sources hold on
 * the device (the interface package's library, and libhidlbase for IBase itself). The host
 * builds only the generated headers, so the same defaults are given here: debug() prints
 * nothing unless an implementation overrides it.
 */
#include <android/hidl/base/1.0/IBase.h>
#include <vesk/hardware/veskdevicemanager/1.0/IVeskDeviceCallback.h>
#include <vesk/hardware/veskdevicemanager/1.0/IVeskDeviceManager.h>

using ::android::hardware::hidl_handle;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;
using ::android::hardware::Void;

namespace android::hidl::base::V1_0 {

Return<void> IBase::debug(const hidl_handle& /*fd*/, const hidl_vec<hidl_string>& /*options*/) {
    return Void();
}

}  // namespace android::hidl::base::V1_0

namespace vesk::hardware::veskdevicemanager::V1_0 {

Return<void> IVeskDeviceManager::debug(const hidl_handle& /*fd*/,
                                       const hidl_vec<hidl_string>& /*options*/) {
    return Void();
}

Return<void> IVeskDeviceCallback::debug(const hidl_handle& /*fd*/,
                                        const hidl_vec<hidl_string>& /*options*/) {
    return Void();
}

}  // namespace vesk::hardware::veskdevicemanager::V1_0
