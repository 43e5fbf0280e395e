/*
 * Any stored "custom_mode" value read back: the tokenizer on its own, then the value stored in
 * the environment and read by the output-mode control and by getResolutionParameters (the
 * simulated board names an allowed model). A value of 512 characters or more ends the process
 * by design and is not tried.
 */
#include <cutils/properties.h>
#include <fuzzer/FuzzedDataProvider.h>
#include <stdint.h>
#include <stdlib.h>

#include <string>
#include <vector>

#include "DisplayModeControl.h"
#include "FuzzRoot.h"
#include "Ubootenv.h"
#include "VeskDeviceManager.h"

using namespace vesk::hardware::veskdevicemanager::implementation;
using ::vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceManager;
using ::vesk::hardware::veskdevicemanager::V1_0::VeskEffeResolution;

namespace {

constexpr char kCustomMode[] = "ubootenv.var.custom_mode";

// The tokens are the maximal runs of characters outside the delimiter set.
void checkSplit(DisplayModeControl& control, const std::string& text, const std::string& delims) {
    std::vector<std::string> tokens{"kept"};
    control.split(text, tokens, delims);
    if (tokens.empty() || tokens[0] != "kept") __builtin_trap();
    std::string joined;
    for (size_t i = 1; i < tokens.size(); ++i) {
        if (tokens[i].empty() || tokens[i].find_first_of(delims) != std::string::npos)
            __builtin_trap();
        joined += tokens[i];
    }
    std::string expected;
    for (char c : text) {
        if (delims.find(c) == std::string::npos) expected += c;
    }
    if (joined != expected) __builtin_trap();
}

// The non-empty comma-separated fields of a stored value.
std::vector<std::string> fieldsOf(const std::string& value) {
    std::vector<std::string> fields;
    size_t start = 0;
    while (start <= value.size()) {
        size_t comma = value.find(',', start);
        if (comma == std::string::npos) comma = value.size();
        if (comma > start) fields.push_back(value.substr(start, comma - start));
        start = comma + 1;
    }
    return fields;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    vesk::fuzz::freshRoot();
    static Ubootenv* store = [] {
        property_set("persist.vesk.device.log.level", "D");
        return new Ubootenv();
    }();
    static ::android::sp<IVeskDeviceManager> service = HIDL_FETCH_IVeskDeviceManager("default");

    FuzzedDataProvider in(bytes, size);
    std::string delims = in.ConsumeRandomLengthString(4);
    std::string value = in.ConsumeRemainingBytesAsString();
    value = value.substr(0, value.find('\0'));  // what a C string can hold
    if (value.size() >= 512) return -1;

    {
        DisplayModeControl control;
        checkSplit(control, value, delims);
        checkSplit(control, value, ",");
    }

    if (store->updateValue(kCustomMode, value.c_str()) != 0) __builtin_trap();
    timing_t timing{};
    {
        DisplayModeControl control;
        control.getHDMIOutputMode(timing);
    }
    std::vector<std::string> fields = fieldsOf(value);
    if (value == "0") {
        if (timing.h_active != 3840 || timing.v_active != 2160 || timing.v_freq != 60.0)
            __builtin_trap();
    } else if (fields.size() == 22) {
        if (timing.h_active != static_cast<uint32_t>(atoi(fields[8].c_str())) ||
            timing.v_active != static_cast<uint32_t>(atoi(fields[14].c_str())) ||
            timing.v_freq != static_cast<double>(atoi(fields[1].c_str())))
            __builtin_trap();
    } else if (timing.h_active != 0 || timing.v_active != 0 || timing.v_freq != 0) {
        __builtin_trap();
    }

    int calls = 0;
    service->getResolutionParameters([&](const VeskEffeResolution& result) {
        ++calls;
        if (result.status != 1 || result.width != timing.h_active ||
            result.height != timing.v_active)
            __builtin_trap();
    });
    if (calls != 1) __builtin_trap();
    return 0;
}
