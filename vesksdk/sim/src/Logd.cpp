// The log daemon's configuration record, and its compress and clear actions.
#include <cstring>

#include "SimMacros.h"
#include "vesksdk.h"

using vesk::sim::BoardData;
using vesk::sim::SimCall;
using vesk::sim::text;

namespace {

template <std::size_t N>
bool terminated(const char (&field)[N]) {
    return memchr(field, '\0', N) != nullptr;
}

// Every field must be a text that ends inside its own width.
bool wellFormed(const vesk_log_record& log) {
    return terminated(log.level) && terminated(log.base) && terminated(log.mode) &&
           terminated(log.total_size) && terminated(log.once_size);
}

}  // namespace

// Keeps the configuration (in the state file); -1 for a record whose texts run past their fields.
int bi_vesk_logd_set_configure(void* record) {
    return SimCall("bi_vesk_logd_set_configure",
                   {vesk::sim::inputBytes(record, sizeof(vesk_log_record))})
            .run([&] {
                if (!record) return -1;
                vesk_log_record log;
                memcpy(&log, record, sizeof(log));
                if (!wellFormed(log)) return -1;
                return vesk::sim::board().with([&](BoardData& data) { data.log = log; }) ? 0 : -1;
            });
}

// 1 with the record filled (0 or negative would be a failure).
int bi_vesk_logd_get_configure(void* record) {
    return SimCall("bi_vesk_logd_get_configure", {vesk::sim::outputBuffer()})
            .out(record, sizeof(vesk_log_record))
            .run([&] {
                if (!record) return -1;
                vesk::sim::board().with(
                        [&](BoardData& data) { memcpy(record, &data.log, sizeof(data.log)); });
                return 1;
            });
}

int bi_vesk_logd_compress(const char* source, const char* target) {
    return SimCall("bi_vesk_logd_compress", {text(source), text(target)}).run([&] {
        return source && target && *source && *target ? 0 : -1;
    });
}

int bi_vesk_logd_clear(const char* path) {
    return SimCall("bi_vesk_logd_clear", {text(path)}).run([&] { return path && *path ? 0 : -1; });
}
