// The EDID queries: two 256-byte EDIDs from the board (which differ on failure) and the
// preferred timing of a client's EDID.
#include "BytesResult.h"
#include "EachLevelTest.h"

namespace vesk::test {
namespace {

using ::vesk::hardware::veskdevicemanager::V1_0::VeskEffeResolution;
using EdidTest = EachLevelTest;

struct TimingResult {
    VeskEffeResolution record{99, 99, 99, 99};
    int calls = 0;
    std::function<void(const VeskEffeResolution&)> callback() {
        return [this](const VeskEffeResolution& got) {
            record = got;
            ++calls;
        };
    }
};

void expectRecord(const VeskEffeResolution& record, uint32_t width, uint32_t height, uint32_t fps,
                  int32_t status) {
    EXPECT_EQ(width, record.width);
    EXPECT_EQ(height, record.height);
    EXPECT_EQ(fps, record.fps);
    EXPECT_EQ(status, record.status);
}

// `size` bytes counting up from 0 (wrapping at 256).
hidl_vec<uint8_t> countingBytes(size_t size) {
    hidl_vec<uint8_t> bytes(size);
    for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<uint8_t>(i);
    return bytes;
}

json countingJson(size_t size) {
    json bytes = json::array();
    for (size_t i = 0; i < size; ++i) bytes.push_back(i % 256);
    return bytes;
}

// 256 bytes of hex: `head` followed by zeros.
std::string edidHex(const std::string& head) {
    return head + std::string(512 - head.size(), '0');
}

std::vector<uint8_t> edidBytes(std::initializer_list<uint8_t> head) {
    std::vector<uint8_t> bytes(head);
    bytes.resize(256);
    return bytes;
}

TEST_F(EdidTest, FromDefinedPassesItsArgumentsAroundTheBufferAndHandsBack256Bytes) {
    script({{"bi_resolution_get_edid_from_defined",
             {{"return", 0}, {"out", edidHex("00ffffffffffff00")}}}});
    expectLinesAtEachLevel(
            [&] {
                BytesResult result;
                service->getEdidFromDefined(200, 65535, 1080, 59.5f, result.callback());
                EXPECT_EQ(1, result.calls);
                EXPECT_EQ(edidBytes({0, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0}), result.data);
            },
            {debugLine(traced("getEdidFromDefined") + "\n")});
    auto board = callsOf("bi_resolution_get_edid_from_defined");
    ASSERT_EQ(3u, board.size());
    EXPECT_EQ(json::array({200, 65535, 1080, nullptr, 59.5}), board[0]["args"]);
    EXPECT_EQ(calls().size(), board.size());
}

TEST_F(EdidTest, FromDefinedFailureStillHandsBackAll256ZeroBytes) {
    script({{"bi_resolution_get_edid_from_defined", {{"return", -1}}}});
    expectLinesAtEachLevel(
            [&] {
                BytesResult result;
                service->getEdidFromDefined(1, 1920, 1080, 60.0f, result.callback());
                EXPECT_EQ(1, result.calls);
                EXPECT_EQ(std::vector<uint8_t>(256, 0), result.data);
            },
            {debugLine(traced("getEdidFromDefined") + "\n"),
             errorLine("getEdidFromDefined bi_resolution_get_edid_from_defined failed\n")});
}

TEST_F(EdidTest, FromDefinedFailureHandsBackWhatTheBoardWrote) {
    script({{"bi_resolution_get_edid_from_defined", {{"return", -3}, {"out", "0102"}}}});
    BytesResult result;
    service->getEdidFromDefined(0, 0, 0, 0.0f, result.callback());
    EXPECT_EQ(edidBytes({1, 2}), result.data);
}

TEST_F(EdidTest, ByModelWritesNoTraceAndHandsBack256Bytes) {
    script({{"bi_resolution_get_edid_by_model", {{"return", 0}, {"out", edidHex("00ff")}}}});
    expectLinesAtEachLevel(
            [&] {
                BytesResult result;
                service->getEdidByModel(3840, 2160, 29.75f, result.callback());
                EXPECT_EQ(1, result.calls);
                EXPECT_EQ(edidBytes({0, 0xff}), result.data);
            },
            {});
    auto board = callsOf("bi_resolution_get_edid_by_model");
    ASSERT_EQ(3u, board.size());
    EXPECT_EQ(json::array({3840, 2160, nullptr, 29.75}), board[0]["args"]);
    EXPECT_EQ(calls().size(), board.size());
}

TEST_F(EdidTest, ByModelFailureGivesAnEmptyVector) {
    script({{"bi_resolution_get_edid_by_model", {{"return", -2}, {"out", "0102"}}}});
    expectLinesAtEachLevel(
            [&] {
                BytesResult result;
                result.data = {1};
                service->getEdidByModel(640, 480, 60.0f, result.callback());
                EXPECT_EQ(1, result.calls);
                EXPECT_TRUE(result.data.empty());
            },
            {errorLine("getEdidByModel get edid by model failed\n")});
}

TEST_F(EdidTest, TimingOfA256ByteEdidIsTheBoardsRecord) {
    script({{"bi_resolution_get_prefferred_timing_by_edid",
             {{"return", 0}, {"out", "80070000380400003c00000001000000"}}}});
    expectLinesAtEachLevel(
            [&] {
                TimingResult result;
                service->getResolutionByEdid(countingBytes(256), result.callback());
                EXPECT_EQ(1, result.calls);
                expectRecord(result.record, 1920, 1080, 60, 1);
            },
            {debugLine(traced("getResolutionByEdid") + "\n"),
             debugLine("getResolutionByEdid: width = 1920 height = 1080 fps = 60\n")});
    auto board = callsOf("bi_resolution_get_prefferred_timing_by_edid");
    ASSERT_EQ(3u, board.size());
    EXPECT_EQ(json::array({countingJson(256), nullptr}), board[0]["args"]);
    EXPECT_EQ(calls().size(), board.size());
}

TEST_F(EdidTest, TimingKeepsTheStatusWordTheBoardWrote) {
    script({{"bi_resolution_get_prefferred_timing_by_edid",
             {{"return", 0}, {"out", "00050000d00200004b00000005000000"}}}});
    TimingResult result;
    service->getResolutionByEdid(countingBytes(256), result.callback());
    expectRecord(result.record, 1280, 720, 75, 5);
}

TEST_F(EdidTest, TimingLineShowsLargeValuesUnsigned) {
    script({{"bi_resolution_get_prefferred_timing_by_edid",
             {{"return", 1}, {"out", "ffffffff000000800200000000000000"}}}});
    setLevel("D");
    TimingResult result;
    service->getResolutionByEdid(countingBytes(256), result.callback());
    expectRecord(result.record, 4294967295u, 2147483648u, 2, 0);
    EXPECT_EQ((LogLines{debugLine(traced("getResolutionByEdid") + "\n"),
                        debugLine("getResolutionByEdid: width = 4294967295 height = 2147483648 "
                                  "fps = 2\n")}),
              capturedLog());
}

TEST_F(EdidTest, TimingOfA255ByteEdidIsRefusedWithoutABoardCall) {
    expectLinesAtEachLevel(
            [&] {
                TimingResult result;
                service->getResolutionByEdid(countingBytes(255), result.callback());
                EXPECT_EQ(1, result.calls);
                expectRecord(result.record, 0, 0, 0, 0);
            },
            {debugLine(traced("getResolutionByEdid") + "\n"),
             errorLine("getResolutionByEdid invalid edid size = 255 not eq to 256\n")});
    EXPECT_TRUE(calls().empty());
}

TEST_F(EdidTest, TimingOfA257ByteEdidIsRefusedWithoutABoardCall) {
    expectLinesAtEachLevel(
            [&] {
                TimingResult result;
                service->getResolutionByEdid(countingBytes(257), result.callback());
                EXPECT_EQ(1, result.calls);
                expectRecord(result.record, 0, 0, 0, 0);
            },
            {debugLine(traced("getResolutionByEdid") + "\n"),
             errorLine("getResolutionByEdid invalid edid size = 257 not eq to 256\n")});
    EXPECT_TRUE(calls().empty());
}

TEST_F(EdidTest, TimingOfABaseBlockAloneIsRefused) {
    TimingResult result;
    service->getResolutionByEdid(countingBytes(128), result.callback());
    expectRecord(result.record, 0, 0, 0, 0);
    EXPECT_TRUE(calls().empty());
    EXPECT_EQ(LogLines{errorLine("getResolutionByEdid invalid edid size = 128 not eq to 256\n")},
              capturedLog());
}

TEST_F(EdidTest, TimingOfAnEmptyEdidIsRefused) {
    TimingResult result;
    service->getResolutionByEdid(hidl_vec<uint8_t>(), result.callback());
    expectRecord(result.record, 0, 0, 0, 0);
    EXPECT_TRUE(calls().empty());
    EXPECT_EQ(LogLines{errorLine("getResolutionByEdid invalid edid size = 0 not eq to 256\n")},
              capturedLog());
}

TEST_F(EdidTest, TimingRejectedByTheBoardWritesALineWithoutLineEndAndZeros) {
    script({{"bi_resolution_get_prefferred_timing_by_edid", {{"return", -3}}}});
    expectLinesAtEachLevel(
            [&] {
                TimingResult result;
                service->getResolutionByEdid(countingBytes(256), result.callback());
                EXPECT_EQ(1, result.calls);
                expectRecord(result.record, 0, 0, 0, 0);
            },
            {debugLine(traced("getResolutionByEdid") + "\n"),
             errorLine("getResolutionByEdid: bi_resolution_get_prefferred_timing_by_edid failed, "
                       "ret = -3")});
    EXPECT_EQ(3u, callsOf("bi_resolution_get_prefferred_timing_by_edid").size());
}

TEST_F(EdidTest, TimingRejectedByTheBoardKeepsWhatItWrote) {
    script({{"bi_resolution_get_prefferred_timing_by_edid", {{"return", -1}, {"out", "80070000"}}}});
    TimingResult result;
    service->getResolutionByEdid(countingBytes(256), result.callback());
    expectRecord(result.record, 1920, 0, 0, 0);
}

}  // namespace
}  // namespace vesk::test
