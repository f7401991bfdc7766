#include <ravo-orx/core/ORXCanonicalJSON.h>

#include <optional>
#include <utility>
#include <vector>

#include <ravo-orx/core/ORXCanonicalJSONReader.h>

namespace ravo::orx {

using namespace internal;

namespace {

// Builds the value tree from what the reader reports. Open containers wait on a stack; a closed one
// becomes a value placed in its parent (where ORXCanonicalObject checks and sorts the keys).
class ValueBuilder {
 public:
  void string(std::string_view bytes, bool /*asWritten*/) { place(ORXCanonicalValue::string(std::string(bytes))); }
  void integer(std::int64_t value) { place(ORXCanonicalValue::integer(value)); }
  void boolean(bool value) { place(ORXCanonicalValue::boolean(value)); }
  void beginArray() { open_.push_back({}); }
  void endArray() {
    ORXCanonicalValue::Array elements = std::move(open_.back().elements);
    open_.pop_back();
    place(ORXCanonicalValue::array(std::move(elements)));
  }
  void beginObject() { open_.push_back(OpenContainer{.isObject = true, .elements = {}, .fields = {}, .key = {}}); }
  void key(std::string_view bytes, bool /*asWritten*/, std::size_t /*at*/) { open_.back().key.assign(bytes); }
  void endObject(std::size_t /*end*/) {
    ORXCanonicalObject::Fields fields = std::move(open_.back().fields);
    open_.pop_back();
    place(ORXCanonicalValue::object(std::move(fields)));
  }

  ORXCanonicalValue take() { return std::move(*root_); }

 private:
  struct OpenContainer {
    bool isObject = false;
    ORXCanonicalValue::Array elements;
    ORXCanonicalObject::Fields fields;
    std::string key;
  };

  void place(ORXCanonicalValue value) {
    if (open_.empty()) {
      root_.emplace(std::move(value));
    } else if (OpenContainer& container = open_.back(); container.isObject) {
      container.fields.emplace_back(std::move(container.key), std::move(value));
    } else {
      container.elements.push_back(std::move(value));
    }
  }

  std::vector<OpenContainer> open_;
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
