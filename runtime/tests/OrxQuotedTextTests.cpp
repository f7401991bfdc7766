// A module's bytes quoted in a refusal: cut to a fixed length at a character boundary, with control
// characters and bytes that are not UTF-8 escaped, everything else as it was.

#include <gtest/gtest.h>

#include <string>

#include <ravo-orx/engine/OrxQuotedText.h>

namespace ravo::orx {

using namespace internal;

namespace {

TEST(OrxQuotedText, EscapesControlsAndMalformedBytesAndCutsAtACharacter) {
  struct Case {
    const char* name;
    std::string bytes;
    std::size_t limit;
    std::string expected;
  };
  const std::string ellipsis = "\xE2\x80\xA6";
  const Case cases[] = {
      {"printable text", "output.emit", 256, "output.emit"},
      {"an ANSI colour sequence", "\x1B[31mred", 256, "\\x1B[31mred"},
      {"line breaks, a tab and NUL", std::string("a\nb\rc\td\0e", 9), 256, "a\\nb\\rc\\td\\x00e"},
      {"DEL", "a\x7F", 256, "a\\x7F"},
      {"a C1 control (CSI)", "a\xC2\x9B" "31m", 256, "a\\xC2\\x9B31m"},
      {"the first character after the C1 controls", "\xC2\xA0", 256, "\xC2\xA0"},
      {"quoted text, as it was", "a\\x1B\\xC2\\x9B", 256, "a\\x1B\\xC2\\x9B"},
      {"two-, three- and four-byte characters", "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", 256,
       "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"},
      {"a lone continuation byte and an invalid lead", "a\x80\xFF", 256, "a\\x80\\xFF"},
      {"a sequence cut short", "\xE2\x82", 256, "\\xE2\\x82"},
      {"an overlong encoding of /", "\xC0\xAF", 256, "\\xC0\\xAF"},
      {"a surrogate", "\xED\xA0\x80", 256, "\\xED\\xA0\\x80"},
      {"past U+10FFFF", "\xF4\x90\x80\x80", 256, "\\xF4\\x90\\x80\\x80"},
      {"exactly the limit", "abcd", 4, "abcd"},
      {"one byte over the limit", "abcde", 4, "abcd" + ellipsis},
      {"a character that would cross the limit is left out whole", "ab\xF0\x9F\x98\x80", 4, "ab" + ellipsis},
      {"the limit counts the module's bytes, not the escapes", "\x1B\x1B\x1B", 2, "\\x1B\\x1B" + ellipsis},
      {"no limit", std::string(1'000, 'x'), std::string::npos, std::string(1'000, 'x')},
  };
  for (const auto& c : cases) EXPECT_EQ(orxQuotedText(c.bytes, c.limit), c.expected) << c.name;
  EXPECT_EQ(orxQuotedText(std::string(300, 'y')), std::string(256, 'y') + ellipsis) << "the default limit";
}

}  // namespace

}  // namespace ravo::orx
