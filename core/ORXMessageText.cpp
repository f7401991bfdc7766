#include <ravo-orx/core/ORXMessageText.h>

#include <ravo-orx/core/ORXValidation.h>

namespace ravo::orx::internal {

namespace {

// The length a UTF-8 lead byte announces, or 0 for a byte that cannot start a character.
std::size_t sequenceLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) return 2;
  if (lead >= 0xE0 && lead <= 0xEF) return 3;
  if (lead >= 0xF0 && lead <= 0xF4) return 4;
  return 0;
}

void appendEscaped(std::string& out, unsigned char byte) {
  switch (byte) {
    case '\n': out += "\\n"; return;
    case '\r': out += "\\r"; return;
    case '\t': out += "\\t"; return;
    default: break;
  }
  constexpr char kHex[] = "0123456789ABCDEF";
  out += "\\x";
  out += kHex[byte >> 4];
  out += kHex[byte & 0xF];
}

}  // namespace

std::string ORXMessageText::printable(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const std::size_t length = sequenceLength(byte);
    if (byte < 0x20 || byte == 0x7F || length == 0 ||
        (length > 1 && !ORXValidation::isValidUTF8(text.substr(i, length)))) {
      appendEscaped(out, byte);
      ++i;
      continue;
    }
    // C1 controls (U+0080–U+009F): some terminals take U+009B for the start of an escape sequence.
    if (byte == 0xC2 && static_cast<unsigned char>(text[i + 1]) < 0xA0) {
      appendEscaped(out, byte);
      appendEscaped(out, static_cast<unsigned char>(text[i + 1]));
      i += 2;
      continue;
    }
    out.append(text, i, length);
    i += length;
  }
  return out;
}

std::string ORXMessageText::excerpt(std::string_view text, std::size_t maximumBytes) {
  if (text.size() <= maximumBytes) return std::string(text);
  // A character is at most four bytes: the boundary is at most three continuation bytes back. Text
  // that is not UTF-8 is cut at the limit.
  std::size_t end = maximumBytes;
  for (std::size_t back = 0; back < 3 && end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80; ++back) {
    --end;
  }
  if ((static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) end = maximumBytes;
  return std::string(text.substr(0, end)) + "\u2026";
}

}  // namespace ravo::orx::internal
