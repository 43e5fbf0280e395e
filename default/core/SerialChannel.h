/*
 * The seven serial channels share one implementation; a channel names its board functions,
 * the line numbers its trace lines carry, and how its non-blocking read reports.
 */
#pragma once

#include <cstdint>

#include "CoreTypes.h"

namespace vesk::hardware::veskdevicemanager::implementation {

enum class NonBlockingReport {
    kCommon,     // a line only for a negative count
    kCountLine,  // also a line for every count up to the size, with the count
    kSizeLine,   // lines for a short and a negative count, with the requested size
};

struct SerialChannel {
    int (*open)(int baudrate, unsigned char databits, unsigned char stopbits, signed char parity);
    int (*close)();
    int (*blockingRead)(unsigned char* buffer, unsigned int capacity, unsigned int timeoutMs);
    int (*nonBlockingRead)(unsigned char* buffer, unsigned int capacity);
    int (*write)(const unsigned char* data, unsigned int count);
    struct Lines {
        int open, close, blockingRead, blockingNegative, nonBlockingRead, nonBlockingCount,
                nonBlockingNegative, write;
    } line;
    NonBlockingReport report;
};

namespace serial {

int32_t open(const SerialChannel& channel, const char* method, int32_t baudrate, uint8_t databits,
             uint8_t stopbits, int8_t parity);
int32_t close(const SerialChannel& channel, const char* method);
core::ReadResult blockingRead(const SerialChannel& channel, const char* method, uint32_t dataSize,
                              uint32_t timeoutMs);
core::ReadResult nonBlockingRead(const SerialChannel& channel, const char* method,
                                 uint32_t dataSize);
int32_t write(const SerialChannel& channel, const char* method, core::InputView<uint8_t> data);

}  // namespace serial
}  // namespace vesk::hardware::veskdevicemanager::implementation
