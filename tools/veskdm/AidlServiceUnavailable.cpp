// A build without the platform's binder (no Android tree): no client of the AIDL service.
#include "AidlService.h"
#include "ImplLoader.h"

namespace veskdm {

::android::sp<::vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceManager> connectAidlService(
        const std::string& /* socketPath */) {
    throw LoadError("--via aidl: this veskdm was built without the platform's binder");
}

}  // namespace veskdm
