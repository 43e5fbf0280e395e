// The defined, screen and FPGA-program block areas and the FPGA's two load calls: the board
// call's arguments, the read buffer's size, the trace and the error lines.
#include "BytesResult.h"
#include "EachLevelTest.h"

namespace vesk::test {
namespace {

using BlockDataTest = EachLevelTest;

TEST_F(BlockDataTest, WriteDefinedPassesOffsetBytesAndCountAndReturnsTheBoardValue) {
    script({{"bi_block_write_defined", {{"return", 3}}}});
    expectLinesAtEachLevel(
            [&] {
                EXPECT_EQ(3, int32_t(service->writeBlockDataDefined({7, 0, 255}, 16)));
            },
            {debugLine(traced("writeBlockDataDefined") + "\n")});
    auto board = callsOf("bi_block_write_defined");
    ASSERT_EQ(3u, board.size());
    EXPECT_EQ(json::array({16, json::array({7, 0, 255}), 3}), board[0]["args"]);
    EXPECT_EQ(calls().size(), board.size());
}

TEST_F(BlockDataTest, WriteDefinedReturnsABoardFailureUnchangedWithoutALine) {
    script({{"bi_block_write_defined", {{"return", -28}}}});
    expectLinesAtEachLevel([&] { EXPECT_EQ(-28, int32_t(service->writeBlockDataDefined({1}, 0))); },
                           {debugLine(traced("writeBlockDataDefined") + "\n")});
}

TEST_F(BlockDataTest, WriteScreenPassesOffsetBytesAndCountAndReturnsTheBoardValue) {
    script({{"bi_block_write_screen", {{"return", -9}}}});
    expectLinesAtEachLevel(
            [&] {
                EXPECT_EQ(-9, int32_t(service->writeBlockDataScreen({1, 2, 3, 4}, 4096)));
            },
            {debugLine(traced("writeBlockDataScreen") + "\n")});
    auto board = callsOf("bi_block_write_screen");
    ASSERT_EQ(3u, board.size());
    EXPECT_EQ(json::array({4096, json::array({1, 2, 3, 4}), 4}), board[0]["args"]);
    EXPECT_EQ(calls().size(), board.size());
}

TEST_F(BlockDataTest, WriteWithAnEmptyVectorPassesCountZero) {
    script({{"bi_block_write_defined", {{"return", 0}}}});
    EXPECT_EQ(0, int32_t(service->writeBlockDataDefined(hidl_vec<uint8_t>(), 5)));
    EXPECT_EQ(json::array({5, json::array(), 0}), callsOf("bi_block_write_defined")[0]["args"]);
}

TEST_F(BlockDataTest, FpgaLoadsCallTheBoardWithoutArgumentsAndReturnItsValue) {
    script({{"bi_fpga_load_program", {{"return", -110}}},
            {"bi_fpga_load_parameter", {{"return", 4}}}});
    expectLinesAtEachLevel(
            [&] {
                EXPECT_EQ(-110, int32_t(service->loadFPGAProgram()));
                EXPECT_EQ(4, int32_t(service->loadFPGAParamBlockData()));
            },
            {debugLine(traced("loadFPGAProgram") + "\n"),
             debugLine(traced("loadFPGAParamBlockData") + "\n")});
    auto program = callsOf("bi_fpga_load_program");
    auto parameter = callsOf("bi_fpga_load_parameter");
    ASSERT_EQ(3u, program.size());
    ASSERT_EQ(3u, parameter.size());
    EXPECT_EQ(json::array(), program[0]["args"]);
    EXPECT_EQ(json::array(), parameter[0]["args"]);
    EXPECT_EQ(6u, calls().size());
}

TEST_F(BlockDataTest, FpgaProgramWriteWithAShorterLengthPassesOnlyThatLength) {
    script({{"bi_block_write_fpga_program", {{"return", 3}}}});
    expectLinesAtEachLevel(
            [&] {
                EXPECT_EQ(3, int32_t(service->setFPGAProgramBlockData({9, 8, 7, 6, 5}, 3, 64)));
            },
            {debugLine(traced("setFPGAProgramBlockData") + "\n")});
    auto board = callsOf("bi_block_write_fpga_program");
    ASSERT_EQ(3u, board.size());
    // The first three bytes of the vector: its own data pointer with the given length.
    EXPECT_EQ(json::array({64, json::array({9, 8, 7}), 3}), board[0]["args"]);
}

// The board reads `length` bytes; past a shorter vector it must read zeros, never the
// service's memory.
TEST_F(BlockDataTest, FpgaProgramWriteWithALongerLengthPassesZerosPastTheVector) {
    script({{"bi_block_write_fpga_program", {{"return", 5}}}});
    EXPECT_EQ(5, int32_t(service->setFPGAProgramBlockData({9, 8}, 5, 16)));
    EXPECT_EQ(json::array({16, json::array({9, 8, 0, 0, 0}), 5}),
              callsOf("bi_block_write_fpga_program")[0]["args"]);
}

TEST_F(BlockDataTest, FpgaProgramWriteReturnsABoardFailureUnchanged) {
    script({{"bi_block_write_fpga_program", {{"return", -22}}}});
    EXPECT_EQ(-22, int32_t(service->setFPGAProgramBlockData({1, 2}, 2, 0)));
    EXPECT_EQ(json::array({0, json::array({1, 2}), 2}),
              callsOf("bi_block_write_fpga_program")[0]["args"]);
}

TEST_F(BlockDataTest, ReadDefinedLogsLengthAndOffsetAndHandsBackTheBoardBytes) {
    script({{"bi_block_read_defined", {{"return", 4}, {"out", "0a0b0c0d"}}}});
    expectLinesAtEachLevel(
            [&] {
                BytesResult result;
                service->readBlockDataDefined(4, 8, result.callback());
                EXPECT_EQ(1, result.calls);
                EXPECT_EQ((std::vector<uint8_t>{10, 11, 12, 13}), result.data);
            },
            {debugLine(traced("readBlockDataDefined") + " length = 4 offset = 8\n")});
    auto board = callsOf("bi_block_read_defined");
    ASSERT_EQ(3u, board.size());
    EXPECT_EQ(json::array({8, nullptr, 4}), board[0]["args"]);
    EXPECT_EQ(calls().size(), board.size());
}

TEST_F(BlockDataTest, ReadDefinedWithLengthZeroCallsTheBoardAndGivesAnEmptyVector) {
    script({{"bi_block_read_defined", {{"return", 0}}}});
    BytesResult result;
    result.data = {1};
    setLevel("D");
    service->readBlockDataDefined(0, 12, result.callback());
    EXPECT_EQ(1, result.calls);
    EXPECT_TRUE(result.data.empty());
    auto board = callsOf("bi_block_read_defined");
    ASSERT_EQ(1u, board.size());
    EXPECT_EQ(json::array({12, nullptr, 0}), board[0]["args"]);
    EXPECT_EQ(LogLines{debugLine(traced("readBlockDataDefined") + " length = 0 offset = 12\n")},
              capturedLog());
}

TEST_F(BlockDataTest, ReadDefinedShortCountKeepsTheRequestedLength) {
    script({{"bi_block_read_defined", {{"return", 2}, {"out", "a1a2"}}}});
    BytesResult result;
    service->readBlockDataDefined(6, 0, result.callback());
    EXPECT_EQ((std::vector<uint8_t>{0xa1, 0xa2, 0, 0, 0, 0}), result.data);
}

TEST_F(BlockDataTest, ReadDefinedFailureEmptiesTheVectorAndNamesNoValue) {
    script({{"bi_block_read_defined", {{"return", -5}, {"out", "ffff"}}}});
    expectLinesAtEachLevel(
            [&] {
                BytesResult result;
                result.data = {1, 2};
                service->readBlockDataDefined(2, 0, result.callback());
                EXPECT_EQ(1, result.calls);
                EXPECT_TRUE(result.data.empty());
            },
            {debugLine(traced("readBlockDataDefined") + " length = 2 offset = 0\n"),
             errorLine("readBlockDataDefined: bi_block_read_defined failed\n")});
}

TEST_F(BlockDataTest, ReadScreenLogsLengthAndOffsetAndHandsBackTheBoardBytes) {
    script({{"bi_block_read_screen", {{"return", 3}, {"out", "010203"}}}});
    expectLinesAtEachLevel(
            [&] {
                BytesResult result;
                service->readBlockDataScreen(3, 4294967295u, result.callback());
                EXPECT_EQ(1, result.calls);
                EXPECT_EQ((std::vector<uint8_t>{1, 2, 3}), result.data);
            },
            {debugLine(traced("readBlockDataScreen") + " length = 3 offset = 4294967295\n")});
    auto board = callsOf("bi_block_read_screen");
    ASSERT_EQ(3u, board.size());
    EXPECT_EQ(json::array({4294967295u, nullptr, 3}), board[0]["args"]);
}

TEST_F(BlockDataTest, ReadScreenShortCountKeepsTheRequestedLength) {
    script({{"bi_block_read_screen", {{"return", 1}, {"out", "7f"}}}});
    BytesResult result;
    service->readBlockDataScreen(5, 100, result.callback());
    EXPECT_EQ((std::vector<uint8_t>{0x7f, 0, 0, 0, 0}), result.data);
}

TEST_F(BlockDataTest, ReadScreenFailureEmptiesTheVectorAndNamesTheValue) {
    script({{"bi_block_read_screen", {{"return", -2}}}});
    expectLinesAtEachLevel(
            [&] {
                BytesResult result;
                service->readBlockDataScreen(8, 1, result.callback());
                EXPECT_EQ(1, result.calls);
                EXPECT_TRUE(result.data.empty());
            },
            {debugLine(traced("readBlockDataScreen") + " length = 8 offset = 1\n"),
             errorLine("readBlockDataScreen: bi_block_read_screen failed. ret = -2\n")});
}

TEST_F(BlockDataTest, FpgaProgramReadWritesThePlainTraceAndHandsBackTheBoardBytes) {
    script({{"bi_block_read_fpga_program", {{"return", 2}, {"out", "beef"}}}});
    expectLinesAtEachLevel(
            [&] {
                BytesResult result;
                service->getFPGAProgramBlockData(2, 1024, result.callback());
                EXPECT_EQ(1, result.calls);
                EXPECT_EQ((std::vector<uint8_t>{0xbe, 0xef}), result.data);
            },
            {debugLine(traced("getFPGAProgramBlockData") + "\n")});
    auto board = callsOf("bi_block_read_fpga_program");
    ASSERT_EQ(3u, board.size());
    EXPECT_EQ(json::array({1024, nullptr, 2}), board[0]["args"]);
}

TEST_F(BlockDataTest, FpgaProgramReadShortCountKeepsTheRequestedLength) {
    script({{"bi_block_read_fpga_program", {{"return", 3}, {"out", "112233"}}}});
    BytesResult result;
    service->getFPGAProgramBlockData(4, 0, result.callback());
    EXPECT_EQ((std::vector<uint8_t>{0x11, 0x22, 0x33, 0}), result.data);
}

TEST_F(BlockDataTest, FpgaProgramReadCountAboveTheLengthKeepsTheRequestedLength) {
    script({{"bi_block_read_fpga_program", {{"return", 100}, {"out", "1122"}}}});
    BytesResult result;
    service->getFPGAProgramBlockData(2, 0, result.callback());
    EXPECT_EQ((std::vector<uint8_t>{0x11, 0x22}), result.data);
}

TEST_F(BlockDataTest, FpgaProgramReadFailureEmptiesTheVectorAndNamesTheValue) {
    script({{"bi_block_read_fpga_program", {{"return", -4}}}});
    expectLinesAtEachLevel(
            [&] {
                BytesResult result;
                service->getFPGAProgramBlockData(16, 0, result.callback());
                EXPECT_EQ(1, result.calls);
                EXPECT_TRUE(result.data.empty());
            },
            {debugLine(traced("getFPGAProgramBlockData") + "\n"),
             errorLine("getFPGAProgramBlockData: bi_block_read_fpga_program failed. ret = -4\n")});
}

}  // namespace
}  // namespace vesk::test
