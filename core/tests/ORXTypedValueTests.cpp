#include <gtest/gtest.h>

#include <string>

#include <ravo-orx/core/ORXTypedValue.h>
#include "core/tests/ORXTestSupport.h"

namespace ravo::orx {

namespace {

using T = ORXTypedValue;
using F = ORXFloatRepresentation;

ORXFlatTypeReference prim(ORXPrimitiveType type) { return ORXFlatTypeReference::primitive(type); }

const ORXClosedEnumContext& testEnums() {
  static const ORXClosedEnumContext context({
      {"m::E", ORXClosedEnumKind::errorEnum, {0, 1}},
      {"m::F", ORXClosedEnumKind::errorEnum, {0}},
  });
  return context;
}

TEST(ORXTypedValue, EncodesEachCase) {
  const ORXEnumValue failure(3, "orx.host::FailureReason");
  const ORXEnumValue error(1, "m::E", testEnums());
  struct Case {
    T value;
    std::string canonical;
  };
  const Case cases[] = {
      {T::i32(7), "7"},
      {T::i32(INT32_MIN), "-2147483648"},
      {T::i64(-5), "{\"decimal\":\"-5\",\"type\":\"i64\"}"},
      {T::i64(INT64_MIN), "{\"decimal\":\"-9223372036854775808\",\"type\":\"i64\"}"},
      {T::f32(F::bits("3f800000")), "{\"bits\":\"3f800000\",\"type\":\"f32\"}"},
      {T::f32(F::bits("7f800000")), "{\"bits\":\"7f800000\",\"type\":\"f32\"}"},
      {T::f32(F::bits("80000000")), "{\"bits\":\"80000000\",\"type\":\"f32\"}"},
      {T::f32(F::bits("00000001")), "{\"bits\":\"00000001\",\"type\":\"f32\"}"},
      {T::f64(F::bits("7ff0000000000000")), "{\"bits\":\"7ff0000000000000\",\"type\":\"f64\"}"},
      {T::f64(F::nan()), "{\"classification\":\"nan\",\"type\":\"f64\"}"},
      {T::boolean(true), "true"},
      {T::enumeration(failure), "{\"discriminant\":3,\"type\":\"orx.host::FailureReason\"}"},
      {T::option(prim(ORXPrimitiveType::i32), std::nullopt), "{\"tag\":\"none\",\"type\":\"option<i32>\"}"},
      {T::option(prim(ORXPrimitiveType::i64), T::i64(9)),
       "{\"tag\":\"some\",\"type\":\"option<i64>\",\"value\":{\"decimal\":\"9\",\"type\":\"i64\"}}"},
      {T::result(prim(ORXPrimitiveType::boolean), "m::E", T::ResultValue::ok(T::boolean(false))),
       "{\"tag\":\"ok\",\"type\":\"result<bool,m::E>\",\"value\":false}"},
      {T::result(prim(ORXPrimitiveType::i32), "m::E", T::ResultValue::err(error)),
       "{\"error\":{\"discriminant\":1,\"type\":\"m::E\"},\"tag\":\"err\",\"type\":\"result<i32,m::E>\"}"},
  };
  for (const auto& c : cases) EXPECT_EQ(c.value.canonicalValue().canonicalString(), c.canonical);
}

TEST(ORXTypedValue, RefusesMismatchedTypesAndBadFloats) {
  const std::string prefix = "orx.v051.typed_value_invalid: ";
  const std::string mismatch = prefix + "typed value does not match expected type";
  const std::string badBits = prefix + "floating bits are invalid or use a non-canonical NaN";
  const auto i32 = prim(ORXPrimitiveType::i32);
  const auto i64 = prim(ORXPrimitiveType::i64);
  const ORXEnumValue errorF(0, "m::F", testEnums());
  struct Case {
    T value;
    std::optional<ORXTypeReference> expected;
    std::string description;
  };
  const Case cases[] = {
      {T::i32(7), ORXTypeReference::flat(i64), mismatch},
      {T::i64(7), ORXTypeReference::flat(i32), mismatch},
      {T::enumeration(errorF), ORXTypeReference::flat(ORXFlatTypeReference::enumeration("m::E")), mismatch},
      {T::boolean(true), ORXTypeReference::flat(ORXFlatTypeReference::enumeration("m::E")), mismatch},
      {T::option(i32, T::boolean(true)), std::nullopt, mismatch},
      {T::result(i32, "m::E", T::ResultValue::ok(T::i64(1))), std::nullopt, mismatch},
      {T::option(i32, std::nullopt), ORXTypeReference::option(i64), prefix + "typed value does not match expected option type"},
      {T::i32(1), ORXTypeReference::option(i32), prefix + "typed value does not match expected option type"},
      {T::result(i32, "m::E", T::ResultValue::ok(T::i32(1))), ORXTypeReference::result(i32, "m::F"),
       prefix + "typed value does not match expected result type"},
      {T::result(i32, "m::E", T::ResultValue::ok(T::i32(1))), ORXTypeReference::result(i64, "m::E"),
       prefix + "typed value does not match expected result type"},
      {T::result(i32, "m::E", T::ResultValue::err(errorF)), std::nullopt,
       prefix + "result error type mismatches declared error enum"},
      // Error enum identities that the type text's own parser refuses.
      {T::result(i32, "i64", T::ResultValue::ok(T::i32(1))), std::nullopt,
       prefix + "enum type must use module::Type identity"},
      {T::result(i32, "m::e", T::ResultValue::ok(T::i32(1))), std::nullopt,
       prefix + "enum type must have a capitalized type name"},
      {T::result(i32, "m::E,n::F", T::ResultValue::ok(T::i32(1))), std::nullopt,
       prefix + "enum type must use module::Type identity"},
      {T::f32(F::bits("7fc00000")), std::nullopt, badBits},
      {T::f32(F::bits("ff800001")), std::nullopt, badBits},
      {T::f32(F::bits("3F800000")), std::nullopt, badBits},
      {T::f32(F::bits("3f80000")), std::nullopt, badBits},
      {T::f32(F::bits("3f800000 ")), std::nullopt, badBits},
      {T::f64(F::bits("7ff8000000000000")), std::nullopt, badBits},
      {T::f64(F::bits("3f800000")), std::nullopt, badBits},
  };
  for (const auto& c : cases) {
    EXPECT_TRUE(orxThrows([&] { c.value.canonicalValue(c.expected); }, c.description))
        << (c.expected ? c.expected->canonical() : "no expected type");
  }
}

TEST(ORXTypedValue, AcceptsTheExpectedTypeAndComparesStructurally) {
  const auto i32 = prim(ORXPrimitiveType::i32);
  const T some = T::option(i32, T::i32(4));
  EXPECT_EQ(some.canonicalValue(ORXTypeReference::option(i32)), some.canonicalValue());
  EXPECT_EQ(T::i32(7).canonicalValue(ORXTypeReference::flat(i32)), ORXCanonicalValue::integer(7));
  EXPECT_EQ(some, T::option(i32, T::i32(4)));
  EXPECT_NE(some, T::option(i32, T::i32(5)));
  EXPECT_NE(some, T::option(i32, std::nullopt));
  EXPECT_NE(T::f32(F::nan()), T::f64(F::nan()));
}

}  // namespace

}  // namespace ravo::orx
