/*
 * The service's per-call trace: "%s %d\n" with the method's name and its fixed line number,
 * at debug level under the service's tag.
 */
#pragma once

#include "VeskLog.h"

namespace vesk::hardware::veskdevicemanager::implementation {

inline constexpr char kTag[] = "vesk_system_hidl_device";

inline void trace(const char* method, int line) {
    vesk::log::debug(kTag, "%s %d\n", method, line);
}

}  // namespace vesk::hardware::veskdevicemanager::implementation
