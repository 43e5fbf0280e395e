#include "VeskLog.h"

#include <android/log.h>
#include <cutils/properties.h>
#include <stdarg.h>
#include <string.h>

namespace vesk::log {
namespace {

bool allows(int priority, char level) {
    switch (priority) {
        case ANDROID_LOG_DEBUG:
            return level == 'D';
        case ANDROID_LOG_INFO:
            return level == 'I' || level == 'D';
        case ANDROID_LOG_WARN:
            return level == 'W' || level == 'I' || level == 'D';
        default:
            return true;  // errors are always written
    }
}

void write(int priority, const char* tag, const char* format, va_list args) {
    if (allows(priority, currentLevel())) __android_log_vprint(priority, tag, format, args);
}

}  // namespace

char currentLevel() {
    char value[PROPERTY_VALUE_MAX];
    memset(value, 0, sizeof(value));
    property_get(kLevelProperty, value, "E");
    return value[0];
}

#define VESK_LOG_AT(priority)           \
    va_list args;                       \
    va_start(args, format);             \
    write(priority, tag, format, args); \
    va_end(args)

void debug(const char* tag, const char* format, ...) {
    VESK_LOG_AT(ANDROID_LOG_DEBUG);
}

void info(const char* tag, const char* format, ...) {
    VESK_LOG_AT(ANDROID_LOG_INFO);
}

void warn(const char* tag, const char* format, ...) {
    VESK_LOG_AT(ANDROID_LOG_WARN);
}

void error(const char* tag, const char* format, ...) {
    VESK_LOG_AT(ANDROID_LOG_ERROR);
}

}  // namespace vesk::log
