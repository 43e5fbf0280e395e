#include "DisplayModeFixture.h"

#include <cstdio>

#include "Ubootenv.h"

namespace vesk::test {

std::string describe(const timing_t& t) {
    char text[1024];
    snprintf(text, sizeof(text),
             "%s pix_clock=%a h=%u/%u/%u/%u/%u/%u pol=%d h_freq=%a h_period=%a v=%u/%u/%u/%u/%u/%u/"
             "%u pol=%d v_freq=%a v_period=%a bw=%u/%u/%u aspect=%s",
             t.name.c_str(), t.pix_clock, t.h_total, t.h_active, t.h_blank, t.h_front_porch,
             t.h_sync, t.h_back_porch, t.h_sync_polarity, t.h_freq, t.h_period, t.v_total,
             t.v_active, t.v_blank, t.vblank_duration, t.v_front_porch, t.v_sync, t.v_back_porch,
             t.v_sync_polarity, t.v_freq, t.v_period, t.peak_bw, t.line_bw, t.active_bw,
             t.aspect.c_str());
    return text;
}

void DisplayModeTest::storeEnv(const std::string& name, const std::string& value) {
    Ubootenv env;
    ASSERT_EQ(0, env.updateValue(name.c_str(), value.c_str())) << name;
    vesk::host::clearCapturedLog();
}

}  // namespace vesk::test
