// ORXCanonicalJSON::canonicalize: canonical text written while the document is read.
//
// Arrays and scalars go straight to the output. An object's members are written as they come, and
// while it is open each member leaves the offset of its key in the input. An object whose keys arrive
// out of order is put in order when it closes: the offsets are sorted by the bytes the keys decode to,
// read from the input where they stand, and then
// - an object spanning at most kInPlaceObjectBytes of input has its members' text moved into order
//   through a scratch copy, cut where each member began in the output (an offset kept only for such
//   objects);
// - a larger object keeps its sorted key offsets instead, and the first reading stops writing. Once it
//   has read, and so checked, the whole document, a second reading writes the text, reading those
//   objects' members in key order.
// Memory is the input, the output, one offset (4 bytes below 4 GiB) per member of the open objects and
// of the large objects read again, and at most kInPlaceObjectBytes of scratch and output offsets. Each
// byte is read at most twice and moved only by the small objects around it, so time stays near linear
// however the reordered objects nest.

#include <algorithm>
#include <cstdint>
#include <limits>
#include <numeric>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <ravo-orx/core/ORXCanonicalJSON.h>
#include <ravo-orx/core/ORXCanonicalJSONReader.h>
#include <ravo-orx/core/ORXCanonicalTextOutput.h>
#include <ravo-orx/core/ORXJSONStringDecoding.h>

namespace ravo::orx {

using namespace internal;

namespace {

// Objects spanning at most this much input are put in order in the output; larger ones are read again.
constexpr std::size_t kInPlaceObjectBytes = 64 * 1024;

// Sorts `items` by the keys they lead to (`keyAt(item)` is the input offset of a key's opening quote),
// equal keys in the order of the items, which increase in the order written. Refuses a repeated key as
// ORXCanonicalObject does, naming the first repeat in the order written.
template <class Item, class KeyAt>
void sortByKey(std::string_view input, std::span<Item> items, KeyAt keyAt) {
  const auto compare = [&](Item a, Item b) { return ORXJSONStringDecoding::compareDecoded(input, keyAt(a), keyAt(b)); };
  // Keys in reverse order, as hostile documents write them, need one pass instead of a sort.
  const auto notDescending = [&](Item a, Item b) { return compare(a, b) <= 0; };
  if (std::adjacent_find(items.begin(), items.end(), notDescending) == items.end()) {
    std::reverse(items.begin(), items.end());
    return;
  }
  std::sort(items.begin(), items.end(), [&](Item a, Item b) {
    const int order = compare(a, b);
    return order < 0 || (order == 0 && a < b);
  });
  std::optional<Item> firstRepeat;
  for (std::size_t i = 1; i < items.size(); ++i) {
    if (compare(items[i - 1], items[i]) == 0 && (!firstRepeat || items[i] < *firstRepeat)) firstRepeat = items[i];
  }
  if (firstRepeat) {
    const std::string key = ORXJSONStringDecoding::decodedString(input, keyAt(*firstRepeat));
    throw ORXError::duplicate("canonical object repeats key '" + key + "'");
  }
}

// The sorted key offsets of the large objects whose keys arrived out of order, found by the offset of
// their first key.
template <class Offset>
class LargeObjectOrders {
 public:
  bool empty() const { return entries_.empty(); }

  // Takes the sorted offsets keys[from…] of the object whose first key is at `firstKey`.
  void add(Offset firstKey, std::vector<Offset>& keys, std::size_t from) {
    entries_.push_back(Entry{firstKey, keys_.size(), keys.size() - from});
    if (from == 0 && keys_.empty()) {
      keys_.swap(keys);  // the outermost object, usually: no copy
    } else {
      keys_.insert(keys_.end(), keys.begin() + static_cast<std::ptrdiff_t>(from), keys.end());
    }
  }

  // Once every object is added: ready for find.
  void seal() {
    std::sort(entries_.begin(), entries_.end(), [](const Entry& a, const Entry& b) { return a.firstKey < b.firstKey; });
  }

