#pragma once
// A JSON document of any shape RFC 8259 allows, as a small tree: for the inputs that are JSON but not
// canonical ORX values (the Orx build's evidence.json), whose readers must ignore members of any type
// they do not know. Read with the canonical reader's grammar extended to null and every number, so it
// shares its string decoding, UTF-8 check, nesting bound (512 levels) and refusal of trailing bytes.
// Numbers stay the text they were written as; members keep their order, repeats included.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <ravo-orx/core/ORXError.h>

namespace ravo::orx::internal {

struct ORXJSONDocument {
  enum class Kind { null, boolean, number, string, array, object };
  struct Member;

  Kind kind = Kind::null;
  bool boolean = false;
  std::string text;  // a string's decoded bytes, or a number as written
  std::vector<ORXJSONDocument> items;
  std::vector<Member> members;

  // Throws ORXError::parse at the first byte that is not JSON.
  static ORXJSONDocument read(std::string_view json);

  // The member named `key`, or null when there is none; with repeats, the count says so.
  const ORXJSONDocument* member(std::string_view key, std::size_t* count = nullptr) const;

  // "null", "a boolean", "an integer", "a number", "a string", "an array" or "an object", for messages.
  std::string_view describe() const;
};

struct ORXJSONDocument::Member {
  std::string key;
  ORXJSONDocument value;
};

}  // namespace ravo::orx::internal
