#pragma once
// Pieces of JSON string handling shared by the readers of JSON text (the canonical parser and the
// application's quick reader) and the canonical writer.

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace ravo::orx::internal {

namespace ORXJSONStringDecoding {

// A byte a JSON string cannot hold as it stands: a control below 0x20, the quote or the backslash.
inline bool isSpecial(unsigned char byte) { return byte < 0x20 || byte == '"' || byte == '\\'; }

// The high bit of every special byte among eight (lowest address in the low byte), possibly with false
// ones above the first true one, where a borrow ran on: the lowest set bit is always exact.
inline std::uint64_t specialBytes(std::uint64_t word) {
  constexpr std::uint64_t ones = 0x0101010101010101u;
  constexpr std::uint64_t highs = 0x8080808080808080u;
  const auto zeroBytes = [](std::uint64_t x) { return (x - ones) & ~x & highs; };
  const std::uint64_t control = (word - ones * 0x20) & ~word & highs;
  return control | zeroBytes(word ^ (ones * '"')) | zeroBytes(word ^ (ones * '\\'));
}

// Where the run of plain bytes starting at `position` ends: at the first special byte or the end.
// Eight bytes are read at a time, and the first special one among them is found without a byte loop,
// since most strings are shorter than a word.
inline std::size_t plainRunEnd(const char* data, std::size_t size, std::size_t position) {
  static_assert(std::endian::native == std::endian::little, "the lowest address must be the lowest byte");
  while (size - position >= 8) {
    std::uint64_t word;
    std::memcpy(&word, data + position, 8);
    if (const std::uint64_t special = specialBytes(word)) {
      return position + static_cast<std::size_t>(std::countr_zero(special)) / 8;
    }
    position += 8;
  }
  while (position < size && !isSpecial(static_cast<unsigned char>(data[position]))) ++position;
  return position;
}

// The value of a hexadecimal digit (either case), or -1.
inline int hexDigitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Four hex digits at `text`, or -1 when one is not a hex digit.
inline std::int32_t hexQuadValue(const char* text) {
  std::int32_t value = 0;
  for (int i = 0; i < 4; ++i) {
    const int digit = hexDigitValue(text[i]);
    if (digit < 0) return -1;
    value = value << 4 | digit;
  }
  return value;
}

// Appends the UTF-8 encoding of a scalar value.
inline void appendUTF8(std::string& out, std::uint32_t scalar) {
  if (scalar < 0x80) {
    out.push_back(static_cast<char>(scalar));
  } else if (scalar < 0x800) {
    out.push_back(static_cast<char>(0xC0 | scalar >> 6));
    out.push_back(static_cast<char>(0x80 | (scalar & 0x3F)));
  } else if (scalar < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | scalar >> 12));
    out.push_back(static_cast<char>(0x80 | (scalar >> 6 & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (scalar & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | scalar >> 18));
    out.push_back(static_cast<char>(0x80 | (scalar >> 12 & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (scalar >> 6 & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (scalar & 0x3F)));
  }
}

// After "\\u" at `position`: four hex digits into `value`. Null, or why they are refused.
inline const char* decodeHexQuad(std::string_view text, std::size_t& position, std::uint32_t& value) {
  if (text.size() - position < 4) return "incomplete unicode escape";
  const std::int32_t quad = hexQuadValue(text.data() + position);
  if (quad < 0) return "invalid unicode escape";
  position += 4;
  value = static_cast<std::uint32_t>(quad);
  return nullptr;
}

// After "\\u": one scalar appended as UTF-8, combining a surrogate pair written as two escapes.
inline const char* decodeUnicodeEscape(std::string_view text, std::size_t& position, std::string& out) {
  std::uint32_t unit = 0;
  if (const char* refusal = decodeHexQuad(text, position, unit)) return refusal;
  if (unit >= 0xDC00 && unit <= 0xDFFF) return "invalid UTF-16 surrogate";
  if (unit < 0xD800 || unit > 0xDBFF) {
    appendUTF8(out, unit);
    return nullptr;
  }
  if (text.size() - position < 2 || text[position] != '\\' || text[position + 1] != 'u') return "unexpected JSON byte";
  position += 2;
  std::uint32_t low = 0;
  if (const char* refusal = decodeHexQuad(text, position, low)) return refusal;
  if (low < 0xDC00 || low > 0xDFFF) return "invalid UTF-16 surrogate pair";
  appendUTF8(out, 0x10000 + (unit - 0xD800) * 0x400 + (low - 0xDC00));
  return nullptr;
}

// The escape after a backslash at `position`, appended to `out` as the bytes it stands for, with
// `position` moved past it. Null, or why it is refused: every reader of JSON text decodes alike and
// the canonical parser reports these texts.
inline const char* decodeEscape(std::string_view text, std::size_t& position, std::string& out) {
  if (position >= text.size()) return "incomplete string escape";
  switch (text[position++]) {
    case '"': out.push_back('"'); return nullptr;
    case '\\': out.push_back('\\'); return nullptr;
    case '/': out.push_back('/'); return nullptr;
    case 'b': out.push_back('\b'); return nullptr;
    case 'f': out.push_back('\f'); return nullptr;
    case 'n': out.push_back('\n'); return nullptr;
    case 'r': out.push_back('\r'); return nullptr;
    case 't': out.push_back('\t'); return nullptr;
    case 'u': return decodeUnicodeEscape(text, position, out);
    default: return "invalid string escape";
  }
}

// The bytes a valid string literal decodes to, taken piece by piece: runs of plain bytes as views of
// the text, each escape decoded on its own.
class DecodedPieces {
 public:
  // `quote` is the offset of the literal's opening quote.
  DecodedPieces(std::string_view text, std::size_t quote) : text_(text), position_(quote + 1) {}

  // The next piece, never empty, or an empty view at the closing quote.
  std::string_view next() {
    const std::size_t runEnd = plainRunEnd(text_.data(), text_.size(), position_);
    if (runEnd > position_) {
      const std::string_view run = text_.substr(position_, runEnd - position_);
      position_ = runEnd;
      return run;
    }
    if (text_[position_] == '"') return {};
    ++position_;
    escape_.clear();
    decodeEscape(text_, position_, escape_);  // the literal is valid, so its escapes decode
    return escape_;
  }

 private:
  std::string_view text_;
  std::size_t position_;
  std::string escape_;  // at most four bytes: never allocates
};

// Compares the valid string literals whose opening quotes are at `a` and `b` by the bytes they decode
// to, as unsigned bytes (which for UTF-8 is code-point order), a prefix first: negative, zero or
// positive. Nothing is copied unless an escape is met.
inline int compareDecoded(std::string_view text, std::size_t a, std::size_t b) {
  DecodedPieces left(text, a), right(text, b);
  std::string_view l = left.next(), r = right.next();
  while (!l.empty() && !r.empty()) {
    const std::size_t common = std::min(l.size(), r.size());
    if (const int order = std::memcmp(l.data(), r.data(), common)) return order;
    l.remove_prefix(common);
    r.remove_prefix(common);
    if (l.empty()) l = left.next();
    if (r.empty()) r = right.next();
  }
  return static_cast<int>(!l.empty()) - static_cast<int>(!r.empty());
}

// The bytes the valid string literal opening at `quote` decodes to.
inline std::string decodedString(std::string_view text, std::size_t quote) {
  std::string bytes;
  DecodedPieces pieces(text, quote);
  for (std::string_view piece = pieces.next(); !piece.empty(); piece = pieces.next()) bytes.append(piece);
  return bytes;
}

}  // namespace ORXJSONStringDecoding

}  // namespace ravo::orx::internal
