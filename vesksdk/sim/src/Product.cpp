// The product record, filled from the product description in the device root
// (vesk/sim/ProductFile.h), and its DHCP switch.
#include <cstring>

#include "SimMacros.h"
#include "vesk/sim/ProductFile.h"
#include "vesksdk.h"

using vesk::sim::SimCall;

VESK_SIM_ACTION(bi_init_product_config, 0)

int bi_info_get_product_info(void* record) {
    return SimCall("bi_info_get_product_info", {vesk::sim::outputBuffer()})
            .out(record, VESK_PRODUCT_RECORD_SIZE)
            .run([&] {
                if (!record) return -1;
                vesk::sim::loadProductRecord(static_cast<char*>(record));
                return 0;
            });
}

// Takes "true" or "false" and keeps it in the product description; any other word is refused.
int bi_info_set_product_info(const char* useDhcp) {
    return SimCall("bi_info_set_product_info", {vesk::sim::text(useDhcp)}).run([&] {
        if (!useDhcp) return -1;
        return vesk::sim::setProductValue("use_dhcp", useDhcp).empty() ? 0 : -1;
    });
}

VESK_SIM_GETTER(bi_info_get_protocol_type, "protocol_type")
