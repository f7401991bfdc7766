#include "runtime/OrxPolicyRuntime.h"

#include <unistd.h>

#include <array>
#include <system_error>
#include <vector>

#include "runtime/OrxArtifactFiles.h"
#include "runtime/OrxEvidence.h"
#include "runtime/OrxLog.h"
#include "runtime/RuntimeError.h"

namespace {

// Loads one module, or records why it stays absent; one module's failure never stops the others.
std::unique_ptr<LoadedModule> loadIsolated(std::string_view name, const std::filesystem::path& directory,
                                           const OrxEvidence& evidence, std::vector<std::string>& errors) {
  try {
    auto verified = verifyModuleArtifacts(name, directory, evidence);
    return LoadedModule::instantiate(name, verified.bytes);
  } catch (const std::exception& error) {
    errors.push_back(std::string(name) + ": " + error.what());
    orxLog(OrxLogLevel::error, "ORX module " + std::string(name) + " unavailable; fail-safe policy is active for it: " +
                                   error.what());
    return nullptr;
  }
}

std::optional<std::filesystem::path> executablePath() {
  std::error_code error;
  auto path = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) return std::nullopt;
  return path;
}

}  // namespace

OrxPolicyRuntime::OrxPolicyRuntime(std::optional<std::filesystem::path> artifactsDirectory)
    : OrxPolicyRuntime(load(artifactsDirectory)) {}

OrxPolicyRuntime::OrxPolicyRuntime(Loaded loaded)
    : loadError_(std::move(loaded.loadError)), decider_(std::move(loaded.modules)) {}

OrxPolicyRuntime::Loaded OrxPolicyRuntime::load(const std::optional<std::filesystem::path>& artifactsDirectory) {
  Loaded loaded;
  std::filesystem::path directory;
  OrxEvidence evidence;
  try {
    directory = artifactsDirectory ? *artifactsDirectory : locateArtifacts();
    evidence = OrxEvidence::decode(readArtifactFile(directory / "evidence.json"));
    verifyBuildProvenance(evidence);
  } catch (const std::exception& error) {
    // Top-level evidence is all or nothing: no module loads.
    loaded.loadError = error.what();
    orxLog(OrxLogLevel::error, "ORX runtime unavailable; fail-safe policy is active: " + *loaded.loadError);
    return loaded;
  }

  std::vector<std::string> errors;
  loaded.modules.authorization = loadIsolated("player_authz", directory, evidence, errors);
  loaded.modules.sync = loadIsolated("sync_correction", directory, evidence, errors);
  loaded.modules.cinemaAdmission = loadIsolated("cinema_admission", directory, evidence, errors);
  if (errors.empty()) {
    orxLog(OrxLogLevel::standard, "Loaded digest-bound ORX authorization, sync and cinema admission modules");
    return loaded;
  }
  std::string joined;
  for (const auto& error : errors) {
    if (!joined.empty()) joined += "; ";
    joined += error;
  }
  orxLog(OrxLogLevel::error, "ORX runtime partially unavailable; fail-safe policy is active for: " + joined);
  loaded.loadError = std::move(joined);
  return loaded;
}

std::filesystem::path OrxPolicyRuntime::locateArtifacts() {
  // A Linux process has no application bundle, so the bundle's resource directory is never a candidate.
  std::vector<std::filesystem::path> candidates;
  std::error_code error;
  if (auto current = std::filesystem::current_path(error); !error) candidates.push_back(current / "artifacts");
  // Installed artifacts: those of the prefix the executable is installed in, then those of the prefix
  // this library was built for, so an installed application runs from any working directory.
  if (auto executable = executablePath()) {
    candidates.push_back(executable->parent_path().parent_path() / "Resources" / "ORX");
    candidates.push_back(executable->parent_path() / ORX_INSTALLED_ARTIFACTS_FROM_EXECUTABLE);
  }
  candidates.push_back(ORX_INSTALLED_ARTIFACTS);
  for (const auto& candidate : candidates) {
    if (std::filesystem::exists(candidate / "evidence.json", error)) return candidate;
  }
  throw RuntimeError("Bundled ORX artifacts were not found");
}
