#include <gtest/gtest.h>

#include <string>

#include <ravo-orx/core/ORXMessageText.h>

namespace ravo::orx {

using namespace internal;

namespace {

TEST(ORXMessageText, PrintableEscapesControlBytesAndBytesOutsideUTF8) {
  struct Row {
    const char* name;
    std::string text, expected;
  };
  const Row rows[] = {
      {"plain", "policies/player_authz.wasm", "policies/player_authz.wasm"},
      {"line breaks and tab", "a\nb\rc\td", "a\\nb\\rc\\td"},
      {"NUL, escape and DEL", std::string("a\0b\x1B[31m\x7F", 9), "a\\x00b\\x1B[31m\\x7F"},
      {"characters of two, three and four bytes", "r\u00F4le \u2026 \U0001F600", "r\u00F4le \u2026 \U0001F600"},
      {"a lone continuation byte", "a\x80z", "a\\x80z"},
      {"a lead byte without its continuation", "a\xC3z", "a\\xC3z"},
      {"a truncated three-byte character at the end", "a\xE2\x80", "a\\xE2\\x80"},
      {"an overlong form", "\xC0\xAF", "\\xC0\\xAF"},
      {"an encoded surrogate", "\xED\xA0\x80", "\\xED\\xA0\\x80"},
      {"beyond U+10FFFF", "\xF4\x90\x80\x80", "\\xF4\\x90\\x80\\x80"},
      {"the backslash stays", "a\\b", "a\\b"},
      {"a C1 control (CSI) and the first character after them", "a\xC2\x9B" "31m\xC2\xA0", "a\\xC2\\x9B31m\xC2\xA0"},
  };
  for (const auto& row : rows) EXPECT_EQ(ORXMessageText::printable(row.text), row.expected) << row.name;
}

TEST(ORXMessageText, ExcerptsAreCutBetweenCharacters) {
  struct Row {
    const char* name;
    std::string text;
    std::size_t maximum;
    std::string expected;
  };
  const std::string euro = "\u20AC";  // three bytes
  const std::string face = "\U0001F600";  // four bytes
  const Row rows[] = {
      {"short enough", "abcdef", 6, "abcdef"},
      {"cut ASCII", "abcdef", 4, "abcd\u2026"},
      {"cut before a character that would be split", "ab" + euro + "c", 3, "ab\u2026"},
      {"cut after a whole character", "ab" + euro + "c", 5, "ab" + euro + "\u2026"},
      {"four-byte character split after its third byte", "a" + face + "b", 4, "a\u2026"},
      {"four-byte character split after its first byte", "a" + face + "b", 2, "a\u2026"},
      {"nothing fits", face + face, 3, "\u2026"},
      // Not UTF-8: a run of continuation bytes has no boundary to find, and is cut at the limit.
      {"continuation bytes only", std::string(8, '\x80'), 4, std::string(4, '\x80') + "\u2026"},
  };
  for (const auto& row : rows) EXPECT_EQ(ORXMessageText::excerpt(row.text, row.maximum), row.expected) << row.name;
}

}  // namespace

}  // namespace ravo::orx
