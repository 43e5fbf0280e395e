/*
 * The 23 lines of a timing dump, in order: a printf format whose first placeholder is the
 * record's name, and the field's value. The calculator's dump logs them; host tools print the
 * same lines, so both always agree.
 */
#pragma once

#include "VideoTimingCaculator.h"

namespace vesk::hardware::veskdevicemanager::implementation {

// Calls emit(format, value) once per line; value is a double for "%.3f", an int for "%d".
template <typename Emit>
void forEachTimingDumpLine(const timing_t& t, Emit&& emit) {
    auto asInt = [](uint32_t value) { return static_cast<int>(value); };
    emit("%s_pix_clock        %.3f MHz\n", t.pix_clock);
    emit("%s_h_total          %d Pixels\n", asInt(t.h_total));
    emit("%s_h_active         %d Pixels\n", asInt(t.h_active));
    emit("%s_h_blank          %d Pixels\n", asInt(t.h_blank));
    emit("%s_h_front_porch    %d Pixels\n", asInt(t.h_front_porch));
    emit("%s_h_sync           %d Pixels\n", asInt(t.h_sync));
    emit("%s_h_back_porch     %d Pixels\n", asInt(t.h_back_porch));
    emit("%s_h_sync_polarity  %d \n", t.h_sync_polarity);
    emit("%s_h_freq           %.3f KHz\n", t.h_freq);
    emit("%s_h_period         %.3f us\n", t.h_period);
    emit("%s_v_total          %d Pixels\n", asInt(t.v_total));
    emit("%s_v_active         %d Pixels\n", asInt(t.v_active));
    emit("%s_v_blank          %d Pixels\n", asInt(t.v_blank));
    emit("%s_vblank_duration  %d us\n", asInt(t.vblank_duration));
    emit("%s_v_front_porch    %d Pixels\n", asInt(t.v_front_porch));
    emit("%s_v_sync           %d Pixels\n", asInt(t.v_sync));
    emit("%s_v_back_porch     %d Pixels\n", asInt(t.v_back_porch));
    emit("%s_v_sync_polarity  %d \n", t.v_sync_polarity);
    emit("%s_v_freq           %.3f Hz\n", t.v_freq);
    emit("%s_v_period         %.3f us\n", t.v_period);
    emit("%s_peak_bw          %d Mbit/s\n", asInt(t.peak_bw));
    emit("%s_line_bw          %d Mbit/s\n", asInt(t.line_bw));
    emit("%s_active_bw        %d Mbit/s\n", asInt(t.active_bw));
}

}  // namespace vesk::hardware::veskdevicemanager::implementation
