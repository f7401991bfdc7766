#include <gtest/gtest.h>

#include <string>

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

}  // namespace

}  // namespace ravo::orx
