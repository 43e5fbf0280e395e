// The seven channels end to end: opened through the service, with a program at the far end of
// the simulated board's pseudo-terminal.
#include <termios.h>

#include <chrono>
#include <map>

#include "SerialChannels.h"
#include "SerialPeer.h"

namespace vesk::test {
namespace {

const std::map<std::string, std::string> kLinks = {
        {"485", "/dev/ttyVESK485"},    {"485_2", "/dev/ttyVESK485_2"}, {"232", "/dev/ttyVESK232"},
        {"Lora", "/dev/ttyVESKLORA"},  {"HDMI", "/dev/ttyVESKHDMI"},   {"TTL", "/dev/ttyVESKTTL"},
        {"TTL_2", "/dev/ttyVESKTTL_2"}};

class SerialPeerTest : public ServiceTest, public ::testing::WithParamInterface<SerialChannelCase> {
  protected:
    const SerialChannelCase& channel() { return GetParam(); }
    std::string link() { return root / kLinks.at(channel().suffix); }

    int32_t open(int32_t baud, uint8_t data, uint8_t stop, int8_t parity) {
        return (*service.*channel().openPort)(baud, data, stop, parity);
    }
    int32_t close() { return (*service.*channel().closePort)(); }
    int32_t write(const hidl_vec<uint8_t>& data) { return (*service.*channel().writePort)(data); }
    SerialReadResult readBlocking(uint32_t size, uint32_t timeout) {
        SerialReadResult result;
        (*service.*channel().readBlocking)(size, timeout, result.callback());
        return result;
    }
    SerialReadResult readNonBlocking(uint32_t size) {
        SerialReadResult result;
        (*service.*channel().readNonBlocking)(size, result.callback());
        return result;
    }
    // Blocking reads until `count` bytes have come (or a read brings none).
    std::vector<uint8_t> gather(size_t count) {
        std::vector<uint8_t> bytes;
        while (bytes.size() < count) {
            SerialReadResult part = readBlocking(64, 5000);
            if (part.data.empty()) break;
            bytes.insert(bytes.end(), part.data.begin(), part.data.end());
        }
        return bytes;
    }
};

TEST_P(SerialPeerTest, OpenPublishesThePeerWithTheLineSettings) {
    EXPECT_EQ(0, open(115200, 8, 2, 1));
    EXPECT_EQ(0u, linkTarget(link()).rfind("/dev/pts/", 0)) << linkTarget(link());
    SerialPeer peer(link());
    ASSERT_TRUE(peer.isOpen());
    termios line = peer.line();
    EXPECT_EQ(speed_t(B115200), cfgetospeed(&line));
    EXPECT_EQ(speed_t(B115200), cfgetispeed(&line));
    EXPECT_EQ(tcflag_t(CSTOPB), line.c_cflag & CSTOPB);
    EXPECT_EQ(tcflag_t(PARODD), line.c_cflag & PARODD);  // odd
    EXPECT_EQ(0u, line.c_lflag & (ICANON | ECHO));
    auto board = callsOf(channel().board + "open");
    ASSERT_EQ(1u, board.size());
    EXPECT_EQ(0, board[0]["return"]);
}

TEST_P(SerialPeerTest, BytesFromThePeerAreReadAndWrittenBytesReachIt) {
    ASSERT_EQ(0, open(9600, 8, 1, 0));
    SerialPeer peer(link());
    ASSERT_TRUE(peer.send({'p', 'i', 'n', 'g', 0x00, 0xff}));
    EXPECT_EQ((std::vector<uint8_t>{'p', 'i', 'n', 'g', 0x00, 0xff}), gather(6));
    EXPECT_EQ(6, write({'p', 'o', 'n', 'g', '\r', '\n'}));
    EXPECT_EQ((std::vector<uint8_t>{'p', 'o', 'n', 'g', '\r', '\n'}), peer.receive(6));
}

TEST_P(SerialPeerTest, AReadOfFewerBytesThanAskedHasThemAll) {
    ASSERT_EQ(0, open(19200, 8, 1, 0));
    SerialPeer peer(link());
    ASSERT_TRUE(peer.send({'a'}));
    SerialReadResult result = readBlocking(10, 5000);
    EXPECT_EQ(1, result.calls);
    EXPECT_EQ(std::vector<uint8_t>{'a'}, result.data);
    EXPECT_EQ(1u, result.count);
}

TEST_P(SerialPeerTest, NonBlockingReadWithNothingGivesNothing) {
    ASSERT_EQ(0, open(9600, 8, 1, 0));
    SerialReadResult result = readNonBlocking(8);
    EXPECT_EQ(1, result.calls);
    EXPECT_TRUE(result.data.empty());
    EXPECT_EQ(0u, result.count);
}

TEST_P(SerialPeerTest, BlockingReadWithNothingReturnsAfterItsTimeOut) {
    ASSERT_EQ(0, open(9600, 8, 1, 0));
    SerialPeer peer(link());
    const auto start = std::chrono::steady_clock::now();
    SerialReadResult result = readBlocking(8, 300);
    // Loosely: it waited, at least half the time-out.
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(150));
    EXPECT_EQ(1, result.calls);
    EXPECT_TRUE(result.data.empty());
    EXPECT_EQ(0u, result.count);
}

TEST_P(SerialPeerTest, UnsupportedSettingsAreRefused) {
    EXPECT_EQ(-1, open(12345, 8, 1, 0));
    EXPECT_EQ(-1, open(0, 8, 1, 0));
    EXPECT_EQ(-1, open(9600, 9, 1, 0));
    EXPECT_EQ(-1, open(9600, 8, 0, 0));
    EXPECT_EQ(-1, open(9600, 8, 1, -1));
    EXPECT_EQ("", linkTarget(link()));
    EXPECT_EQ(4294967295u, readNonBlocking(4).count);
}

TEST_P(SerialPeerTest, CloseRemovesTheLinkAndTheClosedPortFails) {
    ASSERT_EQ(0, open(9600, 8, 1, 0));
    EXPECT_EQ(0, close());
    EXPECT_EQ("", linkTarget(link()));
    SerialReadResult blocking = readBlocking(4, 10);
    EXPECT_TRUE(blocking.data.empty());
    EXPECT_EQ(4294967295u, blocking.count);
    SerialReadResult nonBlocking = readNonBlocking(4);
    EXPECT_TRUE(nonBlocking.data.empty());
    EXPECT_EQ(4294967295u, nonBlocking.count);
    EXPECT_EQ(-1, write({1, 2}));
    EXPECT_EQ(-1, close());
}

INSTANTIATE_TEST_SUITE_P(AllChannels, SerialPeerTest, ::testing::ValuesIn(kSerialChannels),
                         [](const ::testing::TestParamInfo<SerialChannelCase>& info) {
                             return "Port" + info.param.suffix;
                         });

}  // namespace
}  // namespace vesk::test
