/*
 * The log daemon: its configuration, compressing and clearing its logs.
 */
#include <vesksdk.h>
#include <vesksdk_records.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <optional>
#include <string>
#include <utility>

#include "DeviceManagerCore.h"
#include "ServiceTrace.h"
#include "TraceLines.h"

namespace vesk::hardware::veskdevicemanager::core {

using implementation::kTag;
using implementation::trace;

namespace {

constexpr size_t kLogRecordSize = sizeof(vesk_log_record);
constexpr size_t kLogFieldOffsets[] = {
        offsetof(vesk_log_record, level), offsetof(vesk_log_record, base),
        offsetof(vesk_log_record, mode), offsetof(vesk_log_record, total_size),
        offsetof(vesk_log_record, once_size)};
constexpr const char* kLogFieldNames[] = {"level", "base", "mode", "total_size", "once_size"};

// The texts of `info`, in the order of their fields (the order they are copied in).
std::array<const std::string*, std::size(kLogFieldOffsets)> fieldTexts(const VeskLogInfo& info) {
    return {&info.level, &info.base, &info.mode, &info.total_size, &info.once_size};
}

// The log record with one zero byte behind it, so that a field that fills the record to its
// end still reads as a terminated string.
struct LogRecordBuffer {
    char bytes[kLogRecordSize + 1];
    LogRecordBuffer() { memset(bytes, 0, sizeof(bytes)); }
    const char* field(size_t index) const { return bytes + kLogFieldOffsets[index]; }
};

// The room a field's copy has: from its start to the record's end.
constexpr size_t roomOf(size_t index) {
    return kLogRecordSize - kLogFieldOffsets[index];
}

// Copies `text` to the start of its field, bounded only by the room left in the record: a text
// as long as its field runs on into the next one, and one longer than the room ends the process
// through the C library's checked copy. The board library relies on this layout as it stands.
void copyLogField(LogRecordBuffer& record, size_t index, const std::string& text) {
    __builtin___memcpy_chk(record.bytes + kLogFieldOffsets[index], text.c_str(), text.size(),
                           roomOf(index));
}

}  // namespace

int32_t DeviceManagerCore::setVeskLogConfigure(const VeskLogInfo& info) {
    trace("setVeskLogConfigure", VESK_TRACE_LINE("setVeskLogConfigure"));
    LogRecordBuffer record;
    auto texts = fieldTexts(info);
    for (size_t i = 0; i < texts.size(); ++i) copyLogField(record, i, *texts[i]);
    int ret = bi_vesk_logd_set_configure(record.bytes);
    if (ret < 0) {
        vesk::log::error(kTag, "bi_vesk_logd_set_configure failed, ret:%d\n", ret);
    } else {
        vesk::log::debug(kTag,
                         "hidl  -----loginfo level:%s, base:%s, mode:%s, total_size:%s, "
                         "once_size:%s, \n",
                         record.field(0), record.field(1), record.field(2), record.field(3),
                         record.field(4));
        vesk::log::debug(kTag, "%s %s %d", record.field(0), record.field(1), ret);
    }
    return ret;
}

std::optional<std::string> DeviceManagerCore::logInfoRefusal(const VeskLogInfo& info) const {
    auto texts = fieldTexts(info);
    for (size_t i = 0; i < texts.size(); ++i) {
        if (texts[i]->size() > roomOf(i)) {
            return std::string(kLogFieldNames[i]) + ": " + std::to_string(texts[i]->size()) +
                   " bytes, the record has room for " + std::to_string(roomOf(i));
        }
    }
    return std::nullopt;
}

// Zero is the board's failure here, unlike the setter's negative results.
LogConfigureResult DeviceManagerCore::getVeskLogConfigure() {
    trace("getVeskLogConfigure", VESK_TRACE_LINE("getVeskLogConfigure"));
    LogRecordBuffer record;
    VeskLogInfo info;
    int ret = bi_vesk_logd_get_configure(record.bytes);
    if (ret == 0) {
        vesk::log::error(kTag, "bi_vesk_logd_get_configure failed, ret:%d\n", ret);
    } else {
        vesk::log::debug(kTag,
                         "hidl -----loginfo level:%s, base:%s, mode:%s, total_size:%s, "
                         "once_size:%s, \n",
                         record.field(0), record.field(1), record.field(2), record.field(3),
                         record.field(4));
        if (ret >= 1) {
            info.level = record.field(0);
            info.base = record.field(1);
            info.mode = record.field(2);
            info.total_size = record.field(3);
            info.once_size = record.field(4);
        }
    }
    return {ret, std::move(info)};
}

int32_t DeviceManagerCore::compressVeskLog(const std::string& source, const std::string& target) {
    trace("compressVeskLog", VESK_TRACE_LINE("compressVeskLog"));
    return bi_vesk_logd_compress(source.c_str(), target.c_str());
}

int32_t DeviceManagerCore::clearVeskLog(const std::string& path) {
    trace("clearVeskLog", VESK_TRACE_LINE("clearVeskLog"));
    return bi_vesk_logd_clear(path.c_str());
}

}  // namespace vesk::hardware::veskdevicemanager::core
