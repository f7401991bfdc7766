#include <gtest/gtest.h>

#include <string>

#include <ravo-orx/core/ORXCanonicalJSON.h>
#include <ravo-orx/core/ORXJSONStringDecoding.h>

namespace ravo::orx {

using namespace internal;

namespace {

// The scan reads eight bytes at a time and takes the first special byte from a bit trick whose
// higher bits can be wrong after a borrow: every special byte at every offset, beside fillers that sit
// on the edges of the tested ranges, must be found at its own place, from every start before it.
TEST(ORXJSONStringDecoding, PlainRunsEndAtTheFirstSpecialByte) {
  const unsigned char specials[] = {0x00, 0x01, 0x1F, '"', '\\'};
  const unsigned char fillers[] = {'a', 0x20, 0x21, 0x23, 0x5B, 0x5D, 0x7F, 0x80, 0x9F, 0xA0, 0xDF, 0xE0, 0xFF};
  constexpr std::size_t kSize = 24;
  for (unsigned char special : specials) {
    for (unsigned char filler : fillers) {
      for (std::size_t offset = 0; offset < kSize; ++offset) {
        std::string text(kSize, static_cast<char>(filler));
        text[offset] = static_cast<char>(special);
        // A second special byte later must not move the answer; nor may a borrow out of the first.
        if (offset + 1 < kSize) text[offset + 1] = static_cast<char>(special);
        if (offset + 3 < kSize) text[offset + 3] = '"';
        for (std::size_t start = 0; start <= offset; ++start) {
          EXPECT_EQ(ORXJSONStringDecoding::plainRunEnd(text.data(), text.size(), start), offset)
              << "special " << int(special) << ", filler " << int(filler) << ", start " << start;
        }
      }
      const std::string plain(kSize, static_cast<char>(filler));
      EXPECT_EQ(ORXJSONStringDecoding::plainRunEnd(plain.data(), plain.size(), 0), kSize) << int(filler);
    }
  }
}

// Literals compare as the bytes they decode to, whatever their escapes, checked against the parser's
// own decoding compared as std::string; and decode to those bytes.
TEST(ORXJSONStringDecoding, LiteralsCompareAsTheBytesTheyDecodeTo) {
  const std::string literals[] = {
      R"("")",
      R"("a")",
      R"("\u0061")",
      R"("b")",
      R"("ab")",
      R"("a\u0062")",
      R"("\u0061b")",
      R"("abcdefghijklmnopqrstuvwxyz")",
      R"("abcdefghijklmnop\u0071rstuvwxyz")",
      R"("abcdefghijklmnopqrstuvwxy")",
      R"("abcdefghijklmnopqrstuvwxz")",
      R"("\n")",
      R"("\u000a")",
      R"("\u0000")",
      R"("\u0000\u0000")",
      R"("\u0001")",
      R"("/")",
      R"("\/")",
      R"("\"")",
      R"("\\")",
      "\"\xc3\xa9\"",
      R"("\u00e9")",
      R"("\uff61")",
      "\"\xf0\x9f\x98\x80\"",
      R"("\ud83d\ude00")",
      R"("z")",
  };
  const auto decoded = [](const std::string& literal) { return *ORXCanonicalJSON::parse(literal).asString(); };
  const auto sign = [](int order) { return (order > 0) - (order < 0); };
  for (const auto& a : literals) {
    EXPECT_EQ(ORXJSONStringDecoding::decodedString(a, 0), decoded(a)) << a;
    for (const auto& b : literals) {
      const std::string text = a + b;
      EXPECT_EQ(sign(ORXJSONStringDecoding::compareDecoded(text, 0, a.size())), sign(decoded(a).compare(decoded(b))))
          << a << " vs " << b;
    }
  }
}

}  // namespace

}  // namespace ravo::orx
