// Builds a policy runtime over an artifacts directory with one file replaced or removed: a copy of the
// bundled artifacts in which the first input byte picks the file (evidence.json, a module, or a
// package-check record) and the rest becomes its content; with the top bit set the file is removed.
//
// Construction must never fail or crash. Whatever loads must be the approved module and decide exactly
// as the bundled runtime does; whatever did not load must answer with its fail-safe decision and be
// named in the load error.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include <unistd.h>

#include <ravo-orx/runtime/OrxLog.h>
#include <ravo-orx/runtime/OrxPolicyRuntime.h>

namespace ravo::orx {

namespace {

constexpr std::string_view kFiles[] = {
    "evidence.json",       "player_authz.wasm",           "player_authz.package-check.json",
    "sync_correction.wasm", "sync_correction.package-check.json", "cinema_admission.wasm",
    "cinema_admission.package-check.json"};

constexpr AuthorizationFacts kAuthorization{3, 2, 0xFF, 1000, 900000, 0, 600, 1};
constexpr SyncFacts kSync{66, 20, 5, 10000, 100, 0, 500, 50};
constexpr CinemaAdmissionFacts kCinema{2400, 6000, 1000, 60, 0, 0, 11, 15, 24, 30, 20, 150, 30};

void writeFile(const std::filesystem::path& path, std::string_view bytes) {
  std::ofstream(path, std::ios::binary | std::ios::trunc).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// A scratch copy of the bundled artifacts for this process, removed at exit.
struct ScratchArtifacts {
  std::filesystem::path directory =
      std::filesystem::temp_directory_path() / ("orx-artifacts-fuzz-" + std::to_string(::getpid()));

  ScratchArtifacts() {
    std::filesystem::remove_all(directory);
    std::filesystem::copy(ORX_BUNDLED_ARTIFACTS, directory, std::filesystem::copy_options::recursive);
  }
  ~ScratchArtifacts() { std::filesystem::remove_all(directory); }

  void restore(std::string_view file) const {
    std::filesystem::copy_file(std::filesystem::path(ORX_BUNDLED_ARTIFACTS) / file, directory / file,
                               std::filesystem::copy_options::overwrite_existing);
  }
};

bool mentions(const std::optional<std::string>& loadError, std::string_view module) {
  return loadError && loadError->find(module) != std::string::npos;
}

// An unavailable module must be named in the load error (or the whole load failed) and must answer
// with its fail-safe decision; an available one must answer as the bundled module does.
template <class Decision>
void checkModule(bool available, const OrxPolicyRuntime& runtime, std::string_view module, Decision answer,
                 Decision bundledAnswer, Decision failSafe) {
  if (available) {
    if (answer != bundledAnswer) std::abort();
    return;
  }
  if (answer != failSafe) std::abort();
  const bool wholeLoadFailed = !runtime.isAuthorizationAvailable() && !runtime.isSyncAvailable() &&
                               !runtime.isCinemaAdmissionAvailable();
  if (!wholeLoadFailed && !mentions(runtime.loadError(), module)) std::abort();
}

}  // namespace

// Refusals are the expected outcome here; their log lines would only drown libFuzzer's report.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
  setOrxLogSink([](OrxLogLevel, std::string_view) {});
  return 0;
}

}  // namespace ravo::orx

using namespace ravo::orx;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const ScratchArtifacts scratch;
  static OrxPolicyRuntime bundled{std::filesystem::path(ORX_BUNDLED_ARTIFACTS)};
  static const auto bundledAuthorization = bundled.authorize(kAuthorization);
  static const auto bundledSync = bundled.correctSync(kSync);
  static const auto bundledCinema = bundled.decideCinemaAdmission(kCinema);
  if (size == 0) return 0;

  const std::string_view file = kFiles[(data[0] & 0x7F) % std::size(kFiles)];
  if (data[0] & 0x80) {
    std::filesystem::remove(scratch.directory / file);
  } else {
    writeFile(scratch.directory / file, std::string_view(reinterpret_cast<const char*>(data + 1), size - 1));
  }

  OrxPolicyRuntime runtime{scratch.directory};
  const bool complete = runtime.isAuthorizationAvailable() && runtime.isSyncAvailable() &&
                        runtime.isCinemaAdmissionAvailable();
  if (complete == runtime.loadError().has_value()) std::abort();
  if (runtime.loadError() && runtime.loadError()->empty()) std::abort();
  checkModule(runtime.isAuthorizationAvailable(), runtime, "player_authz", runtime.authorize(kAuthorization),
              bundledAuthorization, OrxAuthorizationDecision::runtimeUnavailable());
  checkModule(runtime.isSyncAvailable(), runtime, "sync_correction", runtime.correctSync(kSync), bundledSync,
              OrxSyncDecision::hold());
  checkModule(runtime.isCinemaAdmissionAvailable(), runtime, "cinema_admission",
              runtime.decideCinemaAdmission(kCinema), bundledCinema, OrxCinemaAdmissionDecision::metalFXOnly());

  scratch.restore(file);
  return 0;
}
