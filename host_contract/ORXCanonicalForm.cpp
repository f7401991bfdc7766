#include <ravo-orx/host_contract/ORXCanonicalForm.h>

#include <ravo-orx/core/ORXTypedValue.h>

namespace ravo::orx {

ORXCanonicalValue ORXCanonicalForm::text(std::string_view value) { return ORXCanonicalValue::string(std::string(value)); }

ORXCanonicalValue ORXCanonicalForm::i64(std::int64_t value) { return ORXTypedValue::i64(value).canonicalValue(); }

ORXCanonicalValue ORXCanonicalForm::digest(const ORXDigest& value) { return text(value.value()); }

ORXCanonicalValue ORXCanonicalForm::texts(const std::vector<std::string>& values) {
  ORXCanonicalValue::Array elements;
  elements.reserve(values.size());
  for (const auto& value : values) elements.push_back(text(value));
  return ORXCanonicalValue::array(std::move(elements));
}

ORXCanonicalValue ORXCanonicalForm::option(std::string_view typeText, std::optional<ORXCanonicalValue> value) {
  ORXCanonicalObject::Fields fields{{"tag", text(value ? "some" : "none")}, {"type", text(typeText)}};
  if (value) fields.emplace_back("value", std::move(*value));
  return ORXCanonicalValue::object(std::move(fields));
}

}  // namespace ravo::orx
