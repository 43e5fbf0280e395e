#include "LocalDeviceCallback.h"

#include <stdio.h>

#include "HalJson.h"

namespace veskdm {

::android::hardware::Return<void> LocalDeviceCallback::hwNotify(
        const ::vesk::hardware::veskdevicemanager::V1_0::MessageParcel& parcel) {
    Json line = Json::object();
    line["notification"] = toJson(parcel);
    printf("%s\n", dumpJson(line).c_str());
    fflush(stdout);
    return ::android::hardware::Void();
}

}  // namespace veskdm
