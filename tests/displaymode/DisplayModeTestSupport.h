/*
 * Helpers of the output-mode tests: log lines of the control's tags, the environment partition
 * built and read with U-Boot's own tools (mkenvimage, fw_printenv), an image the process
 * cannot write, and the custom mode strings of a few timings worked out by hand.
 */
#pragma once

#include <android/log.h>

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "EnvImage.h"
#include "TestRoot.h"

namespace vesk::test {

inline constexpr char kControlTag[] = "vesk_system_DisplayModeControl";
inline constexpr char kCalculatorTag[] = "vesk_system_VideoTimingCalculator";
inline constexpr char kManagerTag[] = "vesk_system_hidl_controlManager";
inline constexpr char kDeviceTag[] = "vesk_system_hidl_device";
inline constexpr char kEnvTag[] = "Ubootenv";
inline constexpr char kLevelProperty[] = "persist.vesk.device.log.level";
inline constexpr char kEnvPartition[] = "/dev/block/env";
inline constexpr char kModeProperty[] = "persist.vesk.custom.mode";
inline constexpr char kEnableProperty[] = "persist.vesk.custom.mode.enable";
inline constexpr char kModeTool[] = "/vendor/bin/hdmimode 999p60hz";

// CVT reduced-blanking timings at 60 Hz, field by field (line frequency in Hz, field rate in
// mHz, pixel clock in kHz, the counts, 1,0,1, the reduced ratio, 1,1). 1920x1080 is VESA's
// published CVT-RB mode (138.5 MHz, 2080 x 1111, 66.587 kHz, 59.934 Hz); the others follow the
// same formulas (tests/timing/cvt_reference.py).
inline constexpr char kMode1920x1080[] =
        "66587,59934,138500,2080,160,48,32,80,1920,1111,31,3,5,23,1080,1,0,1,16,9,1,1";
inline constexpr char kMode1280x720[] =
        "44444,59979,64000,1440,160,48,32,80,1280,741,21,3,5,13,720,1,0,1,16,9,1,1";

inline vesk::host::LogLine lineOf(int priority, const char* tag, const std::string& text) {
    return {priority, tag, text};
}
inline vesk::host::LogLine controlInfo(const std::string& text) {
    return {ANDROID_LOG_INFO, kControlTag, text};
}
inline vesk::host::LogLine controlWarn(const std::string& text) {
    return {ANDROID_LOG_WARN, kControlTag, text};
}
inline vesk::host::LogLine controlError(const std::string& text) {
    return {ANDROID_LOG_ERROR, kControlTag, text};
}
inline vesk::host::LogLine deviceInfo(const std::string& text) {
    return {ANDROID_LOG_INFO, kDeviceTag, text};
}

// The captured lines of any of `tags`, in the order written.
LogLines capturedLogWithTags(std::initializer_list<const char*> tags);
// How many captured lines of `tag` contain `text`.
int countLines(const char* tag, const std::string& text);
// The index of the first captured line of `tag` containing `text` (-1 when none).
int indexOfLine(const char* tag, const std::string& text);

// The comma-separated fields of `text`, empty ones included.
std::vector<std::string> fieldsOf(const std::string& text);

// The partition at /dev/block/env of `root`, as bytes.
std::string partitionBytes(const TempRoot& root);

// Writes a two-copy partition of `variables` made by mkenvimage.
void writeEnvironment(const TempRoot& root, const Variables& variables);
// `variables` and filler variables that leave exactly `spare` bytes of the data area free.
Variables filledUpTo(Variables variables, size_t spare);
// The value of `name` in copy 0 or 1 as fw_printenv reads it; "<absent>" when it is not set.
std::string printenv(const TempRoot& root, int copy, const std::string& name);

// Makes an existing file unwritable for this process (immutable when running as root, whom
// file modes do not stop; read-only otherwise) and writable again on destruction.
class UnwritableFile {
  public:
    explicit UnwritableFile(std::string path);
    ~UnwritableFile();
    UnwritableFile(const UnwritableFile&) = delete;
    UnwritableFile& operator=(const UnwritableFile&) = delete;

  private:
    std::string mPath;
    bool mImmutable = false;
};

}  // namespace vesk::test
