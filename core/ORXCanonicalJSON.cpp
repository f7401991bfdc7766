#include "core/ORXCanonicalJSON.h"

#include <charconv>

#include "core/ORXError.h"
#include "core/ORXValidation.h"

namespace {

constexpr std::uint64_t kWhitespaceMask = 1ull << ' ' | 1ull << '\t' | 1ull << '\n' | 1ull << '\r';

[[noreturn]] void fail(const char* message) { throw ORXError::parse(message); }

int hexDigitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

void appendUTF8(std::string& out, std::uint32_t scalar) {
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

// A byte array and a read position; every failure is thrown at the position where it is detected.
class Parser {
 public:
  explicit Parser(std::string_view input) : input_(input) {}

  ORXCanonicalValue parseDocument() {
    ORXCanonicalValue value = parseValue();
    skipWhitespace();
    if (!atEnd()) fail("trailing bytes after JSON value");
    return value;
  }

 private:
  bool atEnd() const { return position_ >= input_.size(); }
  char peek() const { return input_[position_]; }

  void skipWhitespace() {
    while (!atEnd()) {
      const auto byte = static_cast<unsigned char>(peek());
      if (byte > ' ' || !(kWhitespaceMask >> byte & 1)) return;
      ++position_;
    }
  }

  // Punctuation: whitespace may precede it.
  void expect(char byte) {
    skipWhitespace();
    matchExactly(byte);
  }

  // Letters of literals and the second escape of a surrogate pair: nothing may precede them.
  void matchExactly(char byte) {
    if (atEnd() || peek() != byte) fail("unexpected JSON byte");
    ++position_;
  }

  ORXCanonicalValue parseValue() {
    skipWhitespace();
    if (atEnd()) fail("unexpected end of JSON");
    switch (peek()) {
      case '"':
        return ORXCanonicalValue::string(parseString());
      case '-':
      case '0': case '1': case '2': case '3': case '4':
      case '5': case '6': case '7': case '8': case '9':
        return ORXCanonicalValue::integer(parseInteger());
      case '[':
        return parseArray();
      case '{':
        return parseObject();
      case 't':
        for (char c : std::string_view("true")) matchExactly(c);
        return ORXCanonicalValue::boolean(true);
      case 'f':
        for (char c : std::string_view("false")) matchExactly(c);
        return ORXCanonicalValue::boolean(false);
      default:
        fail("unsupported JSON value");
    }
  }

  void enterContainer() {
    if (++depth_ > ORXCanonicalJSON::kMaxNestingDepth) fail("JSON nesting is deeper than 512 levels");
  }

  ORXCanonicalValue parseArray() {
    expect('[');
    enterContainer();
    ORXCanonicalValue::Array elements;
    skipWhitespace();
    if (!atEnd() && peek() == ']') {
      ++position_;
    } else {
      while (true) {
        elements.push_back(parseValue());
        skipWhitespace();
        if (!atEnd() && peek() == ']') {
          ++position_;
          break;
        }
        if (atEnd() || peek() != ',') fail("unexpected JSON byte");
        ++position_;
      }
    }
    --depth_;
    return ORXCanonicalValue::array(std::move(elements));
  }

  ORXCanonicalValue parseObject() {
    expect('{');
    enterContainer();
    ORXCanonicalObject::Fields fields;
    skipWhitespace();
    if (!atEnd() && peek() == '}') {
      ++position_;
      --depth_;
      return ORXCanonicalValue::object(ORXCanonicalObject());
    }
    while (!atEnd() && peek() == '"') {
      std::string key = parseString();
      expect(':');
      fields.emplace_back(std::move(key), parseValue());
      skipWhitespace();
      if (!atEnd() && peek() == '}') {
        ++position_;
        --depth_;
        return ORXCanonicalValue::object(std::move(fields));
      }
      expect(',');
      skipWhitespace();
    }
    fail("object key must be a JSON string");
  }

  // Bytes are gathered as they stand and decoded as UTF-8 once, at the closing quote.
  std::string parseString() {
    expect('"');
    std::string bytes;
    while (!atEnd()) {
      // Copy the run of bytes that need no attention in one append.
      std::size_t runEnd = position_;
      while (runEnd < input_.size()) {
        const auto byte = static_cast<unsigned char>(input_[runEnd]);
        if (byte == '"' || byte == '\\' || byte < 0x20) break;
        ++runEnd;
      }
      bytes.append(input_, position_, runEnd - position_);
      position_ = runEnd;
      if (atEnd()) break;
      const char byte = input_[position_++];
      if (byte == '"') {
        if (!ORXValidation::isValidUTF8(bytes)) fail("invalid UTF-8 string");
        return bytes;
      }
      if (byte != '\\') fail("unescaped control character");
      parseEscape(bytes);
    }
    fail("unterminated string");
  }

  void parseEscape(std::string& bytes) {
    if (atEnd()) fail("incomplete string escape");
    switch (input_[position_++]) {
      case '"': bytes.push_back('"'); break;
      case '\\': bytes.push_back('\\'); break;
      case '/': bytes.push_back('/'); break;
      case 'b': bytes.push_back('\b'); break;
      case 'f': bytes.push_back('\f'); break;
      case 'n': bytes.push_back('\n'); break;
      case 'r': bytes.push_back('\r'); break;
      case 't': bytes.push_back('\t'); break;
      case 'u': appendUTF8(bytes, parseUnicodeEscape()); break;
      default: fail("invalid string escape");
    }
  }

  // After "\u": one scalar, combining a surrogate pair written as two escapes.
  std::uint32_t parseUnicodeEscape() {
    const std::uint32_t unit = parseHexQuad();
    if (unit >= 0xDC00 && unit <= 0xDFFF) fail("invalid UTF-16 surrogate");
    if (unit < 0xD800 || unit > 0xDBFF) return unit;
    matchExactly('\\');
    matchExactly('u');
    const std::uint32_t low = parseHexQuad();
    if (low < 0xDC00 || low > 0xDFFF) fail("invalid UTF-16 surrogate pair");
    return 0x10000 + (unit - 0xD800) * 0x400 + (low - 0xDC00);
  }

  std::uint32_t parseHexQuad() {
    if (input_.size() - position_ < 4) fail("incomplete unicode escape");
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i) {
      const int digit = hexDigitValue(input_[position_ + i]);
      if (digit < 0) fail("invalid unicode escape");
      value = value << 4 | static_cast<std::uint32_t>(digit);
    }
    position_ += 4;
    return value;
  }

  std::int64_t parseInteger() {
    const std::size_t start = position_;
    if (peek() == '-') ++position_;
    auto isDigit = [this] { return !atEnd() && peek() >= '0' && peek() <= '9'; };
    if (!atEnd() && peek() == '0') {
      ++position_;
    } else if (isDigit()) {
      while (isDigit()) ++position_;
    } else {
      fail("invalid number");
    }
    if (!atEnd() && (peek() == '.' || peek() == 'e' || peek() == 'E')) {
      fail("floating JSON numbers are not canonical ORX values");
    }
    std::int64_t value = 0;
    const char* first = input_.data() + start;
    const char* last = input_.data() + position_;
    if (std::from_chars(first, last, value).ec != std::errc()) fail("integer is out of Int64 range");
    return value;
  }

  std::string_view input_;
  std::size_t position_ = 0;
  int depth_ = 0;
};

}  // namespace

ORXCanonicalValue ORXCanonicalJSON::parse(std::string_view text) { return Parser(text).parseDocument(); }

ORXCanonicalValue ORXCanonicalJSON::parse(std::span<const std::uint8_t> bytes) {
  return parse(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}