  // The sorted key offsets of the object whose first key is at `firstKey`, or nothing.
  std::span<const Offset> find(std::size_t firstKey) const {
    const auto entry = std::lower_bound(entries_.begin(), entries_.end(), firstKey,
                                        [](const Entry& e, std::size_t at) { return e.firstKey < at; });
    if (entry == entries_.end() || entry->firstKey != firstKey) return {};
    return std::span<const Offset>(keys_).subspan(entry->start, entry->count);
  }

 private:
  struct Entry {
    Offset firstKey;
    std::size_t start;
    std::size_t count;
  };
  std::vector<Entry> entries_;
  std::vector<Offset> keys_;
};

enum class Reading { first, second };

template <class Offset>
class CanonicalTextWriter {
 public:
  CanonicalTextWriter(std::string_view input, std::string& out, LargeObjectOrders<Offset>& largeObjects,
                      Reading reading)
      : input_(input), out_(out), largeObjects_(largeObjects), reading_(reading) {}

  // False when the first reading found a large object out of order and stopped writing.
  bool wroteDocument() const { return writing_; }

  void string(std::string_view bytes, bool asWritten) {
    separate();
    appendString(bytes, asWritten);
  }
  void integer(std::int64_t value) {
    separate();
    if (writing_) ORXCanonicalTextOutput::appendInteger(out_, value);
  }
  void boolean(bool value) {
    separate();
    if (writing_) ORXCanonicalTextOutput::appendBoolean(out_, value);
  }
  void beginArray() {
    separate();
    put('[');
    open_.push_back(Open{.isObject = false, .firstKey = keys_.size(), .firstStart = memberStarts_.size()});
  }
  void endArray() {
    put(']');
    close();
  }
  void beginObject() {
    separate();
    put('{');
    open_.push_back(Open{.isObject = true, .firstKey = keys_.size(), .firstStart = memberStarts_.size()});
  }
  // The second reading reads the large objects put aside by the first in key order.
  std::span<const Offset> memberOrder(std::size_t firstKey) {
    if (reading_ == Reading::first) return {};
    const auto order = largeObjects_.find(firstKey);
    if (!order.empty()) open_.back().inKeyOrder = open_.back().large = true;
    return order;
  }
  void key(std::string_view bytes, bool asWritten, std::size_t at) {
    Open& object = open_.back();
    if (!object.empty) {
      put(',');
      if (object.ascending && !object.inKeyOrder && ORXJSONStringDecoding::compareDecoded(input_, keys_.back(), at) >= 0) {
        object.ascending = false;
      }
    }
    object.empty = false;
    if (!object.inKeyOrder) keys_.push_back(static_cast<Offset>(at));
    markLargeObjects(at);
    if (!object.large) memberStarts_.push_back(static_cast<Offset>(out_.size()));
    if (object.large && !object.ascending) stopWriting();
    appendString(bytes, asWritten);
    put(':');
  }
  void endObject(std::size_t end) {
    Open& object = open_.back();
    if (!object.ascending) {
      if (object.large || end - keys_[object.firstKey] > kInPlaceObjectBytes) {
        putAside(object);
      } else {
        putInOrder(object);
      }
    }
    keys_.resize(object.firstKey);
    put('}');
    close();
  }

 private:
  struct Open {
    bool isObject = false;
    std::size_t firstKey = 0;    // index into keys_
    std::size_t firstStart = 0;  // index into memberStarts_
    bool empty = true;
    bool ascending = true;
    bool large = false;       // spans more than kInPlaceObjectBytes: its output offsets are not kept
    bool inKeyOrder = false;  // read in key order by the second reading
  };

  void put(char c) {
    if (writing_) out_.push_back(c);
  }

  void appendString(std::string_view bytes, bool asWritten) {
    if (!writing_) return;
    if (!asWritten) return ORXCanonicalTextOutput::appendEscaped(out_, bytes);
    out_.append(bytes.data() - 1, bytes.size() + 2);  // with the quotes around it in the input
  }

  // A comma between array elements; an object member's comma comes with its key.
  void separate() {
    if (open_.empty() || open_.back().isObject) return;
    if (!open_.back().empty) put(',');
    open_.back().empty = false;
  }

  void close() {
    if (!open_.back().large) memberStarts_.resize(open_.back().firstStart);
    open_.pop_back();
    firstSmall_ = std::min(firstSmall_, open_.size());
  }

