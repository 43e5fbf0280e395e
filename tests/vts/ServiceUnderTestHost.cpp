// On the host: the implementation library loaded as a passthrough host loads it (the tool's
// loader), over a fresh device root and a fresh simulated board.
#include "BoardReset.h"
#include "ImplLoader.h"
#include "ServiceUnderTest.h"
#include "TestRoot.h"

namespace vesk::vts {

struct ServiceUnderTest::Surroundings {
    Surroundings() { vesk::test::resetSimulatedBoard(); }
    ~Surroundings() { vesk::test::resetSimulatedBoard(); }
    vesk::test::TempRoot root;
};

ServiceUnderTest::ServiceUnderTest() : mSurroundings(std::make_unique<Surroundings>()) {
    try {
        mService = veskdm::fetchDeviceManager(veskdm::implLibraryPath());
    } catch (const veskdm::LoadError&) {
        mService = nullptr;
    }
}

ServiceUnderTest::~ServiceUnderTest() {
    mService = nullptr;
}

}  // namespace vesk::vts
