#pragma once
// The fixed, ordered catalog of 13 runtime checks. A check returns nothing when it passes and a short
// failure message when it fails; the names are printed as they stand.

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <ravo-orx/runtime/OrxPolicyRuntime.h>

namespace ravo::orx {

struct OrxRuntimeCheck {
  std::string name;
  std::function<std::optional<std::string>()> check;
};

// Checks 2 to 10 decide on `runtime`; checks 12 and 13 tamper with copies of `artifacts`. Both must
// outlive the returned catalog.
std::vector<OrxRuntimeCheck> orxRuntimeCheckCatalog(OrxPolicyRuntime& runtime, const std::filesystem::path& artifacts);

// The facts the catalog and the benchmark share.
namespace orx_check_facts {
inline constexpr AuthorizationFacts controllerCommand{2, 6, 63, 1000, 900000, 0, 600, 1};
inline constexpr SyncFacts syncInBand{30, 20, 5, 10000, 100, 0, 500, 50};
inline constexpr SyncFacts syncSmallDrift{66, 20, 5, 10000, 100, 0, 500, 50};
inline constexpr CinemaAdmissionFacts cinemaMeasured{2500, 2500, 5000, 0, 0, 0, 20, 0, 0, 50, 20, 80, 3};
}  // namespace orx_check_facts

}  // namespace ravo::orx
