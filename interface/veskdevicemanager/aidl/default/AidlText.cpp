#include "AidlText.h"

#include <cstddef>

namespace aidl::vesk::hardware::veskdevicemanager {

namespace {

constexpr char kReplacement[] = "\xEF\xBF\xBD";  // U+FFFD

// How many continuation bytes follow `lead`, and the range its first one must lie in (which
// rules out overlong forms, surrogates and code points past U+10FFFF); 0 for a byte that starts
// no sequence.
struct Lead {
    int continuations;
    unsigned char low;
    unsigned char high;
};

Lead leadOf(unsigned char byte) {
    if (byte >= 0xC2 && byte <= 0xDF) return {1, 0x80, 0xBF};
    if (byte == 0xE0) return {2, 0xA0, 0xBF};
    if (byte == 0xED) return {2, 0x80, 0x9F};
    if (byte >= 0xE1 && byte <= 0xEF) return {2, 0x80, 0xBF};
    if (byte == 0xF0) return {3, 0x90, 0xBF};
    if (byte >= 0xF1 && byte <= 0xF3) return {3, 0x80, 0xBF};
    if (byte == 0xF4) return {3, 0x80, 0x8F};
    return {0, 0, 0};
}

}  // namespace

std::string aidlText(const std::string& text) {
    std::string out;
    out.reserve(text.size());
    size_t i = 0;
    while (i < text.size()) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte < 0x80) {
            out += text[i++];
            continue;
        }
        const Lead lead = leadOf(byte);
        size_t end = i + 1;  // past the bytes that still fit a sequence
        bool complete = lead.continuations > 0;
        for (int k = 0; complete && k < lead.continuations; ++k, ++end) {
            const unsigned char low = k == 0 ? lead.low : 0x80;
            const unsigned char high = k == 0 ? lead.high : 0xBF;
            complete = end < text.size() && static_cast<unsigned char>(text[end]) >= low &&
                       static_cast<unsigned char>(text[end]) <= high;
            if (!complete) break;
        }
        if (complete) {
            out.append(text, i, end - i);
        } else {
            out += kReplacement;  // the byte that broke the sequence is read again
        }
        i = end;
    }
    return out;
}

}  // namespace aidl::vesk::hardware::veskdevicemanager
