/*
 * The seven serial channels: two RS-485, RS-232, LoRa, serial over HDMI and two TTL ports.
 */
#include <vesksdk.h>

#include "DeviceManagerCore.h"
#include "SerialChannel.h"
#include "TraceLines.h"

namespace vesk::hardware::veskdevicemanager::core {

using implementation::NonBlockingReport;
using implementation::SerialChannel;
using implementation::traceLine;
namespace serial = implementation::serial;

namespace {

#define VESK_BOARD_SERIAL(prefix)                                                              \
    bi_serial_##prefix##_open, bi_serial_##prefix##_close, bi_serial_##prefix##_blocking_read, \
            bi_serial_##prefix##_nonblocking_read, bi_serial_##prefix##_write

// The trace lines of a channel's methods: open, close, blocking read and its negative count,
// non-blocking read, its count line (0 for the channels that write none) and its negative count,
// write.
#define VESK_SERIAL_LINES(suffix)                                                              \
    {                                                                                          \
        VESK_TRACE_LINE("openSerialPort" #suffix), VESK_TRACE_LINE("closeSerialPort" #suffix), \
                VESK_TRACE_LINE("readBlockingSerialPort" #suffix),                             \
                VESK_TRACE_LINE("readBlockingSerialPort" #suffix, "negative count"),           \
                VESK_TRACE_LINE("readNonBlockingSerialPort" #suffix),                          \
                traceLine("readNonBlockingSerialPort" #suffix, "count"),                       \
                VESK_TRACE_LINE("readNonBlockingSerialPort" #suffix, "negative count"),        \
                VESK_TRACE_LINE("writeSerialPort" #suffix)                                     \
    }

constexpr SerialChannel k485{VESK_BOARD_SERIAL(485), VESK_SERIAL_LINES(485),
                             NonBlockingReport::kCommon};
constexpr SerialChannel k485_2{VESK_BOARD_SERIAL(485_2), VESK_SERIAL_LINES(485_2),
                               NonBlockingReport::kCommon};
constexpr SerialChannel k232{VESK_BOARD_SERIAL(232), VESK_SERIAL_LINES(232),
                             NonBlockingReport::kCommon};
constexpr SerialChannel kLora{VESK_BOARD_SERIAL(lora), VESK_SERIAL_LINES(Lora),
                              NonBlockingReport::kCommon};
constexpr SerialChannel kHdmi{VESK_BOARD_SERIAL(hdmi), VESK_SERIAL_LINES(HDMI),
                              NonBlockingReport::kCommon};
constexpr SerialChannel kTtl{VESK_BOARD_SERIAL(ttl), VESK_SERIAL_LINES(TTL),
                             NonBlockingReport::kCountLine};
constexpr SerialChannel kTtl_2{VESK_BOARD_SERIAL(ttl_2), VESK_SERIAL_LINES(TTL_2),
                               NonBlockingReport::kSizeLine};

#undef VESK_SERIAL_LINES
#undef VESK_BOARD_SERIAL

}  // namespace

#define VESK_SERIAL_METHODS(suffix, channel)                                                     \
    int32_t DeviceManagerCore::openSerialPort##suffix(int32_t baudrate, uint8_t databits,        \
                                                      uint8_t stopbits, int8_t parity) {         \
        return serial::open(channel, "openSerialPort" #suffix, baudrate, databits, stopbits,     \
                            parity);                                                             \
    }                                                                                            \
    int32_t DeviceManagerCore::closeSerialPort##suffix() {                                       \
        return serial::close(channel, "closeSerialPort" #suffix);                                \
    }                                                                                            \
    ReadResult DeviceManagerCore::readBlockingSerialPort##suffix(uint32_t data_size,             \
                                                                 uint32_t timeout_ms) {          \
        return serial::blockingRead(channel, "readBlockingSerialPort" #suffix, data_size,        \
                                    timeout_ms);                                                 \
    }                                                                                            \
    ReadResult DeviceManagerCore::readNonBlockingSerialPort##suffix(uint32_t data_size) {        \
        return serial::nonBlockingRead(channel, "readNonBlockingSerialPort" #suffix, data_size); \
    }                                                                                            \
    int32_t DeviceManagerCore::writeSerialPort##suffix(InputView<uint8_t> data) {                \
        return serial::write(channel, "writeSerialPort" #suffix, data);                          \
    }

VESK_SERIAL_METHODS(485, k485)
VESK_SERIAL_METHODS(485_2, k485_2)
VESK_SERIAL_METHODS(232, k232)
VESK_SERIAL_METHODS(Lora, kLora)
VESK_SERIAL_METHODS(HDMI, kHdmi)
VESK_SERIAL_METHODS(TTL, kTtl)
VESK_SERIAL_METHODS(TTL_2, kTtl_2)

#undef VESK_SERIAL_METHODS

}  // namespace vesk::hardware::veskdevicemanager::core
