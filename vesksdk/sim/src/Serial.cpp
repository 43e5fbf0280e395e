// The seven serial channels, each a pseudo-terminal pair while it is open (PtyPort.h). The
// ports live only as long as this process, like the descriptors they are made of, so they are
// kept here and not in the board's saved state.
//
// Opening a channel that is already open closes it first and opens it anew with the new
// settings (a new pair, the link pointed at it); settings that are not supported are refused
// with -1 before anything is closed. Every call on a channel that is not open returns -1.
#include <stdlib.h>

#include <array>
#include <memory>
#include <mutex>

#include "PtyPort.h"
#include "SerialSettings.h"
#include "SimCall.h"
#include "vesk/host/DeviceRoot.h"
#include "vesk/sim/BoardStatus.h"
#include "vesksdk.h"

namespace vesk::sim {
namespace {

enum class SerialChannel { Rs485, Rs485Second, Rs232, Lora, Hdmi, Ttl, TtlSecond, Count };

// Each channel's peer is published at serialLinkDevicePath(channel) below the device root.
static_assert(kSerialChannelCount == static_cast<std::size_t>(SerialChannel::Count));

class SerialPorts {
  public:
    // Never destroyed: a call may still run while the process exits. The links are removed at
    // exit, so that none is left pointing at a terminal that is gone.
    static SerialPorts& instance() {
        static SerialPorts* ports = [] {
            auto* created = new SerialPorts();
            atexit([] { instance().closeAll(); });
            return created;
        }();
        return *ports;
    }

    int open(SerialChannel channel, const termios& line) {
        const std::string root = host::deviceRoot();
        std::lock_guard<std::mutex> lock(mMutex);
        std::shared_ptr<PtyPort>& port = mPorts[index(channel)];
        if (port) port->close();
        port = PtyPort::open(line, root, serialLinkDevicePath(index(channel)));
        return port ? 0 : -1;
    }

    int close(SerialChannel channel) {
        std::shared_ptr<PtyPort> port;
        {
            std::lock_guard<std::mutex> lock(mMutex);
            port.swap(mPorts[index(channel)]);
        }
        if (!port) return -1;
        port->close();
        return 0;
    }

    // The open port, kept alive for the caller's call even if it is closed meanwhile.
    std::shared_ptr<PtyPort> get(SerialChannel channel) {
        std::lock_guard<std::mutex> lock(mMutex);
        return mPorts[index(channel)];
    }

  private:
    static std::size_t index(SerialChannel channel) { return static_cast<std::size_t>(channel); }

    void closeAll() {
        std::lock_guard<std::mutex> lock(mMutex);
        for (std::shared_ptr<PtyPort>& port : mPorts) {
            if (port) port->close();
            port.reset();
        }
    }

    std::mutex mMutex;
    std::array<std::shared_ptr<PtyPort>, static_cast<std::size_t>(SerialChannel::Count)> mPorts;
};

int openPort(SerialChannel channel, int baudrate, unsigned char databits, unsigned char stopbits,
             signed char parity) {
    termios line{};
    if (!applyLineSettings(baudrate, databits, stopbits, parity, line)) return -1;
    return SerialPorts::instance().open(channel, line);
}

int closePort(SerialChannel channel) {
    return SerialPorts::instance().close(channel);
}

int readPort(SerialChannel channel, unsigned char* buffer, unsigned int capacity,
             unsigned int timeoutMs, bool blocking) {
    std::shared_ptr<PtyPort> port = SerialPorts::instance().get(channel);
    if (!port || (!buffer && capacity > 0)) return -1;
    return port->read(buffer, capacity, timeoutMs, blocking);
}

int writePort(SerialChannel channel, const unsigned char* bytes, unsigned int count) {
    std::shared_ptr<PtyPort> port = SerialPorts::instance().get(channel);
    if (!port || (!bytes && count > 0)) return -1;
    return port->write(bytes, count);
}

}  // namespace
}  // namespace vesk::sim

#define VESK_SIM_SERIAL(prefix, channel)                                                        \
    int bi_serial_##prefix##_open(int baudrate, unsigned char databits, unsigned char stopbits, \
                                  signed char parity) {                                         \
        return vesk::sim::SimCall("bi_serial_" #prefix "_open",                                 \
                                  {baudrate, databits, stopbits, parity})                       \
                .run([&] {                                                                      \
                    return vesk::sim::openPort(channel, baudrate, databits, stopbits, parity);  \
                });                                                                             \
    }                                                                                           \
    int bi_serial_##prefix##_close(void) {                                                      \
        return vesk::sim::SimCall("bi_serial_" #prefix "_close", {}).run([] {                   \
            return vesk::sim::closePort(channel);                                               \
        });                                                                                     \
    }                                                                                           \
    int bi_serial_##prefix##_blocking_read(unsigned char* buffer, unsigned int capacity,        \
                                           unsigned int timeoutMs) {                            \
        return vesk::sim::SimCall("bi_serial_" #prefix "_blocking_read",                        \
                                  {vesk::sim::outputBuffer(), capacity, timeoutMs})             \
                .out(buffer, capacity)                                                          \
                .run([&] {                                                                      \
                    return vesk::sim::readPort(channel, buffer, capacity, timeoutMs, true);     \
                });                                                                             \
    }                                                                                           \
    int bi_serial_##prefix##_nonblocking_read(unsigned char* buffer, unsigned int capacity) {   \
        return vesk::sim::SimCall("bi_serial_" #prefix "_nonblocking_read",                     \
                                  {vesk::sim::outputBuffer(), capacity})                        \
                .out(buffer, capacity)                                                          \
                .run([&] { return vesk::sim::readPort(channel, buffer, capacity, 0, false); }); \
    }                                                                                           \
    int bi_serial_##prefix##_write(const unsigned char* data, unsigned int count) {             \
        return vesk::sim::SimCall("bi_serial_" #prefix "_write",                                \
                                  {vesk::sim::inputBytes(data, count), count})                  \
                .run([&] { return vesk::sim::writePort(channel, data, count); });               \
    }

using vesk::sim::SerialChannel;
VESK_SIM_SERIAL(485, SerialChannel::Rs485)
VESK_SIM_SERIAL(485_2, SerialChannel::Rs485Second)
VESK_SIM_SERIAL(232, SerialChannel::Rs232)
VESK_SIM_SERIAL(lora, SerialChannel::Lora)
VESK_SIM_SERIAL(hdmi, SerialChannel::Hdmi)
VESK_SIM_SERIAL(ttl, SerialChannel::Ttl)
VESK_SIM_SERIAL(ttl_2, SerialChannel::TtlSecond)
