#include "CustomMode.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace vesk::hardware::veskdevicemanager::implementation {

int32_t truncateToInt32(double value) {
    double truncated = std::trunc(value);
    if (!std::isfinite(truncated) || truncated < std::numeric_limits<int32_t>::min() ||
        truncated > std::numeric_limits<int32_t>::max()) {
        return 0;
    }
    return static_cast<int32_t>(truncated);
}

void formatCustomMode(const timing_t& t, int (*gcdOf)(int, int),
                      char (&buffer)[kCustomModeBufferSize]) {
    memset(buffer, 0, sizeof(buffer));
    int g = gcdOf(static_cast<int>(t.h_active), static_cast<int>(t.v_active));
    // The divisions are unsigned; with no common divisor at all (both sizes 0) the ratio is 0:0.
    uint32_t divisor = static_cast<uint32_t>(g);
    uint32_t num = divisor != 0 ? t.h_active / divisor : 0;
    uint32_t den = divisor != 0 ? t.v_active / divisor : 0;
    int written = snprintf(buffer, sizeof(buffer),
                           "%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d",
                           truncateToInt32(t.h_freq * 1000), truncateToInt32(t.v_freq * 1000),
                           truncateToInt32(t.pix_clock * 1000), static_cast<int>(t.h_total),
                           static_cast<int>(t.h_blank), static_cast<int>(t.h_front_porch),
                           static_cast<int>(t.h_sync), static_cast<int>(t.h_back_porch),
                           static_cast<int>(t.h_active), static_cast<int>(t.v_total),
                           static_cast<int>(t.v_blank), static_cast<int>(t.v_front_porch),
                           static_cast<int>(t.v_sync), static_cast<int>(t.v_back_porch),
                           static_cast<int>(t.v_active), 1, 0, 1, static_cast<int>(num),
                           static_cast<int>(den), 1, 1);
    if (written < 0 || static_cast<size_t>(written) >= sizeof(buffer)) abort();  // cannot happen
}

}  // namespace vesk::hardware::veskdevicemanager::implementation
