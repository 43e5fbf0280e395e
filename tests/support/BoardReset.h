/*
 * Puts the simulated board's process-wide state back as a fresh process has it: no script, no
 * journal (in memory or in a file), every serial channel closed. For the fixtures of programs
 * that link the simulated board.
 */
#pragma once

#include <vesksdk.h>
#include <vesksdk_sim_control.h>

namespace vesk::test {

inline void resetSimulatedBoard() {
    vesk::sim::clearScript();
    // Closing a channel that is not open is a harmless -1.
    bi_serial_485_close();
    bi_serial_485_2_close();
    bi_serial_232_close();
    bi_serial_lora_close();
    bi_serial_hdmi_close();
    bi_serial_ttl_close();
    bi_serial_ttl_2_close();
    vesk::sim::stopJournal();
}

}  // namespace vesk::test
