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

/* Product record: NUL-terminated text slots, numbers and switches written as text. A text that
 * fills its slot runs on into the next one. */
#define VESK_PRODUCT_RECORD_SIZE 2048
struct vesk_product_record {
    char vendor[64];
    char model_id[32]; /* the product's model number, in decimal */
    char hardware_version[32];
    char product_name[128];
    char serial_number[64];
    char manufacture_date[64];
    char firmware_version[64];
    char mac[32];
    char ip_address[32];
    char netmask[32];
    char description[1024];
    char has_4g[32]; /* a switch: a decimal number, 0 for off */
    char gateway[32];
    char dns1[32];
    char dns2[32];
    char wifi_mac[32];
    char bt_mac[32];
    char panel[32];
    char customer[32];
    char has_wifi[32]; /* a switch */
    char android_version[64];
    char has_ops[32]; /* a switch */
    char region[32];
    char language[32];
    char use_dhcp[32]; /* "true" or "false" */
};

/* The board models whose HDMI output mode the device manager computes itself (validates,
 * applies and reads back); on every other model the board's resolution functions do it. */
#define VESK_COMPUTED_MODELS 8470, 8476, 8475, 8478

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
static_assert(sizeof(vesk_product_record) == VESK_PRODUCT_RECORD_SIZE, "product record");
static_assert(offsetof(vesk_product_record, model_id) == 64, "product record model_id");
static_assert(offsetof(vesk_product_record, hardware_version) == 96,
              "product record hardware_version");
static_assert(offsetof(vesk_product_record, product_name) == 128, "product record product_name");
static_assert(offsetof(vesk_product_record, serial_number) == 256, "product record serial_number");
static_assert(offsetof(vesk_product_record, manufacture_date) == 320,
              "product record manufacture_date");
static_assert(offsetof(vesk_product_record, firmware_version) == 384,
              "product record firmware_version");
static_assert(offsetof(vesk_product_record, mac) == 448, "product record mac");
static_assert(offsetof(vesk_product_record, ip_address) == 480, "product record ip_address");
static_assert(offsetof(vesk_product_record, netmask) == 512, "product record netmask");
static_assert(offsetof(vesk_product_record, description) == 544, "product record description");
static_assert(offsetof(vesk_product_record, has_4g) == 1568, "product record has_4g");
static_assert(offsetof(vesk_product_record, gateway) == 1600, "product record gateway");
static_assert(offsetof(vesk_product_record, dns1) == 1632, "product record dns1");
static_assert(offsetof(vesk_product_record, dns2) == 1664, "product record dns2");
static_assert(offsetof(vesk_product_record, wifi_mac) == 1696, "product record wifi_mac");
static_assert(offsetof(vesk_product_record, bt_mac) == 1728, "product record bt_mac");
static_assert(offsetof(vesk_product_record, panel) == 1760, "product record panel");
static_assert(offsetof(vesk_product_record, customer) == 1792, "product record customer");
static_assert(offsetof(vesk_product_record, has_wifi) == 1824, "product record has_wifi");
static_assert(offsetof(vesk_product_record, android_version) == 1856,
              "product record android_version");
static_assert(offsetof(vesk_product_record, has_ops) == 1920, "product record has_ops");
static_assert(offsetof(vesk_product_record, region) == 1952, "product record region");
static_assert(offsetof(vesk_product_record, language) == 1984, "product record language");
static_assert(offsetof(vesk_product_record, use_dhcp) == 2016, "product record use_dhcp");
static_assert(sizeof(vesk_watchdog_record) == 72, "watchdog record");
/* The process record holds three pointers: 64 bytes on a 64-bit ABI, 56 on a 32-bit one (where
   the uint64 and the double stay 8-aligned). */
#if UINTPTR_MAX > 0xffffffffu
static_assert(sizeof(vesk_process_record) == 64, "process record");
static_assert(offsetof(vesk_process_record, block) == 24, "process record block");
static_assert(offsetof(vesk_process_record, value64) == 40, "process record value64");
static_assert(offsetof(vesk_process_record, value32) == 56, "process record value32");
#else
static_assert(sizeof(vesk_process_record) == 56, "process record");
static_assert(offsetof(vesk_process_record, block) == 12, "process record block");
static_assert(offsetof(vesk_process_record, value64) == 32, "process record value64");
static_assert(offsetof(vesk_process_record, value32) == 48, "process record value32");
#endif
static_assert(sizeof(vesk_usb_list_record) == 1028, "USB list record");
static_assert(sizeof(vesk_cpu_record) == 32, "CPU record");
static_assert(sizeof(vesk_log_record) == 216, "log record");
static_assert(offsetof(vesk_log_record, mode) == 136, "log record mode");
static_assert(sizeof(vesk_resolution_record) == 16, "resolution record");
#endif

#endif /* VESKSDK_RECORDS_H */
