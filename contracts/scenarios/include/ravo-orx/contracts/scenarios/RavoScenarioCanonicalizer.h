#pragma once
// The scenario graph digest that pins a revision to its graph: SHA-256, as 64 lowercase hex digits, of
// the graph's JSON text written compactly with object keys sorted by code point and "/" unescaped.
// This is the application's general JSON form, not the host contract's canonical serialization, and
// carries no domain tag. Numbers are written as the platform encoder of the system's origin writes them:
// an integral double below 10^15 in magnitude without a fraction ("1", "0", "-3"), others in their
// shortest round-trip form, plain from 10^-4 to 10^15 and in exponent form outside ("1e-05", "1e+15").

#include <string>

#include <ravo-orx/contracts/scenarios/RavoScenarioGraph.h>

namespace ravo::orx {

struct RavoScenarioCanonicalizer {
  // The text the digest is taken over. Throws RavoScenarioEncodingError.
  static std::string encodedGraph(const RavoScenarioGraph& graph);
  // Throws RavoScenarioEncodingError.
  static std::string digest(const RavoScenarioGraph& graph);
};

}  // namespace ravo::orx
