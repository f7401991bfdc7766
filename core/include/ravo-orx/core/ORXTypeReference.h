#pragma once
// Type references of the Orx type language: a flat type (a primitive or a closed enum identity),
// an option of a flat type, or a result of a flat payload and an error enum. Options and results never
// nest. Each has one canonical text, and parsing that text gives the reference back.

#include <string>
#include <string_view>
#include <variant>

#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/core/ORXPrimitiveType.h>
#include <ravo-orx/core/ORXExport.h>

namespace ravo::orx {

class RAVO_ORX_API ORXFlatTypeReference {
 public:
  static ORXFlatTypeReference primitive(ORXPrimitiveType type) { return ORXFlatTypeReference(type); }
  // Throws unless `typeID` is a `module::Type` identity.
  static ORXFlatTypeReference enumeration(std::string_view typeID);
  // A primitive's raw value, or else an enum identity.
  static ORXFlatTypeReference parse(std::string_view text);

  // The primitive, or null for an enumeration.
  const ORXPrimitiveType* asPrimitive() const { return std::get_if<ORXPrimitiveType>(&type_); }
  // The enum identity, or null for a primitive.
  const std::string* asEnumeration() const { return std::get_if<std::string>(&type_); }
  std::string canonical() const;

  friend bool operator==(const ORXFlatTypeReference&, const ORXFlatTypeReference&) = default;

 private:
  explicit ORXFlatTypeReference(std::variant<ORXPrimitiveType, std::string> type) : type_(std::move(type)) {}

  std::variant<ORXPrimitiveType, std::string> type_;
};

class RAVO_ORX_API ORXTypeReference {
 public:
  enum class Kind { flat, option, result };

  static ORXTypeReference flat(ORXFlatTypeReference type) { return ORXTypeReference(Kind::flat, std::move(type), {}); }
  static ORXTypeReference option(ORXFlatTypeReference type) {
    return ORXTypeReference(Kind::option, std::move(type), {});
  }
  // Throws unless `errorEnum` is a `module::Type` identity.
  static ORXTypeReference result(ORXFlatTypeReference payload, std::string_view errorEnum);
  // Accepts only canonical text: "i64", "m::E", "option<f32>", "result<i32,m::Err>".
  static ORXTypeReference parse(std::string_view text);

  Kind kind() const { return kind_; }
  // The flat type itself, the option's parameter or the result's payload.
  const ORXFlatTypeReference& type() const { return type_; }
  // The result's error enum identity; empty for the other kinds.
  const std::string& errorEnum() const { return errorEnum_; }
  std::string canonical() const;

  friend bool operator==(const ORXTypeReference&, const ORXTypeReference&) = default;

 private:
  ORXTypeReference(Kind kind, ORXFlatTypeReference type, std::string errorEnum)
      : kind_(kind), type_(std::move(type)), errorEnum_(std::move(errorEnum)) {}

  Kind kind_;
  ORXFlatTypeReference type_;
  std::string errorEnum_;
};

}  // namespace ravo::orx
