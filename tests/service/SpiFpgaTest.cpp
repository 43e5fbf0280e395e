// The FPGA's SPI link: write, write-then-read and read. No log line at any level; the two reads
// shrink their buffer only to a count that is not negative and below its size.
#include "EachLevelTest.h"

namespace vesk::test {
namespace {

using SpiFpgaTest = EachLevelTest;

struct SpiResult {
    int32_t ret = 12345;
    std::vector<uint8_t> data;
    int calls = 0;
    std::function<void(int32_t, const hidl_vec<uint8_t>&)> callback() {
        return [this](int32_t r, const hidl_vec<uint8_t>& got) {
            ret = r;
            data = got;
            ++calls;
        };
    }
};

TEST_F(SpiFpgaTest, WritePassesBytesAndCountAndReturnsTheBoardValueWithoutALine) {
    script({{"bi_fpga_spi_write", {{"return", -71}}}});
    expectLinesAtEachLevel(
            [&] {
                EXPECT_EQ(-71, int32_t(service->writeSpiFpga({0x5a, 0, 0xa5})));
            },
            {});
    auto board = callsOf("bi_fpga_spi_write");
    ASSERT_EQ(3u, board.size());
    EXPECT_EQ(json::array({json::array({0x5a, 0, 0xa5}), 3}), board[0]["args"]);
    EXPECT_EQ(calls().size(), board.size());
}

TEST_F(SpiFpgaTest, WriteReadSendsTheInputAndHandsBackTheReceivedBytes) {
    script({{"bi_fpga_spi_write_read", {{"return", 3}, {"out", "a0b0c0"}}}});
    expectLinesAtEachLevel(
            [&] {
                SpiResult result;
                service->wReadSpiFpga({1, 2, 3}, result.callback());
                EXPECT_EQ(1, result.calls);
                EXPECT_EQ(3, result.ret);
                EXPECT_EQ((std::vector<uint8_t>{0xa0, 0xb0, 0xc0}), result.data);
            },
            {});
    auto board = callsOf("bi_fpga_spi_write_read");
    ASSERT_EQ(3u, board.size());
    EXPECT_EQ(json::array({json::array({1, 2, 3}), 3}), board[0]["args"]);
    EXPECT_EQ(calls().size(), board.size());
}

TEST_F(SpiFpgaTest, WriteReadShortCountShrinksToTheFirstBytes) {
    script({{"bi_fpga_spi_write_read", {{"return", 2}, {"out", "e1e2e3"}}}});
    SpiResult result;
    service->wReadSpiFpga({1, 2, 3, 4}, result.callback());
    EXPECT_EQ(2, result.ret);
    EXPECT_EQ((std::vector<uint8_t>{0xe1, 0xe2}), result.data);
}

TEST_F(SpiFpgaTest, WriteReadCountZeroGivesAnEmptyVector) {
    script({{"bi_fpga_spi_write_read", {{"return", 0}}}});
    SpiResult result;
    service->wReadSpiFpga({1, 2}, result.callback());
    EXPECT_EQ(0, result.ret);
    EXPECT_TRUE(result.data.empty());
}

TEST_F(SpiFpgaTest, WriteReadCountAboveTheInputKeepsTheInputsSize) {
    script({{"bi_fpga_spi_write_read", {{"return", 9}, {"out", "f1"}}}});
    SpiResult result;
    service->wReadSpiFpga({1, 2}, result.callback());
    EXPECT_EQ(9, result.ret);
    EXPECT_EQ((std::vector<uint8_t>{0xf1, 2}), result.data);
}

TEST_F(SpiFpgaTest, WriteReadWithAnEmptyInputIsAZeroLengthExchange) {
    script({{"bi_fpga_spi_write_read", {{"return", 2}}}});
    SpiResult result;
    result.data = {7};
    service->wReadSpiFpga(hidl_vec<uint8_t>(), result.callback());
    EXPECT_EQ(1, result.calls);
    EXPECT_EQ(2, result.ret);
    EXPECT_TRUE(result.data.empty());
    auto board = callsOf("bi_fpga_spi_write_read");
    ASSERT_EQ(1u, board.size());
    EXPECT_EQ(json::array({json::array(), 0}), board[0]["args"]);
}

TEST_F(SpiFpgaTest, WriteReadFailureHandsBackTheWholeBufferAsTheBoardLeftIt) {
    script({{"bi_fpga_spi_write_read", {{"return", -5}, {"out", "aabb"}}}});
    expectLinesAtEachLevel(
            [&] {
                SpiResult result;
                service->wReadSpiFpga({1, 2, 3, 4}, result.callback());
                EXPECT_EQ(1, result.calls);
                EXPECT_EQ(-5, result.ret);
                EXPECT_EQ((std::vector<uint8_t>{0xaa, 0xbb, 3, 4}), result.data);
            },
            {});
}

TEST_F(SpiFpgaTest, ReadPassesTheSizeAndKeepsItForAFullCount) {
    script({{"bi_fpga_spi_read", {{"return", 3}, {"out", "102030"}}}});
    expectLinesAtEachLevel(
            [&] {
                SpiResult result;
                service->readSpiFpga(3, result.callback());
                EXPECT_EQ(1, result.calls);
                EXPECT_EQ(3, result.ret);
                EXPECT_EQ((std::vector<uint8_t>{0x10, 0x20, 0x30}), result.data);
            },
            {});
    auto board = callsOf("bi_fpga_spi_read");
    ASSERT_EQ(3u, board.size());
    EXPECT_EQ(json::array({nullptr, 3}), board[0]["args"]);
    EXPECT_EQ(calls().size(), board.size());
}

TEST_F(SpiFpgaTest, ReadShortCountShrinksToTheFirstBytes) {
    script({{"bi_fpga_spi_read", {{"return", 1}, {"out", "3344"}}}});
    SpiResult result;
    service->readSpiFpga(5, result.callback());
    EXPECT_EQ(1, result.ret);
    EXPECT_EQ((std::vector<uint8_t>{0x33}), result.data);
}

TEST_F(SpiFpgaTest, ReadCountAboveTheSizeKeepsTheSize) {
    script({{"bi_fpga_spi_read", {{"return", 8}, {"out", "3344"}}}});
    SpiResult result;
    service->readSpiFpga(2, result.callback());
    EXPECT_EQ(8, result.ret);
    EXPECT_EQ((std::vector<uint8_t>{0x33, 0x44}), result.data);
}

TEST_F(SpiFpgaTest, ReadFailureKeepsTheWholeBuffer) {
    script({{"bi_fpga_spi_read", {{"return", -110}, {"out", "99"}}}});
    SpiResult result;
    service->readSpiFpga(3, result.callback());
    EXPECT_EQ(-110, result.ret);
    EXPECT_EQ((std::vector<uint8_t>{0x99, 0, 0}), result.data);
}

TEST_F(SpiFpgaTest, ReadOfSizeZeroGivesAnEmptyVector) {
    script({{"bi_fpga_spi_read", {{"return", 0}}}});
    SpiResult result;
    result.data = {1};
    service->readSpiFpga(0, result.callback());
    EXPECT_EQ(1, result.calls);
    EXPECT_EQ(0, result.ret);
    EXPECT_TRUE(result.data.empty());
    EXPECT_EQ(json::array({nullptr, 0}), callsOf("bi_fpga_spi_read")[0]["args"]);
}

using SpiFpgaDeathTest = SpiFpgaTest;

TEST_F(SpiFpgaDeathTest, ReadOfSizeMinusOneEndsTheProcess) {
    EXPECT_DEATH(
            {
                vesk::host::logToStderr();  // the fatal line goes where the death test sees it
                service->readSpiFpga(-1, [](int32_t, const hidl_vec<uint8_t>&) {});
            },
            "hidl_vec can't hold more than 2\\^32 elements\\.");
}

}  // namespace
}  // namespace vesk::test
