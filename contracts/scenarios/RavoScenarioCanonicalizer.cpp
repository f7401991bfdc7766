#include "contracts/scenarios/RavoScenarioCanonicalizer.h"

#include <stdexcept>

#include "contracts/scenarios/RavoScenarioEncodingError.h"
#include "core/ORXSHA256.h"

std::string RavoScenarioCanonicalizer::encodedGraph(const RavoScenarioGraph& graph) {
  try {
    // nlohmann::json keeps object members in a std::map: converting the ordered form sorts every
    // object's keys by their UTF-8 bytes, which is code point order. dump() is compact, writes UTF-8
    // as is and never escapes "/"; it throws on text that is not valid UTF-8.
    return nlohmann::json(graph.toJSON()).dump();
  } catch (const std::invalid_argument& error) {  // a non-finite argument number
    throw RavoScenarioEncodingError(std::string("scenario graph cannot be encoded: ") + error.what());
  } catch (const nlohmann::json::exception& error) {
    throw RavoScenarioEncodingError(std::string("scenario graph cannot be encoded: ") + error.what());
  }
}

std::string RavoScenarioCanonicalizer::digest(const RavoScenarioGraph& graph) {
  return ORXSHA256::hex(encodedGraph(graph));
}
