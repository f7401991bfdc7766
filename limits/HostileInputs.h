#pragma once
// Oversized and deeply nested inputs for the limits suite and the scaling benchmark: documents of a
// given size in bytes, nesting of a given depth, and objects with a given number of members.

#include <algorithm>
#include <cstddef>
#include <string>

namespace ravo::orx {

namespace hostile_inputs {

inline constexpr std::size_t kHundredMegabytes = 100u << 20;

// The document every reader of the limits suite reads whole. Sanitizer builds are unoptimised, and
// there nlohmann's parser takes about 0.3 µs a byte (half a minute per reader at 100 MB), so they
// read 16 MiB: the same paths, a sixth of the time.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr std::size_t kLargeDocumentBytes = 16u << 20;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
inline constexpr std::size_t kLargeDocumentBytes = 16u << 20;
#else
inline constexpr std::size_t kLargeDocumentBytes = kHundredMegabytes;
#endif
#else
inline constexpr std::size_t kLargeDocumentBytes = kHundredMegabytes;
#endif

// {"<key>":"aaa…"}, exactly `bytes` long: canonical JSON whose size is all in one string.
inline std::string documentWithLongString(std::size_t bytes, const std::string& key = "contract_version") {
  const std::string head = "{\"" + key + "\":\"";
  const std::string tail = "\"}";
  return head + std::string(bytes - head.size() - tail.size(), 'a') + tail;
}

// ["aaa… with no closing quote, exactly `bytes` long: the parser reads to the end before failing.
inline std::string unterminatedString(std::size_t bytes) { return "[\"" + std::string(bytes - 2, 'a'); }

// `depth` opening brackets and, when `closed`, as many closing ones.
inline std::string nestedArrays(std::size_t depth, bool closed = true) {
  return std::string(depth, '[') + (closed ? std::string(depth, ']') : std::string());
}

// {"a":{"a":…{"a":0}…}} with `depth` objects.
inline std::string nestedObjects(std::size_t depth) {
  std::string text;
  text.reserve(depth * 6 + 1);
  for (std::size_t level = 0; level < depth; ++level) text += "{\"a\":";
  text += '0';
  text.append(depth, '}');
  return text;
}

// ["","",…] with `count` empty strings: three bytes a value, the most values a byte of JSON buys.
inline std::string emptyStrings(std::size_t count) {
  std::string text = "[";
  text.reserve(count * 3 + 1);
  for (std::size_t i = 0; i < count; ++i) text += i ? ",\"\"" : "\"\"";
  return text + "]";
}

// {"k0":0,"k1":0,…} with `members` distinct keys, in ascending order so that canonical readers accept
// it as written.
inline std::string objectWithMembers(std::size_t members) {
  std::string text = "{";
  text.reserve(members * 12 + 2);
  const std::size_t width = std::to_string(members).size();
  for (std::size_t i = 0; i < members; ++i) {
    if (i > 0) text += ',';
    const std::string number = std::to_string(i);
    text += "\"k" + std::string(width - number.size(), '0') + number + "\":0";
  }
  return text + "}";
}

// [{"name":"device 0","level":0,"on":true},…] grown until it is at least `bytes` long: a document of
// many small records, the shape that costs a parser most per byte.
inline std::string arrayOfRecords(std::size_t bytes) {
  std::string text = "[";
  text.reserve(bytes + 64);
  for (std::size_t i = 0; text.size() < bytes; ++i) {
    if (i > 0) text += ',';
    text += "{\"level\":" + std::to_string(i % 1000) + ",\"name\":\"device " + std::to_string(i) + "\",\"on\":true}";
  }
  return text + "]";
}

// {"0000":0,"0001":0,…}: members of four-character keys (digits, then capitals, then small letters: in
// code-point order), as many as fit in `bytes`, nine bytes each. Canonical as written unless
// `descending`, which writes the same members in reverse: one object whose every key arrives out of
// order.
inline std::string objectOfShortKeys(std::size_t bytes, bool descending) {
  static constexpr char kDigits[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
  constexpr std::size_t kBase = sizeof kDigits - 1;
  const std::size_t members = std::min((bytes - 1) / 9, kBase * kBase * kBase * kBase);
  std::string text;
  text.reserve(members * 9 + 2);
  text += '{';
  for (std::size_t i = 0; i < members; ++i) {
    const std::size_t key = descending ? members - 1 - i : i;
    text += i > 0 ? ",\"" : "\"";
    for (std::size_t digit = kBase * kBase * kBase; digit > 0; digit /= kBase) text += kDigits[key / digit % kBase];
    text += "\":0";
  }
  text += '}';
  return text;
}

// Appends `element` repeated, comma-separated, in an array of about `bytes` (at least one element).
inline void appendArrayOf(std::string& text, const std::string& element, std::size_t bytes) {
  const std::size_t count = std::max<std::size_t>(1, bytes / (element.size() + 1));
  text.reserve(text.size() + count * (element.size() + 1) + 2);
  text += '[';
  for (std::size_t i = 0; i < count; ++i) {
    if (i > 0) text += ',';
    text += element;
  }
  text += ']';
}

inline std::string arrayOf(const std::string& element, std::size_t bytes) {
  std::string text;
  appendArrayOf(text, element, bytes);
  return text;
}

// `levels` objects around what `appendInner(text)` appends (some `innerBytes` long):
// {"b":{"b":…inner…,"a":1},"a":0}, each writing the enclosed value under "b" before its level under
// "a", out of order; with `canonical`, "a" first. Written into one string, so that a large document
// is never held twice while it is made.
template <class AppendInner>
std::string objectsAround(std::size_t levels, bool canonical, std::size_t innerBytes, AppendInner appendInner) {
  std::string text;
  text.reserve(innerBytes + levels * 32);
  for (std::size_t level = 0; level < levels; ++level) {
    text += canonical ? "{\"a\":" + std::to_string(level) + ",\"b\":" : "{\"b\":";
  }
  appendInner(text);
  for (std::size_t level = levels; level-- > 0;) {
    text += canonical ? "}" : ",\"a\":" + std::to_string(level) + "}";
  }
  return text;
}

}  // namespace hostile_inputs

}  // namespace ravo::orx
