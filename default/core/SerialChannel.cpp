#include "SerialChannel.h"

#include <utility>
#include <vector>

#include "ServiceTrace.h"

namespace vesk::hardware::veskdevicemanager::implementation::serial {

int32_t open(const SerialChannel& channel, const char* method, int32_t baudrate, uint8_t databits,
             uint8_t stopbits, int8_t parity) {
    // The full-width colons are part of the line as the board's log readers know it.
    vesk::log::debug(
            kTag, "%s %d baudrate :%d databits:%d \xEF\xBC\x9Astopbits:%d  parity\xEF\xBC\x9A%d\n",
            method, channel.line.open, baudrate, databits, stopbits, parity);
    int ret = channel.open(baudrate, databits, stopbits, parity);
    vesk::log::debug(kTag, "%s: ret = %d\n", method, ret);
    return ret;
}

int32_t close(const SerialChannel& channel, const char* method) {
    trace(method, channel.line.close);
    int ret = channel.close();
    vesk::log::debug(kTag, "%s: ret = %d\n", method, ret);
    return ret;
}

core::ReadResult blockingRead(const SerialChannel& channel, const char* method, uint32_t dataSize,
                              uint32_t timeoutMs) {
    vesk::log::debug(kTag, "%s line:%d data_size:%d timeout_ms:%d\n", method,
                     channel.line.blockingRead, dataSize, timeoutMs);
    std::vector<uint8_t> data(dataSize);
    int bytesRead = channel.blockingRead(data.data(), dataSize, timeoutMs);
    vesk::log::debug(kTag, "%s bytes_read = %u\n", method, bytesRead);
    if (bytesRead < 0) {
        data.resize(0);
        vesk::log::debug(kTag, "bytes_read < 0 %s %d bytes_read:%d\n", method,
                         channel.line.blockingNegative, bytesRead);
    } else if (static_cast<uint32_t>(bytesRead) < dataSize) {
        data.resize(bytesRead);
    }
    // A count above the capacity is passed on as the board reported it.
    return {std::move(data), bytesRead};
}

core::ReadResult nonBlockingRead(const SerialChannel& channel, const char* method,
                                 uint32_t dataSize) {
    // The line keeps its time-out field although this read has none; it reads 0.
    vesk::log::debug(kTag, "%s %d data_size:%d timeout_ms:%d\n", method,
                     channel.line.nonBlockingRead, dataSize, 0);
    std::vector<uint8_t> data(dataSize);
    int bytesRead = channel.nonBlockingRead(data.data(), dataSize);
    bool negative = bytesRead < 0;
    uint32_t count = static_cast<uint32_t>(bytesRead);
    switch (channel.report) {
        case NonBlockingReport::kCommon:
            if (negative) {
                data.resize(0);
                vesk::log::debug(kTag, "bytes_read < 0 %s %d bytes_read:%d\n", method,
                                 channel.line.nonBlockingNegative, bytesRead);
            } else if (count < dataSize) {
                data.resize(count);
            }
            break;
        case NonBlockingReport::kCountLine:
            if (!negative && count <= dataSize) {
                data.resize(count);
                vesk::log::debug(kTag, "bytes_read >= 0 %s %d bytes_read:%d \n", method,
                                 channel.line.nonBlockingCount, bytesRead);
            } else if (negative) {
                data.resize(0);
                vesk::log::debug(kTag, "bytes_read < 0 %s %d bytes_read:%d\n", method,
                                 channel.line.nonBlockingNegative, bytesRead);
            }
            break;
        case NonBlockingReport::kSizeLine:
            if (!negative && count < dataSize) {
                data.resize(count);
                vesk::log::debug(kTag, "bytes_read >= 0 %s %d data_size:%d timeout_ms:%d\n", method,
                                 channel.line.nonBlockingCount, dataSize, 0);
            } else if (negative) {
                data.resize(0);
                vesk::log::debug(kTag, "bytes_read < 0 %s %d data_size:%d timeout_ms:%d\n", method,
                                 channel.line.nonBlockingNegative, dataSize, 0);
            }
            break;
    }
    return {std::move(data), bytesRead};
}

int32_t write(const SerialChannel& channel, const char* method, core::InputView<uint8_t> data) {
    vesk::log::debug(kTag, "%s %d data.size = %u\n", method, channel.line.write,
                     static_cast<unsigned>(data.size()));
    return channel.write(data.data(), data.size());
}

}  // namespace vesk::hardware::veskdevicemanager::implementation::serial
