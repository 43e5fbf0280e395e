// The OPS (pluggable PC module) slot: its USB routing, power switch and control lines.
#include "SimMacros.h"
#include "vesksdk.h"

VESK_SIM_SETTER(bi_ops_set_usb_port, "ops_usb_port", int)
VESK_SIM_GETTER(bi_ops_get_usb_port, "ops_usb_port")
VESK_SIM_SETTER(bi_ops_switch_control, "ops_switch", int)
VESK_SIM_GETTER(bi_ops_get_switch_state, "ops_switch")
VESK_SIM_SETTER(bi_ops_on_set_state, "ops_on", int)
VESK_SIM_GETTER(bi_ops_on_get_state, "ops_on")
VESK_SIM_SETTER(bi_ops_control_set_state, "ops_control", int)
VESK_SIM_GETTER(bi_ops_control_get_state, "ops_control")
// No module sits in the slot of the simulated board.
VESK_SIM_GETTER(bi_ops_detect_get_state, "ops_detect")
