#include <ravo-orx/core/ORXValidation.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include <ravo-orx/core/ORXError.h>

namespace ravo::orx {

namespace {

constexpr std::size_t kMaxIdentifierLength = 96;

bool isLower(char c) { return c >= 'a' && c <= 'z'; }
bool isUpper(char c) { return c >= 'A' && c <= 'Z'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

ORXError valueInvalid(std::string_view label, std::string_view suffix) {
  return ORXError::invalid("orx.v051.value_invalid", std::string(label).append(suffix));
}

ORXError typedValueInvalid(std::string_view label, std::string_view suffix) {
  return ORXError::invalid("orx.v051.typed_value_invalid", std::string(label).append(suffix));
}

}  // namespace

std::string ORXValidation::asciiIdentifier(std::string_view value, bool qualified, std::string_view label) {
  const bool ascii = std::none_of(value.begin(), value.end(), [](char c) { return c & 0x80; });
  if (value.empty() || !ascii) throw valueInvalid(label, " must be non-empty ASCII");
  if (value.size() > kMaxIdentifierLength) throw valueInvalid(label, " is too long");
  if (!isLower(value.front())) throw valueInvalid(label, " must begin with lowercase ASCII");
  const bool valid = std::all_of(value.begin() + 1, value.end(), [](char c) {
    return isLower(c) || isDigit(c) || c == '-' || c == '.' || c == '_';
  });
  if (!valid) throw valueInvalid(label, " contains an invalid character");
  if (qualified && value.find('.') == std::string_view::npos) throw valueInvalid(label, " must be qualified");
  return std::string(value);
}

std::string ORXValidation::qualifiedEnumTypeID(std::string_view value, std::string_view label) {
  const std::size_t separator = value.find("::");
  if (separator == std::string_view::npos || value.find("::", separator + 2) != std::string_view::npos) {
    throw typedValueInvalid(label, " must use module::Type identity");
  }
  asciiIdentifier(value.substr(0, separator), false, label);
  const std::string_view typeName = value.substr(separator + 2);
  const bool valid = !typeName.empty() && isUpper(typeName.front()) &&
                     std::all_of(typeName.begin(), typeName.end(),
                                 [](char c) { return isLower(c) || isUpper(c) || isDigit(c) || c == '_'; });
  if (!valid) throw typedValueInvalid(label, " must have a capitalized type name");
  return std::string(value);
}

std::vector<std::string> ORXValidation::sortedUniqueASCII(std::vector<std::string> values,
                                                          std::string_view label, bool qualified) {
  for (const auto& value : values) asciiIdentifier(value, qualified, label);
  std::sort(values.begin(), values.end());
  if (std::adjacent_find(values.begin(), values.end()) != values.end()) {
    throw ORXError::duplicate(std::string(label) + " has duplicate semantic keys");
  }
  return values;
}

bool ORXValidation::compareUnicodeCodePoints(std::string_view a, std::string_view b) {
  // string_view compares as unsigned bytes (memcmp), and UTF-8 preserves scalar order bytewise.
  return a < b;
}

bool ORXValidation::isValidUTF8(std::string_view bytes) {
  const auto* p = reinterpret_cast<const std::uint8_t*>(bytes.data());
  const auto* end = p + bytes.size();
  while (p < end) {
    // Most text is ASCII: step over eight such bytes at a time.
    std::uint64_t word;
    if (end - p >= 8 && (std::memcpy(&word, p, 8), (word & 0x8080808080808080u) == 0)) {
      p += 8;
      continue;
    }
    const std::uint8_t lead = *p;
    if (lead < 0x80) {
      ++p;
      continue;
    }
    int length;
    std::uint8_t low = 0x80, high = 0xBF;  // allowed range of the second byte
    if (lead >= 0xC2 && lead <= 0xDF) {
      length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
      length = 3;
      if (lead == 0xE0) low = 0xA0;   // no overlong forms
      if (lead == 0xED) high = 0x9F;  // no surrogates
    } else if (lead >= 0xF0 && lead <= 0xF4) {
      length = 4;
      if (lead == 0xF0) low = 0x90;   // no overlong forms
      if (lead == 0xF4) high = 0x8F;  // nothing above U+10FFFF
    } else {
      return false;
    }
    if (end - p < length || p[1] < low || p[1] > high) return false;
    for (int i = 2; i < length; ++i) {
      if ((p[i] & 0xC0) != 0x80) return false;
    }
    p += length;
  }
  return true;
}

}  // namespace ravo::orx
