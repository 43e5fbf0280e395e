/*
 * A gmock IVeskDeviceManager with every method of the interface (derived from the generated
 * header at build time).
 */
#pragma once

#include <gmock/gmock.h>
#include <vesk/hardware/veskdevicemanager/1.0/IVeskDeviceManager.h>

namespace veskdm::test {

class MockDeviceManager : public ::vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceManager {
  public:
#include "MockDeviceManagerMethods.inc"
};

}  // namespace veskdm::test
