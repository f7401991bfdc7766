#pragma once
// A quick reader for well-formed JSON text, for parseRavoJSON. It drives the same SAX handler as
// nlohmann's parser, with the same events and values (a non-negative integer is unsigned, a negative
// one signed, anything with a fraction or exponent a double), but takes only what it reads without
// doubt: at the first byte it does not take (malformed text, an integer past 64 bits, a number beyond
// a double's range, trailing bytes) it gives up and returns false, and the caller reads the text again
// with nlohmann's parser, whose messages are the reader's errors. A handler may also give up, by
// returning false from any event. Its cost per byte is a fraction of
// nlohmann's lexer, which copies every byte it reads into a token buffer for its messages.

#include <charconv>
#include <cstdint>
#include <string>
#include <string_view>

#include <ravo-orx/contracts/support/RavoJSON.h>
#include <ravo-orx/core/ORXJSONStringDecoding.h>
#include <ravo-orx/core/ORXValidation.h>

namespace ravo::orx::internal {

template <class Handler>
class RavoWellFormedJSONReader {
 public:
  RavoWellFormedJSONReader(std::string_view text, Handler& handler) : text_(text), handler_(handler) {}

  // True when the whole text was one JSON value (with whitespace around it) and the handler has it.
  bool read() {
    skipWhitespace();
    if (!readValue()) return false;
    skipWhitespace();
    return position_ == text_.size();
  }

 private:
  bool atEnd() const { return position_ >= text_.size(); }
  char peek() const { return text_[position_]; }

  // Exactly the four JSON whitespace bytes.
  void skipWhitespace() {
    while (!atEnd()) {
      const char c = peek();
      if (c != ' ' && c != '\n' && c != '\r' && c != '\t') return;
      ++position_;
    }
  }

  bool consume(char expected) {
    skipWhitespace();
    if (atEnd() || peek() != expected) return false;
    ++position_;
    return true;
  }

  bool consumeLiteral(std::string_view literal) {
    if (text_.substr(position_, literal.size()) != literal) return false;
    position_ += literal.size();
    return true;
  }

  // Recursion is bounded by the handler, which throws past its depth limit (and the caller then
  // reads again with nlohmann's parser, which reports it).
  bool readValue() {
    if (atEnd()) return false;
    switch (peek()) {
      case '{': return readObject();
      case '[': return readArray();
      case '"': {
        std::string value;
        if (!readString(value)) return false;
        return handler_.string(value);
      }
      case 't': return consumeLiteral("true") && handler_.boolean(true);
      case 'f': return consumeLiteral("false") && handler_.boolean(false);
      case 'n': return consumeLiteral("null") && handler_.null();
      default: return readNumber();
    }
  }

  bool readObject() {
    ++position_;
    if (!handler_.start_object(static_cast<std::size_t>(-1))) return false;
    skipWhitespace();
    if (!atEnd() && peek() == '}') {
      ++position_;
      return handler_.end_object();
    }
    while (true) {
      std::string key;
      skipWhitespace();
      if (atEnd() || peek() != '"' || !readString(key) || !consume(':') || !handler_.key(key)) return false;
      skipWhitespace();
      if (!readValue()) return false;
      skipWhitespace();
      if (atEnd()) return false;
      const char next = text_[position_++];
      if (next == '}') return handler_.end_object();
      if (next != ',') return false;
      skipWhitespace();
    }
  }

  bool readArray() {
    ++position_;
    if (!handler_.start_array(static_cast<std::size_t>(-1))) return false;
    skipWhitespace();
    if (!atEnd() && peek() == ']') {
      ++position_;
      return handler_.end_array();
    }
    while (true) {
      skipWhitespace();
      if (!readValue()) return false;
      skipWhitespace();
      if (atEnd()) return false;
      const char next = text_[position_++];
      if (next == ']') return handler_.end_array();
      if (next != ',') return false;
    }
  }

  // At the opening quote. Raw bytes are copied in runs; the result must be well-formed UTF-8.
  bool readString(std::string& out) {
    ++position_;
    while (true) {
      const std::size_t runEnd = ORXJSONStringDecoding::plainRunEnd(text_.data(), text_.size(), position_);
      out.append(text_, position_, runEnd - position_);
      position_ = runEnd;
      if (atEnd()) return false;
      const char byte = text_[position_++];
      if (byte == '"') return ORXValidation::isValidUTF8(out);
      if (byte != '\\' || ORXJSONStringDecoding::decodeEscape(text_, position_, out)) return false;
    }
  }

  // -?(0|[1-9][0-9]*)(.[0-9]+)?([eE][+-]?[0-9]+)?
  bool readNumber() {
    const std::size_t start = position_;
    const auto digitsFrom = [this] {
      const std::size_t first = position_;
      while (!atEnd() && peek() >= '0' && peek() <= '9') ++position_;
      return position_ - first;
    };
    const bool negative = !atEnd() && peek() == '-';
    if (negative) ++position_;
    if (!atEnd() && peek() == '0') {
      ++position_;
    } else if (atEnd() || peek() < '1' || peek() > '9' || digitsFrom() == 0) {
      return false;
    }
    bool integral = true;
    if (!atEnd() && peek() == '.') {
      ++position_;
      if (digitsFrom() == 0) return false;
      integral = false;
    }
    if (!atEnd() && (peek() == 'e' || peek() == 'E')) {
      ++position_;
      if (!atEnd() && (peek() == '+' || peek() == '-')) ++position_;
      if (digitsFrom() == 0) return false;
      integral = false;
    }
    const char* first = text_.data() + start;
    const char* last = text_.data() + position_;
    if (integral && negative) {
      RavoJSON::number_integer_t value = 0;
      return std::from_chars(first, last, value).ec == std::errc() && handler_.number_integer(value);
    }
    if (integral) {
      RavoJSON::number_unsigned_t value = 0;
      return std::from_chars(first, last, value).ec == std::errc() && handler_.number_unsigned(value);
    }
    RavoJSON::number_float_t value = 0;
    const RavoJSON::string_t text(first, last);  // as nlohmann's parser hands it on
    return std::from_chars(first, last, value).ec == std::errc() && handler_.number_float(value, text);
  }

  std::string_view text_;
  Handler& handler_;
  std::size_t position_ = 0;
};

}  // namespace ravo::orx::internal
