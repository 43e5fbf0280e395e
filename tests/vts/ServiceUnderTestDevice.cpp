// On a board: the registered service, as any client gets it.
#include "ServiceUnderTest.h"

namespace vesk::vts {

struct ServiceUnderTest::Surroundings {};

ServiceUnderTest::ServiceUnderTest()
    : mService(::vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceManager::getService()) {}

ServiceUnderTest::~ServiceUnderTest() = default;

}  // namespace vesk::vts
