/*
 * libvesksdk: the board library's C interface, every function the device manager calls.
 * Results are int: a value or status, negative for a failure, unless stated otherwise.
 * Buffers are lent by the caller; record layouts are in vesksdk_records.h.
 */
#ifndef VESKSDK_H
#define VESKSDK_H

#ifdef __cplusplus
extern "C" {
#endif

/* One-time initialisation of the board library. */
int bi_init_product_config(void);

/* Status and colour LEDs. */
int bi_sysled_set_state(int state);
int bi_sysled_get_state(void);
int bi_netled_set_state(int state);
int bi_netled_get_state(void);
int bi_triled_set_state(int red, int green, int blue);
int bi_triled_get_state(void);
int bi_4gled_set_state(int state);
int bi_4gled_get_state(void);
int bi_position_led_set_state(int state);
int bi_position_led_get_state(void);
int bi_switchled_set_state(int state);
int bi_switchled_get_state(void);
int bi_runningled_set_state(int state);
int bi_runningled_get_state(void);
int bi_cloudled_set_state(int state);
int bi_cloudled_get_state(void);

/* Product record (2048 bytes, vesk_product_record). */
int bi_info_get_product_info(void* record);
int bi_info_set_product_info(const char* useDhcp);
int bi_info_get_protocol_type(void);

/* Serial channels: open, close, blocking read, non-blocking read, write. */
#define VESKSDK_SERIAL_FUNCTIONS(prefix)                                                        \
    int bi_serial_##prefix##_open(int baudrate, unsigned char databits, unsigned char stopbits, \
                                  signed char parity);                                          \
    int bi_serial_##prefix##_close(void);                                                       \
    int bi_serial_##prefix##_blocking_read(unsigned char* buffer, unsigned int capacity,        \
                                           unsigned int timeoutMs);                             \
    int bi_serial_##prefix##_nonblocking_read(unsigned char* buffer, unsigned int capacity);    \
    int bi_serial_##prefix##_write(const unsigned char* data, unsigned int count);
VESKSDK_SERIAL_FUNCTIONS(485)
VESKSDK_SERIAL_FUNCTIONS(485_2)
VESKSDK_SERIAL_FUNCTIONS(232)
VESKSDK_SERIAL_FUNCTIONS(lora)
VESKSDK_SERIAL_FUNCTIONS(hdmi)
VESKSDK_SERIAL_FUNCTIONS(ttl)
VESKSDK_SERIAL_FUNCTIONS(ttl_2)
#undef VESKSDK_SERIAL_FUNCTIONS

/* Watchdog (record: vesk_watchdog_record). */
int bi_watchdog_parse(void* record);
int bi_watchdog_open(const char* device, unsigned int timeout);
int bi_watchdog_feed(const char* device);
int bi_watchdog_close(const char* device);

/* Relays and peripheral switches. */
int bi_relay_set_state(int state);
int bi_relay_get_state(void);
int bi_peripheral_relay_enable(unsigned int devNum, int enable);
int bi_peripheral_relay_get_status(unsigned int devNum);
int bi_pc_ctrl_enable(int enable);
int bi_pc_ctrl_get_status(void);
int bi_usb_sub_card_led_enable(int enable);
int bi_usb_sub_card_led_get_status(void);
int bi_factory_tools_enable(int enable);
int bi_factory_tools_get_status(void);

/* Data blocks and the FPGA. */
int bi_block_write_defined(unsigned int offset, const unsigned char* data, unsigned int count);
int bi_block_read_defined(unsigned int offset, unsigned char* buffer, unsigned int length);
int bi_block_write_screen(unsigned int offset, const unsigned char* data, unsigned int count);
int bi_block_read_screen(unsigned int offset, unsigned char* buffer, unsigned int length);
int bi_block_write_fpga_program(unsigned int offset, const unsigned char* data, unsigned int length);
int bi_block_read_fpga_program(unsigned int offset, unsigned char* buffer, unsigned int length);
int bi_block_write_data(const char* path, unsigned int offset, const unsigned char* data,
                        unsigned int count);
int bi_block_read_data(const char* path, unsigned int offset, unsigned char* buffer,
                       unsigned int length);
int bi_block_check(const char* path);
int bi_fpga_load_program(void);
int bi_fpga_load_parameter(void);
int bi_fpga_spi_write(const unsigned char* data, unsigned int count);
/* Sends `count` bytes of `buffer` and leaves the bytes received in it; the count received. */
int bi_fpga_spi_write_read(unsigned char* buffer, unsigned int count);
int bi_fpga_spi_read(unsigned char* buffer, int size);
int bi_fpga_firmware_update(const char* path);

