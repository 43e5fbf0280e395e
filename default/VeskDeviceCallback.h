/*
 * A client-side receiver of device notifications; the service itself never creates one.
 */
#pragma once

#include <vesk/hardware/veskdevicemanager/1.0/IVeskDeviceCallback.h>

namespace vesk::hardware::veskdevicemanager::implementation {

struct VeskDeviceCallback : public V1_0::IVeskDeviceCallback {
    ::android::hardware::Return<void> hwNotify(const V1_0::MessageParcel& parcel) override;
};

}  // namespace vesk::hardware::veskdevicemanager::implementation
