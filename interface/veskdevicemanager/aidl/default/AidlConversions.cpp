#include "AidlConversions.h"

#include <utility>

#include "AidlText.h"

namespace aidl::vesk::hardware::veskdevicemanager {

namespace {

// A field as the AIDL types hold it: a text made UTF-8 (AidlText.h), a uint32_t or uint64_t as
// the int or long of the same bits.
std::string field(const std::string& text) {
    return aidlText(text);
}
int32_t field(uint32_t value) {
    return static_cast<int32_t>(value);
}
int64_t field(uint64_t value) {
    return static_cast<int64_t>(value);
}
template <typename Same>
Same field(Same value) {
    return value;
}

}  // namespace

#define VESK_COPY(name) out.name = field(in.name);

ProductInfo toAidl(const core::ProductInfo& in) {
    ProductInfo out;
    VESK_PRODUCT_INFO_TEXTS(VESK_COPY)
    VESK_PRODUCT_INFO_SWITCHES(VESK_COPY)
    return out;
}

WatchDogCfg toAidl(const core::WatchDogCfg& in) {
    WatchDogCfg out;
    VESK_WATCHDOG_CFG_FIELDS(VESK_COPY)
    return out;
}

ProcessInfo toAidl(const core::ProcessInfo& in) {
    ProcessInfo out;
    VESK_PROCESS_INFO_FIELDS(VESK_COPY)
    out.block.assign(in.block.begin(), in.block.end());
    return out;
}

std::vector<UsbList> toAidl(const std::vector<core::UsbList>& list) {
    std::vector<UsbList> all(list.size());
    for (size_t i = 0; i < list.size(); ++i) {
        const core::UsbList& in = list[i];
        UsbList& out = all[i];
        VESK_USB_LIST_FIELDS(VESK_COPY)
    }
    return all;
}

CpuStatus toAidl(const core::CpuStatus& in) {
    CpuStatus out;
    VESK_CPU_STATUS_FIELDS(VESK_COPY)
    return out;
}

VeskLogInfo toAidl(const core::VeskLogInfo& in) {
    VeskLogInfo out;
    VESK_LOG_INFO_FIELDS(VESK_COPY)
    return out;
}

VeskEffeResolution toAidl(const core::VeskEffeResolution& in) {
    VeskEffeResolution out;
    VESK_EFFE_RESOLUTION_FIELDS(VESK_COPY)
    return out;
}

#undef VESK_COPY

std::vector<VeskEffeResolution> toAidl(const std::vector<core::VeskEffeResolution>& list) {
    std::vector<VeskEffeResolution> out;
    out.reserve(list.size());
    for (const core::VeskEffeResolution& resolution : list) out.push_back(toAidl(resolution));
    return out;
}

std::vector<int32_t> toAidl(const std::vector<uint32_t>& words) {
    return std::vector<int32_t>(words.begin(), words.end());
}

ReadResult toAidl(core::ReadResult&& result) {
    ReadResult out;
    out.data = std::move(result.data);
    out.bytes_read = result.bytesRead;
    return out;
}

TransferResult toAidl(core::TransferResult&& result) {
    TransferResult out;
    out.ret = result.ret;
    out.data = std::move(result.data);
    return out;
}

LogConfigureResult toAidl(const core::LogConfigureResult& result) {
    LogConfigureResult out;
    out.ret = result.ret;
    out.info = toAidl(result.info);
    return out;
}

core::VeskLogInfo toCore(const VeskLogInfo& in) {
    core::VeskLogInfo out;
#define VESK_COPY(name) out.name = in.name;
    VESK_LOG_INFO_FIELDS(VESK_COPY)
#undef VESK_COPY
    return out;
}

}  // namespace aidl::vesk::hardware::veskdevicemanager