/* OPS slot. */
int bi_ops_set_usb_port(int port);
int bi_ops_get_usb_port(void);
int bi_ops_switch_control(int state);
int bi_ops_get_switch_state(void);
int bi_ops_on_set_state(int state);
int bi_ops_on_get_state(void);
int bi_ops_control_set_state(int state);
int bi_ops_control_get_state(void);
int bi_ops_detect_get_state(void);

/* Processes and scheduling (record: vesk_process_record). */
int bi_kill_get_process_num(const char* name, int flag);
/* 1 when the process was found and the record filled. */
int bi_get_process_info_by_name(const char* name, void* record);
int bi_kill_process_num(int pid);
int bi_sched_unbind_pid_from_main_core(int pid);
int bi_sched_bind_pid_to_main_core(int pid);
int bi_sched_adjust_cpu_freq(const char* mode);

/* USB. */
int bi_otg_get_mode(void);
int bi_otg_set_mode(unsigned int mode);
int bi_info_get_usb_list(void* record);
int bi_usb_set_switch_enable(unsigned int enable);
int bi_usb_get_switch_enable(void);
int bi_set_usb_state(unsigned int index, unsigned int enable);
int bi_get_usb_state(unsigned int index);

/* System information (record: vesk_cpu_record); 0 on success. */
int bi_info_get_cpu_state(void* record);
int bi_network_detection(void);
int bi_network_get_ap_insulation(void);
int bi_network_set_ap_insulation(unsigned int enable);
int bi_network_get_ap_channel(void);

/* Log daemon (record: vesk_log_record). get: non-zero on success, 0 or negative on failure. */
int bi_vesk_logd_set_configure(void* record);
int bi_vesk_logd_get_configure(void* record);
int bi_vesk_logd_compress(const char* source, const char* target);
int bi_vesk_logd_clear(const char* path);

/* RTC boot and wake times: set reads 6 words (year, month, day, hour, minute, second); get fills
 * a buffer of 256 words. */
int bi_rtc_set_boot_enable(unsigned int enable);
int bi_rtc_set_wake_enable(unsigned int enable);
int bi_rtc_set_boot_time(const unsigned int* time);
int bi_rtc_set_wake_time(const unsigned int* time);
int bi_rtc_get_boot_time(unsigned int* time);
int bi_rtc_get_wake_time(unsigned int* time);

/* Resolutions and EDID (records: vesk_resolution_record, 256-byte EDID buffers). */
int bi_resolution_get_parameters_list(void* records);
int bi_resolution_calculate_parameters(unsigned int width, unsigned int height, unsigned int fps,
                                       void* result);
int bi_resolution_get_parameters(void* result);
int bi_resolution_get_edid_from_defined(unsigned char index, unsigned short width,
                                        unsigned short height, unsigned char* edid, float refresh);
int bi_resolution_get_edid_by_model(unsigned short width, unsigned short height,
                                    unsigned char* edid, float refresh);
int bi_resolution_get_prefferred_timing_by_edid(const unsigned char* edid, void* result);
int bi_resolution_screen_mode_set_state(int state);
int bi_resolution_screen_mode_get_state(void);
int bi_display_get_hdmi_in_state(int port);
int bi_display_get_hdmi_out_state(int port);

/* Board sensors and identity. */
int bi_adc_get_board_id(void);
float bi_adc_get_board_voltage(void);
float bi_adc_get_board_temperature(void);

/* Power, audio, video input and the rest of the board's switches. */
int bi_power_low_power_mode(void);
int bi_power_normal_mode(void);
int bi_i2c_set_audio_enable(unsigned char channel, unsigned char enable);
int bi_i2c_get_audio_enable(unsigned char channel);
int bi_i2c_set_video_inputsrc_volume(unsigned char source, unsigned char volume);
int bi_i2c_get_video_inputsrc_volume(unsigned char source);
int bi_lora_get_state(void);
int bi_infrared_write(void);
int bi_restore_factory_setting(int mode);
int bi_4g_module_set_state(int state);
int bi_4g_module_get_state(void);
int bi_4g_power_set_state(int state);
int bi_4g_power_get_state(void);
int bi_headphone_power_set_state(int state);
int bi_headphone_power_get_state(void);
int bi_power_amplifier_set_state(int state);
int bi_power_amplifier_get_state(void);
int bi_set_pq_state(int enable);
int bi_get_pq_state(void);

#ifdef __cplusplus
}
#endif

#endif /* VESKSDK_H */
