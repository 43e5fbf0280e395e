// IBase::debug, as lshal calls it: sections of text on the handle's first descriptor, checked
// against a product record, an environment partition and properties made here.
#include <cutils/native_handle.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <sstream>

#include "EnvImage.h"
#include "ServiceTest.h"

namespace vesk::test {
namespace {

using ::android::hardware::hidl_handle;

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

std::string hex(uint32_t value) {
    char text[11];
    snprintf(text, sizeof(text), "0x%08x", value);
    return text;
}

class DebugTest : public ServiceTest {
  protected:
    // What debug() writes to a file of its own, given these options.
    std::string debugText(const std::vector<std::string>& options = {}) {
        int fd = memfd_create("debug-test", MFD_CLOEXEC);
        native_handle_t* handle = native_handle_create(1, 0);
        handle->data[0] = fd;
        hidl_vec<hidl_string> words(options.size());
        for (size_t i = 0; i < options.size(); ++i) words[i] = options[i];
        EXPECT_TRUE(service->debug(hidl_handle(handle), words).isOk());
        native_handle_delete(handle);
        std::string text = contentOf(fd);
        close(fd);
        return text;
    }
    std::vector<std::string> headers(const std::string& text) {
        std::vector<std::string> found;
        for (const std::string& line : linesOf(text)) {
            if (!line.empty() && line.front() == '[') found.push_back(line);
        }
        return found;
    }
    bool hasLine(const std::string& text, const std::string& line) {
        std::vector<std::string> lines = linesOf(text);
        return std::find(lines.begin(), lines.end(), line) != lines.end();
    }
    std::string envPath() { return root / "/dev/block/env"; }
};

TEST_F(DebugTest, EverySectionOnAFreshRoot) {
    std::string text = debugText();
    EXPECT_EQ((std::vector<std::string>{"[product]", "[mode]", "[env]", "[log]"}), headers(text))
            << text;
    EXPECT_TRUE(hasLine(text, "device: /dev/block/env")) << text;
}

TEST_F(DebugTest, ProductFieldsComeFromTheBoardsRecord) {
    std::string record(2048, '\0');
    putText(record, 64, "8470");          // model_id
    putText(record, 256, "SN-0001-ABC");  // serial_number
    putText(record, 2016, "true");        // use_dhcp
    script({{"bi_info_get_product_info", {{"return", 0}, {"out", hexOf(record)}}}});
    std::string text = debugText({"product"});
    EXPECT_TRUE(hasLine(text, "model_id: 8470")) << text;
    EXPECT_TRUE(hasLine(text, "serial_number: SN-0001-ABC")) << text;
    EXPECT_TRUE(hasLine(text, "use_dhcp: true")) << text;
    EXPECT_TRUE(hasLine(text, "vendor: ")) << text;
}

TEST_F(DebugTest, AFailedProductReadIsSaid) {
    script({{"bi_info_get_product_info", {{"return", -3}}}});
    EXPECT_EQ("[product]\nerror: the board did not give its product record (-3)\n",
              debugText({"product"}));
}

TEST_F(DebugTest, EachCopysCrcStateWorkedOutHere) {
    std::string image = envImage({{"bootdelay", "1"}, {"hdmimode", "720p60hz"}});
    image[40] ^= 0x55;  // copy A's data no longer matches its CRC word
    writeFile(envPath(), image);
    const uint32_t storedA = storedCrc(image, 0);
    const uint32_t computedA = crcOf(reinterpret_cast<const uint8_t*>(image.data()) + 4, 65532);
    const uint32_t storedB = storedCrc(image, 65536);
    ASSERT_NE(storedA, computedA);
    std::string text = debugText({"env"});
    EXPECT_EQ("[env]\ndevice: /dev/block/env\ncopy size: 65536\ncopy A: stored crc " + hex(storedA) +
                      ", computed crc " + hex(computedA) + ", invalid\ncopy B: stored crc " +
                      hex(storedB) + ", computed crc " + hex(storedB) + ", valid\n",
              text);
}

TEST_F(DebugTest, OutputModeAndTheCustomModeFieldByField) {
    std::string fields;
    for (int i = 1; i <= 22; ++i) fields += (i > 1 ? "," : "") + std::to_string(i * 10);
    writeFile(envPath(), envImage({{"hdmimode", "999p60hz"}, {"custom_mode", fields}}));
    std::string text = debugText({"mode"});
    EXPECT_TRUE(hasLine(text, "hdmimode: 999p60hz")) << text;
    EXPECT_TRUE(hasLine(text, "custom_mode: " + fields)) << text;
    // The string's layout: 1 h_freq x1000 (Hz), 2 v_freq x1000 (mHz), 3 pixel clock x1000
    // (kHz), 9 h_active, 15 v_active, 19 and 20 the aspect ratio.
    EXPECT_TRUE(hasLine(text, "custom_mode.1 h_freq: 10 Hz")) << text;
    EXPECT_TRUE(hasLine(text, "custom_mode.2 v_freq: 20 mHz")) << text;
    EXPECT_TRUE(hasLine(text, "custom_mode.3 pix_clock: 30 kHz")) << text;
    EXPECT_TRUE(hasLine(text, "custom_mode.9 h_active: 90 pixels")) << text;
    EXPECT_TRUE(hasLine(text, "custom_mode.15 v_active: 150 lines")) << text;
    EXPECT_TRUE(hasLine(text, "custom_mode.19 aspect_numerator: 190")) << text;
    EXPECT_TRUE(hasLine(text, "custom_mode.20 aspect_denominator: 200")) << text;
    EXPECT_EQ(2u + 22u + 1u, linesOf(text).size()) << text;
}

TEST_F(DebugTest, ACustomModeOfTheWrongShapeIsSaid) {
    writeFile(envPath(), envImage({{"custom_mode", "1,2,3"}}));
    std::string text = debugText({"mode"});
    EXPECT_TRUE(hasLine(text, "hdmimode: (not set)")) << text;
    EXPECT_TRUE(hasLine(text, "custom_mode.error: 3 fields, not 22")) << text;
}

TEST_F(DebugTest, LogLevelProperties) {
    setLevel("D");
    std::string text = debugText({"log"});
    EXPECT_EQ("[log]\npersist.vesk.device.log.level: D\npersist.vendor.sc.log.level: (not set)\n",
              text);
}

TEST_F(DebugTest, SectionsAreChosenAndKeepTheirOrder) {
    EXPECT_EQ((std::vector<std::string>{"[env]"}), headers(debugText({"env"})));
    EXPECT_EQ((std::vector<std::string>{"[product]", "[log]"}),
              headers(debugText({"log", "product"})));
}

TEST_F(DebugTest, AnUnknownOptionGetsOneUsageLine) {
    std::vector<std::string> lines = linesOf(debugText({"env", "everything"}));
    ASSERT_EQ(1u, lines.size());
    EXPECT_EQ(0u, lines[0].rfind("usage: ", 0)) << lines[0];
    EXPECT_NE(std::string::npos, lines[0].find("[product] [mode] [env] [log]"));
}

TEST_F(DebugTest, AHandleWithoutADescriptorGetsNothing) {
    EXPECT_TRUE(service->debug(hidl_handle(), {}).isOk());
    native_handle_t* empty = native_handle_create(0, 1);
    EXPECT_TRUE(service->debug(hidl_handle(empty), {}).isOk());
    native_handle_delete(empty);
    EXPECT_TRUE(calls().empty());
}

TEST_F(DebugTest, ChangesNothingAndTracesNothing) {
    setLevel("D");
    writeFile(envPath(), envImage({{"hdmimode", "720p60hz"}}));
    struct stat before {};
    ASSERT_EQ(0, stat(envPath().c_str(), &before));
    std::string bytes = readFile(envPath());
    vesk::host::clearCapturedLog();
    debugText();
    struct stat after {};
    ASSERT_EQ(0, stat(envPath().c_str(), &after));
    EXPECT_EQ(bytes, readFile(envPath()));
    EXPECT_EQ(before.st_mtim.tv_sec, after.st_mtim.tv_sec);
    EXPECT_EQ(before.st_mtim.tv_nsec, after.st_mtim.tv_nsec);
    EXPECT_TRUE(capturedLogWithTag(kServiceTag).empty());
    std::vector<std::string> functions;
    for (const json& call : calls()) functions.push_back(call["function"]);
    EXPECT_EQ(std::vector<std::string>{"bi_info_get_product_info"}, functions);
    // The product record read for debug is not the one getProductInfo keeps.
    {
        service->getProductInfo([](const auto&) {});
        EXPECT_EQ(2u, callsOf("bi_info_get_product_info").size());
    }
}

}  // namespace
}  // namespace vesk::test
