#include <ravo-orx/core/ORXCanonicalValue.h>

#include <algorithm>
#include <unordered_set>

#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/core/ORXValidation.h>

namespace ravo::orx {

namespace {

ORXError keyRepeated(std::string_view key) {
  return ORXError::duplicate("canonical object repeats key '" + std::string(key) + "'");
}

ORXError notUTF8() { return ORXError::invalid("orx.v051.value_invalid", "canonical string must be valid UTF-8"); }

// One level above the deepest member; refused past the depth the parser reads.
template <class Members, class ValueOf>
int containerDepth(const Members& members, ValueOf valueOf) {
  int deepest = 0;
  for (const auto& member : members) deepest = std::max(deepest, valueOf(member).nestingDepth());
  if (deepest >= ORXCanonicalValue::kMaxNestingDepth) {
    throw ORXError::invalid("orx.v051.value_invalid", "canonical value nests deeper than 512 levels");
  }
  return deepest + 1;
}

bool keyBefore(const ORXCanonicalObject::Field& a, const ORXCanonicalObject::Field& b) {
  return ORXValidation::compareUnicodeCodePoints(a.first, b.first);
}

}  // namespace

ORXCanonicalObject::ORXCanonicalObject() = default;

ORXCanonicalObject::ORXCanonicalObject(Fields fields) : fields_(std::move(fields)) {
  for (const auto& field : fields_) {
    if (!ORXValidation::isValidUTF8(field.first)) throw notUTF8();
  }
  // Canonical input arrives sorted and unique; checking that costs no allocation.
  const auto notAscending = [](const Field& a, const Field& b) { return !keyBefore(a, b); };
  if (std::adjacent_find(fields_.begin(), fields_.end(), notAscending) == fields_.end()) return;
  std::unordered_set<std::string_view> seen;
  for (const auto& field : fields_) {
    if (!seen.insert(field.first).second) throw keyRepeated(field.first);
  }
  std::stable_sort(fields_.begin(), fields_.end(), keyBefore);
}

const ORXCanonicalValue* ORXCanonicalObject::value(std::string_view key) const {
  for (const auto& [fieldKey, fieldValue] : fields_) {
    if (fieldKey == key) return &fieldValue;
  }
  return nullptr;
}

bool operator==(const ORXCanonicalObject& a, const ORXCanonicalObject& b) { return a.fields_ == b.fields_; }

ORXCanonicalValue ORXCanonicalValue::string(std::string text) {
  if (!ORXValidation::isValidUTF8(text)) throw notUTF8();
  return ORXCanonicalValue(Storage(std::in_place_type<std::string>, std::move(text)));
}

ORXCanonicalValue ORXCanonicalValue::array(Array elements) {
  const int depth = containerDepth(elements, [](const ORXCanonicalValue& element) -> const auto& { return element; });
  return ORXCanonicalValue(Storage(std::in_place_type<ArrayNode>, ArrayNode{std::move(elements), depth}));
}

ORXCanonicalValue ORXCanonicalValue::object(ORXCanonicalObject object) {
  const int depth = containerDepth(object.fields(), [](const auto& field) -> const auto& { return field.second; });
  return ORXCanonicalValue(Storage(std::in_place_type<ObjectNode>, ObjectNode{std::move(object), depth}));
}

ORXCanonicalValue ORXCanonicalValue::object(ORXCanonicalObject::Fields fields) {
  return object(ORXCanonicalObject(std::move(fields)));
}

const ORXCanonicalValue::Array* ORXCanonicalValue::asArray() const {
  const ArrayNode* node = std::get_if<ArrayNode>(&storage_);
  return node ? &node->elements : nullptr;
}

const ORXCanonicalObject* ORXCanonicalValue::asObject() const {
  const ObjectNode* node = std::get_if<ObjectNode>(&storage_);
  return node ? &node->object : nullptr;
}

std::optional<bool> ORXCanonicalValue::asBoolean() const {
  if (const bool* value = std::get_if<bool>(&storage_)) return *value;
  return std::nullopt;
}

std::optional<std::int64_t> ORXCanonicalValue::asInteger() const {
  if (const std::int64_t* value = std::get_if<std::int64_t>(&storage_)) return *value;
  return std::nullopt;
}

}  // namespace ravo::orx
