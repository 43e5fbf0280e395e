// The released interface is frozen: each .hal file must still hash to what current.txt
// recorded, and the device build files must name what the host build produces.
#include <gtest/gtest.h>

#include <sstream>

#include "TestRoot.h"

namespace vesk::test {
namespace {

const std::string kSource = VESK_SOURCE_DIR;

TEST(InterfaceFreezeTest, EveryHalFileMatchesItsRecordedHash) {
    int status = -1;
    std::string hashes =
            runCommand("hidl-gen -L hash -r vesk.hardware:" + kSource +
                               "/interface -r android.hidl:" + kSource +
                               "/host/hidl/interfaces vesk.hardware.veskdevicemanager@1.0",
                       &status);
    ASSERT_EQ(0, status);
    std::string recorded = readFile(kSource + "/interface/current.txt");
    std::istringstream lines(hashes);
    std::string line;
    int count = 0;
    while (std::getline(lines, line)) {
        if (line.empty()) continue;
        ++count;
        EXPECT_NE(std::string::npos, recorded.find(line + "\n")) << "changed: " << line;
    }
    EXPECT_EQ(3, count);
}

TEST(DeviceBuildFilesTest, NamesAgreeWithTheHostBuild) {
    std::string bp = readFile(kSource + "/default/Android.bp");
    std::string rc = readFile(kSource + "/default/vesk.hardware.veskdevicemanager@1.0-service.rc");
    std::string xml =
            readFile(kSource + "/default/vesk.hardware.veskdevicemanager@1.0-service.xml");
    std::string hal = readFile(kSource + "/interface/veskdevicemanager/1.0/Android.bp");
    EXPECT_NE(std::string::npos, bp.find("name: \"vesk.hardware.veskdevicemanager@1.0-impl\""));
    EXPECT_NE(std::string::npos, bp.find("name: \"vesk.hardware.veskdevicemanager@1.0-service\""));
    EXPECT_NE(std::string::npos, bp.find("relative_install_path: \"hw\""));
    EXPECT_NE(std::string::npos, bp.find("vendor: true"));
    EXPECT_NE(std::string::npos,
              bp.find("init_rc: [\"vesk.hardware.veskdevicemanager@1.0-service.rc\"]"));
    EXPECT_NE(std::string::npos,
              bp.find("vintf_fragments: [\"vesk.hardware.veskdevicemanager@1.0-service.xml\"]"));
    EXPECT_NE(std::string::npos, hal.find("name: \"vesk.hardware.veskdevicemanager@1.0\""));
    // The host build produces the library under the device's module name.
    EXPECT_EQ(0, access(VESK_BINARY_DIR "/lib/vesk.hardware.veskdevicemanager@1.0-impl.so", F_OK));
    EXPECT_NE(std::string::npos,
              rc.find("/vendor/bin/hw/vesk.hardware.veskdevicemanager@1.0-service\n"));
    EXPECT_NE(
            std::string::npos,
            rc.find("interface vesk.hardware.veskdevicemanager@1.0::IVeskDeviceManager default\n"));
    EXPECT_NE(std::string::npos, rc.find("class hal\n"));
    EXPECT_NE(std::string::npos, rc.find("user system\n"));
    EXPECT_NE(std::string::npos, rc.find("group system\n"));
    EXPECT_NE(std::string::npos, xml.find("<name>vesk.hardware.veskdevicemanager</name>"));
    EXPECT_NE(std::string::npos, xml.find("<version>1.0</version>"));
    EXPECT_NE(std::string::npos, xml.find("<name>IVeskDeviceManager</name>"));
    EXPECT_NE(std::string::npos, xml.find("<instance>default</instance>"));
}

}  // namespace
}  // namespace vesk::test