  // Open objects that reach more than kInPlaceObjectBytes past their first key will be read again if
  // out of order, so their members' output offsets are dropped. They are always the outermost ones:
  // open_[0…firstSmall_) are large objects or arrays, which keep no offsets.
  void markLargeObjects(std::size_t at) {
    for (; firstSmall_ < open_.size(); ++firstSmall_) {
      Open& outer = open_[firstSmall_];
      if (!outer.isObject || outer.large) continue;
      if (at - keys_[outer.firstKey] <= kInPlaceObjectBytes) return;
      outer.large = true;
      // Its offsets are the oldest kept, at the start of memberStarts_.
      const std::size_t dropped = firstSmall_ + 1 < open_.size() ? open_[firstSmall_ + 1].firstStart : memberStarts_.size();
      memberStarts_.erase(memberStarts_.begin(), memberStarts_.begin() + static_cast<std::ptrdiff_t>(dropped));
      for (std::size_t inner = firstSmall_ + 1; inner < open_.size(); ++inner) open_[inner].firstStart -= dropped;
    }
  }

  // Only the first reading meets a large object out of order: the second reads such objects in order.
  void stopWriting() {
    if (!writing_) return;
    writing_ = false;
    out_.clear();
    out_.shrink_to_fit();
  }

  void putAside(const Open& object) {
    const std::span<Offset> keys(keys_.data() + object.firstKey, keys_.size() - object.firstKey);
    const Offset firstKey = keys.front();
    sortByKey(input_, keys, [](Offset at) { return at; });
    stopWriting();
    largeObjects_.add(firstKey, keys_, object.firstKey);
  }

  // Sorts the members of a small object and, while writing, moves their text into that order.
  void putInOrder(const Open& object) {
    const std::size_t count = keys_.size() - object.firstKey;
    order_.resize(count);
    std::iota(order_.begin(), order_.end(), Offset{0});
    const Offset* keys = keys_.data() + object.firstKey;
    sortByKey(input_, std::span<Offset>(order_), [keys](Offset member) { return keys[member]; });
    if (!writing_) return;
    // Member i spans from its key to the comma before member i + 1 (or the end of the object so far).
    const Offset* starts = memberStarts_.data() + object.firstStart;
    const std::size_t objectStart = starts[0];
    scratch_.assign(out_, objectStart);
    out_.resize(objectStart);
    for (std::size_t i = 0; i < count; ++i) {
      const std::size_t member = order_[i];
      const std::size_t start = starts[member] - objectStart;
      const std::size_t end = member + 1 < count ? starts[member + 1] - 1 - objectStart : scratch_.size();
      if (i > 0) out_.push_back(',');
      out_.append(scratch_, start, end - start);
    }
  }

  std::string_view input_;
  std::string& out_;
  LargeObjectOrders<Offset>& largeObjects_;
  Reading reading_;
  bool writing_ = true;
  std::vector<Open> open_;
  std::size_t firstSmall_ = 0;
  std::vector<Offset> keys_;          // input offsets of the open objects' keys
  std::vector<Offset> memberStarts_;  // output offsets of the members of open objects that are not large
  std::vector<Offset> order_;
  std::string scratch_;
};

template <class Offset>
std::string canonicalizeWith(std::string_view text) {
  std::string out;
  out.reserve(text.size());  // canonical text is never longer than any text of the same value
  LargeObjectOrders<Offset> largeObjects;
  {
    CanonicalTextWriter<Offset> writer(text, out, largeObjects, Reading::first);
    ORXCanonicalJSONReading::Reader(text, writer).readDocument();
    if (writer.wroteDocument()) return out;
  }
  largeObjects.seal();
  out.reserve(text.size());
  CanonicalTextWriter<Offset> writer(text, out, largeObjects, Reading::second);
  ORXCanonicalJSONReading::Reader(text, writer).readDocument();
  return out;
}

}  // namespace

std::string ORXCanonicalJSON::canonicalize(std::string_view text) {
  if (text.size() <= std::numeric_limits<std::uint32_t>::max()) return canonicalizeWith<std::uint32_t>(text);
  return canonicalizeWith<std::uint64_t>(text);
}

}  // namespace ravo::orx
