// The line settings a channel accepts, as the termios flags they become.
#include <gtest/gtest.h>
#include <termios.h>

#include <cstring>

#include "SerialSettings.h"

namespace vesk::sim {
namespace {

termios settingsOf(int baud, unsigned char data, unsigned char stop, signed char parity) {
    termios line{};
    EXPECT_TRUE(applyLineSettings(baud, data, stop, parity, line))
            << baud << " " << int(data) << " " << int(stop) << " " << int(parity);
    return line;
}

TEST(SerialSettingsTest, StandardRatesBecomeTheirSpeeds) {
    const struct {
        int baud;
        speed_t speed;
    } rates[] = {{50, B50},           {300, B300},         {1200, B1200},      {2400, B2400},
                 {9600, B9600},       {19200, B19200},     {38400, B38400},    {57600, B57600},
                 {115200, B115200},   {230400, B230400},   {460800, B460800},  {921600, B921600},
                 {1500000, B1500000}, {3000000, B3000000}, {4000000, B4000000}};
    for (const auto& rate : rates) {
        termios line = settingsOf(rate.baud, 8, 1, 0);
        EXPECT_EQ(rate.speed, cfgetospeed(&line)) << rate.baud;
        EXPECT_EQ(rate.speed, cfgetispeed(&line)) << rate.baud;
    }
}

TEST(SerialSettingsTest, DataBitsFiveToEight) {
    EXPECT_EQ(tcflag_t(CS5), settingsOf(9600, 5, 1, 0).c_cflag & CSIZE);
    EXPECT_EQ(tcflag_t(CS6), settingsOf(9600, 6, 1, 0).c_cflag & CSIZE);
    EXPECT_EQ(tcflag_t(CS7), settingsOf(9600, 7, 1, 0).c_cflag & CSIZE);
    EXPECT_EQ(tcflag_t(CS8), settingsOf(9600, 8, 1, 0).c_cflag & CSIZE);
}

TEST(SerialSettingsTest, StopBits) {
    EXPECT_EQ(0u, settingsOf(9600, 8, 1, 0).c_cflag & CSTOPB);
    EXPECT_EQ(tcflag_t(CSTOPB), settingsOf(9600, 8, 2, 0).c_cflag & CSTOPB);
}

TEST(SerialSettingsTest, ParityAsNumberOrLetter) {
    const signed char kNone[] = {0, 'N', 'n'}, kOdd[] = {1, 'O', 'o'}, kEven[] = {2, 'E', 'e'};
    for (signed char none : kNone) {
        EXPECT_EQ(0u, settingsOf(9600, 8, 1, none).c_cflag & (PARENB | PARODD)) << int(none);
    }
    for (signed char odd : kOdd) {
        EXPECT_EQ(tcflag_t(PARENB | PARODD), settingsOf(9600, 8, 1, odd).c_cflag & (PARENB | PARODD))
                << int(odd);
    }
    for (signed char even : kEven) {
        EXPECT_EQ(tcflag_t(PARENB), settingsOf(9600, 8, 1, even).c_cflag & (PARENB | PARODD))
                << int(even);
    }
}

TEST(SerialSettingsTest, RawModeThatNeverWaitsInTheLineDiscipline) {
    termios line = settingsOf(115200, 8, 1, 0);
    EXPECT_EQ(0u, line.c_lflag & (ICANON | ECHO | ECHONL | ISIG | IEXTEN));
    EXPECT_EQ(0u, line.c_iflag & (IGNBRK | BRKINT | PARMRK | ISTRIP | INLCR | IGNCR | ICRNL | IXON));
    EXPECT_EQ(0u, line.c_oflag & OPOST);
    EXPECT_EQ(tcflag_t(CREAD | CLOCAL), line.c_cflag & (CREAD | CLOCAL));
    EXPECT_EQ(0u, line.c_cflag & CRTSCTS);
    EXPECT_EQ(0, line.c_cc[VMIN]);
    EXPECT_EQ(0, line.c_cc[VTIME]);
}

TEST(SerialSettingsTest, UnsupportedValuesAreRefusedAndChangeNothing) {
    const struct {
        int baud;
        unsigned char data, stop;
        signed char parity;
    } refused[] = {{0, 8, 1, 0},       {-9600, 8, 1, 0}, {12345, 8, 1, 0}, {9601, 8, 1, 0},
                   {5000000, 8, 1, 0}, {9600, 4, 1, 0},  {9600, 9, 1, 0},  {9600, 0, 1, 0},
                   {9600, 8, 0, 0},    {9600, 8, 3, 0},  {9600, 8, 1, -1}, {9600, 8, 1, 3},
                   {9600, 8, 1, 'X'},  {9600, 8, 1, 'M'}};
    for (const auto& s : refused) {
        termios line;
        memset(&line, 0x5a, sizeof(line));
        termios before = line;
        EXPECT_FALSE(applyLineSettings(s.baud, s.data, s.stop, s.parity, line))
                << s.baud << " " << int(s.data) << " " << int(s.stop) << " " << int(s.parity);
        EXPECT_EQ(0, memcmp(&before, &line, sizeof(line)));
    }
}

}  // namespace
}  // namespace vesk::sim
