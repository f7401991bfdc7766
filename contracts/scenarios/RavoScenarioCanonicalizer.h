#pragma once
// The scenario graph digest that pins a revision to its graph: SHA-256, as 64 lowercase hex digits, of
// the graph's JSON text written compactly with object keys sorted by code point and "/" unescaped.
// This is the application's general JSON form, not the host contract's canonical serialization, and
// carries no domain tag.

#include <string>

#include "contracts/scenarios/RavoScenarioGraph.h"

struct RavoScenarioCanonicalizer {
  // The text the digest is taken over. Throws RavoScenarioEncodingError.
  static std::string encodedGraph(const RavoScenarioGraph& graph);
  // Throws RavoScenarioEncodingError.
  static std::string digest(const RavoScenarioGraph& graph);
};
