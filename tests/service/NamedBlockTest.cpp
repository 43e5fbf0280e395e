// Named blocks: the path must exist below the device root before the board is asked.
#include <filesystem>

#include "BytesResult.h"
#include "EachLevelTest.h"

namespace vesk::test {
namespace {

constexpr char kBlock[] = "/data/blocks/one";
constexpr char kMissing[] = "/data/blocks/none";

class NamedBlockTest : public EachLevelTest {
  protected:
    // Makes `devicePath` exist below the test's device root.
    void createBlock(const std::string& devicePath) {
        std::filesystem::path file = root / devicePath;
        std::filesystem::create_directories(file.parent_path());
        writeFile(file, "");
        ASSERT_TRUE(std::filesystem::exists(file));
    }
};

TEST_F(NamedBlockTest, WriteToAMissingPathAnswersZeroWithOneErrorLineAndNoBoardCall) {
    script({{"bi_block_write_data", {{"return", -9}}}});
    expectLinesAtEachLevel(
            [&] {
                EXPECT_EQ(0, int32_t(service->writeBlockData(kMissing, 0, 2, {1, 2})));
            },
            {debugLine(traced("writeBlockData") + " path = /data/blocks/none\n"),
             errorLine("writeBlockData: /data/blocks/none not exist\n")});
    EXPECT_TRUE(calls().empty());
}

TEST_F(NamedBlockTest, WriteToAnExistingPathPassesPathOffsetBytesAndCount) {
    createBlock(kBlock);
    script({{"bi_block_write_data", {{"return", 3}}}});
    expectLinesAtEachLevel(
            [&] {
                EXPECT_EQ(3, int32_t(service->writeBlockData(kBlock, 32, 3, {4, 5, 6})));
            },
            {debugLine(traced("writeBlockData") + " path = /data/blocks/one\n"),
             debugLine("writeBlockData: /data/blocks/one exist\n")});
    auto board = callsOf("bi_block_write_data");
    ASSERT_EQ(3u, board.size());
    EXPECT_EQ(json::array({"/data/blocks/one", 32, json::array({4, 5, 6}), 3}), board[0]["args"]);
    EXPECT_EQ(calls().size(), board.size());
}

TEST_F(NamedBlockTest, WriteIgnoresItsLengthAndPassesTheVectorsSize) {
    createBlock(kBlock);
    script({{"bi_block_write_data", {{"return", 2}}}});
    const hidl_vec<uint8_t> data = {0xaa, 0xbb, 0xcc, 0xdd, 0xee};
    const json expected =
            json::array({"/data/blocks/one", 9, json::array({0xaa, 0xbb, 0xcc, 0xdd, 0xee}), 5});
    EXPECT_EQ(2, int32_t(service->writeBlockData(kBlock, 9, 100, data)));
    EXPECT_EQ(2, int32_t(service->writeBlockData(kBlock, 9, 2, data)));
    EXPECT_EQ(2, int32_t(service->writeBlockData(kBlock, 9, 0, data)));
    auto board = callsOf("bi_block_write_data");
    ASSERT_EQ(3u, board.size());
    EXPECT_EQ(expected, board[0]["args"]);
    EXPECT_EQ(expected, board[1]["args"]);
    EXPECT_EQ(expected, board[2]["args"]);
}

TEST_F(NamedBlockTest, WriteFailureNamesThePathAndReturnsTheBoardValue) {
    createBlock(kBlock);
    script({{"bi_block_write_data", {{"return", -7}}}});
    expectLinesAtEachLevel(
            [&] { EXPECT_EQ(-7, int32_t(service->writeBlockData(kBlock, 1, 1, {1}))); },
            {debugLine(traced("writeBlockData") + " path = /data/blocks/one\n"),
             debugLine("writeBlockData: /data/blocks/one exist\n"),
             errorLine("writeBlockData: bi_block_write_data(/data/blocks/one) failed\n")});
}

TEST_F(NamedBlockTest, ReadFromAMissingPathGivesAnEmptyVectorWithOneErrorLineAndNoBoardCall) {
    script({{"bi_block_read_data", {{"return", 4}, {"out", "01020304"}}}});
    expectLinesAtEachLevel(
            [&] {
                BytesResult result;
                result.data = {9};
                service->readBlockData(kMissing, 0, 4, result.callback());
                EXPECT_EQ(1, result.calls);
                EXPECT_TRUE(result.data.empty());
            },
            {debugLine(traced("readBlockData") + " path = /data/blocks/none\n"),
             errorLine("readBlockData: /data/blocks/none not exist\n")});
    EXPECT_TRUE(calls().empty());
}

TEST_F(NamedBlockTest, ReadFromAnExistingPathPassesPathOffsetAndLength) {
    createBlock(kBlock);
    script({{"bi_block_read_data", {{"return", 3}, {"out", "c0ffee"}}}});
    expectLinesAtEachLevel(
            [&] {
                BytesResult result;
                service->readBlockData(kBlock, 7, 3, result.callback());
                EXPECT_EQ(1, result.calls);
                EXPECT_EQ((std::vector<uint8_t>{0xc0, 0xff, 0xee}), result.data);
            },
            {debugLine(traced("readBlockData") + " path = /data/blocks/one\n"),
             debugLine("readBlockData: /data/blocks/one exist\n")});
    auto board = callsOf("bi_block_read_data");
    ASSERT_EQ(3u, board.size());
    EXPECT_EQ(json::array({"/data/blocks/one", 7, nullptr, 3}), board[0]["args"]);
    EXPECT_EQ(calls().size(), board.size());
}

TEST_F(NamedBlockTest, ReadShortCountKeepsTheRequestedLength) {
    createBlock(kBlock);
    script({{"bi_block_read_data", {{"return", 1}, {"out", "55"}}}});
    BytesResult result;
    service->readBlockData(kBlock, 0, 4, result.callback());
    EXPECT_EQ((std::vector<uint8_t>{0x55, 0, 0, 0}), result.data);
}

TEST_F(NamedBlockTest, ReadFailureEmptiesTheVectorAndNamesTheValue) {
    createBlock(kBlock);
    script({{"bi_block_read_data", {{"return", -6}}}});
    expectLinesAtEachLevel(
            [&] {
                BytesResult result;
                service->readBlockData(kBlock, 0, 8, result.callback());
                EXPECT_EQ(1, result.calls);
                EXPECT_TRUE(result.data.empty());
            },
            {debugLine(traced("readBlockData") + " path = /data/blocks/one\n"),
             debugLine("readBlockData: /data/blocks/one exist\n"),
             errorLine("readBlockData: bi_block_read_data failed. ret = -6\n")});
}

TEST_F(NamedBlockTest, AnExistingDirectoryCountsAsExisting) {
    createBlock("/data/blocks/dir/inner");
    script({{"bi_block_write_data", {{"return", 0}}}});
    EXPECT_EQ(0, int32_t(service->writeBlockData("/data/blocks/dir", 0, 0, {1})));
    EXPECT_EQ(1u, callsOf("bi_block_write_data").size());
}

TEST_F(NamedBlockTest, APathThatExistsOnlyOutsideTheDeviceRootIsMissing) {
    ASSERT_TRUE(std::filesystem::exists("/etc"));
    ASSERT_FALSE(std::filesystem::exists(root / "/etc"));
    EXPECT_EQ(0, int32_t(service->writeBlockData("/etc", 0, 0, {1})));
    EXPECT_TRUE(calls().empty());
    EXPECT_EQ(LogLines{errorLine("writeBlockData: /etc not exist\n")}, capturedLog());
}

TEST_F(NamedBlockTest, AnEmptyPathIsMissing) {
    EXPECT_EQ(0, int32_t(service->writeBlockData("", 0, 0, {1})));
    std::vector<uint8_t> read = {9};
    service->readBlockData("", 0, 4, [&](const hidl_vec<uint8_t>& data) { read = data; });
    EXPECT_TRUE(read.empty());
    EXPECT_TRUE(calls().empty());
    EXPECT_EQ((LogLines{errorLine("writeBlockData:  not exist\n"),
                        errorLine("readBlockData:  not exist\n")}),
              capturedLog());
}

}  // namespace
}  // namespace vesk::test
