// Splitting `veskdm shell` lines into words.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HalJson.h"
#include "ShellTokenizer.h"

namespace veskdm {
namespace {

using Words = std::vector<std::string>;

std::string errorOf(const std::string& line) {
    try {
        splitShellLine(line);
    } catch (const ArgumentError& error) {
        return error.what();
    }
    return "";
}

TEST(ShellTokenizer, BlanksSeparateWords) {
    EXPECT_EQ(splitShellLine("setColorLedState 1 2 3"), (Words{"setColorLedState", "1", "2", "3"}));
    EXPECT_EQ(splitShellLine("  a \t b  "), (Words{"a", "b"}));
    EXPECT_EQ(splitShellLine("a b\r"), (Words{"a", "b"}));  // a line of a CRLF file
}

TEST(ShellTokenizer, BlankLineHasNoWords) {
    EXPECT_EQ(splitShellLine(""), Words{});
    EXPECT_EQ(splitShellLine("   \t "), Words{});
}

TEST(ShellTokenizer, CommentLineHasNoWords) {
    EXPECT_EQ(splitShellLine("# setSysLedState 3"), Words{});
    EXPECT_EQ(splitShellLine("   #indented, with an odd ' quote"), Words{});
}

TEST(ShellTokenizer, CommentAfterWords) {
    EXPECT_EQ(splitShellLine("getSysLedState # the LED"), Words{"getSysLedState"});
    // A # inside a word is part of it.
    EXPECT_EQ(splitShellLine("clearVeskLog /data/a#b"), (Words{"clearVeskLog", "/data/a#b"}));
}

TEST(ShellTokenizer, ArrayWithSpacesIsOneWord) {
    EXPECT_EQ(splitShellLine("writeSerialPort232 [1, 2, 3]"),
              (Words{"writeSerialPort232", "[1, 2, 3]"}));
    EXPECT_EQ(splitShellLine("x [ [1, 2], [ 3 ] ] y"), (Words{"x", "[ [1, 2], [ 3 ] ]", "y"}));
}

TEST(ShellTokenizer, ObjectWithSpacesIsOneWord) {
    EXPECT_EQ(splitShellLine("setVeskLogConfigure {\"level\": \"D\", \"base\": \"a b\"}"),
              (Words{"setVeskLogConfigure", "{\"level\": \"D\", \"base\": \"a b\"}"}));
}

TEST(ShellTokenizer, BracketsInsideStringsDoNotCount) {
    EXPECT_EQ(splitShellLine("m {\"a\": \"]} [\"} next"), (Words{"m", "{\"a\": \"]} [\"}", "next"}));
}

TEST(ShellTokenizer, DoubleQuotedStringKeepsItsQuotes) {
    EXPECT_EQ(splitShellLine("feedWatchDog \"/dev/watch dog\""),
              (Words{"feedWatchDog", "\"/dev/watch dog\""}));
    EXPECT_EQ(splitShellLine("m \"say \\\"hi\\\" now\" x"),
              (Words{"m", "\"say \\\"hi\\\" now\"", "x"}));
    // The word reads as the JSON string.
    EXPECT_EQ(readArgumentWord(splitShellLine("m \"a \\\"b\\\"\"")[1]), Json("a \"b\""));
}

TEST(ShellTokenizer, SingleQuotesAreLiteralAndRemoved) {
    EXPECT_EQ(splitShellLine("m '{\"a\": 1}'"), (Words{"m", "{\"a\": 1}"}));
    EXPECT_EQ(splitShellLine("m 'two words' x"), (Words{"m", "two words", "x"}));
    EXPECT_EQ(splitShellLine("m '\"42\"'"), (Words{"m", "\"42\""}));
    EXPECT_EQ(splitShellLine("m 'a\\b'"), (Words{"m", "a\\b"}));
}

TEST(ShellTokenizer, AdjacentPartsJoin) {
    EXPECT_EQ(splitShellLine("m ab'c d'e"), (Words{"m", "abc de"}));
}

TEST(ShellTokenizer, EmptyQuotesAreAnEmptyWord) {
    EXPECT_EQ(splitShellLine("m '' x"), (Words{"m", "", "x"}));
    EXPECT_EQ(splitShellLine("m \"\""), (Words{"m", "\"\""}));
}

TEST(ShellTokenizer, BackslashEscapesOneCharacter) {
    EXPECT_EQ(splitShellLine("m a\\ b"), (Words{"m", "a b"}));
    EXPECT_EQ(splitShellLine("m \\#x"), (Words{"m", "#x"}));
}

TEST(ShellTokenizer, UnterminatedQuotes) {
    EXPECT_EQ(errorOf("m 'abc"), "unterminated '");
    EXPECT_EQ(errorOf("m \"abc"), "unterminated \"");
    EXPECT_EQ(errorOf("m \"abc\\\""), "unterminated \"");
    EXPECT_EQ(errorOf("m [\"a]"), "unterminated \"");
}

TEST(ShellTokenizer, UnbalancedBrackets) {
    EXPECT_EQ(errorOf("m [1, 2"), "'[' is not closed");
    EXPECT_EQ(errorOf("m {\"a\": [1}"), "'}' closes '['");
    EXPECT_EQ(errorOf("m 1]"), "']' without '['");
    EXPECT_EQ(errorOf("m }"), "'}' without '{'");
}

TEST(ShellTokenizer, TrailingBackslash) {
    EXPECT_EQ(errorOf("m a\\"), "the line ends with a backslash");
}

}  // namespace
}  // namespace veskdm
