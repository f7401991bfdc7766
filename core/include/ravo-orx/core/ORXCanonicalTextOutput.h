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

#include <ravo-orx/core/ORXCanonicalValue.h>
#include <ravo-orx/core/ORXJSONStringDecoding.h>

namespace ravo::orx::internal {

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
// text is well-formed UTF-8, so bytes of 0x80 and above are whole scalars written raw). Runs of plain
// bytes are found with the readers' own scan and copied whole.
template <class Output>
void appendEscaped(Output& out, std::string_view text) {
  static constexpr char kHex[] = "0123456789abcdef";
  out.push_back('"');
  for (std::size_t runStart = 0;;) {
    const std::size_t runEnd = ORXJSONStringDecoding::plainRunEnd(text.data(), text.size(), runStart);
    out.append(text.data() + runStart, runEnd - runStart);
    if (runEnd == text.size()) break;
    const auto byte = static_cast<unsigned char>(text[runEnd]);
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
    runStart = runEnd + 1;
  }
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

}  // namespace ravo::orx::internal
