#include <ravo-orx/core/ORXTypeReference.h>

#include <cstdint>

#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/core/ORXValidation.h>

namespace ravo::orx {

namespace {

constexpr std::string_view kEnumLabel = "enum type";
constexpr std::string_view kOptionPrefix = "option<";
constexpr std::string_view kResultPrefix = "result<";

ORXError referenceInvalid(const char* message) {
  return ORXError::invalid("orx.v051.type_reference_invalid", message);
}

// White space and line breaks in the Unicode sense (Pattern_White_Space plus the space separators), so
// that " i64" and "i64\u2028" are both refused as non-canonical rather than as bad identities.
bool isWhitespaceScalar(std::uint32_t scalar) {
  return (scalar >= 0x09 && scalar <= 0x0D) || scalar == 0x20 || scalar == 0x85 || scalar == 0xA0 ||
         scalar == 0x1680 || (scalar >= 0x2000 && scalar <= 0x200A) || scalar == 0x2028 || scalar == 0x2029 ||
         scalar == 0x202F || scalar == 0x205F || scalar == 0x3000;
}

// The scalar whose UTF-8 encoding starts at `text[i]` (malformed bytes decode to no whitespace).
std::uint32_t scalarAt(std::string_view text, std::size_t i) {
  const auto lead = static_cast<unsigned char>(text[i]);
  const int length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  if (i + length > text.size()) return 0;
  std::uint32_t scalar = length == 1 ? lead : lead & (0x7F >> length);
  for (int k = 1; k < length; ++k) scalar = scalar << 6 | (static_cast<unsigned char>(text[i + k]) & 0x3F);
  return scalar;
}

bool hasSurroundingWhitespace(std::string_view text) {
  std::size_t last = text.size() - 1;
  while (last > 0 && (static_cast<unsigned char>(text[last]) & 0xC0) == 0x80) --last;
  return isWhitespaceScalar(scalarAt(text, 0)) || isWhitespaceScalar(scalarAt(text, last));
}

}  // namespace

ORXFlatTypeReference ORXFlatTypeReference::enumeration(std::string_view typeID) {
  return ORXFlatTypeReference(ORXValidation::qualifiedEnumTypeID(typeID, kEnumLabel));
}

ORXFlatTypeReference ORXFlatTypeReference::parse(std::string_view text) {
  if (auto primitive = orxFromRawValue<ORXPrimitiveType>(text)) return ORXFlatTypeReference(*primitive);
  return enumeration(text);
}

std::string ORXFlatTypeReference::canonical() const {
  if (const auto* primitive = asPrimitive()) return std::string(orxRawValue(*primitive));
  return *asEnumeration();
}

ORXTypeReference ORXTypeReference::result(ORXFlatTypeReference payload, std::string_view errorEnum) {
  return ORXTypeReference(Kind::result, std::move(payload), ORXValidation::qualifiedEnumTypeID(errorEnum, kEnumLabel));
}

ORXTypeReference ORXTypeReference::parse(std::string_view text) {
  if (text.empty() || hasSurroundingWhitespace(text)) {
    throw referenceInvalid("type reference must be canonical text");
  }
  if (text.starts_with(kOptionPrefix) && text.ends_with('>')) {
    return option(ORXFlatTypeReference::parse(text.substr(kOptionPrefix.size(), text.size() - kOptionPrefix.size() - 1)));
  }
  if (text.starts_with(kResultPrefix) && text.ends_with('>')) {
    const std::string_view inner = text.substr(kResultPrefix.size(), text.size() - kResultPrefix.size() - 1);
    const std::size_t comma = inner.find(',');
    const bool twoParts = comma != std::string_view::npos && comma > 0 && comma + 1 < inner.size() &&
                          inner.find(',', comma + 1) == std::string_view::npos;
    if (!twoParts) throw referenceInvalid("result type must have two canonical parameters");
    return result(ORXFlatTypeReference::parse(inner.substr(0, comma)), inner.substr(comma + 1));
  }
  return flat(ORXFlatTypeReference::parse(text));
}

std::string ORXTypeReference::canonical() const {
  switch (kind_) {
    case Kind::flat:
      return type_.canonical();
    case Kind::option:
      return std::string(kOptionPrefix) + type_.canonical() + ">";
    case Kind::result:
      return std::string(kResultPrefix) + type_.canonical() + "," + errorEnum_ + ">";
  }
  return {};
}

}  // namespace ravo::orx
