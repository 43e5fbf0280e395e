/*
 * The one place where the contract test gets the service: the registered instance on a board
 * (ServiceUnderTestDevice.cpp), the service program of the host build on a fresh device root,
 * reached through the host's registration seam (ServiceUnderTestHost.cpp).
 */
#pragma once

#include <aidl/vesk/hardware/veskdevicemanager/IVeskDeviceManager.h>

#include <memory>

namespace vesk::vts {

class ServiceUnderTest {
  public:
    ServiceUnderTest();
    ~ServiceUnderTest();
    ServiceUnderTest(const ServiceUnderTest&) = delete;
    ServiceUnderTest& operator=(const ServiceUnderTest&) = delete;

    // Null when no service could be had.
    const std::shared_ptr<::aidl::vesk::hardware::veskdevicemanager::IVeskDeviceManager>& get() const {
        return mService;
    }

  private:
    struct Surroundings;
    std::unique_ptr<Surroundings> mSurroundings;
    std::shared_ptr<::aidl::vesk::hardware::veskdevicemanager::IVeskDeviceManager> mService;
};

}  // namespace vesk::vts
