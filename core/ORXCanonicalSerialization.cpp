// The canonical text of a canonical value. One output buffer is appended to in a single pass, so
// serializing allocates only as that buffer grows.

#include <charconv>

#include "core/ORXCanonicalValue.h"

namespace {

// Runs of bytes that need no escape are copied in one append. Strings hold well-formed UTF-8, so bytes
// of 0x80 and above are whole scalars written raw; only the 32 controls, the quote and the backslash
// are escaped.
void appendEscaped(std::string& out, std::string_view text) {
  static constexpr char kHex[] = "0123456789abcdef";
  out.push_back('"');
  std::size_t runStart = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte >= 0x20 && byte != '"' && byte != '\\') continue;
    out.append(text, runStart, i - runStart);
    runStart = i + 1;
    switch (byte) {
      case '"': out += "\\\""; break;
      case '\\': out += "\\\\"; break;
      case '\b': out += "\\b"; break;
      case '\t': out += "\\t"; break;
      case '\n': out += "\\n"; break;
      case '\f': out += "\\f"; break;
      case '\r': out += "\\r"; break;
      default:
        out += "\\u00";
        out.push_back(kHex[byte >> 4]);
        out.push_back(kHex[byte & 0x0f]);
    }
  }
  out.append(text, runStart);
  out.push_back('"');
}

void appendInteger(std::string& out, std::int64_t value) {
  char digits[24];
  const auto result = std::to_chars(digits, digits + sizeof digits, value);
  out.append(digits, result.ptr);
}

}  // namespace

void ORXCanonicalValue::appendCanonicalString(std::string& out) const {
  switch (kind()) {
    case Kind::string:
      appendEscaped(out, *asString());
      break;
    case Kind::boolean:
      out += *asBoolean() ? "true" : "false";
      break;
    case Kind::integer:
      appendInteger(out, *asInteger());
      break;
    case Kind::array: {
      out.push_back('[');
      bool first = true;
      for (const auto& element : *asArray()) {
        if (!first) out.push_back(',');
        first = false;
        element.appendCanonicalString(out);
      }
      out.push_back(']');
      break;
    }
    case Kind::object: {
      out.push_back('{');
      bool first = true;
      for (const auto& [key, value] : asObject()->fields()) {
        if (!first) out.push_back(',');
        first = false;
        appendEscaped(out, key);
        out.push_back(':');
        value.appendCanonicalString(out);
      }
      out.push_back('}');
      break;
    }
  }
}

std::string ORXCanonicalValue::canonicalString() const {
  std::string out;
  appendCanonicalString(out);
  return out;
}

std::vector<std::uint8_t> ORXCanonicalValue::canonicalData() const {
  const std::string text = canonicalString();
  return std::vector<std::uint8_t>(text.begin(), text.end());
}
