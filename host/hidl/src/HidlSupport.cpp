#include <hidl/HidlSupport.h>

#define LOG_TAG "HidlSupport"
#include <log/log.h>

#include <cstdio>

namespace android::hardware {

namespace details {

void logAlwaysFatal(const char* message) {
    LOG_ALWAYS_FATAL("%s", message);
    __builtin_unreachable();
}

}  // namespace details

std::string toString(float value) {
    return std::to_string(value);
}

std::string toString(double value) {
    return std::to_string(value);
}

std::string toString(const hidl_string& value) {
    return "\"" + std::string(value) + "\"";
}

}  // namespace android::hardware
