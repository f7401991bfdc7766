#pragma once
// The five primitive types of the Orx type language.

#include <ravo-orx/core/ORXRawValue.h>

namespace ravo::orx {

enum class ORXPrimitiveType {
  i32,
  i64,
  f32,
  f64,
  boolean,  // raw value "bool"; `bool` is a C++ keyword
};

template <>
struct ORXRawValueTable<ORXPrimitiveType> {
  static constexpr std::array<std::pair<ORXPrimitiveType, std::string_view>, 5> entries{{
      {ORXPrimitiveType::i32, "i32"},
      {ORXPrimitiveType::i64, "i64"},
      {ORXPrimitiveType::f32, "f32"},
      {ORXPrimitiveType::f64, "f64"},
      {ORXPrimitiveType::boolean, "bool"},
  }};
};

}  // namespace ravo::orx
