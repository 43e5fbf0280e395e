/*
 * The seven serial channels as the tests see them: method suffix, board prefix, the line number
 * each method writes and how its non-blocking read reports, with the interface's methods.
 */
#pragma once

#include <functional>
#include <ostream>
#include <string>

#include "ServiceTest.h"

namespace vesk::test {

using ::android::hardware::Return;

using SerialReadCallback = std::function<void(const hidl_vec<uint8_t>&, uint32_t)>;

enum class NonBlockingLines {
    kCommon,     // a line for a negative count only
    kCountLine,  // TTL: also a line for a count up to the size, naming the count
    kSizeLine,   // TTL_2: lines for a short and a negative count, naming the requested size
};

struct SerialChannelCase {
    std::string suffix;  // of the method names, e.g. "485"
    std::string board;   // prefix of the board functions, e.g. "bi_serial_485_"
    int open, close, blocking, blockingNegative, nonBlocking;
    int nonBlockingCount;  // 0 where the channel writes no such line
    int nonBlockingNegative, write;
    NonBlockingLines lines;
    Return<int32_t> (IVeskDeviceManager::*openPort)(int32_t, uint8_t, uint8_t, int8_t);
    Return<int32_t> (IVeskDeviceManager::*closePort)();
    Return<void> (IVeskDeviceManager::*readBlocking)(uint32_t, uint32_t, SerialReadCallback);
    Return<void> (IVeskDeviceManager::*readNonBlocking)(uint32_t, SerialReadCallback);
    Return<int32_t> (IVeskDeviceManager::*writePort)(const hidl_vec<uint8_t>&);
};

inline void PrintTo(const SerialChannelCase& channel, std::ostream* os) {
    *os << channel.suffix;
}

#define VESK_SERIAL_TEST_METHODS(suffix)                                                       \
    &IVeskDeviceManager::openSerialPort##suffix, &IVeskDeviceManager::closeSerialPort##suffix, \
            &IVeskDeviceManager::readBlockingSerialPort##suffix,                               \
            &IVeskDeviceManager::readNonBlockingSerialPort##suffix,                            \
            &IVeskDeviceManager::writeSerialPort##suffix

// Line numbers: open, close, blocking read / its negative count, non-blocking read / its count
// line / its negative count, write.
inline const SerialChannelCase kSerialChannels[] = {
        {"485", "bi_serial_485_", traceLine("openSerialPort485"), traceLine("closeSerialPort485"),
         traceLine("readBlockingSerialPort485"),
         traceLine("readBlockingSerialPort485", "negative count"),
         traceLine("readNonBlockingSerialPort485"), 0,
         traceLine("readNonBlockingSerialPort485", "negative count"),
         traceLine("writeSerialPort485"), NonBlockingLines::kCommon, VESK_SERIAL_TEST_METHODS(485)},
        {"485_2", "bi_serial_485_2_", traceLine("openSerialPort485_2"),
         traceLine("closeSerialPort485_2"), traceLine("readBlockingSerialPort485_2"),
         traceLine("readBlockingSerialPort485_2", "negative count"),
         traceLine("readNonBlockingSerialPort485_2"), 0,
         traceLine("readNonBlockingSerialPort485_2", "negative count"),
         traceLine("writeSerialPort485_2"), NonBlockingLines::kCommon,
         VESK_SERIAL_TEST_METHODS(485_2)},
        {"232", "bi_serial_232_", traceLine("openSerialPort232"), traceLine("closeSerialPort232"),
         traceLine("readBlockingSerialPort232"),
         traceLine("readBlockingSerialPort232", "negative count"),
         traceLine("readNonBlockingSerialPort232"), 0,
         traceLine("readNonBlockingSerialPort232", "negative count"),
         traceLine("writeSerialPort232"), NonBlockingLines::kCommon, VESK_SERIAL_TEST_METHODS(232)},
        {"Lora", "bi_serial_lora_", traceLine("openSerialPortLora"),
         traceLine("closeSerialPortLora"), traceLine("readBlockingSerialPortLora"),
         traceLine("readBlockingSerialPortLora", "negative count"),
         traceLine("readNonBlockingSerialPortLora"), 0,
         traceLine("readNonBlockingSerialPortLora", "negative count"),
         traceLine("writeSerialPortLora"), NonBlockingLines::kCommon,
         VESK_SERIAL_TEST_METHODS(Lora)},
        {"HDMI", "bi_serial_hdmi_", traceLine("openSerialPortHDMI"),
         traceLine("closeSerialPortHDMI"), traceLine("readBlockingSerialPortHDMI"),
         traceLine("readBlockingSerialPortHDMI", "negative count"),
         traceLine("readNonBlockingSerialPortHDMI"), 0,
         traceLine("readNonBlockingSerialPortHDMI", "negative count"),
         traceLine("writeSerialPortHDMI"), NonBlockingLines::kCommon,
         VESK_SERIAL_TEST_METHODS(HDMI)},
        {"TTL", "bi_serial_ttl_", traceLine("openSerialPortTTL"), traceLine("closeSerialPortTTL"),
         traceLine("readBlockingSerialPortTTL"),
         traceLine("readBlockingSerialPortTTL", "negative count"),
         traceLine("readNonBlockingSerialPortTTL"),
         traceLine("readNonBlockingSerialPortTTL", "count"),
         traceLine("readNonBlockingSerialPortTTL", "negative count"),
         traceLine("writeSerialPortTTL"), NonBlockingLines::kCountLine,
         VESK_SERIAL_TEST_METHODS(TTL)},
        {"TTL_2", "bi_serial_ttl_2_", traceLine("openSerialPortTTL_2"),
         traceLine("closeSerialPortTTL_2"), traceLine("readBlockingSerialPortTTL_2"),
         traceLine("readBlockingSerialPortTTL_2", "negative count"),
         traceLine("readNonBlockingSerialPortTTL_2"),
         traceLine("readNonBlockingSerialPortTTL_2", "count"),
         traceLine("readNonBlockingSerialPortTTL_2", "negative count"),
         traceLine("writeSerialPortTTL_2"), NonBlockingLines::kSizeLine,
         VESK_SERIAL_TEST_METHODS(TTL_2)},
};

#undef VESK_SERIAL_TEST_METHODS

// What a read's callback received, and how often it was called.
struct SerialReadResult {
    std::vector<uint8_t> data{0xee};
    uint32_t count = 12345;
    int calls = 0;
    SerialReadCallback callback() {
        return [this](const hidl_vec<uint8_t>& got, uint32_t bytesRead) {
            data = got;
            count = bytesRead;
            ++calls;
        };
    }
};

}  // namespace vesk::test
