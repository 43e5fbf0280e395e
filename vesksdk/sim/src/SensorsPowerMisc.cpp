// Board identity and sensors, power modes, audio and video-input levels, and the remaining
// switches of the board.
#include "SimMacros.h"
#include "vesksdk.h"

using vesk::sim::SimCall;

VESK_SIM_GETTER(bi_adc_get_board_id, "board_id")

float bi_adc_get_board_voltage(void) {
    return SimCall("bi_adc_get_board_voltage", {}).runFloat([] { return 12.15f; });
}

float bi_adc_get_board_temperature(void) {
    return SimCall("bi_adc_get_board_temperature", {}).runFloat([] { return 41.5f; });
}

// "power_mode": 0 normal, 1 low power.
int bi_power_low_power_mode(void) {
    return SimCall("bi_power_low_power_mode", {}).run([] {
        return vesk::sim::board().setValue("power_mode", 1);
    });
}
int bi_power_normal_mode(void) {
    return SimCall("bi_power_normal_mode", {}).run([] {
        return vesk::sim::board().setValue("power_mode", 0);
    });
}

VESK_SIM_INDEXED_SETTER(bi_i2c_set_audio_enable, "audio_enable", unsigned char, unsigned char)
VESK_SIM_INDEXED_GETTER(bi_i2c_get_audio_enable, "audio_enable", unsigned char)
VESK_SIM_INDEXED_SETTER(bi_i2c_set_video_inputsrc_volume, "video_inputsrc_volume", unsigned char,
                        unsigned char)
VESK_SIM_INDEXED_GETTER(bi_i2c_get_video_inputsrc_volume, "video_inputsrc_volume", unsigned char)

VESK_SIM_GETTER(bi_lora_get_state, "lora")
VESK_SIM_ACTION(bi_infrared_write, 0)

int bi_restore_factory_setting(int mode) {
    return SimCall("bi_restore_factory_setting", {mode}).run([] { return 0; });
}

VESK_SIM_SETTER(bi_4g_module_set_state, "4g_module", int)
VESK_SIM_GETTER(bi_4g_module_get_state, "4g_module")
VESK_SIM_SETTER(bi_4g_power_set_state, "4g_power", int)
VESK_SIM_GETTER(bi_4g_power_get_state, "4g_power")
VESK_SIM_SETTER(bi_headphone_power_set_state, "headphone_power", int)
VESK_SIM_GETTER(bi_headphone_power_get_state, "headphone_power")
VESK_SIM_SETTER(bi_power_amplifier_set_state, "power_amplifier", int)
VESK_SIM_GETTER(bi_power_amplifier_get_state, "power_amplifier")
VESK_SIM_SETTER(bi_set_pq_state, "pq", int)
VESK_SIM_GETTER(bi_get_pq_state, "pq")
