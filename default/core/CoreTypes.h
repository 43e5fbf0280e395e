/*
 * The core's own types. The interface's records, with the field names of types.hal and plain
 * C++ members; one struct for each shape of a result of several values; and the view through
 * which a client's vector reaches the core without being copied.
 */
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vesk::hardware::veskdevicemanager::core {

// The board's product record: identity texts and switches, the fields in the order of types.hal
// (modelId: the product's model number, in decimal; useDHCP: whether the network is configured
// by DHCP). The lists name them for the front ends' field-by-field conversions.
// clang-format off
#define VESK_PRODUCT_INFO_TEXTS(X)                                                              \
    X(text01) X(modelId) X(text03) X(text04) X(text05) X(text06) X(text07) X(text08) X(text09) \
    X(text10) X(text11) X(text12) X(text13) X(text14) X(text15) X(text16) X(text17) X(text18) \
    X(text19) X(text20) X(text21)
// clang-format on
#define VESK_PRODUCT_INFO_SWITCHES(X) X(flag1) X(flag2) X(flag3) X(useDHCP)

// The fields of the other records that every front end converts one by one, each as its own
// types hold it (ProcessInfo's block, an array of 16 bytes, apart).
#define VESK_WATCHDOG_CFG_FIELDS(X) X(wdtDevice) X(wdt_timeout) X(wdt_interval)
#define VESK_PROCESS_INFO_FIELDS(X) X(name1) X(name2) X(name3) X(value64) X(valueReal) X(value32)
#define VESK_USB_LIST_FIELDS(X) X(vid) X(pid)
#define VESK_CPU_STATUS_FIELDS(X) \
    X(usr) X(nic) X(sys) X(idle) X(iowait) X(irq) X(softirq) X(temperature)
#define VESK_LOG_INFO_FIELDS(X) X(level) X(base) X(mode) X(total_size) X(once_size)
#define VESK_EFFE_RESOLUTION_FIELDS(X) X(width) X(height) X(fps) X(status)

struct ProductInfo {
#define VESK_TEXT(name) std::string name;
    VESK_PRODUCT_INFO_TEXTS(VESK_TEXT)
#undef VESK_TEXT
#define VESK_SWITCH(name) bool name = false;
    VESK_PRODUCT_INFO_SWITCHES(VESK_SWITCH)
#undef VESK_SWITCH
};

// The watchdog's configuration.
struct WatchDogCfg {
    std::string wdtDevice;
    uint32_t wdt_timeout = 0;
    uint32_t wdt_interval = 0;
};

// What the board knows of a process.
struct ProcessInfo {
    std::string name1;
    std::string name2;
    std::string name3;
    std::array<uint8_t, 16> block{};
    uint64_t value64 = 0;
    double valueReal = 0;
    uint32_t value32 = 0;
};

// One USB device: vendor and product identifier.
struct UsbList {
    uint32_t vid = 0;
    uint32_t pid = 0;
};

// CPU load in percent per category, and the CPU temperature.
struct CpuStatus {
    float usr = 0;
    float nic = 0;
    float sys = 0;
    float idle = 0;
    float iowait = 0;
    float irq = 0;
    float softirq = 0;
    uint32_t temperature = 0;
};

// The log daemon's configuration.
struct VeskLogInfo {
    std::string level;
    std::string base;
    std::string mode;
    std::string total_size;
    std::string once_size;
};

// A display resolution; status 1 marks a usable entry.
struct VeskEffeResolution {
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t fps = 0;
    int32_t status = 0;
};

// A serial read: the bytes read and the count as the board reported it, negative on failure
// (then `data` is empty) and passed on unchanged when it exceeds the size asked for.
struct ReadResult {
    std::vector<uint8_t> data;
    int32_t bytesRead = 0;
};

// An SPI exchange: the board's result and the buffer as the method hands it back.
struct TransferResult {
    int32_t ret = 0;
    std::vector<uint8_t> data;
};

// The log daemon's configuration as read, with the board's result (0 is its failure).
struct LogConfigureResult {
    int32_t ret = 0;
    VeskLogInfo info;
};

// The resolution list: the count as the board reported it and its entries, none when the count
// is negative (a failure the HIDL facade answers by ending the process, as its vector type does).
struct ResolutionListResult {
    int32_t count = 0;
    std::vector<VeskEffeResolution> list;
};

// A client's vector as the core reads it: the elements where the client's own vector holds
// them, so that neither front end copies a buffer to pass it in. Valid for the call only.
template <typename T>
class InputView {
  public:
    InputView() = default;
    InputView(const T* data, size_t size) : mData(data), mSize(size) {}
    // Implicit: a std::vector is passed as it is.
    InputView(const std::vector<T>& items) : mData(items.data()), mSize(items.size()) {}

    const T* data() const { return mData; }
    size_t size() const { return mSize; }
    const T* begin() const { return mData; }
    const T* end() const { return mData + mSize; }

  private:
    const T* mData = nullptr;
    size_t mSize = 0;
};

}  // namespace vesk::hardware::veskdevicemanager::core
