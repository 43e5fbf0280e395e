// Status, colour and indicator LEDs: each keeps the state last set.
#include "SimMacros.h"
#include "vesksdk.h"

VESK_SIM_SETTER(bi_sysled_set_state, "sysled", int)
VESK_SIM_GETTER(bi_sysled_get_state, "sysled")
VESK_SIM_SETTER(bi_netled_set_state, "netled", int)
VESK_SIM_GETTER(bi_netled_get_state, "netled")
VESK_SIM_SETTER(bi_4gled_set_state, "4gled", int)
VESK_SIM_GETTER(bi_4gled_get_state, "4gled")
VESK_SIM_SETTER(bi_position_led_set_state, "position_led", int)
VESK_SIM_GETTER(bi_position_led_get_state, "position_led")
VESK_SIM_SETTER(bi_switchled_set_state, "switchled", int)
VESK_SIM_GETTER(bi_switchled_get_state, "switchled")
VESK_SIM_SETTER(bi_runningled_set_state, "runningled", int)
VESK_SIM_GETTER(bi_runningled_get_state, "runningled")
VESK_SIM_SETTER(bi_cloudled_set_state, "cloudled", int)
VESK_SIM_GETTER(bi_cloudled_get_state, "cloudled")

// The colour LED reads back as one word: red in bits 16-23, green in 8-15, blue in 0-7. Each
// colour is a level of 0 to 255; any other refuses the whole call.
int bi_triled_set_state(int red, int green, int blue) {
    return vesk::sim::SimCall("bi_triled_set_state", {red, green, blue}).run([&] {
        for (int level : {red, green, blue}) {
            if (level < 0 || level > 255) return -1;
        }
        return vesk::sim::board().setValue("triled", red << 16 | green << 8 | blue);
    });
}
VESK_SIM_GETTER(bi_triled_get_state, "triled")
