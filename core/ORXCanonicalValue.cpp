#include <ravo-orx/core/ORXCanonicalValue.h>

#include <algorithm>
#include <cstdint>
#include <new>
#include <numeric>
#include <vector>

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

// The empty string and the 128 strings of one ASCII byte, shared by every value that holds them: short
// strings cost a value nothing beyond itself. Never destroyed, so values in other statics may outlive
// the table.
const std::string* sharedString(std::string_view text) {
  static const std::string* const table = [] {
    auto* strings = new std::string[129];
    for (int byte = 0; byte < 128; ++byte) strings[byte + 1] = std::string(1, static_cast<char>(byte));
    return strings;
  }();
  if (text.empty()) return table;
  if (text.size() == 1 && static_cast<unsigned char>(text[0]) < 0x80) return table + 1 + text[0];
  return nullptr;
}

// Puts the fields in key order in place: the order is found on 4-byte indices (ties by index, so that
// repeats come out in the order written), then each field moves once along its permutation's cycle.
void sortFields(ORXCanonicalObject::Fields& fields) {
  const auto count = static_cast<std::uint32_t>(fields.size());
  std::vector<std::uint32_t> order(count);
  std::iota(order.begin(), order.end(), 0u);
  std::sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
    const int comparison = fields[a].first.compare(fields[b].first);
    return comparison < 0 || (comparison == 0 && a < b);
  });
  std::uint32_t firstRepeat = count;
  for (std::uint32_t i = 1; i < count; ++i) {
    if (fields[order[i]].first == fields[order[i - 1]].first) firstRepeat = std::min(firstRepeat, order[i]);
  }
  if (firstRepeat < count) throw keyRepeated(fields[firstRepeat].first);
  // Position k takes the field at order[k]; a position whose field has arrived is marked order[k] = k.
  for (std::uint32_t start = 0; start < count; ++start) {
    if (order[start] == start) continue;
    ORXCanonicalObject::Field carried = std::move(fields[start]);
    std::uint32_t hole = start;
    while (order[hole] != start) {
      const std::uint32_t next = order[hole];
      fields[hole] = std::move(fields[next]);
      order[hole] = hole;
      hole = next;
    }
    fields[hole] = std::move(carried);
    order[hole] = hole;
  }
}

}  // namespace

ORXCanonicalObject::ORXCanonicalObject() = default;

ORXCanonicalObject::ORXCanonicalObject(Fields fields) : fields_(std::move(fields)) {
  for (const auto& field : fields_) {
    if (!ORXValidation::isValidUTF8(field.first)) throw notUTF8();
  }
  // Canonical input arrives sorted and unique; checking that costs no allocation.
  const auto notAscending = [](const Field& a, const Field& b) {
    return !ORXValidation::compareUnicodeCodePoints(a.first, b.first);
  };
  if (std::adjacent_find(fields_.begin(), fields_.end(), notAscending) != fields_.end()) sortFields(fields_);
  fields_.shrink_to_fit();
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
  ORXCanonicalValue value(Kind::string);
  value.string_ = text.size() <= 1 ? sharedString(text) : nullptr;
  value.sharedString_ = value.string_ != nullptr;
  if (!value.sharedString_) value.string_ = new std::string(std::move(text));
  return value;
}

ORXCanonicalValue ORXCanonicalValue::boolean(bool flag) {
  ORXCanonicalValue value(Kind::boolean);
  value.boolean_ = flag;
  return value;
}

ORXCanonicalValue ORXCanonicalValue::integer(std::int64_t number) {
  ORXCanonicalValue value(Kind::integer);
  value.integer_ = number;
  return value;
}

ORXCanonicalValue ORXCanonicalValue::array(Array elements) {
  const int depth = containerDepth(elements, [](const ORXCanonicalValue& element) -> const auto& { return element; });
  elements.shrink_to_fit();
  ORXCanonicalValue value(Kind::array);
  ::new (static_cast<void*>(&value.array_)) Array(std::move(elements));
  value.depth_ = static_cast<std::uint16_t>(depth);
  return value;
}

ORXCanonicalValue ORXCanonicalValue::object(ORXCanonicalObject object) {
  const int depth = containerDepth(object.fields(), [](const auto& field) -> const auto& { return field.second; });
  ORXCanonicalValue value(Kind::object);
  ::new (static_cast<void*>(&value.object_)) ORXCanonicalObject(std::move(object));
  value.depth_ = static_cast<std::uint16_t>(depth);
  return value;
}

ORXCanonicalValue ORXCanonicalValue::object(ORXCanonicalObject::Fields fields) {
  return object(ORXCanonicalObject(std::move(fields)));
}

ORXCanonicalValue::ORXCanonicalValue(const ORXCanonicalValue& other)
    : integer_(0), kind_(other.kind_), sharedString_(other.sharedString_), depth_(other.depth_) {
  switch (kind_) {
    case Kind::string:
      string_ = sharedString_ ? other.string_ : new std::string(*other.string_);
      return;
    case Kind::boolean:
      boolean_ = other.boolean_;
      return;
    case Kind::integer:
      integer_ = other.integer_;
      return;
    case Kind::array:
      ::new (static_cast<void*>(&array_)) Array(other.array_);
      return;
    case Kind::object:
      ::new (static_cast<void*>(&object_)) ORXCanonicalObject(other.object_);
      return;
  }
}

ORXCanonicalValue& ORXCanonicalValue::operator=(const ORXCanonicalValue& other) {
  if (this != &other) *this = ORXCanonicalValue(other);
  return *this;
}

const std::string* ORXCanonicalValue::emptyString() { return sharedString({}); }

bool ORXCanonicalValue::equals(const ORXCanonicalValue& other) const {
  if (kind_ != other.kind_) return false;
  switch (kind_) {
    case Kind::string: return *string_ == *other.string_;
    case Kind::boolean: return boolean_ == other.boolean_;
    case Kind::integer: return integer_ == other.integer_;
    case Kind::array: return array_ == other.array_;
    case Kind::object: return object_ == other.object_;
  }
  return false;
}

std::optional<bool> ORXCanonicalValue::asBoolean() const {
  if (kind_ == Kind::boolean) return boolean_;
  return std::nullopt;
}

std::optional<std::int64_t> ORXCanonicalValue::asInteger() const {
  if (kind_ == Kind::integer) return integer_;
  return std::nullopt;
}

static_assert(sizeof(ORXCanonicalValue) == 16, "a value is its payload and a kind");

}  // namespace ravo::orx
