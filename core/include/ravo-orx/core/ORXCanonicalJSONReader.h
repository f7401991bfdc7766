#pragma once
// The grammar of strict canonical JSON, shared by the parser that builds values and the canonicalizer
// that writes canonical text straight from the document. The reader walks the bytes with an integer
// position and reports what it reads to a sink:
//
//   string(std::string_view bytes, bool asWritten), integer(std::int64_t), boolean(bool),
//   beginArray(), endArray(), beginObject(), key(std::string_view bytes, bool asWritten, std::size_t at),
//   endObject(std::size_t end)
//
// `asWritten` says that the string had no escape in the input: its bytes are then a view of the input
// between the string's own quotes, and already its canonical text, since a quote, a backslash or a
// control byte can only appear escaped in valid input. `at` is the offset of a key's opening quote and
// `end` the offset just past an object's closing brace, for the canonicalizer, which finds members and
// measures objects by them.
//
// A sink may also answer memberOrder(std::size_t firstKey), asked once an object's first key is
// reached: a range of the offsets of the object's keys, in the order its members are to be read, or an
// empty range to read them as written. The canonicalizer reads a document a second time this way, its
// large objects' members in key order; the document was read whole before, so jumping between them
// meets no error.
//
// Every refusal is an ORXError::parse thrown where it is detected, so both users fail alike and at the
// same byte; a sink may throw too (a repeated key, at the object's end).
//
// The general grammar (Grammar::general) is the same reader extended to all of JSON: `null` and every
// number RFC 8259 allows, handed to the sink as null() and number(std::string_view text). It serves the
// documents that are JSON but not canonical ORX values, such as the Orx build's evidence.json.

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string>
#include <string_view>

#include <ravo-orx/core/ORXCanonicalJSON.h>
#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/core/ORXJSONStringDecoding.h>
#include <ravo-orx/core/ORXValidation.h>

namespace ravo::orx::internal {

namespace ORXCanonicalJSONReading {

[[noreturn]] inline void fail(const char* message) { throw ORXError::parse(message); }

enum class Grammar { canonical, general };

template <class Sink, Grammar kGrammar = Grammar::canonical>
class Reader {
 public:
  Reader(std::string_view input, Sink& sink) : input_(input), sink_(sink) {}

  void readDocument() {
    readValue();
    skipWhitespace();
    if (!atEnd()) fail("trailing bytes after JSON value");
  }

 private:
  static constexpr std::uint64_t kWhitespaceMask = 1ull << ' ' | 1ull << '\t' | 1ull << '\n' | 1ull << '\r';

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

  void readValue() {
    skipWhitespace();
    if (atEnd()) fail("unexpected end of JSON");
    switch (peek()) {
      case '"':
        readString([this](std::string_view bytes, bool asWritten) { sink_.string(bytes, asWritten); });
        return;
      case '-':
      case '0': case '1': case '2': case '3': case '4':
      case '5': case '6': case '7': case '8': case '9':
        if constexpr (kGrammar == Grammar::general) {
          sink_.number(readNumberText());
        } else {
          sink_.integer(readInteger());
        }
        return;
      case '[':
        return readArray();
      case '{':
        return readObject();
      case 't':
        for (char c : std::string_view("true")) matchExactly(c);
        return sink_.boolean(true);
      case 'f':
        for (char c : std::string_view("false")) matchExactly(c);
        return sink_.boolean(false);
      case 'n':
        if constexpr (kGrammar == Grammar::general) {
          for (char c : std::string_view("null")) matchExactly(c);
          return sink_.null();
        }
        [[fallthrough]];
      default:
        fail("unsupported JSON value");
    }
  }

  void enterContainer() {
    if (++depth_ > ORXCanonicalJSON::kMaxNestingDepth) fail("JSON nesting is deeper than 512 levels");
  }

