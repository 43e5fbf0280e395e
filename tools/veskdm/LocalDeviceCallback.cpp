#include "LocalDeviceCallback.h"

#include "HalJson.h"
#include "NotificationOutput.h"

namespace veskdm {

::android::hardware::Return<void> LocalDeviceCallback::hwNotify(
        const ::vesk::hardware::veskdevicemanager::V1_0::MessageParcel& parcel) {
    Json line = Json::object();
    line["notification"] = toJson(parcel);
    NotificationOutput::printLine(dumpJson(line));
    return ::android::hardware::Void();
}

}  // namespace veskdm
