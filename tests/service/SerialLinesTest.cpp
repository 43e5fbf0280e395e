// The serial channels' lines written out in full, and the two TTL channels' own non-blocking
// reads, case by case.
#include "EachLevelTest.h"
#include "SerialChannels.h"

namespace vesk::test {
namespace {

using SerialLinesTest = EachLevelTest;

TEST_F(SerialLinesTest, OpenLineCarriesTwoFullWidthColonsAsUtf8) {
    script({{"bi_serial_485_open", {{"return", 0}}}});
    setLevel("D");
    EXPECT_EQ(0, int32_t(service->openSerialPort485(115200, 8, 1, -1)));
    const std::string expected = traced("openSerialPort485") +
                                 " baudrate :115200 databits:8 \xEF\xBC\x9A"
                                 "stopbits:1  parity\xEF\xBC\x9A-1\n";
    ASSERT_EQ(2u, capturedLog().size());
    EXPECT_EQ(debugLine(expected), capturedLog()[0]);
    EXPECT_EQ(debugLine("openSerialPort485: ret = 0\n"), capturedLog()[1]);
}

TEST_F(SerialLinesTest, SecondRs485ChannelWritesItsOwnNumbers) {
    script({{"bi_serial_485_2_open", {{"return", 0}}},
            {"bi_serial_485_2_close", {{"return", 0}}},
            {"bi_serial_485_2_write", {{"return", 1}}},
            {"bi_serial_485_2_blocking_read", {{"return", -1}}},
            {"bi_serial_485_2_nonblocking_read", {{"return", -1}}}});
    setLevel("D");
    service->openSerialPort485_2(19200, 8, 1, 0);
    service->closeSerialPort485_2();
    service->writeSerialPort485_2({1});
    service->readBlockingSerialPort485_2(2, 30, [](const hidl_vec<uint8_t>&, uint32_t) {});
    service->readNonBlockingSerialPort485_2(2, [](const hidl_vec<uint8_t>&, uint32_t) {});
    EXPECT_EQ(
            (LogLines{
                    debugLine(traced("openSerialPort485_2") +
                              " baudrate :19200 databits:8 ：stopbits:1  "
                              "parity：0\n"),
                    debugLine("openSerialPort485_2: ret = 0\n"),
                    debugLine(traced("closeSerialPort485_2") + "\n"),
                    debugLine("closeSerialPort485_2: ret = 0\n"),
                    debugLine(traced("writeSerialPort485_2") + " data.size = 1\n"),
                    debugLine("readBlockingSerialPort485_2 line:307 data_size:2 timeout_ms:30\n"),
                    debugLine("readBlockingSerialPort485_2 bytes_read = 4294967295\n"),
                    debugLine("bytes_read < 0 readBlockingSerialPort485_2 321 bytes_read:-1\n"),
                    debugLine(traced("readNonBlockingSerialPort485_2") +
                              " data_size:2 timeout_ms:0\n"),
                    debugLine("bytes_read < 0 readNonBlockingSerialPort485_2 342 bytes_read:-1\n"),
            }),
            capturedLog());
    std::vector<std::string> functions;
    for (const auto& call : calls()) functions.push_back(call["function"]);
    EXPECT_EQ((std::vector<std::string>{"bi_serial_485_2_open", "bi_serial_485_2_close",
                                        "bi_serial_485_2_write", "bi_serial_485_2_blocking_read",
                                        "bi_serial_485_2_nonblocking_read"}),
              functions);
}

TEST_F(SerialLinesTest, CommonNonBlockingReadWritesNoLineForAShortCount) {
    script({{"bi_serial_hdmi_nonblocking_read", {{"return", 2}, {"out", "0102"}}}});
    setLevel("D");
    SerialReadResult result;
    service->readNonBlockingSerialPortHDMI(8, result.callback());
    EXPECT_EQ((std::vector<uint8_t>{1, 2}), result.data);
    EXPECT_EQ(LogLines{debugLine(traced("readNonBlockingSerialPortHDMI") +
                                 " data_size:8 timeout_ms:0\n")},
              capturedLog());
}

TEST_F(SerialLinesTest, TtlReadOfExactlyTheSizeWritesItsCountLine) {
    script({{"bi_serial_ttl_nonblocking_read", {{"return", 4}, {"out", "01020304"}}}});
    setLevel("D");
    SerialReadResult result;
    service->readNonBlockingSerialPortTTL(4, result.callback());
    EXPECT_EQ((std::vector<uint8_t>{1, 2, 3, 4}), result.data);
    EXPECT_EQ(4u, result.count);
    EXPECT_EQ(
            (LogLines{
                    debugLine(traced("readNonBlockingSerialPortTTL") +
                              " data_size:4 timeout_ms:0\n"),
                    debugLine("bytes_read >= 0 readNonBlockingSerialPortTTL 594 bytes_read:4 \n")}),
            capturedLog());
}

TEST_F(SerialLinesTest, TtlShortReadWritesItsCountLine) {
    script({{"bi_serial_ttl_nonblocking_read", {{"return", 2}, {"out", "0102"}}}});
    setLevel("D");
    SerialReadResult result;
    service->readNonBlockingSerialPortTTL(9, result.callback());
    EXPECT_EQ((std::vector<uint8_t>{1, 2}), result.data);
    EXPECT_EQ(
            (LogLines{
                    debugLine(traced("readNonBlockingSerialPortTTL") +
                              " data_size:9 timeout_ms:0\n"),
                    debugLine("bytes_read >= 0 readNonBlockingSerialPortTTL 594 bytes_read:2 \n")}),
            capturedLog());
}

TEST_F(SerialLinesTest, TtlNegativeReadNamesTheCount) {
    script({{"bi_serial_ttl_nonblocking_read", {{"return", -11}}}});
    setLevel("D");
    SerialReadResult result;
    service->readNonBlockingSerialPortTTL(9, result.callback());
    EXPECT_TRUE(result.data.empty());
    EXPECT_EQ(4294967285u, result.count);
    EXPECT_EQ(
            (LogLines{
                    debugLine(traced("readNonBlockingSerialPortTTL") +
                              " data_size:9 timeout_ms:0\n"),
                    debugLine("bytes_read < 0 readNonBlockingSerialPortTTL 599 bytes_read:-11\n")}),
            capturedLog());
}

TEST_F(SerialLinesTest, TtlReadAboveTheSizeWritesNoCountLine) {
    script({{"bi_serial_ttl_nonblocking_read", {{"return", 5}, {"out", "0102"}}}});
    setLevel("D");
    SerialReadResult result;
    service->readNonBlockingSerialPortTTL(2, result.callback());
    EXPECT_EQ((std::vector<uint8_t>{1, 2}), result.data);
    EXPECT_EQ(5u, result.count);
    EXPECT_EQ(LogLines{debugLine(traced("readNonBlockingSerialPortTTL") +
                                 " data_size:2 timeout_ms:0\n")},
              capturedLog());
}

TEST_F(SerialLinesTest, Ttl2ShortReadNamesTheRequestedSize) {
    script({{"bi_serial_ttl_2_nonblocking_read", {{"return", 3}, {"out", "0a0b0c"}}}});
    setLevel("D");
    SerialReadResult result;
    service->readNonBlockingSerialPortTTL_2(16, result.callback());
    EXPECT_EQ((std::vector<uint8_t>{10, 11, 12}), result.data);
    EXPECT_EQ(3u, result.count);
    EXPECT_EQ((LogLines{debugLine(traced("readNonBlockingSerialPortTTL_2") +
                                  " data_size:16 timeout_ms:0\n"),
                        debugLine("bytes_read >= 0 readNonBlockingSerialPortTTL_2 658 data_size:16 "
                                  "timeout_ms:0\n")}),
              capturedLog());
}

TEST_F(SerialLinesTest, Ttl2NegativeReadNamesTheRequestedSizeNotTheCount) {
    script({{"bi_serial_ttl_2_nonblocking_read", {{"return", -5}}}});
    setLevel("D");
    SerialReadResult result;
    service->readNonBlockingSerialPortTTL_2(16, result.callback());
    EXPECT_TRUE(result.data.empty());
    EXPECT_EQ(4294967291u, result.count);
    EXPECT_EQ((LogLines{debugLine(traced("readNonBlockingSerialPortTTL_2") +
                                  " data_size:16 timeout_ms:0\n"),
                        debugLine("bytes_read < 0 readNonBlockingSerialPortTTL_2 663 data_size:16 "
                                  "timeout_ms:0\n")}),
              capturedLog());
}

TEST_F(SerialLinesTest, Ttl2ReadOfExactlyTheSizeWritesNoSecondLine) {
    script({{"bi_serial_ttl_2_nonblocking_read", {{"return", 2}, {"out", "0102"}}}});
    setLevel("D");
    SerialReadResult result;
    service->readNonBlockingSerialPortTTL_2(2, result.callback());
    EXPECT_EQ((std::vector<uint8_t>{1, 2}), result.data);
    EXPECT_EQ(LogLines{debugLine(traced("readNonBlockingSerialPortTTL_2") +
                                 " data_size:2 timeout_ms:0\n")},
              capturedLog());
}

TEST_F(SerialLinesTest, Ttl2ReadAboveTheSizeWritesNoSecondLine) {
    script({{"bi_serial_ttl_2_nonblocking_read", {{"return", 3}, {"out", "0102"}}}});
    setLevel("D");
    SerialReadResult result;
    service->readNonBlockingSerialPortTTL_2(2, result.callback());
    EXPECT_EQ((std::vector<uint8_t>{1, 2}), result.data);
    EXPECT_EQ(3u, result.count);
    EXPECT_EQ(LogLines{debugLine(traced("readNonBlockingSerialPortTTL_2") +
                                 " data_size:2 timeout_ms:0\n")},
              capturedLog());
}

TEST_F(SerialLinesTest, TtlBlockingReadIsTheCommonOne) {
    script({{"bi_serial_ttl_blocking_read", {{"return", 1}, {"out", "41"}}},
            {"bi_serial_ttl_2_blocking_read", {{"return", -3}}}});
    setLevel("D");
    SerialReadResult first, second;
    service->readBlockingSerialPortTTL(2, 10, first.callback());
    service->readBlockingSerialPortTTL_2(2, 10, second.callback());
    EXPECT_EQ(std::vector<uint8_t>{0x41}, first.data);
    EXPECT_TRUE(second.data.empty());
    EXPECT_EQ(
            (LogLines{debugLine("readBlockingSerialPortTTL line:564 data_size:2 timeout_ms:10\n"),
                      debugLine("readBlockingSerialPortTTL bytes_read = 1\n"),
                      debugLine("readBlockingSerialPortTTL_2 line:627 data_size:2 timeout_ms:10\n"),
                      debugLine("readBlockingSerialPortTTL_2 bytes_read = 4294967293\n"),
                      debugLine("bytes_read < 0 readBlockingSerialPortTTL_2 641 bytes_read:-3\n")}),
            capturedLog());
}

TEST_F(SerialLinesTest, ALevelOfLowerCaseDWritesNoSerialLine) {
    script({{"bi_serial_232_open", {{"return", 0}}},
            {"bi_serial_232_nonblocking_read", {{"return", -1}}}});
    setLevel("d");
    EXPECT_EQ(0, int32_t(service->openSerialPort232(9600, 8, 1, 0)));
    service->readNonBlockingSerialPort232(4, [](const hidl_vec<uint8_t>&, uint32_t) {});
    EXPECT_TRUE(capturedLog().empty());
}

}  // namespace
}  // namespace vesk::test
