#include <ravo-orx/runtime/OrxPolicyRuntime.h>

#include <dlfcn.h>
#include <unistd.h>

#include <array>
#include <system_error>
#include <vector>

#include <ravo-orx/runtime/OrxArtifactFiles.h>
#include <ravo-orx/runtime/OrxDecisionLogWriter.h>
#include <ravo-orx/runtime/OrxEvidence.h>
#include <ravo-orx/runtime/OrxDecisionKinds.h>
#include <ravo-orx/runtime/OrxLog.h>
#include <ravo-orx/runtime/OrxPolicyDecider.h>
#include <ravo-orx/runtime/RuntimeError.h>

namespace ravo::orx {

using namespace internal;

namespace {

// Loads one module, or records why it stays absent; one module's failure never stops the others.
std::unique_ptr<LoadedModule> loadIsolated(std::string_view name, const std::filesystem::path& directory,
                                           const OrxEvidence& evidence, std::vector<std::string>& errors) {
  try {
    auto verified = verifyModuleArtifacts(name, directory, evidence);
    return LoadedModule::approved(name, verified.bytes, std::move(verified.digest));
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

// The file this code was loaded from: libravo-orx's own path when it is the shared library, the
// executable's when the runtime is linked statically.
std::optional<std::filesystem::path> libraryPath() {
  static const char anchor = 0;
  Dl_info info{};
  if (dladdr(&anchor, &info) == 0 || !info.dli_fname || !*info.dli_fname) return std::nullopt;
  std::error_code error;
  auto path = std::filesystem::canonical(info.dli_fname, error);
  if (error) return std::nullopt;
  return path;
}

struct Loaded {
  OrxPolicyModules modules;
  std::optional<std::string> loadError;
};

Loaded load(const std::optional<std::filesystem::path>& artifactsDirectory) {
  Loaded loaded;
  std::filesystem::path directory;
  OrxEvidence evidence;
  try {
    directory = artifactsDirectory ? *artifactsDirectory : OrxPolicyRuntime::locateArtifacts();
    evidence = OrxEvidence::decode(readArtifactFile(directory / kOrxEvidenceFile));
    verifyBuildProvenance(evidence);
  } catch (const std::exception& error) {
    // Top-level evidence is all or nothing: no module loads.
    loaded.loadError = error.what();
    orxLog(OrxLogLevel::error, "ORX runtime unavailable; fail-safe policy is active: " + *loaded.loadError);
    return loaded;
  }

  std::vector<std::string> errors;
  auto module = [&](OrxDecisionKindID id) {
    return loadIsolated(orxDecisionKind(id).module, directory, evidence, errors);
  };
  loaded.modules.authorization = module(OrxDecisionKindID::authorization);
  loaded.modules.sync = module(OrxDecisionKindID::sync);
  loaded.modules.cinemaAdmission = module(OrxDecisionKindID::cinemaAdmission);
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

}  // namespace

OrxPolicyRuntime::OrxPolicyRuntime(std::optional<std::filesystem::path> artifactsDirectory) {
  Loaded loaded = load(artifactsDirectory);
  loadError_ = std::move(loaded.loadError);
  decider_ = std::make_unique<OrxPolicyDecider>(std::move(loaded.modules));
}

OrxPolicyRuntime::OrxPolicyRuntime(std::optional<std::filesystem::path> artifactsDirectory, OrxDecisionLogOptions log)
    : OrxPolicyRuntime(std::move(artifactsDirectory)) {
  if (!log.sink) return;
  decisionLog_ = std::make_unique<OrxDecisionLog>(std::move(log));
  decider_->setRecorder(&decisionLog_->writer());
}

OrxPolicyRuntime::~OrxPolicyRuntime() {
  // No decision runs any more; the log is destroyed first and writes what it still holds.
  decider_->setRecorder(nullptr);
}

bool OrxPolicyRuntime::isAuthorizationAvailable() const noexcept { return decider_->isAuthorizationAvailable(); }
bool OrxPolicyRuntime::isSyncAvailable() const noexcept { return decider_->isSyncAvailable(); }
bool OrxPolicyRuntime::isCinemaAdmissionAvailable() const noexcept { return decider_->isCinemaAdmissionAvailable(); }
std::string OrxPolicyRuntime::statusDescription() const { return decider_->statusDescription(); }
std::string OrxPolicyRuntime::executionTiers() const { return decider_->executionTiers(); }
std::uint64_t OrxPolicyRuntime::failureCount() const noexcept { return decider_->failureCount(); }

OrxSourcedDecision<OrxAuthorizationDecision> OrxPolicyRuntime::authorizeWithSource(
    const AuthorizationFacts& facts) noexcept {
  return decider_->authorizeWithSource(facts);
}

OrxSourcedDecision<OrxSyncDecision> OrxPolicyRuntime::correctSyncWithSource(const SyncFacts& facts) noexcept {
  return decider_->correctSyncWithSource(facts);
}

OrxSourcedDecision<OrxCinemaAdmissionDecision> OrxPolicyRuntime::decideCinemaAdmissionWithSource(
    const CinemaAdmissionFacts& facts) noexcept {
  return decider_->decideCinemaAdmissionWithSource(facts);
}

bool OrxPolicyRuntime::isValidHostSyncOutput(OrxSyncAction action, std::int32_t rateX1000,
                                             std::int32_t correctionMilliseconds, std::int32_t reason) noexcept {
  return OrxPolicyDecider::isValidHostSyncOutput(action, rateX1000, correctionMilliseconds, reason);
}

bool OrxPolicyRuntime::isValidCinemaAdmissionOutput(OrxCinemaAdmissionRoute route,
                                                    std::int32_t sparseAnchorIntervalFrames,
                                                    std::int32_t safeBudgetTenthsMilliseconds,
                                                    OrxCinemaAdmissionReason reason) noexcept {
  return OrxPolicyDecider::isValidCinemaAdmissionOutput(route, sparseAnchorIntervalFrames,
                                                        safeBudgetTenthsMilliseconds, reason);
}

std::filesystem::path OrxPolicyRuntime::locateArtifacts() {
  // Where an application bundle exists, its resource directory comes first; a Linux process has none,
  // so the search starts in the working directory. "Resources/ORX" two levels above the executable is
  // the bundle layout the Orx build also produces outside a bundle.
  std::vector<std::filesystem::path> candidates;
  std::error_code error;
  if (auto current = std::filesystem::current_path(error); !error) candidates.push_back(current / "artifacts");
  // Installed artifacts: those of the prefix the executable is installed in, those of the prefix the
  // shared library sits in (so a moved or vendored prefix still finds its own), then those of the
  // prefix this library was built for; an installed application runs from any working directory.
  if (auto executable = executablePath()) {
    candidates.push_back(executable->parent_path().parent_path() / "Resources" / "ORX");
    candidates.push_back(executable->parent_path() / ORX_INSTALLED_ARTIFACTS_FROM_EXECUTABLE);
  }
  if (auto library = libraryPath()) candidates.push_back(library->parent_path() / ORX_INSTALLED_ARTIFACTS_FROM_LIBRARY);
  candidates.push_back(ORX_INSTALLED_ARTIFACTS);
  for (const auto& candidate : candidates) {
    if (std::filesystem::exists(candidate / kOrxEvidenceFile, error)) return candidate;
  }
  throw RuntimeError("Bundled ORX artifacts were not found");
}

}  // namespace ravo::orx
