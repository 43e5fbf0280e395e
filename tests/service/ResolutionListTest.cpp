// The board's resolution list: 16-byte records (width, height, fps, an unused fourth word) read
// field by field, the count reported at error priority on every call.
#include <cstdio>

#include "EachLevelTest.h"

namespace vesk::test {
namespace {

using ::vesk::hardware::veskdevicemanager::V1_0::VeskEffeResolution;
using ResolutionListTest = EachLevelTest;

struct ListResult {
    std::vector<VeskEffeResolution> list;
    int calls = 0;
    std::function<void(const hidl_vec<VeskEffeResolution>&)> callback() {
        return [this](const hidl_vec<VeskEffeResolution>& got) {
            list = got;
            ++calls;
        };
    }
};

// Four bytes of `value`, least significant first (the board's byte order), as hex.
std::string le32(uint32_t value) {
    char hex[9];
    snprintf(hex, sizeof(hex), "%02x%02x%02x%02x", value & 0xff, (value >> 8) & 0xff,
             (value >> 16) & 0xff, value >> 24);
    return hex;
}

void expectEntry(const VeskEffeResolution& entry, uint32_t width, uint32_t height, uint32_t fps) {
    EXPECT_EQ(width, entry.width);
    EXPECT_EQ(height, entry.height);
    EXPECT_EQ(fps, entry.fps);
    EXPECT_EQ(1, entry.status);
}

TEST_F(ResolutionListTest, CountZeroWritesOneErrorLineAndGivesAnEmptyList) {
    script({{"bi_resolution_get_parameters_list", {{"return", 0}}}});
    expectLinesAtEachLevel(
            [&] {
                ListResult result;
                result.list.resize(1);
                service->getResolutionParametersList(result.callback());
                EXPECT_EQ(1, result.calls);
                EXPECT_TRUE(result.list.empty());
            },
            {errorLine("getResolutionParametersList: resolution list is 0\n")});
    auto board = callsOf("bi_resolution_get_parameters_list");
    ASSERT_EQ(3u, board.size());
    EXPECT_EQ(json::array({nullptr}), board[0]["args"]);
    EXPECT_EQ(calls().size(), board.size());
}

TEST_F(ResolutionListTest, CountThreeGivesThreeEntriesInBoardOrderWithStatusOne) {
    // Three records, byte by byte; the fourth words are 0, 0xffffffff and 7.
    // clang-format off
    const std::string records = "80070000" "38040000" "3c000000" "00000000"   // 1920 x 1080 @ 60
                                "000f0000" "70080000" "1e000000" "ffffffff"   // 3840 x 2160 @ 30
                                "d0020000" "40020000" "32000000" "07000000";  // 720 x 576 @ 50
    // clang-format on
    script({{"bi_resolution_get_parameters_list", {{"return", 3}, {"out", records}}}});
    expectLinesAtEachLevel(
            [&] {
                ListResult result;
                service->getResolutionParametersList(result.callback());
                EXPECT_EQ(1, result.calls);
                ASSERT_EQ(3u, result.list.size());
                expectEntry(result.list[0], 1920, 1080, 60);
                expectEntry(result.list[1], 3840, 2160, 30);
                expectEntry(result.list[2], 720, 576, 50);
            },
            {errorLine("getResolutionParametersList: resolution list is 3\n")});
}

TEST_F(ResolutionListTest, EveryByteOfTheThreeWordsIsRead) {
    const std::string records = "04030201d0c0b0a0ffffffff00000000";
    script({{"bi_resolution_get_parameters_list", {{"return", 1}, {"out", records}}}});
    ListResult result;
    service->getResolutionParametersList(result.callback());
    ASSERT_EQ(1u, result.list.size());
    expectEntry(result.list[0], 0x01020304u, 0xa0b0c0d0u, 0xffffffffu);
}

TEST_F(ResolutionListTest, RecordsBeyondTheCountAreNotRead) {
    // clang-format off
    const std::string records = "80070000" "38040000" "3c000000" "00000000"
                                "000f0000" "70080000" "1e000000" "00000000";
    // clang-format on
    script({{"bi_resolution_get_parameters_list", {{"return", 1}, {"out", records}}}});
    ListResult result;
    service->getResolutionParametersList(result.callback());
    ASSERT_EQ(1u, result.list.size());
    expectEntry(result.list[0], 1920, 1080, 60);
}

TEST_F(ResolutionListTest, UnwrittenRecordsWithinTheCountAreZero) {
    script({{"bi_resolution_get_parameters_list", {{"return", 2}, {"out", "80070000"}}}});
    ListResult result;
    service->getResolutionParametersList(result.callback());
    ASSERT_EQ(2u, result.list.size());
    expectEntry(result.list[0], 1920, 0, 0);
    expectEntry(result.list[1], 0, 0, 0);
}

TEST_F(ResolutionListTest, ACountAboveSixtyFourRecordsIsClampedToTheBuffer) {
    std::string records;
    for (uint32_t i = 0; i < 64; ++i) {
        records += le32(100 + i) + le32(200 + 2 * i) + le32(i) + le32(0xdead0000u + i);
    }
    ASSERT_EQ(2048u, records.size());  // 1024 bytes: the board's whole buffer
    script({{"bi_resolution_get_parameters_list", {{"return", 100}, {"out", records}}}});
    ListResult result;
    service->getResolutionParametersList(result.callback());
    ASSERT_EQ(64u, result.list.size());
    for (uint32_t i = 0; i < 64; ++i) {
        SCOPED_TRACE(i);
        expectEntry(result.list[i], 100 + i, 200 + 2 * i, i);
    }
    EXPECT_EQ(LogLines{errorLine("getResolutionParametersList: resolution list is 100\n")},
              capturedLog());
}

TEST_F(ResolutionListTest, ExactlySixtyFourRecordsAreAllRead) {
    std::string records;
    for (uint32_t i = 0; i < 64; ++i) records += le32(i + 1) + le32(i + 2) + le32(i + 3) + le32(0);
    script({{"bi_resolution_get_parameters_list", {{"return", 64}, {"out", records}}}});
    ListResult result;
    service->getResolutionParametersList(result.callback());
    ASSERT_EQ(64u, result.list.size());
    expectEntry(result.list[63], 64, 65, 66);
}

TEST_F(ResolutionListTest, TheSimulatedBoardsOwnListComesThrough) {
    ListResult result;
    service->getResolutionParametersList(result.callback());
    EXPECT_EQ(1, result.calls);
    auto board = callsOf("bi_resolution_get_parameters_list");
    ASSERT_EQ(1u, board.size());
    int count = board[0]["return"];
    ASSERT_GE(count, 0);
    EXPECT_EQ(static_cast<size_t>(count), result.list.size());
    for (const auto& entry : result.list) EXPECT_EQ(1, entry.status);
    EXPECT_EQ(LogLines{errorLine("getResolutionParametersList: resolution list is " +
                                 std::to_string(count) + "\n")},
              capturedLog());
}

using ResolutionListDeathTest = ResolutionListTest;

TEST_F(ResolutionListDeathTest, ANegativeCountEndsTheProcess) {
    script({{"bi_resolution_get_parameters_list", {{"return", -1}}}});
    EXPECT_DEATH(
            {
                vesk::host::logToStderr();  // the fatal line goes where the death test sees it
                service->getResolutionParametersList([](const hidl_vec<VeskEffeResolution>&) {});
            },
            "resolution list is -1\n.*hidl_vec can't hold more than 2\\^32 elements\\.");
}

}  // namespace
}  // namespace vesk::test
