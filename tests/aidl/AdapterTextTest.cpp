// The board's texts made UTF-8 for an AIDL String: each maximal ill-formed part becomes U+FFFD,
// well-formed text passes unchanged. Expected strings worked out by hand from RFC 3629's table of
// well-formed byte sequences.
#include <gtest/gtest.h>

#include <string>

#include "AidlText.h"

namespace vesk::test {
namespace {

using ::aidl::vesk::hardware::veskdevicemanager::aidlText;

const std::string kFffd = "\xEF\xBF\xBD";

TEST(AidlTextTest, WellFormedTextPassesUnchanged) {
    EXPECT_EQ("", aidlText(""));
    EXPECT_EQ("/dev/watchdog", aidlText("/dev/watchdog"));
    // U+0080, U+07FF, U+0800, U+D7FF, U+E000, U+FFFF, U+10000, U+10FFFF: each form's ends.
    const std::string ends =
            "\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF\xF0\x90\x80\x80"
            "\xF4\x8F\xBF\xBF";
    EXPECT_EQ(ends, aidlText(ends));
    EXPECT_EQ(std::string("a\0b", 3), aidlText(std::string("a\0b", 3)));
}

TEST(AidlTextTest, ABytePastAnySequenceIsOneReplacement) {
    EXPECT_EQ("A" + kFffd + "B", aidlText("A\xFF"
                                          "B"));
    EXPECT_EQ(kFffd + kFffd, aidlText("\xC0\xC1"));  // lead bytes of overlong forms only
    EXPECT_EQ(kFffd, aidlText("\xF5"));              // past U+10FFFF
    EXPECT_EQ(kFffd + kFffd, aidlText("\x80\xBF"));  // continuations alone, one each
}

TEST(AidlTextTest, ASequenceCutShortIsOneReplacementAndTheNextByteIsReadAgain) {
    EXPECT_EQ(kFffd + "C", aidlText("\xC3"
                                    "C"));
    EXPECT_EQ(kFffd + "I", aidlText("\xE2\x82"
                                    "I"));
    EXPECT_EQ("x" + kFffd, aidlText("x\xF0\x9F\x98"));  // at the text's end
    // A lead byte cut short by another lead byte: the second sequence stands.
    EXPECT_EQ(kFffd + "\xC3\xA9", aidlText("\xE2\xC3\xA9"));
}

TEST(AidlTextTest, OverlongFormsSurrogatesAndCodePointsPastTheLastAreReplacedByteByByte) {
    // E0 80..9F would be overlong, ED A0..BF a surrogate, F0 80..8F overlong, F4 90.. past
    // U+10FFFF: the lead byte is a part of its own, then each continuation.
    EXPECT_EQ(kFffd + kFffd + kFffd, aidlText("\xE0\x80\xAF"));
    EXPECT_EQ(kFffd + kFffd + kFffd, aidlText("\xED\xA0\x80"));
    EXPECT_EQ(kFffd + kFffd + kFffd + kFffd, aidlText("\xF0\x8F\xBF\xBF"));
    EXPECT_EQ(kFffd + kFffd + kFffd + kFffd, aidlText("\xF4\x90\x80\x80"));
}

}  // namespace
}  // namespace vesk::test
