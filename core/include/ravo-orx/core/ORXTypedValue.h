#pragma once
// A value of the Orx type language with enough type information to check it, and its canonical value.
// The encoding sidesteps what JSON implementations disagree on: 64-bit integers travel as decimal text,
// floats as their IEEE-754 bit patterns in hex, and NaN has exactly one spelling.

#include <concepts>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>

#include <ravo-orx/core/ORXCanonicalValue.h>
#include <ravo-orx/core/ORXEnumValue.h>
#include <ravo-orx/core/ORXTypeReference.h>
#include <ravo-orx/core/ORXExport.h>

namespace ravo::orx {

// A float as its bit pattern (8 lowercase hex digits for f32, 16 for f64) or as NaN. The pattern is
// checked when the typed value is encoded, since its width depends on the type it is used as.
class RAVO_ORX_API ORXFloatRepresentation {
 public:
  static ORXFloatRepresentation bits(std::string hex) { return ORXFloatRepresentation(std::move(hex)); }
  static ORXFloatRepresentation nan() { return ORXFloatRepresentation(std::nullopt); }

  // The hex digits, or null for NaN.
  const std::string* hexBits() const { return bits_ ? &*bits_ : nullptr; }

  friend bool operator==(const ORXFloatRepresentation&, const ORXFloatRepresentation&) = default;

 private:
  explicit ORXFloatRepresentation(std::optional<std::string> bits) : bits_(std::move(bits)) {}

  std::optional<std::string> bits_;
};

class RAVO_ORX_API ORXTypedValue {
 public:
  enum class Kind { i32, i64, f32, f64, boolean, enumeration, option, result };

  // The outcome held by a result: an ok payload or an error enum value.
  class ResultValue {
   public:
    static ResultValue ok(ORXTypedValue value);
    static ResultValue err(ORXEnumValue error) { return ResultValue(std::move(error)); }

    // The ok payload, or null for an error.
    const ORXTypedValue* okValue() const;
    // The error, or null for an ok payload.
    const ORXEnumValue* errValue() const { return std::get_if<ORXEnumValue>(&value_); }

    friend bool operator==(const ResultValue& a, const ResultValue& b);

   private:
    explicit ResultValue(std::variant<std::shared_ptr<const ORXTypedValue>, ORXEnumValue> value)
        : value_(std::move(value)) {}

    std::variant<std::shared_ptr<const ORXTypedValue>, ORXEnumValue> value_;
  };

  static ORXTypedValue i32(std::int32_t value) { return ORXTypedValue(value); }
  static ORXTypedValue i64(std::int64_t value) { return ORXTypedValue(value); }
  static ORXTypedValue f32(ORXFloatRepresentation value) { return ORXTypedValue(F32{std::move(value)}); }
  static ORXTypedValue f64(ORXFloatRepresentation value) { return ORXTypedValue(F64{std::move(value)}); }
  static ORXTypedValue boolean(bool value) { return ORXTypedValue(value); }
  static ORXTypedValue enumeration(ORXEnumValue value) { return ORXTypedValue(std::move(value)); }
  // An option declared as `option<type>`, holding `value` or nothing.
  static ORXTypedValue option(ORXFlatTypeReference type, std::optional<ORXTypedValue> value);
  // A result declared as `result<type,errorType>`.
  static ORXTypedValue result(ORXFlatTypeReference type, std::string errorType, ResultValue value);

  Kind kind() const { return static_cast<Kind>(value_.index()); }

  // Checks the value against `expectedType` (when given) and against its own declared inner types, and
  // returns its canonical value. Failures are "orx.v051.typed_value_invalid".
  ORXCanonicalValue canonicalValue(const std::optional<ORXTypeReference>& expectedType = std::nullopt) const;

  friend bool operator==(const ORXTypedValue& a, const ORXTypedValue& b);

 private:
  struct F32 {
    ORXFloatRepresentation value;
    friend bool operator==(const F32&, const F32&) = default;
  };
  struct F64 {
    ORXFloatRepresentation value;
    friend bool operator==(const F64&, const F64&) = default;
  };
  struct Option {
    ORXFlatTypeReference type;
    std::shared_ptr<const ORXTypedValue> value;  // null when absent
  };
  struct Result {
    ORXFlatTypeReference type;
    std::string errorType;
    ResultValue value;
  };
  using Storage = std::variant<std::int32_t, std::int64_t, F32, F64, bool, ORXEnumValue, Option, Result>;

  template <class T>
    requires(!std::same_as<T, ORXTypedValue>)
  explicit ORXTypedValue(T value) : value_(std::in_place_type<T>, std::move(value)) {}

  void checkExpected(const ORXTypeReference& expected) const;
  ORXCanonicalValue encode() const;

  Storage value_;
};

}  // namespace ravo::orx
