// On the host: the service program of this build on a fresh device root (and so a fresh
// simulated board), reached over the platform's RPC binder as the host's clients reach it, with a
// thread of this process for the service's calls into binders sent to it. The service is stopped
// when the test ends.
#include <string>

#include "RpcConnection.h"
#include "ServerProcess.h"
#include "ServiceUnderTest.h"
#include "TestRoot.h"

namespace vesk::vts {

using ::aidl::vesk::hardware::veskdevicemanager::IVeskDeviceManager;

struct ServiceUnderTest::Surroundings {
    vesk::test::TempRoot root;
    std::string socket = root.path() + "/dev/socket/veskdevicemanager";
    vesk::test::ServerProcess service{VESK_BINARY_DIR
                                      "/bin/vesk.hardware.veskdevicemanager-service",
                                      {},
                                      "listening on " + socket};
    vesk::test::RpcConnection<IVeskDeviceManager> session{socket, 1};
};

ServiceUnderTest::ServiceUnderTest() : mSurroundings(std::make_unique<Surroundings>()) {
    if (mSurroundings->service.listening()) mService = mSurroundings->session.proxy;
}

ServiceUnderTest::~ServiceUnderTest() {
    mService = nullptr;
}

}  // namespace vesk::vts
