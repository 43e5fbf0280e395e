#include "AidlClientConversions.h"

#include <algorithm>

#include "CoreTypes.h"

namespace veskdm::aidlclient {

std::string toAidl(const hidl_string& text) {
    return std::string(text.c_str(), text.size());
}

std::vector<uint8_t> toAidl(const hidl_vec<uint8_t>& bytes) {
    return std::vector<uint8_t>(bytes.begin(), bytes.end());
}

std::vector<int32_t> toAidl(const hidl_vec<uint32_t>& words) {
    std::vector<int32_t> out(words.size());
    std::transform(words.begin(), words.end(), out.begin(),
                   [](uint32_t word) { return static_cast<int32_t>(word); });
    return out;
}

aidl::VeskLogInfo toAidl(const hal::VeskLogInfo& info) {
    aidl::VeskLogInfo out;
    out.level = toAidl(info.level);
    out.base = toAidl(info.base);
    out.mode = toAidl(info.mode);
    out.total_size = toAidl(info.total_size);
    out.once_size = toAidl(info.once_size);
    return out;
}

hal::ProductInfo toHidl(const aidl::ProductInfo& info) {
    hal::ProductInfo out;
#define VESK_COPY(name) out.name = info.name;
    VESK_PRODUCT_INFO_TEXTS(VESK_COPY)
    VESK_PRODUCT_INFO_SWITCHES(VESK_COPY)
#undef VESK_COPY
    return out;
}

hal::WatchDogCfg toHidl(const aidl::WatchDogCfg& cfg) {
    hal::WatchDogCfg out;
    out.wdtDevice = cfg.wdtDevice;
    out.wdt_timeout = static_cast<uint32_t>(cfg.wdt_timeout);
    out.wdt_interval = static_cast<uint32_t>(cfg.wdt_interval);
    return out;
}

// The block is 16 bytes in HIDL; the service always sends 16, and any other length is cut or
// padded with zeros rather than read past.
hal::ProcessInfo toHidl(const aidl::ProcessInfo& info) {
    hal::ProcessInfo out;
    out.name1 = info.name1;
    out.name2 = info.name2;
    out.name3 = info.name3;
    for (size_t i = 0; i < 16; ++i) out.block[i] = i < info.block.size() ? info.block[i] : 0;
    out.value64 = static_cast<uint64_t>(info.value64);
    out.valueReal = info.valueReal;
    out.value32 = static_cast<uint32_t>(info.value32);
    return out;
}

hidl_vec<hal::UsbList> toHidl(const std::vector<aidl::UsbList>& list) {
    hidl_vec<hal::UsbList> out(list.size());
    for (size_t i = 0; i < list.size(); ++i) {
        out[i].vid = static_cast<uint32_t>(list[i].vid);
        out[i].pid = static_cast<uint32_t>(list[i].pid);
    }
    return out;
}

hal::CpuStatus toHidl(const aidl::CpuStatus& status) {
    hal::CpuStatus out;
    out.usr = status.usr;
    out.nic = status.nic;
    out.sys = status.sys;
    out.idle = status.idle;
    out.iowait = status.iowait;
    out.irq = status.irq;
    out.softirq = status.softirq;
    out.temperature = static_cast<uint32_t>(status.temperature);
    return out;
}

hal::VeskLogInfo toHidl(const aidl::VeskLogInfo& info) {
    hal::VeskLogInfo out;
    out.level = info.level;
    out.base = info.base;
    out.mode = info.mode;
    out.total_size = info.total_size;
    out.once_size = info.once_size;
    return out;
}

hal::VeskEffeResolution toHidl(const aidl::VeskEffeResolution& resolution) {
    hal::VeskEffeResolution out;
    out.width = static_cast<uint32_t>(resolution.width);
    out.height = static_cast<uint32_t>(resolution.height);
    out.fps = static_cast<uint32_t>(resolution.fps);
    out.status = resolution.status;
    return out;
}

hidl_vec<hal::VeskEffeResolution> toHidl(const std::vector<aidl::VeskEffeResolution>& list) {
    hidl_vec<hal::VeskEffeResolution> out(list.size());
    for (size_t i = 0; i < list.size(); ++i) out[i] = toHidl(list[i]);
    return out;
}

hal::MessageParcel toHidl(const aidl::MessageParcel& parcel) {
    hal::MessageParcel out;
    out.what = parcel.what;
    out.message = parcel.message;
    out.payload = toHidl(parcel.payload);
    return out;
}

hidl_vec<uint32_t> toHidl(const std::vector<int32_t>& words) {
    hidl_vec<uint32_t> out(words.size());
    for (size_t i = 0; i < words.size(); ++i) out[i] = static_cast<uint32_t>(words[i]);
    return out;
}

hidl_vec<uint8_t> toHidl(const std::vector<uint8_t>& bytes) {
    hidl_vec<uint8_t> out(bytes.size());
    std::copy(bytes.begin(), bytes.end(), out.begin());
    return out;
}

}  // namespace veskdm::aidlclient
