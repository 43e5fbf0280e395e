/*
 * The one place where the interface tests get the service: IVeskDeviceManager::getService() on a
 * board (ServiceUnderTestDevice.cpp), the passthrough loader of the host tool on the host
 * (ServiceUnderTestHost.cpp), with what it needs around it there (a fresh device root and a
 * fresh simulated board for the test's life).
 */
#pragma once

#include <vesk/hardware/veskdevicemanager/1.0/IVeskDeviceManager.h>

#include <memory>

namespace vesk::vts {

class ServiceUnderTest {
  public:
    ServiceUnderTest();
    ~ServiceUnderTest();
    ServiceUnderTest(const ServiceUnderTest&) = delete;
    ServiceUnderTest& operator=(const ServiceUnderTest&) = delete;

    // Null when no service could be had.
    const ::android::sp<::vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceManager>& get() const {
        return mService;
    }

  private:
    struct Surroundings;
    std::unique_ptr<Surroundings> mSurroundings;
    ::android::sp<::vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceManager> mService;
};

}  // namespace vesk::vts
