// parseRavoJSON: the one reader of JSON text for the application records. Its texts come from models
// and services, so it builds the document itself rather than through nlohmann's own builder, which
// is unsafe on such input in two ways: nesting is unbounded (and copying, comparing or printing a
// deep document recurses once per level), and an ordered object searches all its members on every
// insertion, so an object of n members costs n² to read.

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <ravo-orx/core/ORXMessageText.h>
#include <ravo-orx/contracts/support/RavoJSON.h>
#include <ravo-orx/contracts/support/RavoWellFormedJSONReader.h>

namespace ravo::orx {

using namespace internal;

namespace {

// Below this many members a linear search for a repeated key beats building a hash index.
constexpr std::size_t kIndexedObjectSize = 16;
// Room for nlohmann's message and the start of the token it quotes.
constexpr std::size_t kMaximumErrorBytes = 256;

// nlohmann quotes the whole token it failed in, which for an unterminated string is the rest of the
// text: the error would echo megabytes of hostile input into logs.
std::string shortened(std::string_view message) { return ORXMessageText::excerpt(message, kMaximumErrorBytes); }

// The SAX handler that nlohmann's parser drives. A repeated key keeps its first position and takes
// its last value, as nlohmann's own builder does. With a filter it also keeps the path to the value
// being read (only then: the plain reader pays nothing for it).
class DocumentBuilder {
 public:
  explicit DocumentBuilder(const RavoJSONFilter* filter) : filter_(filter) {}

  bool null() { return place(nullptr); }
  bool boolean(bool value) { return place(value); }
  bool number_integer(RavoJSON::number_integer_t value) { return place(value); }
  bool number_unsigned(RavoJSON::number_unsigned_t value) { return place(value); }
  bool number_float(RavoJSON::number_float_t value, const RavoJSON::string_t& text) { return place(value, text); }
  bool string(RavoJSON::string_t& value) { return place(std::move(value)); }
  bool binary(RavoJSON::binary_t& value) { return place(RavoJSON::binary(std::move(value))); }

  bool start_object(std::size_t) { return open(RavoJSON::object()); }
  bool key(RavoJSON::string_t& key) {
    if (filter_) filter_->key(path_, key);
    key_ = std::move(key);
    return true;
  }
  bool end_object() { return close(); }
  bool start_array(std::size_t) { return open(RavoJSON::array()); }
  bool end_array() { return close(); }

  bool parse_error(std::size_t, const std::string&, const RavoJSON::exception& error) {
    // Syntax errors and numbers too large for a double ("1e400") alike.
    throw RavoJSONDecodingError("malformed JSON: " + shortened(error.what()));
  }

  RavoJSON take() { return std::move(root_); }

 private:
  struct OpenContainer {
    RavoJSON* value;
    std::unordered_map<std::string, std::size_t> memberPositions;  // built once the object is large
  };

  bool open(RavoJSON container) {
    if (open_.size() == ravoJSONMaximumDepth) {
      throw RavoJSONDecodingError("malformed JSON: nesting is deeper than " + std::to_string(ravoJSONMaximumDepth) +
                                  " levels");
    }
    const bool nested = !open_.empty();
    const RavoJSONStep step = nested ? nextStep() : RavoJSONStep{};
    check(container, {});
    open_.push_back({slot(std::move(container)), {}});
    // The step names the container by the key now stored in its parent, which outlives it.
    if (filter_ && nested) path_.push_back(step.index ? step : RavoJSONStep{*storedKey_, std::nullopt});
    return true;
  }

  bool close() {
    open_.pop_back();
    if (filter_ && !open_.empty()) path_.pop_back();
    return true;
  }

  bool place(RavoJSON value, std::string_view numberText = {}) {
    check(value, numberText);
    slot(std::move(value));
    return true;
  }

  // Where the next value of the innermost open container goes.
  RavoJSONStep nextStep() const {
    const RavoJSON& container = *open_.back().value;
    if (container.is_array()) return {{}, container.size()};
    return {key_, std::nullopt};
  }

  // Asks the filter about a value before it is stored.
  void check(const RavoJSON& value, std::string_view numberText) {
    if (!filter_) return;
    if (open_.empty()) return filter_->value(path_, value, numberText);
    path_.push_back(nextStep());
    filter_->value(path_, value, numberText);
    path_.pop_back();
  }

  // Stores a value where the document expects the next one and returns where it now lives. Only the
  // innermost open container grows, so the addresses of the open containers stay valid.
  RavoJSON* slot(RavoJSON value) {
    if (open_.empty()) {
      root_ = std::move(value);
      return &root_;
    }
    OpenContainer& container = open_.back();
    if (container.value->is_array()) {
      auto& elements = container.value->get_ref<RavoJSON::array_t&>();
      elements.push_back(std::move(value));
      return &elements.back();
    }
    auto& members = container.value->get_ref<RavoJSON::object_t&>();
    const std::size_t position = memberPosition(container, members);
    if (position < members.size()) {
      members.begin()[position].second = std::move(value);
    } else {
      members.emplace_back(std::move(key_), std::move(value));
    }
    storedKey_ = &members.begin()[position].first;
    return &members.begin()[position].second;
  }

  // Where key_ already is among the members, or members.size() when it is new.
  std::size_t memberPosition(OpenContainer& container, const RavoJSON::object_t& members) const {
    if (members.size() < kIndexedObjectSize) {
      for (std::size_t i = 0; i < members.size(); ++i) {
        if (members.begin()[i].first == key_) return i;
      }
      return members.size();
    }
    auto& positions = container.memberPositions;
    if (positions.empty()) {
      for (std::size_t i = 0; i < members.size(); ++i) positions.emplace(members.begin()[i].first, i);
    }
    return positions.try_emplace(key_, members.size()).first->second;
  }

  const RavoJSONFilter* filter_;
  RavoJSON root_;
  std::vector<OpenContainer> open_;
  RavoJSON::string_t key_;
  const RavoJSON::string_t* storedKey_ = nullptr;  // the key of the member slot() stored last
  std::vector<RavoJSONStep> path_;                  // to the innermost open container, kept with a filter
};

RavoJSON parse(std::string_view text, const RavoJSONFilter* filter) {
  // Well-formed text goes through the quick reader; anything it does not take, including a nesting
  // refusal, is read again by nlohmann's parser, so every error keeps nlohmann's exact text.
  try {
    DocumentBuilder quick(filter);
    if (RavoWellFormedJSONReader(text, quick).read()) return quick.take();
  } catch (const RavoJSONDecodingError&) {
  }
  DocumentBuilder builder(filter);
  RavoJSON::sax_parse(text, &builder);
  // nlohmann's lexer takes a raw NUL outside a string for the end of the input, so a value followed
  // by "\0junk" would parse. Inside strings NUL is refused unescaped, and before the end of the value
  // it ends the input early, so after a successful parse any NUL is one that follows the value.
  if (const auto nul = text.find('\0'); nul != std::string_view::npos) {
    throw RavoJSONDecodingError("malformed JSON: unexpected NUL byte at offset " + std::to_string(nul) +
                                "; expected end of input");
  }
  return builder.take();
}

}  // namespace

RavoJSON parseRavoJSON(std::string_view text) { return parse(text, nullptr); }

RavoJSON parseRavoJSON(std::string_view text, const RavoJSONFilter& filter) { return parse(text, &filter); }

}  // namespace ravo::orx
