#include <ravo-orx/core/ORXCanonicalJSON.h>

#include <optional>
#include <utility>
#include <vector>

#include <ravo-orx/core/ORXCanonicalJSONReader.h>

namespace ravo::orx {

using namespace internal;

namespace {

// Builds the value tree from what the reader reports. The members of the open containers wait on two
// stacks, values and fields, each container's above its parent's. A closing container's members leave
// in one list of exactly their number: copied out when they are the smaller part of their stack; else
// the stack itself becomes their list, trimmed in place, and what lay below them moves to a new stack.
// Lists of values grow and shrink in place (see ORXCompactVector), so a long array is never held twice,
// and each list is allocated once, at its size, leaving no holes behind.
class ValueBuilder {
 public:
  // Lists smaller than this are always copied out: the stack keeps its room for the next container.
  static constexpr std::size_t kHandOverBytes = 64 * 1024;

  void string(std::string_view bytes, bool /*asWritten*/) { place(ORXCanonicalValue::string(std::string(bytes))); }
  void integer(std::int64_t value) { place(ORXCanonicalValue::integer(value)); }
  void boolean(bool value) { place(ORXCanonicalValue::boolean(value)); }
  void beginArray() { open_.push_back(Open{.isObject = false, .firstMember = elements_.size()}); }
  void endArray() { place(ORXCanonicalValue::array(takeMembers(elements_))); }
  void beginObject() { open_.push_back(Open{.isObject = true, .firstMember = fields_.size()}); }
  // The field waits with a placeholder until its value is read.
  void key(std::string_view bytes, bool /*asWritten*/, std::size_t /*at*/) {
    fields_.emplace_back(std::string(bytes), ORXCanonicalValue::boolean(false));
  }
  void endObject(std::size_t /*end*/) { place(ORXCanonicalValue::object(takeMembers(fields_))); }

  ORXCanonicalValue take() { return std::move(*root_); }

 private:
  struct Open {
    bool isObject;
    std::size_t firstMember;  // index into elements_ or fields_
  };

  // The members of the innermost open container, which closes.
  template <class Member>
  ORXCompactVector<Member> takeMembers(ORXCompactVector<Member>& pending) {
    const std::size_t first = open_.back().firstMember;
    open_.pop_back();
    const std::size_t count = pending.size() - first;
    if (count <= first || count * sizeof(Member) < kHandOverBytes) return pending.extract(first, pending.size());
    ORXCompactVector<Member> below = pending.extract(0, first);
    pending.shrink_to_fit();
    return std::exchange(pending, std::move(below));
  }

  void place(ORXCanonicalValue value) {
    if (open_.empty()) {
      root_.emplace(std::move(value));
    } else if (open_.back().isObject) {
      fields_.back().second = std::move(value);
    } else {
      elements_.push_back(std::move(value));
    }
  }

  std::vector<Open> open_;
  ORXCanonicalValue::Array elements_;
  ORXCanonicalObject::Fields fields_;
  std::optional<ORXCanonicalValue> root_;
};

}  // namespace

ORXCanonicalValue ORXCanonicalJSON::parse(std::string_view text) {
  ValueBuilder builder;
  ORXCanonicalJSONReading::Reader(text, builder).readDocument();
  return builder.take();
}

ORXCanonicalValue ORXCanonicalJSON::parse(std::span<const std::uint8_t> bytes) {
  return parse(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

}  // namespace ravo::orx
