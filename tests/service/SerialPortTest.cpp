// What the seven serial channels have in common: open, close, write and both reads, each with
// its own line numbers and board functions.
#include "EachLevelTest.h"
#include "SerialChannels.h"

namespace vesk::test {
namespace {

class SerialPortTest : public EachLevelTest,
                       public ::testing::WithParamInterface<SerialChannelCase> {
  protected:
    const SerialChannelCase& channel() { return GetParam(); }
    std::string method(const char* kind) { return kind + channel().suffix; }
    std::string fn(const char* action) { return channel().board + action; }
    static std::string n(long long value) { return std::to_string(value); }

    int32_t open(int32_t baud, uint8_t data, uint8_t stop, int8_t parity) {
        return (*service.*channel().openPort)(baud, data, stop, parity);
    }
    int32_t close() { return (*service.*channel().closePort)(); }
    int32_t write(const hidl_vec<uint8_t>& data) { return (*service.*channel().writePort)(data); }
    void readBlocking(uint32_t size, uint32_t timeout, SerialReadResult& result) {
        (*service.*channel().readBlocking)(size, timeout, result.callback());
    }
    void readNonBlocking(uint32_t size, SerialReadResult& result) {
        (*service.*channel().readNonBlocking)(size, result.callback());
    }

    // The first lines of the two reads.
    LogLines blockingStart(uint32_t size, uint32_t timeout, uint32_t count) {
        return {debugLine(method("readBlockingSerialPort") + " line:" + n(channel().blocking) +
                          " data_size:" + n(size) + " timeout_ms:" + n(timeout) + "\n"),
                debugLine(method("readBlockingSerialPort") + " bytes_read = " + n(count) + "\n")};
    }
    LogLines nonBlockingStart(uint32_t size) {
        return {debugLine(method("readNonBlockingSerialPort") + " " + n(channel().nonBlocking) +
                          " data_size:" + n(size) + " timeout_ms:0\n")};
    }
    // The TTL channel's line for a count up to the size.
    vesk::host::LogLine ttlCountLine(int count) {
        return debugLine("bytes_read >= 0 " + method("readNonBlockingSerialPort") + " " +
                         n(channel().nonBlockingCount) + " bytes_read:" + n(count) + " \n");
    }
    // The TTL_2 channel's lines name the requested size and a time-out of 0.
    vesk::host::LogLine ttl2SizeLine(const char* start, int line, uint32_t size) {
        return debugLine(start + method("readNonBlockingSerialPort") + " " + n(line) +
                         " data_size:" + n(size) + " timeout_ms:0\n");
    }
};

TEST_P(SerialPortTest, OpenLogsItsSettingsAndResultAndPassesThemInOrder) {
    script({{fn("open"), {{"return", 0}}}});
    const std::string name = method("openSerialPort");
    expectLinesAtEachLevel([&] { EXPECT_EQ(0, open(115200, 8, 1, 2)); },
                           {debugLine(name + " " + n(channel().open) +
                                      " baudrate :115200 databits:8 ：stopbits:1  parity：2\n"),
                            debugLine(name + ": ret = 0\n")});
    auto board = callsOf(fn("open"));
    ASSERT_EQ(3u, board.size());
    EXPECT_EQ(json::array({115200, 8, 1, 2}), board[0]["args"]);
    EXPECT_EQ(calls().size(), board.size());
}

TEST_P(SerialPortTest, OpenWithParityMinusOneShowsAndPassesMinusOne) {
    script({{fn("open"), {{"return", -22}}}});
    const std::string name = method("openSerialPort");
    expectLinesAtEachLevel([&] { EXPECT_EQ(-22, open(9600, 7, 2, -1)); },
                           {debugLine(name + " " + n(channel().open) +
                                      " baudrate :9600 databits:7 ：stopbits:2  parity：-1\n"),
                            debugLine(name + ": ret = -22\n")});
    auto board = callsOf(fn("open"));
    ASSERT_EQ(3u, board.size());
    EXPECT_EQ(json::array({9600, 7, 2, -1}), board[0]["args"]);
}

TEST_P(SerialPortTest, OpenPassesTheWholeRangeOfEachSettingUnchanged) {
    script({{fn("open"), {{"return", 0}}}});
    setLevel("D");
    EXPECT_EQ(0, open(-5, 255, 0, -128));
    EXPECT_EQ(json::array({-5, 255, 0, -128}), callsOf(fn("open"))[0]["args"]);
    EXPECT_EQ(debugLine(method("openSerialPort") + " " + n(channel().open) +
                        " baudrate :-5 databits:255 ：stopbits:0  parity：-128\n"),
              capturedLog().at(0));
}

TEST_P(SerialPortTest, CloseLogsTheTraceAndTheResult) {
    script({{fn("close"), {{"return", -1}}}});
    const std::string name = method("closeSerialPort");
    expectLinesAtEachLevel(
            [&] { EXPECT_EQ(-1, close()); },
            {debugLine(name + " " + n(channel().close) + "\n"), debugLine(name + ": ret = -1\n")});
    auto board = callsOf(fn("close"));
    ASSERT_EQ(3u, board.size());
    EXPECT_EQ(json::array(), board[0]["args"]);
    EXPECT_EQ(calls().size(), board.size());
}

TEST_P(SerialPortTest, WritePassesBytesAndCountAndReturnsTheBoardValueWithoutAResultLine) {
    script({{fn("write"), {{"return", 3}}}});
    expectLinesAtEachLevel(
            [&] {
                EXPECT_EQ(3, write({0x41, 0, 0xff}));
            },
            {debugLine(method("writeSerialPort") + " " + n(channel().write) + " data.size = 3\n")});
    auto board = callsOf(fn("write"));
    ASSERT_EQ(3u, board.size());
    EXPECT_EQ(json::array({json::array({0x41, 0, 0xff}), 3}), board[0]["args"]);
    EXPECT_EQ(calls().size(), board.size());
}

TEST_P(SerialPortTest, WriteOfAnEmptyVectorPassesCountZeroAndReturnsTheBoardValue) {
    script({{fn("write"), {{"return", -9}}}});
    setLevel("D");
    EXPECT_EQ(-9, write(hidl_vec<uint8_t>()));
    auto board = callsOf(fn("write"));
    ASSERT_EQ(1u, board.size());
    EXPECT_EQ(json::array({json::array(), 0}), board[0]["args"]);
    EXPECT_EQ(LogLines{debugLine(method("writeSerialPort") + " " + n(channel().write) +
                                 " data.size = 0\n")},
              capturedLog());
}

TEST_P(SerialPortTest, BlockingReadOfExactlyTheSizeKeepsTheSize) {
    script({{fn("blocking_read"), {{"return", 4}, {"out", "31323334"}}}});
    expectLinesAtEachLevel(
            [&] {
                SerialReadResult result;
                readBlocking(4, 100, result);
                EXPECT_EQ(1, result.calls);
                EXPECT_EQ((std::vector<uint8_t>{'1', '2', '3', '4'}), result.data);
                EXPECT_EQ(4u, result.count);
            },
            blockingStart(4, 100, 4));
    auto board = callsOf(fn("blocking_read"));
    ASSERT_EQ(3u, board.size());
    EXPECT_EQ(json::array({nullptr, 4, 100}), board[0]["args"]);
    EXPECT_EQ(calls().size(), board.size());
}

TEST_P(SerialPortTest, BlockingReadOfFewerBytesShrinksToThem) {
    script({{fn("blocking_read"), {{"return", 2}, {"out", "0a0b0c"}}}});
    expectLinesAtEachLevel(
            [&] {
                SerialReadResult result;
                readBlocking(5, 0, result);
                EXPECT_EQ((std::vector<uint8_t>{0x0a, 0x0b}), result.data);
                EXPECT_EQ(2u, result.count);
            },
            blockingStart(5, 0, 2));
}

TEST_P(SerialPortTest, BlockingReadOfSizeZeroGivesAnEmptyVector) {
    script({{fn("blocking_read"), {{"return", 0}}}});
    SerialReadResult result;
    setLevel("D");
    readBlocking(0, 4294967295u, result);
    EXPECT_EQ(1, result.calls);
    EXPECT_TRUE(result.data.empty());
    EXPECT_EQ(0u, result.count);
    EXPECT_EQ(json::array({nullptr, 0, 4294967295u}), callsOf(fn("blocking_read"))[0]["args"]);
    // The time-out is printed signed.
    EXPECT_EQ((LogLines{debugLine(method("readBlockingSerialPort") +
                                  " line:" + n(channel().blocking) + " data_size:0 timeout_ms:-1\n"),
                        debugLine(method("readBlockingSerialPort") + " bytes_read = 0\n")}),
              capturedLog());
}

TEST_P(SerialPortTest, BlockingReadOfMoreBytesThanTheSizeKeepsTheSizeAndReportsTheCount) {
    script({{fn("blocking_read"), {{"return", 10}, {"out", "616263"}}}});
    expectLinesAtEachLevel(
            [&] {
                SerialReadResult result;
                readBlocking(3, 50, result);
                EXPECT_EQ((std::vector<uint8_t>{'a', 'b', 'c'}), result.data);
                EXPECT_EQ(10u, result.count);
            },
            blockingStart(3, 50, 10));
}

TEST_P(SerialPortTest, BlockingReadOfMinusOneGivesAnEmptyVectorAndTheCountUnsigned) {
    script({{fn("blocking_read"), {{"return", -1}, {"out", "616263"}}}});
    LogLines lines = blockingStart(3, 20, 4294967295u);
    lines.push_back(debugLine("bytes_read < 0 " + method("readBlockingSerialPort") + " " +
                              n(channel().blockingNegative) + " bytes_read:-1\n"));
    expectLinesAtEachLevel(
            [&] {
                SerialReadResult result;
                readBlocking(3, 20, result);
                EXPECT_EQ(1, result.calls);
                EXPECT_TRUE(result.data.empty());
                EXPECT_EQ(4294967295u, result.count);
            },
            lines);
}

TEST_P(SerialPortTest, NonBlockingReadOfExactlyTheSizeKeepsTheSize) {
    script({{fn("nonblocking_read"), {{"return", 3}, {"out", "78797a"}}}});
    LogLines lines = nonBlockingStart(3);
    if (channel().lines == NonBlockingLines::kCountLine) lines.push_back(ttlCountLine(3));
    expectLinesAtEachLevel(
            [&] {
                SerialReadResult result;
                readNonBlocking(3, result);
                EXPECT_EQ(1, result.calls);
                EXPECT_EQ((std::vector<uint8_t>{'x', 'y', 'z'}), result.data);
                EXPECT_EQ(3u, result.count);
            },
            lines);
    auto board = callsOf(fn("nonblocking_read"));
    ASSERT_EQ(3u, board.size());
    EXPECT_EQ(json::array({nullptr, 3}), board[0]["args"]);
    EXPECT_EQ(calls().size(), board.size());
}

TEST_P(SerialPortTest, NonBlockingReadOfFewerBytesShrinksToThem) {
    script({{fn("nonblocking_read"), {{"return", 1}, {"out", "fe01"}}}});
    LogLines lines = nonBlockingStart(4);
    if (channel().lines == NonBlockingLines::kCountLine) lines.push_back(ttlCountLine(1));
    if (channel().lines == NonBlockingLines::kSizeLine) {
        lines.push_back(ttl2SizeLine("bytes_read >= 0 ", channel().nonBlockingCount, 4));
    }
    expectLinesAtEachLevel(
            [&] {
                SerialReadResult result;
                readNonBlocking(4, result);
                EXPECT_EQ(std::vector<uint8_t>{0xfe}, result.data);
                EXPECT_EQ(1u, result.count);
            },
            lines);
}

TEST_P(SerialPortTest, NonBlockingReadOfSizeZeroGivesAnEmptyVector) {
    script({{fn("nonblocking_read"), {{"return", 0}}}});
    LogLines lines = nonBlockingStart(0);
    if (channel().lines == NonBlockingLines::kCountLine) lines.push_back(ttlCountLine(0));
    expectLinesAtEachLevel(
            [&] {
                SerialReadResult result;
                readNonBlocking(0, result);
                EXPECT_EQ(1, result.calls);
                EXPECT_TRUE(result.data.empty());
                EXPECT_EQ(0u, result.count);
            },
            lines);
    EXPECT_EQ(json::array({nullptr, 0}), callsOf(fn("nonblocking_read"))[0]["args"]);
}

TEST_P(SerialPortTest, NonBlockingReadOfMoreBytesThanTheSizeKeepsTheSizeAndReportsTheCount) {
    script({{fn("nonblocking_read"), {{"return", 7}, {"out", "0102"}}}});
    expectLinesAtEachLevel(
            [&] {
                SerialReadResult result;
                readNonBlocking(2, result);
                EXPECT_EQ((std::vector<uint8_t>{1, 2}), result.data);
                EXPECT_EQ(7u, result.count);
            },
            nonBlockingStart(2));
}

TEST_P(SerialPortTest, NonBlockingReadOfMinusOneGivesAnEmptyVectorAndTheCountUnsigned) {
    script({{fn("nonblocking_read"), {{"return", -1}, {"out", "0102"}}}});
    LogLines lines = nonBlockingStart(6);
    if (channel().lines == NonBlockingLines::kSizeLine) {
        lines.push_back(ttl2SizeLine("bytes_read < 0 ", channel().nonBlockingNegative, 6));
    } else {
        lines.push_back(debugLine("bytes_read < 0 " + method("readNonBlockingSerialPort") + " " +
                                  n(channel().nonBlockingNegative) + " bytes_read:-1\n"));
    }
    expectLinesAtEachLevel(
            [&] {
                SerialReadResult result;
                readNonBlocking(6, result);
                EXPECT_EQ(1, result.calls);
                EXPECT_TRUE(result.data.empty());
                EXPECT_EQ(4294967295u, result.count);
            },
            lines);
}

INSTANTIATE_TEST_SUITE_P(AllChannels, SerialPortTest, ::testing::ValuesIn(kSerialChannels),
                         [](const ::testing::TestParamInfo<SerialChannelCase>& info) {
                             return "Port" + info.param.suffix;
                         });

}  // namespace
}  // namespace vesk::test
