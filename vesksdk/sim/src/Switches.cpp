// Relays, peripheral power switches and the factory-tool switch.
#include "SimMacros.h"
#include "vesksdk.h"

VESK_SIM_SETTER(bi_relay_set_state, "relay", int)
VESK_SIM_GETTER(bi_relay_get_state, "relay")
VESK_SIM_INDEXED_SETTER(bi_peripheral_relay_enable, "peripheral_relay", unsigned int, int)
VESK_SIM_INDEXED_GETTER(bi_peripheral_relay_get_status, "peripheral_relay", unsigned int)
VESK_SIM_SETTER(bi_pc_ctrl_enable, "pc_ctrl", int)
VESK_SIM_GETTER(bi_pc_ctrl_get_status, "pc_ctrl")
VESK_SIM_SETTER(bi_usb_sub_card_led_enable, "usb_sub_card_led", int)
VESK_SIM_GETTER(bi_usb_sub_card_led_get_status, "usb_sub_card_led")
VESK_SIM_SETTER(bi_factory_tools_enable, "factory_tools", int)
VESK_SIM_GETTER(bi_factory_tools_get_status, "factory_tools")
