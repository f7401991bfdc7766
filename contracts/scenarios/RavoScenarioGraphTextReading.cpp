// RavoScenarioGraph::fromJSONText: a graph's edges, which are nearly all of a large graph's text, are
// decoded as the text is read, without a JSON document in between; the nodes and the capabilities are
// gathered into small documents and decoded as fromJSON decodes them. Whatever this reading does not
// take without doubt (another shape, a repeated or unknown key, a malformed value, deep nesting) sends
// the whole text through parseRavoJSON and fromJSON, so results and errors are always theirs.

#include <optional>
#include <string_view>
#include <vector>

#include <ravo-orx/contracts/scenarios/RavoScenarioGraph.h>
#include <ravo-orx/contracts/support/RavoWellFormedJSONReader.h>

namespace ravo::orx {

using namespace internal;

namespace {

// Builds one small JSON document from reader events; gives up on objects of many members, which the
// full reader handles in linear time.
class DocumentCapture {
 public:
  static constexpr std::size_t kMaximumMembers = 64;

  bool value(RavoJSON value) {
    if (open_.empty()) {
      root_ = std::move(value);
      return true;
    }
    RavoJSON& container = *open_.back();
    if (container.is_array()) {
      container.push_back(std::move(value));
      return true;
    }
    if (container.size() >= kMaximumMembers || container.contains(key_)) return false;
    container[key_] = std::move(value);
    return true;
  }
  bool open(RavoJSON container) {
    if (!value(std::move(container))) return false;
    RavoJSON& parent = open_.empty() ? root_ : *open_.back();
    open_.push_back(open_.empty()          ? &root_
                    : parent.is_array()    ? &parent.back()
                                           : &parent[key_]);
    return true;
  }
  void key(std::string key) { key_ = std::move(key); }
  void close() { open_.pop_back(); }
  bool complete() const { return open_.empty(); }
  RavoJSON take() { return std::move(root_); }

 private:
  RavoJSON root_;
  std::vector<RavoJSON*> open_;
  std::string key_;
};

// The reader's handler: the root object's three members, edges decoded on the spot.
class GraphTextHandler {
 public:
  bool null() { return scalar(nullptr); }
  bool boolean(bool value) { return scalar(value); }
  bool number_integer(RavoJSON::number_integer_t value) { return scalar(value); }
  bool number_unsigned(RavoJSON::number_unsigned_t value) { return scalar(value); }
  bool number_float(RavoJSON::number_float_t value, const RavoJSON::string_t&) { return scalar(value); }
  bool string(RavoJSON::string_t& value) {
    if (capture_) return scalar(std::move(value));
    if (depth_ != 3 || member_ != Member::edges || edgeField_ == nullptr) return false;
    *edgeField_ = std::move(value);
    edgeField_ = nullptr;
    return true;
  }

  bool start_object(std::size_t) { return enter() && (capture_ ? capture_->open(RavoJSON::object()) : startPlainObject()); }
  bool start_array(std::size_t) { return enter() && (capture_ ? capture_->open(RavoJSON::array()) : startPlainArray()); }
  bool key(RavoJSON::string_t& key) {
    if (capture_) {
      capture_->key(std::move(key));
      return true;
    }
    return depth_ == 1 ? rootKey(key) : depth_ == 3 && edgeKey(key);
  }
  bool end_object() {
    --depth_;
    if (capture_) return leaveCapture();
    if (depth_ == 2) return finishEdge();
    return depth_ == 0;  // the root
  }
  bool end_array() {
    --depth_;
    if (capture_) return leaveCapture();
    member_ = Member::none;  // the edges
    return true;
  }

  // The parts, when the root held the three members.
  std::optional<RavoJSON> nodes, capabilities;
  std::vector<RavoScenarioEdge> edges;
  bool sawEdges = false;

 private:
  enum class Member { none, edges, captured };
  struct EdgeText {
    std::string fromNodeID, outputKey, toNodeID, inputKey;
    unsigned seen = 0;
  };

  bool enter() { return ++depth_ <= static_cast<int>(ravoJSONMaximumDepth); }

  bool scalar(RavoJSON value) {
    if (!capture_) return false;
    return capture_->value(std::move(value)) && (!capture_->complete() || endCapture());
  }

  bool startPlainObject() {
    if (depth_ == 1) return true;  // the root
    if (depth_ != 3 || member_ != Member::edges) return false;
    edge_ = EdgeText{};
    return true;
  }
  bool startPlainArray() { return depth_ == 2 && member_ == Member::edges; }

  bool rootKey(const std::string& key) {
    if (key == "edges" && !sawEdges) {
      sawEdges = true;
      member_ = Member::edges;
      return true;
    }
    std::optional<RavoJSON>* target = key == "nodes" ? &nodes : key == "requestedCapabilities" ? &capabilities : nullptr;
    if (target == nullptr || target->has_value() || capturing_ != nullptr) return false;
    capturing_ = target;
    capture_.emplace();
    member_ = Member::captured;
    return true;
  }

  bool edgeKey(const std::string& key) {
    static constexpr std::string_view kKeys[] = {"fromNodeID", "outputKey", "toNodeID", "inputKey"};
    std::string* fields[] = {&edge_.fromNodeID, &edge_.outputKey, &edge_.toNodeID, &edge_.inputKey};
    for (unsigned i = 0; i < 4; ++i) {
      if (key != kKeys[i]) continue;
      if (edge_.seen & 1u << i) return false;
      edge_.seen |= 1u << i;
      edgeField_ = fields[i];
      return true;
    }
    return false;
  }

  bool finishEdge() {
    if (edge_.seen != 0xF) return false;
    const auto from = RavoUUID::parse(edge_.fromNodeID);
    const auto to = RavoUUID::parse(edge_.toNodeID);
    if (!from || !to) return false;
    edges.emplace_back(*from, std::move(edge_.outputKey), *to, std::move(edge_.inputKey));
    return true;
  }

  bool leaveCapture() {
    capture_->close();
    return !capture_->complete() || endCapture();
  }
  bool endCapture() {
    *capturing_ = capture_->take();
    capture_.reset();
    capturing_ = nullptr;
    member_ = Member::none;
    return true;
  }

  int depth_ = 0;
  Member member_ = Member::none;
  std::optional<DocumentCapture> capture_;
  std::optional<RavoJSON>* capturing_ = nullptr;
  EdgeText edge_;
  std::string* edgeField_ = nullptr;
};

}  // namespace

RavoScenarioGraph RavoScenarioGraph::fromJSONText(std::string_view text) {
  GraphTextHandler handler;
  if (RavoWellFormedJSONReader(text, handler).read() && handler.nodes && handler.capabilities && handler.sawEdges) {
    try {
      return {RavoJSONCodec<std::vector<RavoScenarioNodeInstance>>::decode(*handler.nodes, "RavoScenarioGraph.nodes"),
              std::move(handler.edges),
              RavoJSONCodec<std::vector<RavoScenarioCapability>>::decode(*handler.capabilities,
                                                                         "RavoScenarioGraph.requestedCapabilities"),
              AsStored{}};
    } catch (const RavoJSONDecodingError&) {
      // read again below, so the error names its place as fromJSON names it
    }
  }
  return fromJSON(parseRavoJSON(text));
}

}  // namespace ravo::orx
