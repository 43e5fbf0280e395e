/*
 * A notification receiver of this process, for hwRegistCallback's argument "callback": each
 * notification it receives is printed as one JSON line {"notification":{...}} on the output of
 * the run in progress (NotificationOutput.h).
 */
#pragma once

#include <vesk/hardware/veskdevicemanager/1.0/IVeskDeviceCallback.h>

namespace veskdm {

class LocalDeviceCallback : public ::vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceCallback {
  public:
    ::android::hardware::Return<void> hwNotify(
            const ::vesk::hardware::veskdevicemanager::V1_0::MessageParcel& parcel) override;
};

}  // namespace veskdm
