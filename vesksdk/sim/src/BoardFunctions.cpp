#include "BoardFunctions.h"

#include <cstring>
#include <iterator>

#include "vesk/sim/ScriptCheck.h"
#include "vesksdk_records.h"

namespace vesk::sim {
namespace {

constexpr std::size_t kArgumentCapacity = 0;

#define PLAIN(name) \
    { #name, OutKind::None, 0, false }
#define FILLS(name, size) \
    { #name, OutKind::Bytes, size, false }
#define SERIAL(prefix)                                                       \
    PLAIN(bi_serial_##prefix##_open), PLAIN(bi_serial_##prefix##_close),     \
            FILLS(bi_serial_##prefix##_blocking_read, kArgumentCapacity),    \
            FILLS(bi_serial_##prefix##_nonblocking_read, kArgumentCapacity), \
            PLAIN(bi_serial_##prefix##_write)

const BoardFunction kFunctions[] = {
        PLAIN(bi_init_product_config),
        // LEDs
        PLAIN(bi_sysled_set_state),
        PLAIN(bi_sysled_get_state),
        PLAIN(bi_netled_set_state),
        PLAIN(bi_netled_get_state),
        PLAIN(bi_triled_set_state),
        PLAIN(bi_triled_get_state),
        PLAIN(bi_4gled_set_state),
        PLAIN(bi_4gled_get_state),
        PLAIN(bi_position_led_set_state),
        PLAIN(bi_position_led_get_state),
        PLAIN(bi_switchled_set_state),
        PLAIN(bi_switchled_get_state),
        PLAIN(bi_runningled_set_state),
        PLAIN(bi_runningled_get_state),
        PLAIN(bi_cloudled_set_state),
        PLAIN(bi_cloudled_get_state),
        // Product record
        FILLS(bi_info_get_product_info, VESK_PRODUCT_RECORD_SIZE),
        PLAIN(bi_info_set_product_info),
        PLAIN(bi_info_get_protocol_type),
        // Serial channels
        SERIAL(485),
        SERIAL(485_2),
        SERIAL(232),
        SERIAL(lora),
        SERIAL(hdmi),
        SERIAL(ttl),
        SERIAL(ttl_2),
        // Watchdog
        FILLS(bi_watchdog_parse, sizeof(vesk_watchdog_record)),
        PLAIN(bi_watchdog_open),
        PLAIN(bi_watchdog_feed),
        PLAIN(bi_watchdog_close),
        // Relays and switches
        PLAIN(bi_relay_set_state),
        PLAIN(bi_relay_get_state),
        PLAIN(bi_peripheral_relay_enable),
        PLAIN(bi_peripheral_relay_get_status),
        PLAIN(bi_pc_ctrl_enable),
        PLAIN(bi_pc_ctrl_get_status),
        PLAIN(bi_usb_sub_card_led_enable),
        PLAIN(bi_usb_sub_card_led_get_status),
        PLAIN(bi_factory_tools_enable),
        PLAIN(bi_factory_tools_get_status),
        // Data blocks and the FPGA
        PLAIN(bi_block_write_defined),
        FILLS(bi_block_read_defined, kArgumentCapacity),
        PLAIN(bi_block_write_screen),
        FILLS(bi_block_read_screen, kArgumentCapacity),
        PLAIN(bi_block_write_fpga_program),
        FILLS(bi_block_read_fpga_program, kArgumentCapacity),
        PLAIN(bi_block_write_data),
        FILLS(bi_block_read_data, kArgumentCapacity),
        PLAIN(bi_block_check),
        PLAIN(bi_fpga_load_program),
        PLAIN(bi_fpga_load_parameter),
        PLAIN(bi_fpga_spi_write),
        FILLS(bi_fpga_spi_write_read, kArgumentCapacity),
        FILLS(bi_fpga_spi_read, kArgumentCapacity),
        PLAIN(bi_fpga_firmware_update),
        // OPS slot
        PLAIN(bi_ops_set_usb_port),
        PLAIN(bi_ops_get_usb_port),
        PLAIN(bi_ops_switch_control),
        PLAIN(bi_ops_get_switch_state),
        PLAIN(bi_ops_on_set_state),
        PLAIN(bi_ops_on_get_state),
        PLAIN(bi_ops_control_set_state),
        PLAIN(bi_ops_control_get_state),
        PLAIN(bi_ops_detect_get_state),
        // Processes and scheduling
        PLAIN(bi_kill_get_process_num),
        {"bi_get_process_info_by_name", OutKind::ProcessRecord, sizeof(vesk_process_record), false},
        PLAIN(bi_kill_process_num),
        PLAIN(bi_sched_unbind_pid_from_main_core),
        PLAIN(bi_sched_bind_pid_to_main_core),
        PLAIN(bi_sched_adjust_cpu_freq),
        // USB
        PLAIN(bi_otg_get_mode),
        PLAIN(bi_otg_set_mode),
        FILLS(bi_info_get_usb_list, sizeof(vesk_usb_list_record)),
        PLAIN(bi_usb_set_switch_enable),
        PLAIN(bi_usb_get_switch_enable),
        PLAIN(bi_set_usb_state),
        PLAIN(bi_get_usb_state),
        // System information
        FILLS(bi_info_get_cpu_state, sizeof(vesk_cpu_record)),
        PLAIN(bi_network_detection),
        PLAIN(bi_network_get_ap_insulation),
        PLAIN(bi_network_set_ap_insulation),
        PLAIN(bi_network_get_ap_channel),
        // Log daemon
        PLAIN(bi_vesk_logd_set_configure),
        FILLS(bi_vesk_logd_get_configure, sizeof(vesk_log_record)),
        PLAIN(bi_vesk_logd_compress),
        PLAIN(bi_vesk_logd_clear),
        // RTC
        PLAIN(bi_rtc_set_boot_enable),
        PLAIN(bi_rtc_set_wake_enable),
        PLAIN(bi_rtc_set_boot_time),
        PLAIN(bi_rtc_set_wake_time),
        FILLS(bi_rtc_get_boot_time, VESK_RTC_TIME_WORDS * 4),
        FILLS(bi_rtc_get_wake_time, VESK_RTC_TIME_WORDS * 4),
        // Resolutions and EDID
        FILLS(bi_resolution_get_parameters_list, VESK_RESOLUTION_LIST_BYTES),
        FILLS(bi_resolution_calculate_parameters, sizeof(vesk_resolution_record)),
        FILLS(bi_resolution_get_parameters, sizeof(vesk_resolution_record)),
        FILLS(bi_resolution_get_edid_from_defined, VESK_EDID_SIZE),
        FILLS(bi_resolution_get_edid_by_model, VESK_EDID_SIZE),
        FILLS(bi_resolution_get_prefferred_timing_by_edid, sizeof(vesk_resolution_record)),
        PLAIN(bi_resolution_screen_mode_set_state),
        PLAIN(bi_resolution_screen_mode_get_state),
        PLAIN(bi_display_get_hdmi_in_state),
        PLAIN(bi_display_get_hdmi_out_state),
        // Sensors and identity
        PLAIN(bi_adc_get_board_id),
        {"bi_adc_get_board_voltage", OutKind::None, 0, true},
        {"bi_adc_get_board_temperature", OutKind::None, 0, true},
        // Power, audio, video input and the rest
        PLAIN(bi_power_low_power_mode),
        PLAIN(bi_power_normal_mode),
        PLAIN(bi_i2c_set_audio_enable),
        PLAIN(bi_i2c_get_audio_enable),
        PLAIN(bi_i2c_set_video_inputsrc_volume),
        PLAIN(bi_i2c_get_video_inputsrc_volume),
        PLAIN(bi_lora_get_state),
        PLAIN(bi_infrared_write),
        PLAIN(bi_restore_factory_setting),
        PLAIN(bi_4g_module_set_state),
        PLAIN(bi_4g_module_get_state),
        PLAIN(bi_4g_power_set_state),
        PLAIN(bi_4g_power_get_state),
        PLAIN(bi_headphone_power_set_state),
        PLAIN(bi_headphone_power_get_state),
        PLAIN(bi_power_amplifier_set_state),
        PLAIN(bi_power_amplifier_get_state),
        PLAIN(bi_set_pq_state),
        PLAIN(bi_get_pq_state),
};

#undef PLAIN
#undef FILLS
#undef SERIAL

}  // namespace

std::vector<std::string> scriptableFunctions() {
    std::vector<std::string> names;
    for (const BoardFunction& function : kFunctions) names.emplace_back(function.name);
    return names;
}

const BoardFunction* findBoardFunction(const std::string& name) {
    for (const BoardFunction& function : kFunctions) {
        if (name == function.name) return &function;
    }
    return nullptr;
}

}  // namespace vesk::sim
