#include <ravo-orx/prove/OrxPolicyProver.h>

namespace ravo::orx {

std::vector<std::string> orxValidityProblems(const OrxPolicyManifest& manifest, std::span<const std::uint8_t> wasm) {
  if (manifest.proof) return {};
  const OrxDecisionKind& kind = *orxDecisionKindOfModule(manifest.module);  // the manifest's decoding checked it
  std::vector<std::string> problems;
  for (const auto& result : orxProvePolicy(wasm, kind, OrxProofOptions::of(kind, manifest), /*validityOnly=*/true)) {
    // An unknown obligation refuses the module too: the build approves only what it proved, or what
    // the manifest says why it need not prove.
    switch (result.verdict) {
      case OrxProofVerdict::proved: break;
      case OrxProofVerdict::refuted:
        problems.push_back("refuted: " + result.obligation + ": " + result.detail);
        break;
      case OrxProofVerdict::unknown:
        problems.push_back("not proved: " + result.obligation + ": " + result.detail +
                           " (the manifest's \"proof\": {\"skip\": \"...\"} builds it unproved, for a stated reason)");
        break;
    }
  }
  return problems;
}

}  // namespace ravo::orx
