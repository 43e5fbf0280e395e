// The product record: identity text slots and the DHCP switch.
#include <cstring>

#include "SimMacros.h"
#include "vesksdk.h"

using vesk::sim::BoardData;
using vesk::sim::SimCall;

VESK_SIM_ACTION(bi_init_product_config, 0)

int bi_info_get_product_info(void* record) {
    return SimCall("bi_info_get_product_info", {vesk::sim::outputBuffer()})
        .out(record, VESK_PRODUCT_RECORD_SIZE)
        .run([&] {
            if (!record) return -1;
            vesk::sim::board().with(
                [&](BoardData& data) { memcpy(record, data.product.data(), data.product.size()); });
            return 0;
        });
}

// Stores the word ("true", "false" or anything else) in the DHCP slot.
int bi_info_set_product_info(const char* useDhcp) {
    return SimCall("bi_info_set_product_info", {vesk::sim::text(useDhcp)}).run([&] {
        if (!useDhcp) return -1;
        vesk::sim::board().with([&](BoardData& data) {
            char* slot = data.product.data() + VESK_PRODUCT_USE_DHCP_OFFSET;
            memset(slot, 0, 32);
            strncpy(slot, useDhcp, 31);
        });
        return 0;
    });
}

VESK_SIM_GETTER(bi_info_get_protocol_type, "protocol_type")
