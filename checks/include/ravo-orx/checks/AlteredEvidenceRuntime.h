#pragma once
// Builds a runtime over a tampered copy of the artifacts: the seven files are copied into a fresh
// directory under the system temporary directory, "evidence.json" is edited as a JSON dictionary and
// written back with sorted keys, a runtime is built over the copy, and the copy is removed. Returns no
// runtime when any step fails; nothing is left behind in any outcome.

#include <filesystem>
#include <functional>
#include <memory>

#include <nlohmann/json.hpp>

#include <ravo-orx/runtime/OrxPolicyRuntime.h>

namespace ravo::orx {

using OrxEvidenceEdit = std::function<void(nlohmann::json& dictionary)>;

std::unique_ptr<OrxPolicyRuntime> alteredEvidenceRuntime(const std::filesystem::path& artifacts,
                                                         const OrxEvidenceEdit& mutate);

}  // namespace ravo::orx
