#include "VeskDeviceCallback.h"

namespace vesk::hardware::veskdevicemanager::implementation {

::android::hardware::Return<void> VeskDeviceCallback::hwNotify(const V1_0::MessageParcel&) {
    return ::android::hardware::Void();
}

}  // namespace vesk::hardware::veskdevicemanager::implementation
