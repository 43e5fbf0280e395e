/*
 * Product information: the board's product record, read once per process and cached.
 */
#include <vesksdk.h>
#include <vesksdk_records.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>

#include "BoardText.h"
#include "DeviceManagerCore.h"
#include "ProductRecordCache.h"
#include "ServiceTrace.h"
#include "TraceLines.h"

namespace vesk::hardware::veskdevicemanager::core {

using implementation::kTag;
using implementation::recordText;
using implementation::trace;

namespace {

constexpr size_t kRecordSize = sizeof(vesk_product_record);

// The 21 text slots, in the order of ProductInfo's string fields.
constexpr size_t kTextOffsets[] = {
        offsetof(vesk_product_record, vendor),
        offsetof(vesk_product_record, model_id),
        offsetof(vesk_product_record, hardware_version),
        offsetof(vesk_product_record, product_name),
        offsetof(vesk_product_record, serial_number),
        offsetof(vesk_product_record, manufacture_date),
        offsetof(vesk_product_record, firmware_version),
        offsetof(vesk_product_record, mac),
        offsetof(vesk_product_record, ip_address),
        offsetof(vesk_product_record, netmask),
        offsetof(vesk_product_record, description),
        offsetof(vesk_product_record, gateway),
        offsetof(vesk_product_record, dns1),
        offsetof(vesk_product_record, dns2),
        offsetof(vesk_product_record, wifi_mac),
        offsetof(vesk_product_record, bt_mac),
        offsetof(vesk_product_record, panel),
        offsetof(vesk_product_record, customer),
        offsetof(vesk_product_record, android_version),
        offsetof(vesk_product_record, region),
        offsetof(vesk_product_record, language),
};
constexpr size_t kFlag1Offset = offsetof(vesk_product_record, has_4g);
constexpr size_t kFlag2Offset = offsetof(vesk_product_record, has_wifi);
constexpr size_t kFlag3Offset = offsetof(vesk_product_record, has_ops);
constexpr size_t kUseDhcpOffset = offsetof(vesk_product_record, use_dhcp);

// The board is asked for the record at most once per process. After a failed read the record
// is released and later calls answer an empty ProductInfo without asking again.
struct ProductCache {
    std::mutex mutex;
    char* record = nullptr;  // guarded by mutex; set once, never released after a good read
    bool readFailed = false;
};

ProductCache& productCache() {
    static ProductCache cache;
    return cache;
}

bool numericSwitch(const char* record, size_t offset) {
    return atoi(recordText(record, kRecordSize, offset).c_str()) != 0;
}

void fillProductInfo(const char* record, ProductInfo& info) {
    std::string* fields[] = {&info.text01, &info.modelId, &info.text03, &info.text04, &info.text05,
                             &info.text06, &info.text07,  &info.text08, &info.text09, &info.text10,
                             &info.text11, &info.text12,  &info.text13, &info.text14, &info.text15,
                             &info.text16, &info.text17,  &info.text18, &info.text19, &info.text20,
                             &info.text21};
    static_assert(std::size(kTextOffsets) == std::size(fields));
    for (size_t i = 0; i < std::size(fields); ++i) {
        *fields[i] = recordText(record, kRecordSize, kTextOffsets[i]);
    }
    info.flag3 = numericSwitch(record, kFlag3Offset);
    info.flag2 = numericSwitch(record, kFlag2Offset);
    info.flag1 = numericSwitch(record, kFlag1Offset);
    std::string useDhcp = recordText(record, kRecordSize, kUseDhcpOffset);
    info.useDHCP = useDhcp == "true";
    vesk::log::debug(kTag, "productPtr->useDHCP:%s\n", useDhcp.c_str());
    vesk::log::debug(kTag, "info.useDHCP:%d\n", info.useDHCP ? 1 : 0);
}

}  // namespace

ProductInfo DeviceManagerCore::getProductInfo() {
    trace("getProductInfo", VESK_TRACE_LINE("getProductInfo"));
    ProductInfo info;
    {
        ProductCache& cache = productCache();
        std::lock_guard<std::mutex> lock(cache.mutex);
        if (cache.record != nullptr || cache.readFailed) {
            vesk::log::debug(kTag, "%s: productPtr is not NULL\n", "getProductInfo");
            if (cache.record != nullptr) fillProductInfo(cache.record, info);
        } else {
            char* record = static_cast<char*>(malloc(kRecordSize));
            if (record == nullptr) {
                vesk::log::error(kTag, "%s: productPtr malloc failed\n", "getProductInfo");
            } else {
                memset(record, 0, kRecordSize);
                vesk::log::debug(kTag, "%s: productPtr malloc ok\n", "getProductInfo");
                if (bi_info_get_product_info(record) < 0) {
                    vesk::log::error(kTag, "%s: bi_info_get_product_info failed\n",
                                     "getProductInfo");
                    free(record);
                    cache.readFailed = true;
                } else {
                    cache.record = record;
                    fillProductInfo(record, info);
                }
            }
        }
    }
    return info;
}

int32_t DeviceManagerCore::setProductInfo(int32_t useDhcp) {
    char word[6];
    memset(word, 0, sizeof(word));
    if (useDhcp == 1) {
        snprintf(word, sizeof(word), "%s", "true");
    } else if (useDhcp == 0) {
        snprintf(word, sizeof(word), "%s", "false");
    } else {
        // Deliberately still passed on, with the empty word.
        vesk::log::error(kTag, "%s, input error,please input 1 or 0\n", "setProductInfo");
    }
    return bi_info_set_product_info(word);
}

int32_t DeviceManagerCore::getProtocolType() {
    trace("getProtocolType", VESK_TRACE_LINE("getProtocolType"));
    return bi_info_get_protocol_type();
}

}  // namespace vesk::hardware::veskdevicemanager::core

namespace vesk::hardware::veskdevicemanager::implementation {

void forgetProductRecord() {
    core::ProductCache& cache = core::productCache();
    std::lock_guard<std::mutex> lock(cache.mutex);
    free(cache.record);
    cache.record = nullptr;
    cache.readFailed = false;
}

}  // namespace vesk::hardware::veskdevicemanager::implementation
