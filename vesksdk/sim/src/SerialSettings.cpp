#include "SerialSettings.h"

#include <iterator>

namespace vesk::sim {
namespace {

struct Speed {
    int baudrate;
    speed_t code;
};

constexpr Speed kSpeeds[] = {
        {50, B50},           {75, B75},           {110, B110},         {134, B134},
        {150, B150},         {200, B200},         {300, B300},         {600, B600},
        {1200, B1200},       {1800, B1800},       {2400, B2400},       {4800, B4800},
        {9600, B9600},       {19200, B19200},     {38400, B38400},     {57600, B57600},
        {115200, B115200},   {230400, B230400},   {460800, B460800},   {500000, B500000},
        {576000, B576000},   {921600, B921600},   {1000000, B1000000}, {1152000, B1152000},
        {1500000, B1500000}, {2000000, B2000000}, {2500000, B2500000}, {3000000, B3000000},
        {3500000, B3500000}, {4000000, B4000000},
};

bool speedOf(int baudrate, speed_t& code) {
    for (const Speed& speed : kSpeeds) {
        if (speed.baudrate == baudrate) {
            code = speed.code;
            return true;
        }
    }
    return false;
}

bool sizeOf(unsigned char databits, tcflag_t& size) {
    switch (databits) {
        case 5:
            size = CS5;
            return true;
        case 6:
            size = CS6;
            return true;
        case 7:
            size = CS7;
            return true;
        case 8:
            size = CS8;
            return true;
    }
    return false;
}

// PARENB and PARODD as the parity code asks.
bool parityOf(signed char parity, tcflag_t& flags) {
    switch (parity) {
        case 0:
        case 'N':
        case 'n':
            flags = 0;
            return true;
        case 1:
        case 'O':
        case 'o':
            flags = PARENB | PARODD;
            return true;
        case 2:
        case 'E':
        case 'e':
            flags = PARENB;
            return true;
    }
    return false;
}

}  // namespace

bool applyLineSettings(int baudrate, unsigned char databits, unsigned char stopbits,
                       signed char parity, termios& line) {
    speed_t speed;
    tcflag_t size, parityFlags;
    if (!speedOf(baudrate, speed) || !sizeOf(databits, size) || (stopbits != 1 && stopbits != 2) ||
        !parityOf(parity, parityFlags)) {
        return false;
    }
    termios result = line;
    cfmakeraw(&result);
    result.c_cflag &= ~(CSIZE | CSTOPB | PARENB | PARODD | CRTSCTS);
    result.c_cflag |= size | parityFlags | CREAD | CLOCAL | (stopbits == 2 ? CSTOPB : 0);
    // Reads never wait in the line discipline: the simulator does its own waiting.
    result.c_cc[VMIN] = 0;
    result.c_cc[VTIME] = 0;
    cfsetispeed(&result, speed);
    cfsetospeed(&result, speed);
    line = result;
    return true;
}

}  // namespace vesk::sim
