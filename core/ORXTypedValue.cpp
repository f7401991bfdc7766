#include <ravo-orx/core/ORXTypedValue.h>

#include <algorithm>
#include <charconv>

#include <ravo-orx/core/ORXError.h>

namespace ravo::orx {

namespace {

constexpr const char* kTypedValueInvalid = "orx.v051.typed_value_invalid";

ORXError typedValueInvalid(const char* message) { return ORXError::invalid(kTypedValueInvalid, message); }

template <class... F>
struct Overloaded : F... {
  using F::operator()...;
};
template <class... F>
Overloaded(F...) -> Overloaded<F...>;  // clang 14 does not deduce aggregate bases

ORXCanonicalValue text(std::string value) { return ORXCanonicalValue::string(std::move(value)); }

// Bits must have exactly the format's width in lowercase hex and must not spell a NaN: the only NaN
// is the classification form, so every float has one encoding.
ORXCanonicalValue encodeFloat(const ORXFloatRepresentation& representation, const char* type, std::size_t width) {
  const std::string* bits = representation.hexBits();
  if (!bits) return ORXCanonicalValue::object({{"classification", text("nan")}, {"type", text(type)}});
  const bool shaped = bits->size() == width && std::all_of(bits->begin(), bits->end(), [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
  });
  std::uint64_t pattern = 0;
  if (shaped) std::from_chars(bits->data(), bits->data() + bits->size(), pattern, 16);
  const int fractionBits = width == 8 ? 23 : 52;
  const std::uint64_t fractionMask = (std::uint64_t{1} << fractionBits) - 1;
  const std::uint64_t exponentMask = width == 8 ? 0xFF : 0x7FF;
  const bool isNaN = (pattern >> fractionBits & exponentMask) == exponentMask && (pattern & fractionMask) != 0;
  if (!shaped || isNaN) throw typedValueInvalid("floating bits are invalid or use a non-canonical NaN");
  return ORXCanonicalValue::object({{"bits", text(*bits)}, {"type", text(type)}});
}

bool matchesPrimitive(ORXTypedValue::Kind kind, ORXPrimitiveType primitive) {
  switch (primitive) {
    case ORXPrimitiveType::i32: return kind == ORXTypedValue::Kind::i32;
    case ORXPrimitiveType::i64: return kind == ORXTypedValue::Kind::i64;
    case ORXPrimitiveType::f32: return kind == ORXTypedValue::Kind::f32;
    case ORXPrimitiveType::f64: return kind == ORXTypedValue::Kind::f64;
    case ORXPrimitiveType::boolean: return kind == ORXTypedValue::Kind::boolean;
  }
  return false;
}

bool sameValue(const std::shared_ptr<const ORXTypedValue>& a, const std::shared_ptr<const ORXTypedValue>& b) {
  return a && b ? *a == *b : a == b;
}

}  // namespace

ORXTypedValue::ResultValue ORXTypedValue::ResultValue::ok(ORXTypedValue value) {
  return ResultValue(std::make_shared<const ORXTypedValue>(std::move(value)));
}

const ORXTypedValue* ORXTypedValue::ResultValue::okValue() const {
  const auto* value = std::get_if<std::shared_ptr<const ORXTypedValue>>(&value_);
  return value ? value->get() : nullptr;
}

bool operator==(const ORXTypedValue::ResultValue& a, const ORXTypedValue::ResultValue& b) {
  if (a.okValue() && b.okValue()) return *a.okValue() == *b.okValue();
  return a.errValue() && b.errValue() && *a.errValue() == *b.errValue();
}

ORXTypedValue ORXTypedValue::option(ORXFlatTypeReference type, std::optional<ORXTypedValue> value) {
  std::shared_ptr<const ORXTypedValue> held;
  if (value) held = std::make_shared<const ORXTypedValue>(std::move(*value));
  return ORXTypedValue(Option{std::move(type), std::move(held)});
}

ORXTypedValue ORXTypedValue::result(ORXFlatTypeReference type, std::string errorType, ResultValue value) {
  return ORXTypedValue(Result{std::move(type), std::move(errorType), std::move(value)});
}

bool operator==(const ORXTypedValue& a, const ORXTypedValue& b) {
  if (a.value_.index() != b.value_.index()) return false;
  return std::visit(
      Overloaded{
          [&](const ORXTypedValue::Option& x) {
            const auto& y = std::get<ORXTypedValue::Option>(b.value_);
            return x.type == y.type && sameValue(x.value, y.value);
          },
          [&](const ORXTypedValue::Result& x) {
            const auto& y = std::get<ORXTypedValue::Result>(b.value_);
            return x.type == y.type && x.errorType == y.errorType && x.value == y.value;
          },
          [&](const auto& x) { return x == std::get<std::decay_t<decltype(x)>>(b.value_); },
      },
      a.value_);
}

void ORXTypedValue::checkExpected(const ORXTypeReference& expected) const {
  const ORXFlatTypeReference& type = expected.type();
  switch (expected.kind()) {
    case ORXTypeReference::Kind::flat: {
      const auto* enumValue = std::get_if<ORXEnumValue>(&value_);
      const bool matches = type.asPrimitive() ? matchesPrimitive(kind(), *type.asPrimitive())
                                              : enumValue && enumValue->typeID() == *type.asEnumeration();
      if (!matches) throw typedValueInvalid("typed value does not match expected type");
      return;
    }
    case ORXTypeReference::Kind::option: {
      const auto* option = std::get_if<Option>(&value_);
      if (!option || option->type != type) throw typedValueInvalid("typed value does not match expected option type");
      return;
    }
    case ORXTypeReference::Kind::result: {
      const auto* result = std::get_if<Result>(&value_);
      if (!result || result->type != type || result->errorType != expected.errorEnum()) {
        throw typedValueInvalid("typed value does not match expected result type");
      }
      return;
    }
  }
}

ORXCanonicalValue ORXTypedValue::canonicalValue(const std::optional<ORXTypeReference>& expectedType) const {
  if (expectedType) checkExpected(*expectedType);
  return encode();
}

ORXCanonicalValue ORXTypedValue::encode() const {
  return std::visit(
      Overloaded{
          [](std::int32_t value) { return ORXCanonicalValue::integer(value); },
          [](std::int64_t value) {
            return ORXCanonicalValue::object({{"decimal", text(std::to_string(value))}, {"type", text("i64")}});
          },
          [](const F32& value) { return encodeFloat(value.value, "f32", 8); },
          [](const F64& value) { return encodeFloat(value.value, "f64", 16); },
          [](bool value) { return ORXCanonicalValue::boolean(value); },
          [](const ORXEnumValue& value) { return value.canonicalValue(); },
          [](const Option& option) {
            ORXCanonicalObject::Fields fields{
                {"tag", text(option.value ? "some" : "none")},
                {"type", text(ORXTypeReference::option(option.type).canonical())},
            };
            if (option.value) {
              fields.emplace_back("value", option.value->canonicalValue(ORXTypeReference::flat(option.type)));
            }
            return ORXCanonicalValue::object(std::move(fields));
          },
          [](const Result& result) {
            // Built through the type reference, which checks the error enum identity as its parser does.
            const std::string type = ORXTypeReference::result(result.type, result.errorType).canonical();
            if (const ORXTypedValue* ok = result.value.okValue()) {
              return ORXCanonicalValue::object({
                  {"tag", text("ok")},
                  {"type", text(type)},
                  {"value", ok->canonicalValue(ORXTypeReference::flat(result.type))},
              });
            }
            const ORXEnumValue& error = *result.value.errValue();
            if (error.typeID() != result.errorType) {
              throw typedValueInvalid("result error type mismatches declared error enum");
            }
            return ORXCanonicalValue::object({{"error", error.canonicalValue()}, {"tag", text("err")}, {"type", text(type)}});
          },
      },
      value_);
}

}  // namespace ravo::orx
