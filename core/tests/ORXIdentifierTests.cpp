#include <gtest/gtest.h>

#include <string>

#include <ravo-orx/core/ORXEnumValue.h>
#include <ravo-orx/core/ORXTypeReference.h>
#include <ravo-orx/core/ORXValidation.h>
#include "core/tests/ORXTestSupport.h"

namespace ravo::orx {

namespace {

constexpr const char* kAccepted = "";

TEST(ORXValidation, IdentifierRules) {
  struct Case {
    std::string value;
    bool qualified;
    const char* description;  // kAccepted, or the refusal
  };
  const Case cases[] = {
      {"a", false, kAccepted},
      {"a-b.c_9", false, kAccepted},
      {std::string(96, 'a'), false, kAccepted},
      {"a.b", true, kAccepted},
      {"z09", false, kAccepted},
      {"`a", false, "orx.v051.value_invalid: capability must begin with lowercase ASCII"},
      {"{a", false, "orx.v051.value_invalid: capability must begin with lowercase ASCII"},
      {"_a", false, "orx.v051.value_invalid: capability must begin with lowercase ASCII"},
      {"a`", false, "orx.v051.value_invalid: capability contains an invalid character"},
      {"a{", false, "orx.v051.value_invalid: capability contains an invalid character"},
      {"a/", false, "orx.v051.value_invalid: capability contains an invalid character"},
      {"aZ", false, "orx.v051.value_invalid: capability contains an invalid character"},
      {"a\x7f", false, "orx.v051.value_invalid: capability contains an invalid character"},
      {"a\xc3\xa9", false, "orx.v051.value_invalid: capability must be non-empty ASCII"},
      {"", false, "orx.v051.value_invalid: capability must be non-empty ASCII"},
      {"\xc3\xa9", false, "orx.v051.value_invalid: capability must be non-empty ASCII"},
      {std::string(97, 'a'), false, "orx.v051.value_invalid: capability is too long"},
      {"A", false, "orx.v051.value_invalid: capability must begin with lowercase ASCII"},
      {"9a", false, "orx.v051.value_invalid: capability must begin with lowercase ASCII"},
      {"a b", false, "orx.v051.value_invalid: capability contains an invalid character"},
      {"a:b", false, "orx.v051.value_invalid: capability contains an invalid character"},
      {"aB", false, "orx.v051.value_invalid: capability contains an invalid character"},
      {"abc", true, "orx.v051.value_invalid: capability must be qualified"},
  };
  for (const auto& c : cases) {
    auto check = [&] { return ORXValidation::asciiIdentifier(c.value, c.qualified, "capability"); };
    if (*c.description) {
      EXPECT_TRUE(orxThrows(check, c.description)) << c.value;
    } else {
      EXPECT_EQ(check(), c.value);
    }
  }
}

TEST(ORXValidation, EnumIdentityRules) {
  struct Case {
    const char* value;
    const char* description;
  };
  const Case cases[] = {
      {"orx.host::FailureReason", kAccepted},
      {"m::E_2", kAccepted},
      {"m::Zaz09_", kAccepted},
      {"m::@", "orx.v051.typed_value_invalid: enum type must have a capitalized type name"},
      {"m::[", "orx.v051.typed_value_invalid: enum type must have a capitalized type name"},
      {"m::Ab-", "orx.v051.typed_value_invalid: enum type must have a capitalized type name"},
      {"orx.host::resourceClass", "orx.v051.typed_value_invalid: enum type must have a capitalized type name"},
      {"m::", "orx.v051.typed_value_invalid: enum type must have a capitalized type name"},
      {"m::E-1", "orx.v051.typed_value_invalid: enum type must have a capitalized type name"},
      {"orx.host:ResourceClass", "orx.v051.typed_value_invalid: enum type must use module::Type identity"},
      {"orx::a::B", "orx.v051.typed_value_invalid: enum type must use module::Type identity"},
      {"::A", "orx.v051.value_invalid: enum type must be non-empty ASCII"},
      {"Orx::B", "orx.v051.value_invalid: enum type must begin with lowercase ASCII"},
  };
  for (const auto& c : cases) {
    auto check = [&] { return ORXValidation::qualifiedEnumTypeID(c.value, "enum type"); };
    if (*c.description) {
      EXPECT_TRUE(orxThrows(check, c.description)) << c.value;
    } else {
      EXPECT_EQ(check(), c.value);
    }
  }
}

TEST(ORXValidation, SortedUniqueSets) {
  EXPECT_EQ(ORXValidation::sortedUniqueASCII({"b.x", "a.y"}, "effect type", true),
            (std::vector<std::string>{"a.y", "b.x"}));
  EXPECT_TRUE(orxThrows([] { ORXValidation::sortedUniqueASCII({"a", "b", "a"}, "effect type", false); },
                        "orx.v051.collection_duplicate: effect type has duplicate semantic keys"));
  EXPECT_TRUE(orxThrows([] { ORXValidation::sortedUniqueASCII({"a", "a", "B"}, "effect type", false); },
                        "orx.v051.value_invalid: effect type must begin with lowercase ASCII"));
}

TEST(ORXTypeReference, ParsesOnlyCanonicalText) {
  struct Case {
    std::string text;
    const char* description;
  };
  const char* notCanonical = "orx.v051.type_reference_invalid: type reference must be canonical text";
  const char* twoParameters = "orx.v051.type_reference_invalid: result type must have two canonical parameters";
  const Case cases[] = {
      {"i64", kAccepted},
      {"bool", kAccepted},
      {"option<f32>", kAccepted},
      {"option<m::E>", kAccepted},
      {"result<i32,m::Err>", kAccepted},
      {"result<m::T,m::Err>", kAccepted},
      {"", notCanonical},
      {" i64", notCanonical},
      {"i64\n", notCanonical},
      {"i64\xe2\x80\xa8", notCanonical},  // U+2028 LINE SEPARATOR
      {"result<i32>", twoParameters},
      {"result<i32,>", twoParameters},
      {"result<,m::E>", twoParameters},
      {"result<i32,m::A,m::B>", twoParameters},
      {"option<option<i32>>", "orx.v051.typed_value_invalid: enum type must use module::Type identity"},
      {"result<i32,i64>", "orx.v051.typed_value_invalid: enum type must use module::Type identity"},
      {"result<i32, m::E>", "orx.v051.value_invalid: enum type must begin with lowercase ASCII"},
      {"i8", "orx.v051.typed_value_invalid: enum type must use module::Type identity"},
  };
  for (const auto& c : cases) {
    if (*c.description) {
      EXPECT_TRUE(orxThrows([&] { ORXTypeReference::parse(c.text); }, c.description)) << c.text;
    } else {
      EXPECT_EQ(ORXTypeReference::parse(c.text).canonical(), c.text);
    }
  }
  const auto result = ORXTypeReference::result(ORXFlatTypeReference::primitive(ORXPrimitiveType::i32), "m::Err");
  EXPECT_EQ(result.canonical(), "result<i32,m::Err>");
  EXPECT_EQ(ORXTypeReference::parse("result<i32,m::Err>"), result);
}

TEST(ORXEnumValue, ChecksAgainstTheRegistry) {
  const char* invalid = "orx.decision.enum_discriminant_invalid: closed enum discriminant is invalid";
  struct Case {
    std::int32_t discriminant;
    const char* typeID;
    std::optional<std::string_view> expected;
    bool requireErrorEnum;
    const char* description;
  };
  const Case cases[] = {
      {13, "orx.host::FailureReason", std::nullopt, true, kAccepted},
      {0, "orx.host::DecisionOutcome", "orx.host::DecisionOutcome", false, kAccepted},
      {5, "orx.host::ResourceClass", std::nullopt, false, kAccepted},
      {14, "orx.host::FailureReason", std::nullopt, true, invalid},
      {-1, "orx.host::TerminalState", std::nullopt, false, invalid},
      {0, "orx.host::DecisionOutcome", std::nullopt, true, invalid},
      {0, "orx.host::DecisionOutcome", "orx.host::TerminalState", false, invalid},
      {0, "orx.host::Unknown", std::nullopt, false, invalid},
      {0, "orx.host:Unknown", std::nullopt, false,
       "orx.v051.typed_value_invalid: enum type must use module::Type identity"},
  };
  for (const auto& c : cases) {
    auto make = [&] { return ORXEnumValue(c.discriminant, c.typeID, ORXClosedEnumContext::host(), c.expected, c.requireErrorEnum); };
    if (*c.description) {
      EXPECT_TRUE(orxThrows(make, c.description)) << c.typeID << " " << c.discriminant;
    } else {
      EXPECT_EQ(make().discriminant(), c.discriminant);
    }
  }
  EXPECT_EQ(ORXEnumValue(3, "orx.host::FailureReason").canonicalValue().canonicalString(),
            "{\"discriminant\":3,\"type\":\"orx.host::FailureReason\"}");
}

// The host registry's enumerations run from 0 to their last case: both ends are accepted, the values
// just outside refused, and only FailureReason is an error enumeration.
TEST(ORXClosedEnumContext, HostEnumsRunFromZeroToTheirLastCase) {
  struct Case {
    const char* typeID;
    std::int32_t last;
    bool errorEnum;
  };
  const Case cases[] = {
      {"orx.host::ResourceClass", 5, false},   {"orx.host::SourceClass", 3, false},
      {"orx.host::ObservationPrecision", 5, false}, {"orx.host::DecisionOutcome", 2, false},
      {"orx.host::FailureReason", 13, true},   {"orx.host::ReceiptOutcome", 4, false},
      {"orx.host::TerminalState", 2, false},
  };
  const std::string invalid = "orx.decision.enum_discriminant_invalid: closed enum discriminant is invalid";
  for (const auto& c : cases) {
    const auto& host = ORXClosedEnumContext::host();
    for (std::int32_t accepted : {0, c.last}) {
      EXPECT_EQ(ORXEnumValue(accepted, c.typeID, host, std::nullopt, c.errorEnum).discriminant(), accepted) << c.typeID;
    }
    for (std::int32_t refused : {-1, c.last + 1}) {
      EXPECT_TRUE(orxThrows([&] { ORXEnumValue(refused, c.typeID); }, invalid)) << c.typeID << " " << refused;
    }
    EXPECT_EQ(host.schema(c.typeID)->kind() == ORXClosedEnumKind::errorEnum, c.errorEnum) << c.typeID;
  }
}

TEST(ORXClosedEnumContext, RefusesRepeatedAndEmptySchemas) {
  const ORXClosedEnumSchema schema("m::E", ORXClosedEnumKind::errorEnum, {1, 2});
  EXPECT_TRUE(orxThrows([&] { ORXClosedEnumContext({schema, schema}); },
                        "orx.v051.collection_duplicate: enum schema repeats 'm::E'"));
  EXPECT_TRUE(orxThrows([] { ORXClosedEnumSchema("m::E", ORXClosedEnumKind::enumeration, {}); },
                        "orx.v051.typed_value_invalid: closed enum has no cases"));
  const ORXClosedEnumContext context({schema});
  EXPECT_EQ(ORXEnumValue(2, "m::E", context, std::nullopt, true).typeID(), "m::E");
  EXPECT_EQ(context.schema("orx.host::FailureReason"), nullptr);
}

}  // namespace

}  // namespace ravo::orx
