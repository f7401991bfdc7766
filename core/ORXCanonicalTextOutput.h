#pragma once
// Writing canonical text pieces to any byte output: a std::string, a byte vector, or a running hash.
// An output is anything with push_back(char) and append(const char*, std::size_t); the serializer of
// values and the canonicalizer of documents both write through here, so they escape alike. Buffered
// puts a small buffer in front of any destination, so a byte written costs a store rather than a call.

#include <charconv>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>

#include "core/ORXCanonicalValue.h"
#include "core/ORXJSONStringDecoding.h"

namespace ORXCanonicalTextOutput {

// Gathers bytes and hands them to `flush(const char*, std::size_t)` in chunks; finish() hands on the
// rest. Large pieces go straight through.
template <class Flush>
class Buffered {
 public:
  explicit Buffered(Flush flush) : flush_(std::move(flush)) {}
  Buffered(const Buffered&) = delete;
  Buffered& operator=(const Buffered&) = delete;

  void push_back(char c) {
    if (used_ == sizeof buffer_) finish();
    buffer_[used_++] = c;
  }
  void append(const char* data, std::size_t size) {
    if (size > sizeof buffer_ - used_) {
      finish();
      if (size >= sizeof buffer_) return flush_(data, size);
    }
    std::memcpy(buffer_ + used_, data, size);
    used_ += size;
  }
  void finish() {
    if (used_ > 0) flush_(buffer_, used_);
    used_ = 0;
  }

 private:
  Flush flush_;
  char buffer_[1024];
  std::size_t used_ = 0;
};


// A string in double quotes with the minimal escapes; every other byte is written as it stands (the
// text is well-formed UTF-8, so bytes of 0x80 and above are whole scalars written raw). Eight bytes are
// tested at a time; only a group holding a byte to escape is looked at byte by byte.
template <class Output>
void appendEscaped(Output& out, std::string_view text) {
  static constexpr char kHex[] = "0123456789abcdef";
  out.push_back('"');
  const char* data = text.data();
  const std::size_t size = text.size();
  std::size_t runStart = 0;
  std::size_t i = 0;
  while (i < size) {
    std::uint64_t word = 0x6161616161616161u;  // a short tail is padded with letters, which need no escape
    std::memcpy(&word, data + i, size - i < 8 ? size - i : 8);
    if (!ORXJSONStringDecoding::anySpecial(word)) {
      i += 8;
      continue;
    }
    for (const std::size_t groupEnd = size - i < 8 ? size : i + 8; i < groupEnd; ++i) {
      const auto byte = static_cast<unsigned char>(data[i]);
      if (!ORXJSONStringDecoding::isSpecial(byte)) continue;
      out.append(data + runStart, i - runStart);
      runStart = i + 1;
      char escape[6] = {'\\', 0, '0', '0', kHex[byte >> 4], kHex[byte & 0x0f]};
      std::size_t length = 2;
      switch (byte) {
        case '"': escape[1] = '"'; break;
        case '\\': escape[1] = '\\'; break;
        case '\b': escape[1] = 'b'; break;
        case '\t': escape[1] = 't'; break;
        case '\n': escape[1] = 'n'; break;
        case '\f': escape[1] = 'f'; break;
        case '\r': escape[1] = 'r'; break;
        default: escape[1] = 'u'; length = 6;
      }
      out.append(escape, length);
    }
  }
  out.append(data + runStart, size - runStart);
  out.push_back('"');
}

template <class Output>
void appendInteger(Output& out, std::int64_t value) {
  char digits[24];
  const auto result = std::to_chars(digits, digits + sizeof digits, value);
  out.append(digits, static_cast<std::size_t>(result.ptr - digits));
}

template <class Output>
void appendBoolean(Output& out, bool value) {
  if (value) {
    out.append("true", 4);
  } else {
    out.append("false", 5);
  }
}

// The canonical text of a value: no whitespace, members in stored order. Recursion is bounded by the
// depth every value is built within.
template <class Output>
void appendValue(Output& out, const ORXCanonicalValue& value) {
  switch (value.kind()) {
    case ORXCanonicalValue::Kind::string:
      appendEscaped(out, *value.asString());
      return;
    case ORXCanonicalValue::Kind::boolean:
      appendBoolean(out, *value.asBoolean());
      return;
    case ORXCanonicalValue::Kind::integer:
      appendInteger(out, *value.asInteger());
      return;
    case ORXCanonicalValue::Kind::array: {
      out.push_back('[');
      bool first = true;
      for (const auto& element : *value.asArray()) {
        if (!first) out.push_back(',');
        first = false;
        appendValue(out, element);
      }
      out.push_back(']');
      return;
    }
    case ORXCanonicalValue::Kind::object: {
      out.push_back('{');
      bool first = true;
      for (const auto& [key, member] : value.asObject()->fields()) {
        if (!first) out.push_back(',');
        first = false;
        appendEscaped(out, key);
        out.push_back(':');
        appendValue(out, member);
      }
      out.push_back('}');
      return;
    }
  }
}

}  // namespace ORXCanonicalTextOutput
