// Loading the implementation library as a passthrough host does.
#include <gtest/gtest.h>
#include <stdlib.h>

#include "ImplLoader.h"
#include "TestRoot.h"

namespace veskdm {
namespace {

class ImplLoaderTest : public ::testing::Test {
  protected:
    ImplLoaderTest() {
        setenv("VESK_FAKE_CALLS", calls.c_str(), 1);
        unsetenv("VESK_FAKE_NO_OBJECT");
    }
    ~ImplLoaderTest() override {
        unsetenv("VESK_FAKE_CALLS");
        unsetenv("VESK_FAKE_NO_OBJECT");
    }

    std::string loadError(const std::string& path) {
        try {
            fetchDeviceManager(path);
        } catch (const LoadError& error) {
            return error.what();
        }
        return "";
    }

    vesk::test::TempRoot directory;
    std::string calls = directory.path() + "/calls";
};

TEST_F(ImplLoaderTest, FetchesTheDefaultInstance) {
    auto service = fetchDeviceManager(VESKDM_FAKE_IMPL);
    ASSERT_NE(service, nullptr);
    EXPECT_EQ(static_cast<float>(service->getBoardVoltage()), 12.15f);
    EXPECT_EQ(vesk::test::readFile(calls), "fetch default\ngetBoardVoltage\n");
}

TEST_F(ImplLoaderTest, EachFetchMakesANewObject) {
    auto first = fetchDeviceManager(VESKDM_FAKE_IMPL, "default");
    auto second = fetchDeviceManager(VESKDM_FAKE_IMPL, "other");
    EXPECT_NE(first.get(), second.get());
    EXPECT_EQ(vesk::test::readFile(calls), "fetch default\nfetch other\n");
}

TEST_F(ImplLoaderTest, MissingLibrary) {
    std::string path = directory.path() + "/missing.so";
    std::string error = loadError(path);
    EXPECT_EQ(error.rfind("cannot load " + path + ": ", 0), 0u) << error;
    EXPECT_EQ(error.find('\n'), std::string::npos);
}

TEST_F(ImplLoaderTest, LibraryWithoutFactory) {
    EXPECT_EQ(loadError(VESKDM_NOFACTORY_IMPL),
              std::string(VESKDM_NOFACTORY_IMPL) + " exports no HIDL_FETCH_IVeskDeviceManager");
}

TEST_F(ImplLoaderTest, FactoryWithoutObject) {
    setenv("VESK_FAKE_NO_OBJECT", "1", 1);
    EXPECT_EQ(loadError(VESKDM_FAKE_IMPL), "HIDL_FETCH_IVeskDeviceManager returned no object");
}

TEST_F(ImplLoaderTest, PathFromTheEnvironment) {
    setenv("VESK_IMPL_LIB", "/opt/x/impl.so", 1);
    EXPECT_EQ(implLibraryPath(), "/opt/x/impl.so");
    unsetenv("VESK_IMPL_LIB");
}

// Without $VESK_IMPL_LIB (or with it empty): lib/ beside the program's bin/.
TEST_F(ImplLoaderTest, PathBesideTheProgram) {
    const std::string expected =
            VESK_BINARY_DIR "/bin/../lib/vesk.hardware.veskdevicemanager@1.0-impl.so";
    unsetenv("VESK_IMPL_LIB");
    EXPECT_EQ(implLibraryPath(), expected);
    setenv("VESK_IMPL_LIB", "", 1);
    EXPECT_EQ(implLibraryPath(), expected);
    unsetenv("VESK_IMPL_LIB");
}

}  // namespace
}  // namespace veskdm
