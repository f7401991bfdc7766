#pragma once
// The canonical value: the JSON subset every host-contract record is turned into before it is compared
// or hashed. Strings (UTF-8), booleans, signed 64-bit integers, arrays, and objects whose keys are
// unique and sorted by code point. No null and no floating-point numbers.
//
// A value nests at most kMaxNestingDepth arrays and objects, as the parser allows: building a deeper
// one throws, so every value serializes to text that parses back, and copying, comparing, writing and
// destroying one never recurse past that depth.
//
// ORXCanonicalObject and ORXCanonicalValue are defined together because each contains the other.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/core/ORXExport.h>

namespace ravo::orx {

class ORXCanonicalValue;

class RAVO_ORX_API ORXCanonicalObject {
 public:
  using Field = std::pair<std::string, ORXCanonicalValue>;
  using Fields = std::vector<Field>;

  ORXCanonicalObject();
  // Throws ORXError::duplicate naming the first key repeated in input order, or ORXError::invalid when
  // a key is not UTF-8; stores the fields sorted by key. Keys repeat when their bytes are equal: two
  // canonically equivalent spellings are different keys, which keeps the check exact and cheap (every
  // record of the host contract uses ASCII keys).
  explicit ORXCanonicalObject(Fields fields);

  const Fields& fields() const { return fields_; }
  // The value stored under `key`, or null.
  const ORXCanonicalValue* value(std::string_view key) const;

  friend bool operator==(const ORXCanonicalObject& a, const ORXCanonicalObject& b);

 private:
  Fields fields_;
};

class RAVO_ORX_API ORXCanonicalValue {
 public:
  enum class Kind { string, boolean, integer, array, object };
  using Array = std::vector<ORXCanonicalValue>;

  static constexpr int kMaxNestingDepth = 512;

  // Throws ORXError::invalid ("orx.v051.value_invalid") when the text is not well-formed UTF-8.
  static ORXCanonicalValue string(std::string text);
  static ORXCanonicalValue boolean(bool value) { return ORXCanonicalValue(Storage(std::in_place_type<bool>, value)); }
  static ORXCanonicalValue integer(std::int64_t value) {
    return ORXCanonicalValue(Storage(std::in_place_type<std::int64_t>, value));
  }
  // Both throw ORXError::invalid ("orx.v051.value_invalid") when the result would nest deeper than
  // kMaxNestingDepth.
  static ORXCanonicalValue array(Array elements);
  static ORXCanonicalValue object(ORXCanonicalObject object);
  // Builds the object through ORXCanonicalObject, so key order never depends on the caller's order.
  static ORXCanonicalValue object(ORXCanonicalObject::Fields fields);

  Kind kind() const { return static_cast<Kind>(storage_.index()); }
  // Each accessor yields the payload when the value is of that kind, else nothing.
  const std::string* asString() const { return std::get_if<std::string>(&storage_); }
  std::optional<bool> asBoolean() const;
  std::optional<std::int64_t> asInteger() const;
  const Array* asArray() const;
  const ORXCanonicalObject* asObject() const;
  // Levels of arrays and objects: 0 for a scalar, 1 for an array of scalars or an empty object.
  int nestingDepth() const {
    if (const ArrayNode* node = std::get_if<ArrayNode>(&storage_)) return node->depth;
    if (const ObjectNode* node = std::get_if<ObjectNode>(&storage_)) return node->depth;
    return 0;
  }

  // The canonical text: no whitespace, keys in stored order, minimal escapes, raw UTF-8 otherwise.
  std::string canonicalString() const;
  // The UTF-8 bytes of canonicalString(); what digests and byte comparisons use.
  std::vector<std::uint8_t> canonicalData() const;
  // Appends the canonical text to `out`, so callers can serialize without intermediate strings.
  void appendCanonicalString(std::string& out) const;

  friend bool operator==(const ORXCanonicalValue&, const ORXCanonicalValue&) = default;

 private:
  // Containers carry their depth, computed once when built, in room the string alternative leaves.
  struct ArrayNode {
    Array elements;
    int depth;
    friend bool operator==(const ArrayNode& a, const ArrayNode& b) { return a.elements == b.elements; }
  };
  struct ObjectNode {
    ORXCanonicalObject object;
    int depth;
    friend bool operator==(const ObjectNode& a, const ObjectNode& b) { return a.object == b.object; }
  };
  // Alternatives in the order of Kind, so the index is the kind.
  using Storage = std::variant<std::string, bool, std::int64_t, ArrayNode, ObjectNode>;

  explicit ORXCanonicalValue(Storage storage) : storage_(std::move(storage)) {}

  Storage storage_;
};

}  // namespace ravo::orx
