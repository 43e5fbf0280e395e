// CPU load, network reachability and the access point's settings.
#include <cstring>

#include "SimMacros.h"
#include "vesksdk.h"

// A lightly loaded board at 45 degrees.
int bi_info_get_cpu_state(void* record) {
    return vesk::sim::SimCall("bi_info_get_cpu_state", {vesk::sim::outputBuffer()})
        .out(record, sizeof(vesk_cpu_record))
        .run([&] {
            if (!record) return -1;
            const vesk_cpu_record cpu{12.5f, 0.25f, 4.75f, 80.5f, 1.25f, 0.5f, 0.25f, 45};
            memcpy(record, &cpu, sizeof(cpu));
            return 0;
        });
}

// The network is reachable.
VESK_SIM_ACTION(bi_network_detection, 1)
VESK_SIM_GETTER(bi_network_get_ap_insulation, "ap_insulation")
VESK_SIM_SETTER(bi_network_set_ap_insulation, "ap_insulation", unsigned int)
VESK_SIM_GETTER(bi_network_get_ap_channel, "ap_channel")