  void readArray() {
    expect('[');
    enterContainer();
    sink_.beginArray();
    skipWhitespace();
    if (!atEnd() && peek() == ']') {
      ++position_;
    } else {
      while (true) {
        readValue();
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
    sink_.endArray();
  }

  void readObject() {
    expect('{');
    enterContainer();
    sink_.beginObject();
    skipWhitespace();
    if (!atEnd() && peek() == '}') {
      ++position_;
      return closeObject();
    }
    if constexpr (requires { sink_.memberOrder(position_); }) {
      if (const auto order = sink_.memberOrder(position_); !order.empty()) return readMembersInOrder(order);
    }
    while (!atEnd() && peek() == '"') {
      readMember();
      skipWhitespace();
      if (!atEnd() && peek() == '}') {
        ++position_;
        return closeObject();
      }
      expect(',');
      skipWhitespace();
    }
    fail("object key must be a JSON string");
  }

  void readMember() {
    const std::size_t at = position_;
    readString([this, at](std::string_view bytes, bool asWritten) { sink_.key(bytes, asWritten, at); });
    expect(':');
    readValue();
  }

  // The members at the given key offsets, in that order; the object ends after the last one written.
  template <class Offsets>
  void readMembersInOrder(const Offsets& keyOffsets) {
    std::size_t membersEnd = position_;
    for (const auto at : keyOffsets) {
      position_ = at;
      readMember();
      membersEnd = std::max(membersEnd, position_);
    }
    position_ = membersEnd;
    expect('}');
    closeObject();
  }

  // Just past the closing brace.
  void closeObject() {
    --depth_;
    sink_.endObject(position_);
  }

  // Bytes are gathered as they stand into one reused buffer and decoded as UTF-8 once, at the closing
  // quote; a string without escapes is not copied at all. `take` gets the bytes and whether they
  // stand in the input as written.
  template <class Take>
  void readString(Take take) {
    expect('"');
    bytes_.clear();
    bool escaped = false;
    while (!atEnd()) {
      const std::size_t runStart = position_;
      position_ = ORXJSONStringDecoding::plainRunEnd(input_.data(), input_.size(), position_);
      if (atEnd()) break;
      const char byte = input_[position_++];
      if (byte == '"') {
        const std::string_view text =
            escaped ? std::string_view(bytes_.append(input_, runStart, position_ - 1 - runStart))
                    : input_.substr(runStart, position_ - 1 - runStart);
        if (!ORXValidation::isValidUTF8(text)) fail("invalid UTF-8 string");
        return take(text, !escaped);
      }
      if (byte != '\\') fail("unescaped control character");
      escaped = true;
      bytes_.append(input_, runStart, position_ - 1 - runStart);
      if (const char* refusal = ORXJSONStringDecoding::decodeEscape(input_, position_, bytes_)) fail(refusal);
    }
    fail("unterminated string");
  }

  bool atDigit() const { return !atEnd() && peek() >= '0' && peek() <= '9'; }

  // One or more digits.
  void readDigits() {
    if (!atDigit()) fail("invalid number");
    while (atDigit()) ++position_;
  }

  // -?(0|[1-9][0-9]*): the integer part every JSON number starts with.
  void readIntegerPart() {
    if (peek() == '-') ++position_;
    if (!atEnd() && peek() == '0') {
      ++position_;
    } else {
      readDigits();
    }
  }

  std::int64_t readInteger() {
    const std::size_t start = position_;
    readIntegerPart();
    if (!atEnd() && (peek() == '.' || peek() == 'e' || peek() == 'E')) {
      fail("floating JSON numbers are not canonical ORX values");
    }
    std::int64_t value = 0;
    const char* first = input_.data() + start;
    const char* last = input_.data() + position_;
    if (std::from_chars(first, last, value).ec != std::errc()) fail("integer is out of Int64 range");
    return value;
  }

  // A number as RFC 8259 writes it: the integer part, then (\.[0-9]+)?([eE][+-]?[0-9]+)?, kept as text.
  std::string_view readNumberText() {
    const std::size_t start = position_;
    readIntegerPart();
    if (!atEnd() && peek() == '.') {
      ++position_;
      readDigits();
    }
    if (!atEnd() && (peek() == 'e' || peek() == 'E')) {
      ++position_;
      if (!atEnd() && (peek() == '+' || peek() == '-')) ++position_;
      readDigits();
    }
    return input_.substr(start, position_ - start);
  }

  std::string_view input_;
  Sink& sink_;
  std::size_t position_ = 0;
  int depth_ = 0;
  std::string bytes_;
};

}  // namespace ORXCanonicalJSONReading

}  // namespace ravo::orx::internal
