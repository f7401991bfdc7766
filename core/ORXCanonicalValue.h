#pragma once
// The canonical value: the JSON subset every host-contract record is turned into before it is compared
// or hashed. Strings (UTF-8), booleans, signed 64-bit integers, arrays, and objects whose keys are
// unique and sorted by code point. No null and no floating-point numbers.
//
// ORXCanonicalObject and ORXCanonicalValue are defined together because each contains the other.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "core/ORXError.h"

class ORXCanonicalValue;

class ORXCanonicalObject {
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

class ORXCanonicalValue {
 public:
  enum class Kind { string, boolean, integer, array, object };
  using Array = std::vector<ORXCanonicalValue>;

  // Throws ORXError::invalid ("orx.v051.value_invalid") when the text is not well-formed UTF-8.
  static ORXCanonicalValue string(std::string text);
  static ORXCanonicalValue boolean(bool value) { return ORXCanonicalValue(Storage(std::in_place_type<bool>, value)); }
  static ORXCanonicalValue integer(std::int64_t value) {
    return ORXCanonicalValue(Storage(std::in_place_type<std::int64_t>, value));
  }
  static ORXCanonicalValue array(Array elements) {
    return ORXCanonicalValue(Storage(std::in_place_type<Array>, std::move(elements)));
  }
  static ORXCanonicalValue object(ORXCanonicalObject object) {
    return ORXCanonicalValue(Storage(std::in_place_type<ORXCanonicalObject>, std::move(object)));
  }
  // Builds the object through ORXCanonicalObject, so key order never depends on the caller's order.
  static ORXCanonicalValue object(ORXCanonicalObject::Fields fields);

  Kind kind() const { return static_cast<Kind>(storage_.index()); }
  // Each accessor yields the payload when the value is of that kind, else nothing.
  const std::string* asString() const { return std::get_if<std::string>(&storage_); }
  std::optional<bool> asBoolean() const;
  std::optional<std::int64_t> asInteger() const;
  const Array* asArray() const { return std::get_if<Array>(&storage_); }
  const ORXCanonicalObject* asObject() const { return std::get_if<ORXCanonicalObject>(&storage_); }

  // The canonical text: no whitespace, keys in stored order, minimal escapes, raw UTF-8 otherwise.
  std::string canonicalString() const;
  // The UTF-8 bytes of canonicalString(); what digests and byte comparisons use.
  std::vector<std::uint8_t> canonicalData() const;
  // Appends the canonical text to `out`, so callers can serialize without intermediate strings.
  void appendCanonicalString(std::string& out) const;

  friend bool operator==(const ORXCanonicalValue&, const ORXCanonicalValue&) = default;

 private:
  using Storage = std::variant<std::string, bool, std::int64_t, Array, ORXCanonicalObject>;

  explicit ORXCanonicalValue(Storage storage) : storage_(std::move(storage)) {}

  Storage storage_;
};
