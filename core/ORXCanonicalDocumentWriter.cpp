// ORXCanonicalJSON::canonicalize: canonical text written while the document is read. Arrays and
// scalars go straight to the output; an object's members are written as they come and only reordered,
// in place, when the object closes with its keys out of order. What stays in memory besides the input
// and the output is one offset per member of each open object.
//
// Reordering moves an object's text once per enclosing object that is reordered too, so nested objects
// whose keys all arrive out of order could move a large member hundreds of times. Past a budget of
// moved bytes proportional to the input, the document is canonicalized through its value instead,
// which costs more memory but only one pass.

#include <algorithm>
#include <numeric>
#include <string>
#include <vector>

#include <ravo-orx/core/ORXCanonicalJSON.h>
#include <ravo-orx/core/ORXCanonicalJSONReader.h>
#include <ravo-orx/core/ORXCanonicalTextOutput.h>
#include <ravo-orx/core/ORXJSONStringDecoding.h>

namespace ravo::orx {

using namespace internal;

namespace {

// Thrown when reordering has moved more than its budget; canonicalize starts again through the value.
struct ReorderingBudgetSpent {};

// The key of a member written as canonical text at `start` (its opening quote), decoded back to its
// bytes into `key`.
void decodeKey(std::string_view text, std::size_t start, std::string& key) {
  key.clear();
  std::size_t position = start + 1;
  while (true) {
    const std::size_t runEnd = ORXJSONStringDecoding::plainRunEnd(text.data(), text.size(), position);
    key.append(text, position, runEnd - position);
    if (text[runEnd] == '"') return;
    position = runEnd + 1;
    ORXJSONStringDecoding::decodeEscape(text, position, key);  // canonical escapes always decode
  }
}

class CanonicalTextWriter {
 public:
  CanonicalTextWriter(std::string& out, std::size_t reorderingBudget) : out_(out), reorderingBudget_(reorderingBudget) {}

  void string(std::string_view bytes, bool asWritten) {
    separate();
    appendString(bytes, asWritten);
  }
  void integer(std::int64_t value) {
    separate();
    ORXCanonicalTextOutput::appendInteger(out_, value);
  }
  void boolean(bool value) {
    separate();
    ORXCanonicalTextOutput::appendBoolean(out_, value);
  }
  void beginArray() {
    separate();
    out_.push_back('[');
    open_.push_back({});
  }
  void endArray() {
    out_.push_back(']');
    open_.pop_back();
  }
  void beginObject() {
    separate();
    out_.push_back('{');
    open_.push_back(OpenContainer{.isObject = true, .firstMember = memberStarts_.size(), .lastKey = {}});
  }
  void key(std::string_view bytes, bool asWritten, std::size_t /*at*/) {
    OpenContainer& object = open_.back();
    if (!object.empty) out_.push_back(',');
    if (!object.empty && !(object.lastKey < bytes)) object.ascending = false;
    object.empty = false;
    object.lastKey.assign(bytes);
    memberStarts_.push_back(out_.size());
    appendString(bytes, asWritten);
    out_.push_back(':');
  }
  void endObject(std::size_t /*end*/) {
    if (!open_.back().ascending) putMembersInOrder(open_.back().firstMember);
    memberStarts_.resize(open_.back().firstMember);
    out_.push_back('}');
    open_.pop_back();
  }

 private:
  struct OpenContainer {
    bool isObject = false;
    std::size_t firstMember = 0;  // index into memberStarts_
    std::string lastKey = {};
    bool empty = true;
    bool ascending = true;
  };

  void appendString(std::string_view bytes, bool asWritten) {
    if (!asWritten) return ORXCanonicalTextOutput::appendEscaped(out_, bytes);
    out_.append(bytes.data() - 1, bytes.size() + 2);  // with the quotes around it in the input
  }

  // A comma between array elements; an object member's comma comes with its key.
  void separate() {
    if (open_.empty() || open_.back().isObject) return;
    if (!open_.back().empty) out_.push_back(',');
    open_.back().empty = false;
  }

  // Sorts the members written since `firstMember` by key, refusing a repeated key as ORXCanonicalObject
  // does: the first repeat in the order written is the one named.
  void putMembersInOrder(std::size_t firstMember) {
    const std::size_t count = memberStarts_.size() - firstMember;
    const std::size_t* starts = memberStarts_.data() + firstMember;
    const std::size_t objectSize = out_.size() - starts[0];
    if (objectSize > reorderingBudget_) throw ReorderingBudgetSpent{};
    reorderingBudget_ -= objectSize;
    // Scratch space is kept from object to object; only its contents are per object.
    std::vector<std::string>& keys = keys_;
    if (keys.size() < count) keys.resize(count);
    for (std::size_t i = 0; i < count; ++i) decodeKey(out_, starts[i], keys[i]);
    std::vector<std::size_t>& order = order_;
    order.resize(count);
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return keys[a] < keys[b]; });
    std::size_t firstRepeat = count;
    for (std::size_t i = 1; i < count; ++i) {
      if (keys[order[i]] == keys[order[i - 1]]) firstRepeat = std::min(firstRepeat, order[i]);
    }
    if (firstRepeat < count) {
      throw ORXError::duplicate("canonical object repeats key '" + keys[firstRepeat] + "'");
    }
    // Member i spans from its key to the comma before member i + 1 (or the end of the object so far).
    const std::size_t objectStart = starts[0];
    std::string& members = members_;
    members.assign(out_, objectStart);
    const auto memberText = [&](std::size_t i) {
      const std::size_t end = i + 1 < count ? starts[i + 1] - 1 - objectStart : members.size();
      return std::string_view(members).substr(starts[i] - objectStart, end - (starts[i] - objectStart));
    };
    out_.resize(objectStart);
    for (std::size_t i = 0; i < count; ++i) {
      if (i > 0) out_.push_back(',');
      out_.append(memberText(order[i]));
    }
  }

  std::string& out_;
  std::size_t reorderingBudget_;
  std::vector<OpenContainer> open_;
  std::vector<std::size_t> memberStarts_;
  std::vector<std::string> keys_;
  std::vector<std::size_t> order_;
  std::string members_;
};

}  // namespace

std::string ORXCanonicalJSON::canonicalize(std::string_view text) {
  constexpr std::size_t kReorderingBudgetPerInputByte = 8;
  try {
    std::string out;
    out.reserve(text.size());  // canonical text is never longer than any text of the same value
    CanonicalTextWriter writer(out, kReorderingBudgetPerInputByte * text.size() + 65536);
    ORXCanonicalJSONReading::Reader(text, writer).readDocument();
    return out;
  } catch (const ReorderingBudgetSpent&) {
    return parse(text).canonicalString();
  }
}

}  // namespace ravo::orx
