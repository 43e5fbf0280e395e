// The simulated board's EDIDs through the service: every one passes edid-decode's checks, its
// preferred timing is the reduced-blanking CVT timing worked out by libxcvt, and reading it
// back gives the mode it was made for. Hand-made EDIDs test the reader's refusals.
#include <libxcvt/libxcvt.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <memory>

#include "ServiceTest.h"

namespace vesk::test {
namespace {

using ::vesk::hardware::veskdevicemanager::V1_0::VeskEffeResolution;

struct Mode {
    uint16_t width, height;
    float refresh;
};

const Mode kModes[] = {{640, 480, 60},   {800, 600, 60},   {1024, 768, 60},   {1280, 720, 50},
                       {1280, 720, 60},  {1280, 1024, 75}, {1366, 768, 60},   {1600, 900, 60},
                       {1920, 1080, 30}, {1920, 1080, 50}, {1920, 1080, 60},  {1920, 1080, 120},
                       {1920, 1200, 60}, {2560, 1440, 60}, {2560, 1080, 144}, {3440, 1440, 60},
                       {3840, 2160, 30}, {3840, 2160, 60}, {2048, 1536, 24},  {1280, 800, 59.94f}};

// One detailed timing descriptor, decoded field by field.
struct Dtd {
    unsigned clock10kHz, hActive, hBlank, vActive, vBlank, hFront, hSync, vFront, vSync;
    bool hPositive, vPositive, interlaced;
};

Dtd decode(const uint8_t* d) {
    Dtd t{};
    t.clock10kHz = d[0] | d[1] << 8;
    t.hActive = d[2] | (d[4] & 0xf0) << 4;
    t.hBlank = d[3] | (d[4] & 0x0f) << 8;
    t.vActive = d[5] | (d[7] & 0xf0) << 4;
    t.vBlank = d[6] | (d[7] & 0x0f) << 8;
    t.hFront = d[8] | (d[11] >> 6) << 8;
    t.hSync = d[9] | ((d[11] >> 4) & 3) << 8;
    t.vFront = (d[10] >> 4) | ((d[11] >> 2) & 3) << 4;
    t.vSync = (d[10] & 0x0f) | (d[11] & 3) << 4;
    t.interlaced = d[17] & 0x80;
    t.vPositive = d[17] & 0x04;
    t.hPositive = d[17] & 0x02;
    return t;
}

void fixChecksum(std::vector<uint8_t>& edid, size_t block) {
    unsigned sum = 0;
    for (size_t i = block * 128; i < block * 128 + 127; ++i) sum += edid[i];
    edid[block * 128 + 127] = static_cast<uint8_t>((256 - sum % 256) % 256);
}

class GeneratedEdidTest : public ServiceTest {
  protected:
    std::vector<uint8_t> edidByModel(const Mode& mode) {
        std::vector<uint8_t> edid;
        service->getEdidByModel(mode.width, mode.height, mode.refresh,
                                [&](const hidl_vec<uint8_t>& got) { edid = got; });
        return edid;
    }
    std::vector<uint8_t> edidFromDefined(uint8_t index, const Mode& mode) {
        std::vector<uint8_t> edid;
        service->getEdidFromDefined(index, mode.width, mode.height, mode.refresh,
                                    [&](const hidl_vec<uint8_t>& got) { edid = got; });
        return edid;
    }
    VeskEffeResolution resolutionOf(const std::vector<uint8_t>& edid) {
        VeskEffeResolution record{99, 99, 99, 99};
        service->getResolutionByEdid(hidl_vec<uint8_t>(edid),
                                     [&](const VeskEffeResolution& got) { record = got; });
        return record;
    }
    // edid-decode's report of `edid` with its conformity checks; `status` its exit status.
    std::string edidDecode(const std::vector<uint8_t>& edid, int* status) {
        const std::string path = root.path() + "/edid.bin";
        writeFile(path, std::string(edid.begin(), edid.end()));
        return runCommand("edid-decode --check " + path + " 2>&1", status);
    }
    void expectRefused(const std::vector<uint8_t>& edid) {
        vesk::host::clearCapturedLog();
        VeskEffeResolution record = resolutionOf(edid);
        EXPECT_EQ(0u, record.width);
        EXPECT_EQ(0u, record.height);
        EXPECT_EQ(0u, record.fps);
        EXPECT_EQ(0, record.status);
        EXPECT_EQ(LogLines{errorLine("getResolutionByEdid: bi_resolution_get_prefferred_timing_"
                                     "by_edid failed, ret = -1")},
                  capturedLogWithTag(kServiceTag));
    }
};

TEST_F(GeneratedEdidTest, EveryEdidPassesEdidDecodeAndReadsBackAsItsMode) {
    for (const Mode& mode : kModes) {
        SCOPED_TRACE(std::to_string(mode.width) + "x" + std::to_string(mode.height) + "@" +
                     std::to_string(mode.refresh));
        std::vector<uint8_t> edid = edidByModel(mode);
        ASSERT_EQ(256u, edid.size());
        int status = -1;
        const std::string report = edidDecode(edid, &status);
        EXPECT_EQ(0, status) << report;
        EXPECT_EQ(std::string::npos, report.find("Failures:")) << report;
        EXPECT_NE(std::string::npos, report.find("EDID conformity: PASS")) << report;
        EXPECT_NE(std::string::npos, report.find("Block 1, CTA-861 Extension Block:")) << report;
        EXPECT_NE(std::string::npos, report.find("Display Product Name: 'VESK DISPLAY'")) << report;
        const size_t dtd = report.find("DTD 1:");
        ASSERT_NE(std::string::npos, dtd) << report;
        const std::string dtdLine = report.substr(dtd, report.find('\n', dtd) - dtd);
        EXPECT_NE(std::string::npos, dtdLine.find(" " + std::to_string(mode.width) + "x" +
                                                  std::to_string(mode.height) + " "))
                << dtdLine;

        VeskEffeResolution record = resolutionOf(edid);
        EXPECT_EQ(mode.width, record.width);
        EXPECT_EQ(mode.height, record.height);
        // The one exception is the smallest: CVT-RB 640 x 480 at 60 Hz is 23.50 MHz over
        // 800 x 494, 59.46 Hz, the clock being rounded down to a whole 0.25 MHz.
        const uint32_t rate = mode.width == 640 ? 59 : std::lround(mode.refresh);
        EXPECT_EQ(rate, record.fps);
        EXPECT_EQ(1, record.status);
    }
}

TEST_F(GeneratedEdidTest, PredefinedEdidsPassEdidDecodeAndNameTheirPanel) {
    const Mode modes[] = {{1920, 1080, 60}, {3840, 2160, 30}, {1024, 600, 60}};
    uint8_t index = 0;
    for (const Mode& mode : modes) {
        std::vector<uint8_t> edid = edidFromDefined(index, mode);
        ASSERT_EQ(256u, edid.size());
        int status = -1;
        const std::string report = edidDecode(edid, &status);
        EXPECT_EQ(0, status) << report;
        EXPECT_NE(std::string::npos, report.find("EDID conformity: PASS")) << report;
        EXPECT_NE(std::string::npos,
                  report.find("Display Product Name: 'VSK PANEL " + std::to_string(index) + "'"))
                << report;
        VeskEffeResolution record = resolutionOf(edid);
        EXPECT_EQ(mode.width, record.width);
        EXPECT_EQ(mode.height, record.height);
        EXPECT_EQ(static_cast<uint32_t>(mode.refresh), record.fps);
        index += 7;
    }
}

// libxcvt works out the same reduced-blanking timings on its own; the descriptor must hold them.
// Its clock is not the published method's (it divides by an estimated line period), so the
// clock is worked out here from the totals: field rate x lines x pixels, rounded down to a
// whole 0.25 MHz.
TEST_F(GeneratedEdidTest, PreferredTimingIsTheReducedBlankingCvtTiming) {
    for (const Mode& mode : kModes) {
        if (mode.width % 8 != 0) continue;  // CVT proper covers whole 8-pixel cells
        SCOPED_TRACE(std::to_string(mode.width) + "x" + std::to_string(mode.height) + "@" +
                     std::to_string(mode.refresh));
        const float rate = std::round(mode.refresh);
        std::unique_ptr<libxcvt_mode_info, decltype(&free)> cvt(
                libxcvt_gen_mode_info(mode.width, mode.height, rate, true, false), &free);
        ASSERT_TRUE(cvt);
        std::vector<uint8_t> edid = edidByModel(mode);
        ASSERT_EQ(256u, edid.size());
        const Dtd t = decode(edid.data() + 54);
        const double clockMHz =
                std::floor(double(rate) * cvt->vtotal * cvt->htotal / 1e6 / 0.25) * 0.25;
        EXPECT_EQ(static_cast<unsigned>(std::lround(clockMHz * 100)), t.clock10kHz);
        EXPECT_EQ(cvt->hdisplay, t.hActive);
        EXPECT_EQ(cvt->htotal - cvt->hdisplay, t.hBlank);
        EXPECT_EQ(cvt->hsync_start - cvt->hdisplay, t.hFront);
        EXPECT_EQ(cvt->hsync_end - cvt->hsync_start, t.hSync);
        EXPECT_EQ(cvt->vdisplay, t.vActive);
        EXPECT_EQ(cvt->vtotal - cvt->vdisplay, t.vBlank);
        EXPECT_EQ(cvt->vsync_start - cvt->vdisplay, t.vFront);
        EXPECT_EQ(cvt->vsync_end - cvt->vsync_start, t.vSync);
        EXPECT_TRUE(t.hPositive);
        EXPECT_FALSE(t.vPositive);
        EXPECT_FALSE(t.interlaced);
    }
}

// The published CVT-RB timing of 1920 x 1200 at 60 Hz: 154.00 MHz, 2080 x 1235 in total,
// front porch 48, sync 32 (+), vertical front porch 3, sync 6 (-).
TEST_F(GeneratedEdidTest, PublishedTimingOf1920x1200At60) {
    std::vector<uint8_t> edid = edidByModel({1920, 1200, 60});
    ASSERT_EQ(256u, edid.size());
    const Dtd t = decode(edid.data() + 54);
    EXPECT_EQ(15400u, t.clock10kHz);
    EXPECT_EQ(1920u, t.hActive);
    EXPECT_EQ(2080u, t.hActive + t.hBlank);
    EXPECT_EQ(48u, t.hFront);
    EXPECT_EQ(32u, t.hSync);
    EXPECT_EQ(1200u, t.vActive);
    EXPECT_EQ(1235u, t.vActive + t.vBlank);
    EXPECT_EQ(3u, t.vFront);
    EXPECT_EQ(6u, t.vSync);
    EXPECT_TRUE(t.hPositive);
    EXPECT_FALSE(t.vPositive);
}

// A width that is not a whole number of cells: the timing of the next whole number, the extra
// pixels in the front porch (CVT-RB 1368 x 768 at 60 Hz: 72.25 MHz, 1528 x 790).
TEST_F(GeneratedEdidTest, WidthOutsideTheCellsKeepsTheTotalsOfTheNextCell) {
    std::vector<uint8_t> edid = edidByModel({1366, 768, 60});
    const Dtd t = decode(edid.data() + 54);
    EXPECT_EQ(7225u, t.clock10kHz);
    EXPECT_EQ(1366u, t.hActive);
    EXPECT_EQ(1528u, t.hActive + t.hBlank);
    EXPECT_EQ(50u, t.hFront);
    EXPECT_EQ(790u, t.vActive + t.vBlank);
}

TEST_F(GeneratedEdidTest, ImpossibleModesGetNoEdid) {
    EXPECT_TRUE(edidByModel({0, 1080, 60}).empty());
    EXPECT_TRUE(edidByModel({4096 + 4000, 2160, 60}).empty());
    EXPECT_TRUE(edidByModel({3840, 2160, 0}).empty());
    EXPECT_TRUE(edidByModel({3840, 2160, 241}).empty());
    EXPECT_TRUE(edidByModel({4000, 4000, 60}).empty());  // a pixel clock above 655.35 MHz
}

TEST_F(GeneratedEdidTest, ABadChecksumIsRefused) {
    std::vector<uint8_t> edid = edidByModel({1920, 1080, 60});
    ASSERT_EQ(256u, edid.size());
    std::vector<uint8_t> badBase = edid;
    badBase[20] ^= 0x01;
    expectRefused(badBase);
    std::vector<uint8_t> badExtension = edid;
    badExtension[130] ^= 0x10;
    expectRefused(badExtension);
    std::vector<uint8_t> badHeader = edid;
    badHeader[0] = 0x01;
    fixChecksum(badHeader, 0);
    expectRefused(badHeader);
}

// A hand-made EDID: header, version 1.4, four display descriptors (name, and three dummies),
// no extension.
std::vector<uint8_t> edidWithoutTimings() {
    std::vector<uint8_t> edid(256, 0);
    const uint8_t header[] = {0, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0};
    std::copy(std::begin(header), std::end(header), edid.begin());
    edid[8] = 0x10;
    edid[9] = 0xac;
    edid[18] = 1;
    edid[19] = 4;
    edid[20] = 0x80;
    for (size_t i = 38; i < 54; ++i) edid[i] = 0x01;
    const char name[] = "HANDMADE\n    ";
    edid[54 + 3] = 0xfc;
    std::copy(name, name + 13, edid.begin() + 54 + 5);
    for (size_t d : {72u, 90u, 108u}) edid[d + 3] = 0x10;
    fixChecksum(edid, 0);
    return edid;
}

TEST_F(GeneratedEdidTest, AnEdidWithoutDetailedTimingIsRefused) {
    std::vector<uint8_t> edid = edidWithoutTimings();
    expectRefused(edid);
    // The same with an empty CTA block.
    edid[126] = 1;
    fixChecksum(edid, 0);
    edid[128] = 0x02;
    edid[129] = 0x03;
    edid[130] = 4;
    fixChecksum(edid, 1);
    expectRefused(edid);
}

// The base block has no detailed timing, the CTA block does: CTA-861's 1280 x 720 at 60 Hz,
// 74.25 MHz, 1650 x 750 in total.
TEST_F(GeneratedEdidTest, TheFirstDetailedTimingMayBeInTheCtaBlock) {
    std::vector<uint8_t> edid = edidWithoutTimings();
    edid[126] = 1;
    fixChecksum(edid, 0);
    edid[128] = 0x02;
    edid[129] = 0x03;
    edid[130] = 4;  // the detailed timings start right after the header
    const uint8_t dtd[18] = {0x01, 0x1d, 0x00, 0x72, 0x51, 0xd0, 0x1e, 0x20, 0x6e,
                             0x28, 0x55, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x1e};
    std::copy(std::begin(dtd), std::end(dtd), edid.begin() + 132);
    fixChecksum(edid, 1);
    VeskEffeResolution record = resolutionOf(edid);
    EXPECT_EQ(1280u, record.width);
    EXPECT_EQ(720u, record.height);
    EXPECT_EQ(60u, record.fps);
    EXPECT_EQ(1, record.status);
}

// Without an extension, the second 128 bytes are not the EDID's: their checksum is not read.
TEST_F(GeneratedEdidTest, ABaseBlockAloneIsReadWhateverFollowsIt) {
    std::vector<uint8_t> edid = edidByModel({1600, 900, 60});
    ASSERT_EQ(256u, edid.size());
    edid[126] = 0;
    fixChecksum(edid, 0);
    edid[200] ^= 0xff;
    VeskEffeResolution record = resolutionOf(edid);
    EXPECT_EQ(1600u, record.width);
    EXPECT_EQ(900u, record.height);
    EXPECT_EQ(60u, record.fps);
}

// CTA-861's 1920 x 1080 interlaced at 60 fields a second: 74.25 MHz, 2200 x 562.5 lines a
// field; the record gives the frame's height and the field rate.
TEST_F(GeneratedEdidTest, AnInterlacedTimingGivesTheFrameHeightAndFieldRate) {
    std::vector<uint8_t> edid = edidWithoutTimings();
    const uint8_t dtd[18] = {0x01, 0x1d, 0x80, 0x18, 0x71, 0x1c, 0x16, 0x20, 0x58,
                             0x2c, 0x25, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x9e};
    std::copy(std::begin(dtd), std::end(dtd), edid.begin() + 54);
    fixChecksum(edid, 0);
    VeskEffeResolution record = resolutionOf(edid);
    EXPECT_EQ(1920u, record.width);
    EXPECT_EQ(1080u, record.height);
    EXPECT_EQ(60u, record.fps);
}

}  // namespace
}  // namespace vesk::test
