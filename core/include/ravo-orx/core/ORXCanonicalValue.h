#pragma once
// The canonical value: the JSON subset every host-contract record is turned into before it is compared
// or hashed. Strings (UTF-8), booleans, signed 64-bit integers, arrays, and objects whose keys are
// unique and sorted by code point. No null and no floating-point numbers.
//
// A value nests at most kMaxNestingDepth arrays and objects, as the parser allows: building a deeper
// one throws, so every value serializes to text that parses back, and copying, comparing, writing and
// destroying one never recurse past that depth.
//
// A value is 16 bytes: an integer or boolean in place; a string as one allocated std::string (the empty
// string and those of one ASCII byte are shared and allocate nothing); an array or object as one
// allocation holding exactly its members, none when it has none. A field is its key (a std::string,
// kept in place up to 15 bytes) and its value, 48 bytes. A parsed document thus costs at most about
// 16 bytes per byte of its text: a list of one-digit numbers 8, of two-byte strings 13.
//
// ORXCanonicalObject and ORXCanonicalValue are defined together because each contains the other.

#include <cstdint>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <ravo-orx/core/ORXCompactVector.h>
#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/core/ORXExport.h>

namespace ravo::orx {

class ORXCanonicalValue;

// A value holds no pointer into itself: lists of values grow by realloc.
template <>
inline constexpr bool kORXRelocatableByBytes<ORXCanonicalValue> = true;

class RAVO_ORX_API ORXCanonicalObject {
 public:
  using Field = std::pair<std::string, ORXCanonicalValue>;
  using Fields = ORXCompactVector<Field>;

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
  using Array = ORXCompactVector<ORXCanonicalValue>;

  static constexpr int kMaxNestingDepth = 512;

  // Throws ORXError::invalid ("orx.v051.value_invalid") when the text is not well-formed UTF-8.
  static ORXCanonicalValue string(std::string text);
  static ORXCanonicalValue boolean(bool value);
  static ORXCanonicalValue integer(std::int64_t value);
  // Both throw ORXError::invalid ("orx.v051.value_invalid") when the result would nest deeper than
  // kMaxNestingDepth. The members are kept in exactly as much room as they need.
  static ORXCanonicalValue array(Array elements);
  static ORXCanonicalValue object(ORXCanonicalObject object);
  // Builds the object through ORXCanonicalObject, so key order never depends on the caller's order.
  static ORXCanonicalValue object(ORXCanonicalObject::Fields fields);

  ORXCanonicalValue(const ORXCanonicalValue& other);
  // A string moved from keeps the shared empty string, so that only one of the two owns the text.
  ORXCanonicalValue(ORXCanonicalValue&& other) noexcept
      : integer_(0), kind_(other.kind_), sharedString_(other.sharedString_), depth_(other.depth_) {
    switch (kind_) {
      case Kind::string:
        string_ = std::exchange(other.string_, emptyString());
        other.sharedString_ = true;
        return;
      case Kind::boolean:
        boolean_ = other.boolean_;
        return;
      case Kind::integer:
        integer_ = other.integer_;
        return;
      case Kind::array:
        ::new (static_cast<void*>(&array_)) Array(std::move(other.array_));
        return;
      case Kind::object:
        ::new (static_cast<void*>(&object_)) ORXCanonicalObject(std::move(other.object_));
        return;
    }
  }
  ORXCanonicalValue& operator=(const ORXCanonicalValue& other);
  // `other` may live inside this value, so it is moved out before this value is destroyed.
  ORXCanonicalValue& operator=(ORXCanonicalValue&& other) noexcept {
    if (this == &other) return *this;
    ORXCanonicalValue taken(std::move(other));
    this->~ORXCanonicalValue();
    ::new (static_cast<void*>(this)) ORXCanonicalValue(std::move(taken));
    return *this;
  }
  ~ORXCanonicalValue() {
    switch (kind_) {
      case Kind::string:
        if (!sharedString_) delete string_;
        return;
      case Kind::array:
        array_.~Array();
        return;
      case Kind::object:
        object_.~ORXCanonicalObject();
        return;
      case Kind::boolean:
      case Kind::integer:
        return;
    }
  }

  Kind kind() const { return kind_; }
  // Each accessor yields the payload when the value is of that kind, else nothing.
  const std::string* asString() const { return kind_ == Kind::string ? string_ : nullptr; }
  std::optional<bool> asBoolean() const;
  std::optional<std::int64_t> asInteger() const;
  const Array* asArray() const { return kind_ == Kind::array ? &array_ : nullptr; }
  const ORXCanonicalObject* asObject() const { return kind_ == Kind::object ? &object_ : nullptr; }
  // Levels of arrays and objects: 0 for a scalar, 1 for an array of scalars or an empty object.
  int nestingDepth() const { return depth_; }

  // The canonical text: no whitespace, keys in stored order, minimal escapes, raw UTF-8 otherwise.
  std::string canonicalString() const;
  // The UTF-8 bytes of canonicalString(); what digests and byte comparisons use.
  std::vector<std::uint8_t> canonicalData() const;
  // Appends the canonical text to `out`, so callers can serialize without intermediate strings.
  void appendCanonicalString(std::string& out) const;

  friend bool operator==(const ORXCanonicalValue& a, const ORXCanonicalValue& b) { return a.equals(b); }

 private:
  explicit ORXCanonicalValue(Kind kind) : integer_(0), kind_(kind) {}
  bool equals(const ORXCanonicalValue& other) const;
  static const std::string* emptyString();

  union {
    const std::string* string_;  // owned unless sharedString_
    bool boolean_;
    std::int64_t integer_;
    Array array_;
    ORXCanonicalObject object_;
  };
  Kind kind_;
  bool sharedString_ = false;
  std::uint16_t depth_ = 0;
};

}  // namespace ravo::orx
