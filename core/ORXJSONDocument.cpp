#include <ravo-orx/core/ORXJSONDocument.h>

#include <ravo-orx/core/ORXCanonicalJSONReader.h>

namespace ravo::orx::internal {

namespace {

// Builds the tree as the reader reports it: a stack of the open containers and the key that waits for
// its value.
class TreeSink {
 public:
  explicit TreeSink(ORXJSONDocument& root) : root_(root) {}

  void string(std::string_view bytes, bool) { place(ORXJSONDocument::Kind::string).text = bytes; }
  void number(std::string_view text) { place(ORXJSONDocument::Kind::number).text = text; }
  void boolean(bool value) { place(ORXJSONDocument::Kind::boolean).boolean = value; }
  void null() { place(ORXJSONDocument::Kind::null); }
  void beginArray() { open_.push_back(&place(ORXJSONDocument::Kind::array)); }
  void beginObject() { open_.push_back(&place(ORXJSONDocument::Kind::object)); }
  void endArray() { open_.pop_back(); }
  void endObject(std::size_t) { open_.pop_back(); }
  void key(std::string_view bytes, bool, std::size_t) { key_ = bytes; }

 private:
  ORXJSONDocument& place(ORXJSONDocument::Kind kind) {
    ORXJSONDocument* node = &root_;
    if (!open_.empty()) {
      ORXJSONDocument& parent = *open_.back();
      if (parent.kind == ORXJSONDocument::Kind::array) {
        node = &parent.items.emplace_back();
      } else {
        node = &parent.members.emplace_back(ORXJSONDocument::Member{std::move(key_), {}}).value;
      }
    }
    node->kind = kind;
    return *node;
  }

  ORXJSONDocument& root_;
  // Pointers stay valid: a container's children are only appended to while it is the innermost one.
  std::vector<ORXJSONDocument*> open_;
  std::string key_;
};

}  // namespace

ORXJSONDocument ORXJSONDocument::read(std::string_view json) {
  ORXJSONDocument root;
  TreeSink sink(root);
  ORXCanonicalJSONReading::Reader<TreeSink, ORXCanonicalJSONReading::Grammar::general>(json, sink).readDocument();
  return root;
}

const ORXJSONDocument* ORXJSONDocument::member(std::string_view key, std::size_t* count) const {
  const ORXJSONDocument* found = nullptr;
  std::size_t matches = 0;
  for (const auto& [name, value] : members) {
    if (name != key) continue;
    if (!found) found = &value;
    ++matches;
  }
  if (count) *count = matches;
  return found;
}

std::string_view ORXJSONDocument::describe() const {
  switch (kind) {
    case Kind::null: return "null";
    case Kind::boolean: return "a boolean";
    case Kind::number: return text.find_first_of(".eE") == std::string::npos ? "an integer" : "a number";
    case Kind::string: return "a string";
    case Kind::array: return "an array";
    case Kind::object: return "an object";
  }
  return "a value";
}

}  // namespace ravo::orx::internal
