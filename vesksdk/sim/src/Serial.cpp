// The seven serial channels. For now each port is a loopback: bytes written come back on read.
#include <algorithm>
#include <chrono>

#include "SimMacros.h"
#include "vesksdk.h"

namespace vesk::sim {
namespace {

int openPort(SerialChannel channel, int baudrate, unsigned char databits, unsigned char stopbits,
             signed char parity) {
    if (baudrate <= 0) return -1;
    return board().with([&](BoardData& data) {
        SerialPort& port = data.serial[static_cast<std::size_t>(channel)];
        port = SerialPort{true, baudrate, databits, stopbits, parity, {}};
        return 0;
    });
}

int closePort(SerialChannel channel) {
    return board().with([&](BoardData& data) {
        SerialPort& port = data.serial[static_cast<std::size_t>(channel)];
        if (!port.open) return -1;
        port.open = false;
        port.received.clear();
        return 0;
    });
}

int takeReceived(SerialPort& port, unsigned char* buffer, unsigned int capacity) {
    std::size_t count = std::min<std::size_t>(capacity, port.received.size());
    std::copy_n(port.received.begin(), count, buffer);
    port.received.erase(port.received.begin(), port.received.begin() + count);
    return static_cast<int>(count);
}

int readPort(SerialChannel channel, unsigned char* buffer, unsigned int capacity,
             unsigned int timeoutMs, bool blocking) {
    if (!buffer && capacity > 0) return -1;
    std::unique_lock<std::mutex> lock = board().lock();
    SerialPort& port = board().data().serial[static_cast<std::size_t>(channel)];
    if (!port.open) return -1;
    if (blocking && capacity > 0) {
        board().changed().wait_for(lock, std::chrono::milliseconds(timeoutMs),
                                   [&] { return !port.open || !port.received.empty(); });
        if (!port.open) return -1;
    }
    return takeReceived(port, buffer, capacity);
}

int writePort(SerialChannel channel, const unsigned char* bytes, unsigned int count) {
    if (!bytes && count > 0) return -1;
    int written = board().with([&](BoardData& data) {
        SerialPort& port = data.serial[static_cast<std::size_t>(channel)];
        if (!port.open) return -1;
        port.received.insert(port.received.end(), bytes, bytes + count);
        return static_cast<int>(count);
    });
    board().changed().notify_all();
    return written;
}

}  // namespace
}  // namespace vesk::sim

#define VESK_SIM_SERIAL(prefix, channel)                                                           \
    int bi_serial_##prefix##_open(int baudrate, unsigned char databits, unsigned char stopbits,    \
                                  signed char parity) {                                            \
        return vesk::sim::SimCall("bi_serial_" #prefix "_open",                                    \
                                  {baudrate, databits, stopbits, parity})                          \
            .run([&] {                                                                             \
                return vesk::sim::openPort(channel, baudrate, databits, stopbits, parity);         \
            });                                                                                    \
    }                                                                                              \
    int bi_serial_##prefix##_close(void) {                                                         \
        return vesk::sim::SimCall("bi_serial_" #prefix "_close", {}).run([] {                      \
            return vesk::sim::closePort(channel);                                                  \
        });                                                                                        \
    }                                                                                              \
    int bi_serial_##prefix##_blocking_read(unsigned char* buffer, unsigned int capacity,           \
                                           unsigned int timeoutMs) {                               \
        return vesk::sim::SimCall("bi_serial_" #prefix "_blocking_read",                           \
                                  {vesk::sim::outputBuffer(), capacity, timeoutMs})                \
            .out(buffer, capacity)                                                                 \
            .run([&] { return vesk::sim::readPort(channel, buffer, capacity, timeoutMs, true); }); \
    }                                                                                              \
    int bi_serial_##prefix##_nonblocking_read(unsigned char* buffer, unsigned int capacity) {      \
        return vesk::sim::SimCall("bi_serial_" #prefix "_nonblocking_read",                        \
                                  {vesk::sim::outputBuffer(), capacity})                           \
            .out(buffer, capacity)                                                                 \
            .run([&] { return vesk::sim::readPort(channel, buffer, capacity, 0, false); });        \
    }                                                                                              \
    int bi_serial_##prefix##_write(const unsigned char* data, unsigned int count) {                \
        return vesk::sim::SimCall("bi_serial_" #prefix "_write",                                   \
                                  {vesk::sim::inputBytes(data, count), count})                     \
            .run([&] { return vesk::sim::writePort(channel, data, count); });                      \
    }

using vesk::sim::SerialChannel;
VESK_SIM_SERIAL(485, SerialChannel::Rs485)
VESK_SIM_SERIAL(485_2, SerialChannel::Rs485Second)
VESK_SIM_SERIAL(232, SerialChannel::Rs232)
VESK_SIM_SERIAL(lora, SerialChannel::Lora)
VESK_SIM_SERIAL(hdmi, SerialChannel::Hdmi)
VESK_SIM_SERIAL(ttl, SerialChannel::Ttl)
VESK_SIM_SERIAL(ttl_2, SerialChannel::TtlSecond)
