#pragma once
// Oversized and deeply nested inputs for the limits suite and the scaling benchmark: documents of a
// given size in bytes, nesting of a given depth, and objects with a given number of members.

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

}  // namespace hostile_inputs

}  // namespace ravo::orx
