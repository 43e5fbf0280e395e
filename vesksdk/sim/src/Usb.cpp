// USB: OTG mode, the switch to the front ports, per-port power and the devices attached (those
// of the host).
#include <cstring>

#include "HostProc.h"
#include "SimMacros.h"
#include "vesksdk.h"

VESK_SIM_GETTER(bi_otg_get_mode, "otg_mode")
VESK_SIM_SETTER(bi_otg_set_mode, "otg_mode", unsigned int)
VESK_SIM_SETTER(bi_usb_set_switch_enable, "usb_switch", unsigned int)
VESK_SIM_GETTER(bi_usb_get_switch_enable, "usb_switch")
VESK_SIM_INDEXED_SETTER(bi_set_usb_state, "usb_state", unsigned int, unsigned int)
VESK_SIM_INDEXED_GETTER(bi_get_usb_state, "usb_state", unsigned int)

// The USB devices of the host, as many as the record holds.
int bi_info_get_usb_list(void* record) {
    return vesk::sim::SimCall("bi_info_get_usb_list", {vesk::sim::outputBuffer()})
            .out(record, sizeof(vesk_usb_list_record))
            .run([&] {
                if (!record) return -1;
                vesk_usb_list_record list{};
                for (const vesk::sim::UsbDevice& device : vesk::sim::usbDevices()) {
                    if (list.count == VESK_USB_LIST_MAX) break;
                    list.vid[list.count] = device.vid;
                    list.pid[list.count] = device.pid;
                    ++list.count;
                }
                memcpy(record, &list, sizeof(list));
                return 0;
            });
}
