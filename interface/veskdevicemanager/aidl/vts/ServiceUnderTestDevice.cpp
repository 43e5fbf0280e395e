// On a board: the registered instance, as any client gets it. Callbacks sent to it are served by
// this process's binder thread pool.
#include <android/binder_manager.h>
#include <android/binder_process.h>

#include <string>

#include "ServiceUnderTest.h"

namespace vesk::vts {

using ::aidl::vesk::hardware::veskdevicemanager::IVeskDeviceManager;

struct ServiceUnderTest::Surroundings {};

ServiceUnderTest::ServiceUnderTest() {
    ABinderProcess_startThreadPool();
    const std::string instance = std::string(IVeskDeviceManager::descriptor) + "/default";
    if (!AServiceManager_isDeclared(instance.c_str())) return;
    mService = IVeskDeviceManager::fromBinder(
            ndk::SpAIBinder(AServiceManager_waitForService(instance.c_str())));
}

ServiceUnderTest::~ServiceUnderTest() = default;

}  // namespace vesk::vts
