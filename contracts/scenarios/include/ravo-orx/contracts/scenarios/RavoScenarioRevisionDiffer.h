#pragma once
// Compares an older revision of a scenario with a newer one for review. Nodes are compared by type,
// version and targets (not by UUID) and counted with multiplicity; a node whose type and targets occur
// with exactly one version on each side, and the versions differ, is reported as a version change
// rather than as removed and added. Nothing checks that the two revisions belong together.

#include <ravo-orx/contracts/scenarios/RavoScenarioRevision.h>
#include <ravo-orx/contracts/scenarios/RavoScenarioRevisionDiff.h>

namespace ravo::orx {

struct RavoScenarioRevisionDiffer {
  static RavoScenarioRevisionDiff compare(const RavoScenarioRevision& from, const RavoScenarioRevision& to);
};

}  // namespace ravo::orx
