// Feeds arbitrary bytes to the two readers that take well-formed JSON quickly and leave the rest to
// nlohmann's parser. parseRavoJSON must accept what nlohmann's own parser accepts (within its nesting
// limit) and build the same document; nlohmann's lexer takes a raw NUL for the end of the input, so
// texts holding one are left out of that comparison. RavoScenarioGraph::fromJSONText must give the
// graph or the error text that fromJSON over parseRavoJSON gives.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include <ravo-orx/contracts/scenarios/RavoScenarioGraph.h>
#include "contracts/scenarios/tests/RavoScenarioDecodingOutcome.h"

namespace ravo::orx {

namespace {

using Outcome = RavoScenarioDecodingOutcome<RavoScenarioGraph>;

}  // namespace

}  // namespace ravo::orx

using namespace ravo::orx;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);

  std::optional<RavoJSON> read;
  const bool comparable = text.find('\0') == std::string_view::npos;
  try {
    read = parseRavoJSON(text);
  } catch (const RavoJSONDecodingError&) {
  }
  std::optional<RavoJSON> oracle;
  try {
    oracle = RavoJSON::parse(text);
  } catch (const RavoJSON::exception&) {
  }
  if (comparable && read.has_value() && (!oracle || read->dump() != oracle->dump())) std::abort();
  // Only nesting deeper than the reader's limit may be refused by it alone; such a text is at least
  // one opening bracket per level long.
  if (comparable && !read && oracle && size <= ravoJSONMaximumDepth) std::abort();

  const Outcome expected = Outcome::of([&] { return RavoScenarioGraph::fromJSON(parseRavoJSON(text)); });
  const Outcome direct = Outcome::of([&] { return RavoScenarioGraph::fromJSONText(text); });
  if (direct.error != expected.error || direct.record != expected.record) std::abort();
  return 0;
}
