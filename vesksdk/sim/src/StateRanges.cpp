#include "StateRanges.h"

#include <iterator>

namespace vesk::sim {
namespace {

constexpr Range kPlain{0, -1};
constexpr Range kSwitch{0, 1};
// LEDs: 0 off, 1 on, 2 blinking.
constexpr Range kLed{0, 2};

const StateRule kRules[] = {
        {"sysled", kLed, kPlain},
        {"netled", kLed, kPlain},
        {"4gled", kLed, kPlain},
        {"position_led", kLed, kPlain},
        {"switchled", kLed, kPlain},
        {"runningled", kLed, kPlain},
        {"cloudled", kLed, kPlain},
        {"triled", {0, 0xffffff}, kPlain},  // red << 16 | green << 8 | blue, each 0..255
        {"relay", kSwitch, kPlain},
        {"peripheral_relay", kSwitch, {0, 3}},  // four peripheral relays
        {"pc_ctrl", kSwitch, kPlain},
        {"usb_sub_card_led", kSwitch, kPlain},
        {"factory_tools", kSwitch, kPlain},
        {"ops_usb_port", {0, 1}, kPlain},  // 0: the board's own USB, 1: routed to the OPS
        {"ops_switch", kSwitch, kPlain},
        {"ops_on", kSwitch, kPlain},
        {"ops_control", kSwitch, kPlain},
        {"otg_mode", {0, 1}, kPlain},  // 0 host, 1 device
        {"usb_switch", kSwitch, kPlain},
        {"usb_state", kSwitch, {0, 3}},  // four switchable USB ports
        {"ap_insulation", kSwitch, kPlain},
        {"rtc_boot_enable", kSwitch, kPlain},
        {"rtc_wake_enable", kSwitch, kPlain},
        {"power_mode", {0, 1}, kPlain},               // 0 normal, 1 low power
        {"audio_enable", kSwitch, {0, 3}},            // four audio channels
        {"video_inputsrc_volume", {0, 100}, {0, 3}},  // four video sources, volume in percent
        {"4g_module", kSwitch, kPlain},
        {"4g_power", kSwitch, kPlain},
        {"headphone_power", kSwitch, kPlain},
        {"power_amplifier", kSwitch, kPlain},
        {"pq", kSwitch, kPlain},
        {"screen_mode", {0, 3}, kPlain},  // rotation: 0, 90, 180, 270 degrees
};

}  // namespace

const StateRule* stateRule(const std::string& key) {
    for (const StateRule& rule : kRules) {
        if (key == rule.key) return &rule;
    }
    return nullptr;
}

}  // namespace vesk::sim
