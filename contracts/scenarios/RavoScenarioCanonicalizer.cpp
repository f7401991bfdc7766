// The graph's JSON text is written straight from the records: keys in sorted order by hand, lists in
// their stored order, strings with the minimal escapes (those of the canonical core, which are also the
// general JSON writer's: \b \t \n \f \r \" \\ and \u00xx for other controls, everything else raw).
// No JSON document is built on the way.

#include <ravo-orx/contracts/scenarios/RavoScenarioCanonicalizer.h>

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string_view>

#include <ravo-orx/contracts/scenarios/RavoScenarioEncodingError.h>
#include <ravo-orx/core/ORXCanonicalTextOutput.h>
#include <ravo-orx/core/ORXSHA256.h>
#include <ravo-orx/core/ORXValidation.h>

namespace ravo::orx {

using namespace internal;

namespace {

[[noreturn]] void refuse(const std::string& reason) {
  throw RavoScenarioEncodingError("scenario graph cannot be encoded: " + reason);
}

// A number as the platform encoder of the system's origin writes it: the shortest digits that read
// back as the same double; an integral value below 10^15 in magnitude without a fraction ("1", "0",
// "-3"); other values from 10^-4 up to 10^15 in plain decimal ("0.25", "0.0001"); smaller and larger
// magnitudes in exponent form with a sign and at least two exponent digits ("1e-05", "1.5e+20").
void appendNumber(std::string& out, double value) {
  if (!std::isfinite(value)) refuse("non-finite action number");
  if (std::signbit(value)) out.push_back('-');
  value = std::fabs(value);
  if (value == 0) {
    out.push_back('0');
    return;
  }
  // Shortest round-trip digits in scientific form, "d.ddde±x": take the digits and the exponent apart.
  char scientific[32];
  const auto written = std::to_chars(scientific, scientific + sizeof scientific, value, std::chars_format::scientific);
  const std::string_view text(scientific, static_cast<std::size_t>(written.ptr - scientific));
  const std::size_t exponentAt = text.find('e');
  std::string digits(1, text[0]);
  if (exponentAt > 1) digits.append(text.substr(2, exponentAt - 2));
  std::string_view exponentText = text.substr(exponentAt + 1);
  if (exponentText.front() == '+') exponentText.remove_prefix(1);
  int exponent = 0;
  std::from_chars(exponentText.data(), exponentText.data() + exponentText.size(), exponent);
  const int pointAt = exponent + 1;  // digits before the decimal point
  const int count = static_cast<int>(digits.size());
  if (count <= pointAt && pointAt <= 15) {
    out += digits;
    out.append(static_cast<std::size_t>(pointAt - count), '0');
  } else if (0 < pointAt && pointAt <= 15) {
    out.append(digits, 0, static_cast<std::size_t>(pointAt));
    out.push_back('.');
    out.append(digits, static_cast<std::size_t>(pointAt));
  } else if (-4 < pointAt && pointAt <= 0) {
    out += "0.";
    out.append(static_cast<std::size_t>(-pointAt), '0');
    out += digits;
  } else {
    out.push_back(digits[0]);
    if (count > 1) {
      out.push_back('.');
      out.append(digits, 1);
    }
    out.push_back('e');
    out.push_back(exponent < 0 ? '-' : '+');
    if (std::abs(exponent) < 10) out.push_back('0');
    out += std::to_string(std::abs(exponent));
  }
}

// Writes to any byte output with push_back(char) and append(const char*, std::size_t).
template <class Output>
class GraphTextWriter {
 public:
  explicit GraphTextWriter(Output& out) : out_(out) {}

  void graph(const RavoScenarioGraph& graph) {
    put("{\"edges\":");
    list(graph.edges(), [this](const RavoScenarioEdge& edge) { this->edge(edge); });
    put(",\"nodes\":");
    list(graph.nodes(), [this](const RavoScenarioNodeInstance& node) { this->node(node); });
    put(",\"requestedCapabilities\":");
    list(graph.requestedCapabilities(), [this](const RavoScenarioCapability& capability) { text(capability.id()); });
    put("}");
  }

 private:
  template <class Items, class WriteItem>
  void list(const Items& items, WriteItem writeItem) {
    out_.push_back('[');
    bool first = true;
    for (const auto& item : items) {
      if (!first) out_.push_back(',');
      first = false;
      writeItem(item);
    }
    out_.push_back(']');
  }

