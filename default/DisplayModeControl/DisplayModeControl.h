/*
 * HDMI output-mode control: checks a requested output size against the board models whose
 * output mode the service computes itself, computes its reduced-blanking timing, stores it in the
 * boot-loader environment as the custom mode string and selects it. One object serves one
 * interface call.
 */
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Ubootenv.h"
#include "VideoTimingCaculator.h"

namespace vesk::hardware::veskdevicemanager::implementation {

// One row of the allow list: the sizes and the pixel clock a board model may drive.
struct allow_list_t {
    uint32_t modid;
    uint32_t h_pixel_min;
    uint32_t h_pixel_max;
    uint32_t v_pixel_min;
    uint32_t v_pixel_max;
    uint32_t max_pixels;
    uint32_t max_pix_clock;
};

class DisplayModeControl {
  public:
    DisplayModeControl();
    ~DisplayModeControl();
    DisplayModeControl(const DisplayModeControl&) = delete;
    DisplayModeControl& operator=(const DisplayModeControl&) = delete;

    // 1 accepted (the calculator then holds the 60 Hz reduced-blanking timing of the size rounded
    // up to even), -1 unknown model or size out of range, -3 pixel clock too high. `fps` is
    // accepted and not used: the timing is always computed for 60 Hz.
    int verify(uint32_t modid, uint32_t width, uint32_t height, uint32_t fps);
    bool isAllowDevice(uint32_t modid, allow_list_t& row);
    int getAspectRadio(int width, int height, int& num, int& den);
    int gcd(int a, int b);

    // Applies the timing of the last successful verify(): 1, or -2 at the first failure seen.
    int setHDMIOutputMode();
    timing_t getCurrentOutputModeTiming();
    // Fills h_active, v_active and v_freq from the stored custom mode, where it can.
    void getHDMIOutputMode(timing_t& timing);
    void split(const std::string& text, std::vector<std::string>& tokens,
               const std::string& delimiters);

  private:
    // Stores the custom mode (three times), reads it back and selects it for the boot loader, as
    // one transaction of the environment: 1, or -2 at the first failure seen.
    int storeOutputMode(const char* mode, const timing_t& timing);

    std::vector<allow_list_t> allowList;
    std::unique_ptr<Ubootenv> env;
    std::unique_ptr<VideoTimingCaculator> calculator;
};

}  // namespace vesk::hardware::veskdevicemanager::implementation
