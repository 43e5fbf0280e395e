// Output resolutions: the supported list, the current output mode, EDIDs, the screen mode and
// the HDMI ports.
#include <cstdio>
#include <cstring>

#include "Edid.h"
#include "SimMacros.h"
#include "vesksdk.h"

using vesk::sim::BoardData;
using vesk::sim::outputBuffer;
using vesk::sim::SimCall;

namespace {

// What the board's HDMI output offers, largest first: the usual television and monitor modes.
const vesk_resolution_record kSupported[] = {
        {3840, 2160, 60, 1}, {3840, 2160, 50, 1}, {3840, 2160, 30, 1}, {2560, 1440, 60, 1},
        {1920, 1200, 60, 1}, {1920, 1080, 60, 1}, {1920, 1080, 50, 1}, {1920, 1080, 30, 1},
        {1680, 1050, 60, 1}, {1600, 900, 60, 1},  {1440, 900, 60, 1},  {1366, 768, 60, 1},
        {1280, 1024, 60, 1}, {1280, 800, 60, 1},  {1280, 720, 60, 1},  {1280, 720, 50, 1},
        {1024, 768, 60, 1},  {800, 600, 60, 1},   {720, 576, 50, 1},   {720, 480, 60, 1},
        {640, 480, 60, 1}};
static_assert(sizeof(kSupported) <= VESK_RESOLUTION_LIST_BYTES);

// The monitor a predefined EDID describes is panel number `index`; the EDID for a given mode
// is that of the board's own display model.
constexpr uint16_t kModelProductCode = 8470;
constexpr uint16_t kPanelProductCode = 0x0100;

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

// Makes the size and rate the current output mode; a zero among them, or a mode the board could
// not keep, is refused (status -1).
int bi_resolution_calculate_parameters(unsigned int width, unsigned int height, unsigned int fps,
                                       void* result) {
    return SimCall("bi_resolution_calculate_parameters", {width, height, fps, outputBuffer()})
            .out(result, sizeof(vesk_resolution_record))
            .run([&] {
                if (!result) return -1;
                vesk_resolution_record mode{width, height, fps, 1};
                // A mode that could not be kept is not the current one.
                bool usable =
                        width && height && fps &&
                        vesk::sim::board().with([&](BoardData& data) { data.outputMode = mode; });
                if (!usable) mode.status = -1;
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
                char name[14];
                snprintf(name, sizeof(name), "VSK PANEL %u", static_cast<unsigned>(index));
                const vesk::sim::EdidIdentity panel{
                        static_cast<uint16_t>(kPanelProductCode + index), name};
                return edid && vesk::sim::writeEdid(edid, panel, width, height, refresh) ? 0 : -1;
            });
}

int bi_resolution_get_edid_by_model(unsigned short width, unsigned short height,
                                    unsigned char* edid, float refresh) {
    return SimCall("bi_resolution_get_edid_by_model", {width, height, outputBuffer(), refresh})
            .out(edid, VESK_EDID_SIZE)
            .run([&] {
                const vesk::sim::EdidIdentity model{kModelProductCode, "VESK DISPLAY"};
                return edid && vesk::sim::writeEdid(edid, model, width, height, refresh) ? 0 : -1;
            });
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
