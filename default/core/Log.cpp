/*
 * The log daemon: its configuration, compressing and clearing its logs.
 */
#include <vesksdk.h>
#include <vesksdk_records.h>

#include <cstddef>
#include <cstring>

#include "ServiceTrace.h"
#include "TraceLines.h"
#include "VeskDeviceManager.h"

namespace vesk::hardware::veskdevicemanager::implementation {
namespace {

constexpr size_t kLogRecordSize = sizeof(vesk_log_record);
constexpr size_t kLogFieldOffsets[] = {
        offsetof(vesk_log_record, level), offsetof(vesk_log_record, base),
        offsetof(vesk_log_record, mode), offsetof(vesk_log_record, total_size),
        offsetof(vesk_log_record, once_size)};

// The log record with one zero byte behind it, so that a field that fills the record to its
// end still reads as a terminated string.
struct LogRecordBuffer {
    char bytes[kLogRecordSize + 1];
    LogRecordBuffer() { memset(bytes, 0, sizeof(bytes)); }
    const char* field(size_t index) const { return bytes + kLogFieldOffsets[index]; }
};

// Copies `text` to the start of its field, bounded only by the room left in the record: a text
// as long as its field runs on into the next one, and one longer than the room ends the process
// through the C library's checked copy. The board library relies on this layout as it stands.
void copyLogField(LogRecordBuffer& record, size_t index, const hidl_string& text) {
    size_t offset = kLogFieldOffsets[index];
    __builtin___memcpy_chk(record.bytes + offset, text.c_str(), text.size(),
                           kLogRecordSize - offset);
}

}  // namespace

Return<int32_t> VeskDeviceManager::setVeskLogConfigure(const VeskLogInfo& info) {
    trace("setVeskLogConfigure", VESK_TRACE_LINE("setVeskLogConfigure"));
    LogRecordBuffer record;
    copyLogField(record, 0, info.level);
    copyLogField(record, 1, info.base);
    copyLogField(record, 2, info.mode);
    copyLogField(record, 3, info.total_size);
    copyLogField(record, 4, info.once_size);
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

// Zero is the board's failure here, unlike the setter's negative results.
Return<void> VeskDeviceManager::getVeskLogConfigure(getVeskLogConfigure_cb _hidl_cb) {
    trace("getVeskLogConfigure", VESK_TRACE_LINE("getVeskLogConfigure"));
    LogRecordBuffer record;
    VeskLogInfo info{};
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
    _hidl_cb(ret, info);
    return Void();
}

Return<int32_t> VeskDeviceManager::compressVeskLog(const hidl_string& source,
                                                   const hidl_string& target) {
    trace("compressVeskLog", VESK_TRACE_LINE("compressVeskLog"));
    return bi_vesk_logd_compress(source.c_str(), target.c_str());
}

Return<int32_t> VeskDeviceManager::clearVeskLog(const hidl_string& path) {
    trace("clearVeskLog", VESK_TRACE_LINE("clearVeskLog"));
    return bi_vesk_logd_clear(path.c_str());
}

}  // namespace vesk::hardware::veskdevicemanager::implementation
