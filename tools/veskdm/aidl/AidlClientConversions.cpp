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

// A field as the other side holds it: HIDL's unsigned ints from AIDL's ints of the same bits,
// texts and the rest as they are.
#define VESK_COPY(name) out.name = static_cast<decltype(out.name)>(in.name);

aidl::VeskLogInfo toAidl(const hal::VeskLogInfo& in) {
    aidl::VeskLogInfo out;
    VESK_LOG_INFO_FIELDS(VESK_COPY)
    return out;
}

hal::ProductInfo toHidl(const aidl::ProductInfo& in) {
    hal::ProductInfo out;
    VESK_PRODUCT_INFO_TEXTS(VESK_COPY)
    VESK_PRODUCT_INFO_SWITCHES(VESK_COPY)
    return out;
}

hal::WatchDogCfg toHidl(const aidl::WatchDogCfg& in) {
    hal::WatchDogCfg out;
    VESK_WATCHDOG_CFG_FIELDS(VESK_COPY)
    return out;
}

// The block is 16 bytes in HIDL; the service always sends 16, and any other length is cut or
// padded with zeros rather than read past.
hal::ProcessInfo toHidl(const aidl::ProcessInfo& in) {
    hal::ProcessInfo out;
    VESK_PROCESS_INFO_FIELDS(VESK_COPY)
    for (size_t i = 0; i < 16; ++i) out.block[i] = i < in.block.size() ? in.block[i] : 0;
    return out;
}

hidl_vec<hal::UsbList> toHidl(const std::vector<aidl::UsbList>& list) {
    hidl_vec<hal::UsbList> all(list.size());
    for (size_t i = 0; i < list.size(); ++i) {
        const aidl::UsbList& in = list[i];
        hal::UsbList& out = all[i];
        VESK_USB_LIST_FIELDS(VESK_COPY)
    }
    return all;
}

hal::CpuStatus toHidl(const aidl::CpuStatus& in) {
    hal::CpuStatus out;
    VESK_CPU_STATUS_FIELDS(VESK_COPY)
    return out;
}

hal::VeskLogInfo toHidl(const aidl::VeskLogInfo& in) {
    hal::VeskLogInfo out;
    VESK_LOG_INFO_FIELDS(VESK_COPY)
    return out;
}

hal::VeskEffeResolution toHidl(const aidl::VeskEffeResolution& in) {
    hal::VeskEffeResolution out;
    VESK_EFFE_RESOLUTION_FIELDS(VESK_COPY)
    return out;
}

#undef VESK_COPY

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