  void edge(const RavoScenarioEdge& edge) {
    put("{\"fromNodeID\":");
    uuid(edge.fromNodeID());
    put(",\"inputKey\":");
    text(edge.inputKey());
    put(",\"outputKey\":");
    text(edge.outputKey());
    put(",\"toNodeID\":");
    uuid(edge.toNodeID());
    out_.push_back('}');
  }

  void node(const RavoScenarioNodeInstance& node) {
    out_.push_back('{');
    if (node.actionBinding()) {
      put("\"actionBinding\":{\"arguments\":{");
      bool first = true;
      for (const auto& [name, value] : node.actionBinding()->arguments()) {  // a std::map: in byte order
        if (!first) out_.push_back(',');
        first = false;
        text(name);
        out_.push_back(':');
        argument(value);
      }
      put("}},");
    }
    put("\"id\":");
    uuid(node.id());
    put(",\"nodeType\":");
    text(node.nodeType().rawValue());
    put(",\"nodeVersion\":");
    text(node.nodeVersion());
    put(",\"stableTargetIDs\":");
    list(node.stableTargetIDs(), [this](const std::string& target) { text(target); });
    out_.push_back('}');
  }

  // {"kind":…} with the payload key named like the kind, the two keys in sorted order.
  void argument(const RavoActionValue& value) {
    if (const std::string* string = value.stringValue()) {
      put("{\"kind\":\"string\",\"string\":");
      text(*string);
    } else if (const bool* boolean = value.booleanValue()) {
      put(*boolean ? "{\"boolean\":true" : "{\"boolean\":false");
      put(",\"kind\":\"boolean\"");
    } else if (const std::int64_t* integer = value.integerValue()) {
      put("{\"integer\":");
      ORXCanonicalTextOutput::appendInteger(out_, *integer);
      put(",\"kind\":\"integer\"");
    } else {
      put("{\"kind\":\"number\",\"number\":");
      std::string number;
      appendNumber(number, *value.numberValue());
      put(number);
    }
    out_.push_back('}');
  }

  void text(std::string_view text) {
    if (!ORXValidation::isValidUTF8(text)) {
      // The general JSON writer names the offending byte; its own words are the clearest report.
      try {
        static_cast<void>(nlohmann::json(std::string(text)).dump());
      } catch (const nlohmann::json::exception& error) {
        refuse(error.what());
      }
      refuse("text is not valid UTF-8");
    }
    ORXCanonicalTextOutput::appendEscaped(out_, text);
  }

  // The 36-character uppercase form, written without an intermediate string.
  void uuid(const RavoUUID& id) {
    static constexpr char kHex[] = "0123456789ABCDEF";
    char chars[38] = {'"'};
    std::size_t at = 1;
    for (std::size_t i = 0; i < id.bytes().size(); ++i) {
      if (i == 4 || i == 6 || i == 8 || i == 10) chars[at++] = '-';
      chars[at++] = kHex[id.bytes()[i] >> 4];
      chars[at++] = kHex[id.bytes()[i] & 0x0f];
    }
    chars[at] = '"';
    // Always all 38 bytes; a constant length also keeps g++ 12 from a false -Warray-bounds about the
    // path where a long append bypasses the buffer.
    out_.append(chars, sizeof chars);
  }

  void put(std::string_view text) { out_.append(text.data(), text.size()); }

  Output& out_;
};

}  // namespace

std::string RavoScenarioCanonicalizer::encodedGraph(const RavoScenarioGraph& graph) {
  std::string text;
  ORXCanonicalTextOutput::Buffered out([&text](const char* data, std::size_t size) { text.append(data, size); });
  GraphTextWriter(out).graph(graph);
  out.finish();
  return text;
}

// The text reaches the hash in chunks; a large graph's text is never held whole.
std::string RavoScenarioCanonicalizer::digest(const RavoScenarioGraph& graph) {
  ORXSHA256 hash;
  ORXCanonicalTextOutput::Buffered out([&hash](const char* data, std::size_t size) { hash.update(std::string_view(data, size)); });
  GraphTextWriter(out).graph(graph);
  out.finish();
  return ORXSHA256::toHex(hash.finalize());
}

}  // namespace ravo::orx
