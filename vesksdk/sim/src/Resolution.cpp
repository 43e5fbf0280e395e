// Output resolutions: the supported list, the current output mode, EDIDs, the screen mode and
// the HDMI ports.
#include <cstring>

#include "Edid.h"
#include "SimMacros.h"
#include "vesksdk.h"

using vesk::sim::BoardData;
using vesk::sim::outputBuffer;
using vesk::sim::SimCall;

namespace {

const vesk_resolution_record kSupported[] = {
    {3840, 2160, 60, 1}, {3840, 2160, 30, 1}, {1920, 1080, 60, 1}, {1280, 720, 60, 1}};

}  // namespace

// The number of records written.
int bi_resolution_get_parameters_list(void* records) {
    return SimCall("bi_resolution_get_parameters_list", {outputBuffer()})
        .out(records, VESK_RESOLUTION_LIST_BYTES)
        .run([&] {
            if (!records) return -1;
            memcpy(records, kSupported, sizeof(kSupported));
            return static_cast<int>(std::size(kSupported));
        });
}

// Makes the size and rate the current output mode; a zero among them is refused (status -1).
int bi_resolution_calculate_parameters(unsigned int width, unsigned int height, unsigned int fps,
                                       void* result) {
    return SimCall("bi_resolution_calculate_parameters", {width, height, fps, outputBuffer()})
        .out(result, sizeof(vesk_resolution_record))
        .run([&] {
            if (!result) return -1;
            vesk_resolution_record mode{width, height, fps, 1};
            bool usable = width && height && fps;
            if (usable) {
                vesk::sim::board().with([&](BoardData& data) { data.outputMode = mode; });
            } else {
                mode.status = -1;
            }
            memcpy(result, &mode, sizeof(mode));
            return usable ? 0 : -1;
        });
}

int bi_resolution_get_parameters(void* result) {
    return SimCall("bi_resolution_get_parameters", {outputBuffer()})
        .out(result, sizeof(vesk_resolution_record))
        .run([&] {
            if (!result) return -1;
            vesk::sim::board().with([&](BoardData& data) {
                memcpy(result, &data.outputMode, sizeof(data.outputMode));
            });
            return 0;
        });
}

int bi_resolution_get_edid_from_defined(unsigned char index, unsigned short width,
                                        unsigned short height, unsigned char* edid, float refresh) {
    return SimCall("bi_resolution_get_edid_from_defined",
                   {index, width, height, outputBuffer(), refresh})
        .out(edid, VESK_EDID_SIZE)
        .run([&] {
            return edid && vesk::sim::writeEdid(edid, index, width, height, refresh) ? 0 : -1;
        });
}

int bi_resolution_get_edid_by_model(unsigned short width, unsigned short height,
                                    unsigned char* edid, float refresh) {
    return SimCall("bi_resolution_get_edid_by_model", {width, height, outputBuffer(), refresh})
        .out(edid, VESK_EDID_SIZE)
        .run([&] { return edid && vesk::sim::writeEdid(edid, 0, width, height, refresh) ? 0 : -1; });
}

int bi_resolution_get_prefferred_timing_by_edid(const unsigned char* edid, void* result) {
    return SimCall("bi_resolution_get_prefferred_timing_by_edid",
                   {vesk::sim::inputBytes(edid, VESK_EDID_SIZE), outputBuffer()})
        .out(result, sizeof(vesk_resolution_record))
        .run([&] {
            vesk_resolution_record timing{};
            if (!edid || !result || !vesk::sim::readPreferredTiming(edid, timing)) return -1;
            memcpy(result, &timing, sizeof(timing));
            return 0;
        });
}

VESK_SIM_SETTER(bi_resolution_screen_mode_set_state, "screen_mode", int)
VESK_SIM_GETTER(bi_resolution_screen_mode_get_state, "screen_mode")

// The HDMI output is connected (1), the inputs are not (0).
int bi_display_get_hdmi_in_state(int port) {
    return SimCall("bi_display_get_hdmi_in_state", {port}).run([] { return 0; });
}
int bi_display_get_hdmi_out_state(int port) {
    return SimCall("bi_display_get_hdmi_out_state", {port}).run([] { return 1; });
}
