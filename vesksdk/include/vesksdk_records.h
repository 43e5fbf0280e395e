/*
 * libvesksdk: the fixed-layout records that the board library fills or reads. Little-endian,
 * no padding beyond what is listed.
 */
#ifndef VESKSDK_RECORDS_H
#define VESKSDK_RECORDS_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Product record: NUL-terminated text slots, numbers and switches written as text. */
#define VESK_PRODUCT_RECORD_SIZE 2048
#define VESK_PRODUCT_MODEL_ID_OFFSET 64
#define VESK_PRODUCT_USE_DHCP_OFFSET 2016

struct vesk_watchdog_record {
    char wdtDevice[64];
    uint32_t wdt_timeout;
    uint32_t wdt_interval;
};

struct vesk_process_record {
    const char* name1;
    const char* name2;
    const char* name3;
    uint8_t block[16];
    uint64_t value64;
    double valueReal;
    uint32_t value32;
};

#define VESK_USB_LIST_MAX 128
struct vesk_usb_list_record {
    uint32_t count;
    uint32_t vid[VESK_USB_LIST_MAX];
    uint32_t pid[VESK_USB_LIST_MAX];
};

struct vesk_cpu_record {
    float usr;
    float nic;
    float sys;
    float idle;
    float iowait;
    float irq;
    float softirq;
    uint32_t temperature;
};

struct vesk_log_record {
    char level[8];
    char base[128];
    char mode[64];
    char total_size[8];
    char once_size[8];
};

/* RTC times: the board reads VESK_RTC_SET_WORDS words of a time it is given (year, month, day,
 * hour, minute, second) and fills up to VESK_RTC_TIME_WORDS words of a buffer it is lent. */
#define VESK_RTC_TIME_WORDS 256
#define VESK_RTC_SET_WORDS 6

/* One entry of the resolution list, and the result of the resolution functions. */
struct vesk_resolution_record {
    uint32_t width;
    uint32_t height;
    uint32_t fps;
    int32_t status;
};
#define VESK_RESOLUTION_LIST_BYTES 1024

#define VESK_EDID_SIZE 256

#ifdef __cplusplus
}
static_assert(sizeof(vesk_watchdog_record) == 72, "watchdog record");
static_assert(sizeof(vesk_process_record) == 64, "process record");
static_assert(offsetof(vesk_process_record, block) == 24, "process record block");
static_assert(offsetof(vesk_process_record, value32) == 56, "process record value32");
static_assert(sizeof(vesk_usb_list_record) == 1028, "USB list record");
static_assert(sizeof(vesk_cpu_record) == 32, "CPU record");
static_assert(sizeof(vesk_log_record) == 216, "log record");
static_assert(offsetof(vesk_log_record, mode) == 136, "log record mode");
static_assert(sizeof(vesk_resolution_record) == 16, "resolution record");
#endif

#endif /* VESKSDK_RECORDS_H */
