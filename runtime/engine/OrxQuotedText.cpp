#include <ravo-orx/engine/OrxQuotedText.h>

#include <cstdint>

namespace ravo::orx::internal {

namespace {

bool continuation(std::string_view bytes, std::size_t at, std::uint8_t low = 0x80, std::uint8_t high = 0xBF) {
  if (at >= bytes.size()) return false;
  const auto byte = static_cast<std::uint8_t>(bytes[at]);
  return byte >= low && byte <= high;
}

// The length of the well-formed UTF-8 character at `at`, or 0 when the byte there starts none.
std::size_t characterLength(std::string_view bytes, std::size_t at) {
  const auto lead = static_cast<std::uint8_t>(bytes[at]);
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) return continuation(bytes, at + 1) ? 2 : 0;
  if (lead >= 0xE0 && lead <= 0xEF) {
    const bool second = lead == 0xE0   ? continuation(bytes, at + 1, 0xA0)
                        : lead == 0xED ? continuation(bytes, at + 1, 0x80, 0x9F)
                                       : continuation(bytes, at + 1);
    return second && continuation(bytes, at + 2) ? 3 : 0;
  }
  if (lead >= 0xF0 && lead <= 0xF4) {
    const bool second = lead == 0xF0   ? continuation(bytes, at + 1, 0x90)
                        : lead == 0xF4 ? continuation(bytes, at + 1, 0x80, 0x8F)
                                       : continuation(bytes, at + 1);
    return second && continuation(bytes, at + 2) && continuation(bytes, at + 3) ? 4 : 0;
  }
  return 0;
}

bool isControl(std::string_view character) {
  const auto lead = static_cast<std::uint8_t>(character[0]);
  if (character.size() == 1) return lead < 0x20 || lead == 0x7F;
  return character.size() == 2 && lead == 0xC2 && static_cast<std::uint8_t>(character[1]) < 0xA0;  // C1
}

void appendEscaped(std::string& out, std::string_view bytes) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  for (const char c : bytes) {
    const auto byte = static_cast<std::uint8_t>(c);
    out += "\\x";
    out += kHex[byte >> 4];
    out += kHex[byte & 0x0F];
  }
}

}  // namespace

std::string orxQuotedText(std::string_view bytes, std::size_t byteLimit) {
  std::string out;
  for (std::size_t at = 0; at < bytes.size();) {
    const std::size_t length = characterLength(bytes, at);
    const std::string_view character = bytes.substr(at, length ? length : 1);
    if (at + character.size() > byteLimit) {
      out += "\u2026";
      break;
    }
    if (length == 0 || isControl(character)) {
      appendEscaped(out, character);
    } else {
      out += character;
    }
    at += character.size();
  }
  return out;
}

}  // namespace ravo::orx::internal
