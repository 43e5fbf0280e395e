// The simulated serial channels as pseudo-terminals: the peer published below the device root,
// the line settings seen from the peer, bytes both ways, time-outs, closing, threads.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "SerialPeer.h"
#include "TestRoot.h"
#include "vesksdk.h"

namespace vesk::test {
namespace {

struct Channel {
    const char* name;
    const char* link;
    int (*open)(int, unsigned char, unsigned char, signed char);
    int (*close)();
    int (*blockingRead)(unsigned char*, unsigned int, unsigned int);
    int (*nonblockingRead)(unsigned char*, unsigned int);
    int (*write)(const unsigned char*, unsigned int);
};

void PrintTo(const Channel& channel, std::ostream* os) {
    *os << channel.name;
}

#define CHANNEL(prefix, link)                                                              \
    Channel {                                                                              \
#prefix, link, bi_serial_##prefix##_open, bi_serial_##prefix##_close,              \
                bi_serial_##prefix##_blocking_read, bi_serial_##prefix##_nonblocking_read, \
                bi_serial_##prefix##_write                                                 \
    }
const Channel kChannels[] = {
        CHANNEL(485, "/dev/ttyVESK485"),    CHANNEL(485_2, "/dev/ttyVESK485_2"),
        CHANNEL(232, "/dev/ttyVESK232"),    CHANNEL(lora, "/dev/ttyVESKLORA"),
        CHANNEL(hdmi, "/dev/ttyVESKHDMI"),  CHANNEL(ttl, "/dev/ttyVESKTTL"),
        CHANNEL(ttl_2, "/dev/ttyVESKTTL_2")};
#undef CHANNEL

// Whether a terminal takes `speed`: set on a pseudo-terminal of the test's own, read back.
bool terminalCarries(speed_t speed) {
    int master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0) return false;
    int peer = open(ptsname(master), O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios line{};
    bool carried = peer >= 0 && tcgetattr(peer, &line) == 0 && cfsetospeed(&line, speed) == 0 &&
                   cfsetispeed(&line, speed) == 0 && tcsetattr(peer, TCSANOW, &line) == 0 &&
                   tcgetattr(peer, &line) == 0 && cfgetospeed(&line) == speed;
    if (peer >= 0) close(peer);
    close(master);
    return carried;
}

class SerialPtyTest : public RootTest, public ::testing::WithParamInterface<Channel> {
  protected:
    const Channel& port() { return GetParam(); }
    std::string link() { return root / port().link; }
    int readBlocking(std::vector<uint8_t>& into, unsigned capacity, unsigned timeoutMs) {
        into.assign(capacity, 0);
        int count = port().blockingRead(into.data(), capacity, timeoutMs);
        into.resize(count > 0 ? static_cast<size_t>(count) : 0);
        return count;
    }
};

TEST_P(SerialPtyTest, OpenPublishesThePeerAsALinkToAPseudoTerminal) {
    ASSERT_EQ(0, port().open(115200, 8, 1, 0));
    const std::string target = linkTarget(link());
    EXPECT_EQ(0u, target.rfind("/dev/pts/", 0)) << target;
    SerialPeer peer(link());
    ASSERT_TRUE(peer.isOpen());
    EXPECT_TRUE(isatty(peer.fd()));
    EXPECT_EQ(0, port().close());
}

// Linux keeps a pseudo-terminal at 8 data bits with parity generation off whatever is asked
// (its driver forces CS8 and clears PARENB), so the peer sees the speed, the stop bits, the
// odd/even choice and raw mode; SerialSettingsTest checks the data bits and parity flags asked.
TEST_P(SerialPtyTest, EightNoneOneAt115200IsRawOnThePeer) {
    ASSERT_EQ(0, port().open(115200, 8, 1, 0));
    SerialPeer peer(link());
    ASSERT_TRUE(peer.isOpen());
    termios line = peer.line();
    EXPECT_EQ(speed_t(B115200), cfgetospeed(&line));
    EXPECT_EQ(speed_t(B115200), cfgetispeed(&line));
    EXPECT_EQ(tcflag_t(CS8), line.c_cflag & CSIZE);
    EXPECT_EQ(0u, line.c_cflag & (CSTOPB | PARENB | PARODD));
    EXPECT_EQ(0u, line.c_lflag & (ICANON | ECHO | ISIG | IEXTEN));
    EXPECT_EQ(0u, line.c_oflag & OPOST);
    EXPECT_EQ(0u, line.c_iflag & (ICRNL | IXON | ISTRIP));
}

TEST_P(SerialPtyTest, TwoStopBitsAndEvenParityAt9600OnThePeer) {
    ASSERT_EQ(0, port().open(9600, 7, 2, 2));
    SerialPeer peer(link());
    termios line = peer.line();
    EXPECT_EQ(speed_t(B9600), cfgetospeed(&line));
    EXPECT_EQ(tcflag_t(CSTOPB), line.c_cflag & CSTOPB);
    EXPECT_EQ(0u, line.c_cflag & PARODD);
}

TEST_P(SerialPtyTest, OneStopBitAndOddParityAt19200OnThePeer) {
    ASSERT_EQ(0, port().open(19200, 5, 1, 1));
    SerialPeer peer(link());
    termios line = peer.line();
    EXPECT_EQ(speed_t(B19200), cfgetospeed(&line));
    EXPECT_EQ(0u, line.c_cflag & CSTOPB);
    EXPECT_EQ(tcflag_t(PARODD), line.c_cflag & PARODD);
}

TEST_P(SerialPtyTest, ParityLettersAndTheRangeOfSpeeds) {
    ASSERT_EQ(0, port().open(57600, 6, 1, 'O'));
    {
        SerialPeer peer(link());
        termios line = peer.line();
        EXPECT_EQ(speed_t(B57600), cfgetospeed(&line));
        EXPECT_EQ(tcflag_t(PARODD), line.c_cflag & PARODD);
    }
    // The fastest speed, where the terminal layer carries it (found out on a terminal of the
    // test's own); where it does not (qemu-user up to 7.2 drops speeds above 460800 on the way
    // to the kernel), the board refuses the line rather than open one at another speed.
    if (terminalCarries(B4000000)) {
        ASSERT_EQ(0, port().open(4000000, 8, 2, 'e'));
        SerialPeer peer(link());
        termios line = peer.line();
        EXPECT_EQ(speed_t(B4000000), cfgetospeed(&line));
        EXPECT_EQ(0u, line.c_cflag & PARODD);
    } else {
        EXPECT_EQ(-1, port().open(4000000, 8, 2, 'e'));
        EXPECT_EQ("", linkTarget(link()));
    }
    ASSERT_EQ(0, port().open(50, 8, 1, 'N'));
    SerialPeer peer(link());
    termios line = peer.line();
    EXPECT_EQ(speed_t(B50), cfgetospeed(&line));
    EXPECT_EQ(0u, line.c_cflag & PARODD);
}

TEST_P(SerialPtyTest, UnsupportedSettingsAreRefusedAndOpenNothing) {
    struct Settings {
        int baud;
        unsigned char data, stop;
        signed char parity;
    };
    for (const Settings& s :
         {Settings{0, 8, 1, 0}, Settings{-9600, 8, 1, 0}, Settings{12345, 8, 1, 0},
          Settings{115201, 8, 1, 0}, Settings{9600, 4, 1, 0}, Settings{9600, 9, 1, 0},
          Settings{9600, 0, 1, 0}, Settings{9600, 8, 0, 0}, Settings{9600, 8, 3, 0},
          Settings{9600, 8, 1, -1}, Settings{9600, 8, 1, 3}, Settings{9600, 8, 1, 'X'}}) {
        EXPECT_EQ(-1, port().open(s.baud, s.data, s.stop, s.parity))
                << s.baud << " " << int(s.data) << " " << int(s.stop) << " " << int(s.parity);
        EXPECT_EQ("", linkTarget(link()));
        unsigned char byte = 0;
        EXPECT_EQ(-1, port().nonblockingRead(&byte, 1));
    }
    EXPECT_EQ(-1, port().close());
}

TEST_P(SerialPtyTest, WhatThePeerWritesIsRead) {
    ASSERT_EQ(0, port().open(115200, 8, 1, 0));
    SerialPeer peer(link());
    ASSERT_TRUE(peer.send({'h', 'e', 'l', 'l', 'o', 0x00, 0xff, '\r', '\n'}));
    std::vector<uint8_t> got;
    std::vector<uint8_t> part;
    while (got.size() < 9 && readBlocking(part, 16, 5000) > 0) {
        got.insert(got.end(), part.begin(), part.end());
    }
    EXPECT_EQ((std::vector<uint8_t>{'h', 'e', 'l', 'l', 'o', 0x00, 0xff, '\r', '\n'}), got);
    unsigned char byte = 0;
    EXPECT_EQ(0, port().nonblockingRead(&byte, 1));
}

TEST_P(SerialPtyTest, NonBlockingReadTakesWhatIsThereUpToTheCapacity) {
    ASSERT_EQ(0, port().open(9600, 8, 1, 0));
    SerialPeer peer(link());
    unsigned char buffer[8] = {};
    EXPECT_EQ(0, port().nonblockingRead(buffer, 8));
    ASSERT_TRUE(peer.send({1, 2, 3}));
    // The bytes are on their way through the terminal: wait until they have arrived.
    std::vector<uint8_t> first;
    ASSERT_EQ(1, readBlocking(first, 1, 5000));
    EXPECT_EQ(std::vector<uint8_t>{1}, first);
    std::vector<uint8_t> rest;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (rest.size() < 2 && std::chrono::steady_clock::now() < deadline) {
        int count = port().nonblockingRead(buffer, 8);
        ASSERT_GE(count, 0);
        rest.insert(rest.end(), buffer, buffer + count);
    }
    EXPECT_EQ((std::vector<uint8_t>{2, 3}), rest);
}

TEST_P(SerialPtyTest, WhatIsWrittenReachesThePeer) {
    ASSERT_EQ(0, port().open(115200, 8, 1, 0));
    SerialPeer peer(link());
    const unsigned char data[] = {'A', 0, 0xff, '\n', '\r', 0x03};
    EXPECT_EQ(6, port().write(data, 6));
    EXPECT_EQ(std::vector<uint8_t>(data, data + 6), peer.receive(6));
}

TEST_P(SerialPtyTest, WrittenBytesWaitForAPeerThatConnectsLater) {
    ASSERT_EQ(0, port().open(115200, 8, 1, 0));
    const unsigned char data[] = {'e', 'a', 'r', 'l', 'y'};
    EXPECT_EQ(5, port().write(data, 5));
    SerialPeer peer(link());
    EXPECT_EQ(std::vector<uint8_t>(data, data + 5), peer.receive(5));
}

TEST_P(SerialPtyTest, APeerThatLeavesDoesNotEndTheChannel) {
    ASSERT_EQ(0, port().open(115200, 8, 1, 0));
    { SerialPeer first(link()); }
    unsigned char byte = 0;
    EXPECT_EQ(0, port().nonblockingRead(&byte, 1));
    SerialPeer second(link());
    ASSERT_TRUE(second.send({'x'}));
    std::vector<uint8_t> got;
    EXPECT_EQ(1, readBlocking(got, 4, 5000));
    EXPECT_EQ(std::vector<uint8_t>{'x'}, got);
}

TEST_P(SerialPtyTest, BlockingReadWithNothingReturnsZeroAfterItsTimeOut) {
    ASSERT_EQ(0, port().open(9600, 8, 1, 0));
    SerialPeer peer(link());
    std::vector<uint8_t> got;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(0, readBlocking(got, 4, 200));
    // Loosely: it waited, at least half the time-out.
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(100));
}

TEST_P(SerialPtyTest, ReadsOfZeroBytesAndEmptyWrites) {
    ASSERT_EQ(0, port().open(9600, 8, 1, 0));
    SerialPeer peer(link());
    EXPECT_EQ(0, port().nonblockingRead(nullptr, 0));
    EXPECT_EQ(0, port().blockingRead(nullptr, 0, 60000));
    EXPECT_EQ(0, port().write(nullptr, 0));
    EXPECT_EQ(-1, port().nonblockingRead(nullptr, 1));
    EXPECT_EQ(-1, port().write(nullptr, 1));
}

TEST_P(SerialPtyTest, CloseRemovesTheLinkAndLaterCallsFail) {
    ASSERT_EQ(0, port().open(9600, 8, 1, 0));
    ASSERT_NE("", linkTarget(link()));
    EXPECT_EQ(0, port().close());
    EXPECT_EQ("", linkTarget(link()));
    unsigned char buffer[4];
    const unsigned char data[] = {1};
    EXPECT_EQ(-1, port().write(data, 1));
    EXPECT_EQ(-1, port().nonblockingRead(buffer, 4));
    EXPECT_EQ(-1, port().blockingRead(buffer, 4, 10));
    EXPECT_EQ(-1, port().close());
}

TEST_P(SerialPtyTest, CallsOnAChannelNeverOpenedFail) {
    unsigned char buffer[4];
    const unsigned char data[] = {1};
    EXPECT_EQ(-1, port().write(data, 1));
    EXPECT_EQ(-1, port().nonblockingRead(buffer, 4));
    EXPECT_EQ(-1, port().blockingRead(buffer, 4, 10));
    EXPECT_EQ(-1, port().close());
}

TEST_P(SerialPtyTest, ReopeningMakesANewTerminalWithTheNewSettings) {
    ASSERT_EQ(0, port().open(9600, 8, 1, 0));
    SerialPeer oldPeer(link());
    ASSERT_EQ(0, port().open(38400, 7, 2, 2));
    const std::string after = linkTarget(link());
    EXPECT_EQ(0u, after.rfind("/dev/pts/", 0)) << after;
    SerialPeer peer(link());
    termios line = peer.line();
    EXPECT_EQ(speed_t(B38400), cfgetospeed(&line));
    EXPECT_EQ(tcflag_t(CSTOPB), line.c_cflag & CSTOPB);
    // The old terminal was hung up: its peer reads end of file or an error, never data.
    unsigned char byte;
    EXPECT_LE(::read(oldPeer.fd(), &byte, 1), 0);
    ASSERT_TRUE(peer.send({'n'}));
    std::vector<uint8_t> got;
    EXPECT_EQ(1, readBlocking(got, 1, 5000));
}

TEST_P(SerialPtyTest, RefusedReopenKeepsTheOpenChannel) {
    ASSERT_EQ(0, port().open(9600, 8, 1, 0));
    const std::string target = linkTarget(link());
    EXPECT_EQ(-1, port().open(9600, 8, 1, 7));
    EXPECT_EQ(target, linkTarget(link()));
    SerialPeer peer(link());
    termios line = peer.line();
    EXPECT_EQ(speed_t(B9600), cfgetospeed(&line));
    EXPECT_EQ(0, port().close());
}

TEST_P(SerialPtyTest, CloseEndsABlockedRead) {
    ASSERT_EQ(0, port().open(9600, 8, 1, 0));
    std::atomic<int> result{1};
    std::thread reader([&] {
        unsigned char buffer[4];
        result = port().blockingRead(buffer, 4, 600000);
    });
    // Whether the read has begun waiting or not, close makes it fail.
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(0, port().close());
    reader.join();
    EXPECT_EQ(-1, result.load());
}

// A blocking read waiting on one thread leaves writes free on another: the peer sends back
// what it receives, and the waiting read gets it.
TEST_P(SerialPtyTest, WriteIsNotHeldUpByABlockedRead) {
    ASSERT_EQ(0, port().open(115200, 8, 1, 0));
    SerialPeer peer(link());
    std::vector<uint8_t> got;
    std::thread reader([&] {
        std::vector<uint8_t> part;
        while (got.size() < 3 && readBlocking(part, 8, 600000) > 0) {
            got.insert(got.end(), part.begin(), part.end());
        }
    });
    std::thread echo([&] {
        std::vector<uint8_t> received = peer.receive(3, 600000);
        peer.send(received);
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    const unsigned char data[] = {'p', 'i', 'n'};
    EXPECT_EQ(3, port().write(data, 3));
    echo.join();
    reader.join();
    EXPECT_EQ((std::vector<uint8_t>{'p', 'i', 'n'}), got);
}

TEST_P(SerialPtyTest, ManyThreadsReadAndWriteAtOnce) {
    ASSERT_EQ(0, port().open(115200, 8, 1, 0));
    SerialPeer peer(link());
    constexpr int kWriters = 4, kEach = 200;
    std::atomic<int> read{0};
    std::atomic<bool> done{false};
    std::vector<std::thread> threads;
    for (int i = 0; i < kWriters; ++i) {
        threads.emplace_back([&] {
            const unsigned char byte = 'w';
            for (int n = 0; n < kEach; ++n) EXPECT_EQ(1, port().write(&byte, 1));
        });
    }
    std::thread reader([&] {
        unsigned char buffer[64];
        while (!done) {
            int count = port().blockingRead(buffer, sizeof(buffer), 10);
            EXPECT_GE(count, 0);
            read += count > 0 ? count : 0;
        }
    });
    std::vector<uint8_t> atPeer = peer.receive(kWriters * kEach, 60000);
    EXPECT_EQ(size_t(kWriters * kEach), atPeer.size());
    // Send them back in pieces while the writers may still be busy.
    for (size_t at = 0; at < atPeer.size(); at += 100) {
        peer.send(std::vector<uint8_t>(atPeer.begin() + at,
                                       atPeer.begin() + std::min(at + 100, atPeer.size())));
    }
    for (std::thread& thread : threads) thread.join();
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (read < kWriters * kEach && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    done = true;
    reader.join();
    EXPECT_EQ(kWriters * kEach, read.load());
    EXPECT_EQ(0, port().close());
}

INSTANTIATE_TEST_SUITE_P(AllChannels, SerialPtyTest, ::testing::ValuesIn(kChannels),
                         [](const ::testing::TestParamInfo<Channel>& info) {
                             return "Port" + std::string(info.param.name);
                         });

TEST(SerialChannelsTest, ChannelsAreSeparate) {
    TempRoot root;
    ASSERT_EQ(0, bi_serial_485_open(9600, 8, 1, 0));
    ASSERT_EQ(0, bi_serial_232_open(9600, 8, 1, 0));
    EXPECT_NE(linkTarget(root / "/dev/ttyVESK485"), linkTarget(root / "/dev/ttyVESK232"));
    SerialPeer peer485(root / "/dev/ttyVESK485");
    SerialPeer peer232(root / "/dev/ttyVESK232");
    const unsigned char data[] = {7};
    EXPECT_EQ(1, bi_serial_485_write(data, 1));
    EXPECT_EQ(std::vector<uint8_t>{7}, peer485.receive(1));
    EXPECT_EQ(std::vector<uint8_t>{}, peer232.receive(1, 100));
    ASSERT_TRUE(peer232.send({9}));
    unsigned char buffer[1] = {};
    EXPECT_EQ(1, bi_serial_232_blocking_read(buffer, 1, 5000));
    EXPECT_EQ(9, buffer[0]);
    EXPECT_EQ(0, bi_serial_485_nonblocking_read(buffer, 1));
}

}  // namespace
}  // namespace vesk::test
