#include "TimingInput.h"

#include <stdlib.h>

#include <cmath>
#include <iterator>
#include <sstream>

#include "Errors.h"

namespace veskdm {
namespace {

std::string formatNumber(double value) {
    std::ostringstream text;
    text << value;
    return text.str();
}

}  // namespace

uint32_t readWholeNumber(const std::string& text, const std::string& what, uint32_t min,
                         uint32_t max, const std::string& note) {
    bool digits = !text.empty() && text.size() <= 10;
    for (char c : text) digits = digits && c >= '0' && c <= '9';
    unsigned long long value = digits ? strtoull(text.c_str(), nullptr, 10) : 0;
    if (!digits || value < min || value > max) {
        throw UsageError("timing: " + what + " must be a whole number from " + std::to_string(min) +
                         " to " + std::to_string(max) + note + ", not '" + text + "'");
    }
    return static_cast<uint32_t>(value);
}

double readPositiveNumber(const std::string& text, const std::string& what, double max) {
    char* end = nullptr;
    double value = text.empty() ? NAN : strtod(text.c_str(), &end);
    bool number = !text.empty() && end == text.c_str() + text.size() && std::isfinite(value);
    if (!number || !(value > 0) || (max > 0 && value > max)) {
        std::string range = max > 0 ? "above 0 and at most " + formatNumber(max) : "above 0";
        throw UsageError("timing: " + what + " must be a number " + range + ", not '" + text + "'");
    }
    return value;
}

void checkTimingMode(const std::string& mode) {
    for (const char* known : kTimingModes) {
        if (mode == known) return;
    }
    std::string modes;
    for (size_t i = 0; i < std::size(kTimingModes); ++i) {
        modes += (i == 0 ? "" : i + 1 == std::size(kTimingModes) ? " or " : ", ");
        modes += kTimingModes[i];
    }
    throw UsageError("timing: --mode must be " + modes + ", not '" + mode + "'");
}

}  // namespace veskdm
