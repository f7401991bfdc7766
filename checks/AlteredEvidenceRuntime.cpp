#include "checks/AlteredEvidenceRuntime.h"

#include <fstream>
#include <iterator>
#include <system_error>

#include "contracts/support/RavoUUID.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kArtifactFiles[] = {
    "evidence.json",      "player_authz.wasm",           "player_authz.package-check.json",
    "sync_correction.wasm", "sync_correction.package-check.json", "cinema_admission.wasm",
    "cinema_admission.package-check.json"};

// Removes the directory however the check ends; removal errors are reported only when asked for.
class ScratchDirectory {
 public:
  explicit ScratchDirectory(fs::path path) : path_(std::move(path)) {}
  ~ScratchDirectory() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }
  const fs::path& path() const { return path_; }
  bool remove() {
    std::error_code error;
    fs::remove_all(path_, error);
    return !error;
  }

 private:
  fs::path path_;
};

bool editEvidence(const fs::path& file, const OrxEvidenceEdit& mutate) {
  std::ifstream in(file, std::ios::binary);
  if (!in) return false;
  const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  nlohmann::json parsed = nlohmann::json::parse(text, nullptr, /*allow_exceptions=*/false);
  if (parsed.is_discarded()) return false;
  nlohmann::json dictionary = parsed.is_object() ? parsed : nlohmann::json::object();
  mutate(dictionary);

  // nlohmann::json keeps object keys sorted and writes "/" unescaped. Write then replace, atomically.
  const fs::path temporary = file.parent_path() / (file.filename().string() + ".tmp");
  {
    std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
    out << dictionary.dump();
    if (!out.flush()) return false;
  }
  std::error_code error;
  fs::rename(temporary, file, error);
  return !error;
}

}  // namespace

std::unique_ptr<OrxPolicyRuntime> alteredEvidenceRuntime(const fs::path& artifacts, const OrxEvidenceEdit& mutate) {
  std::error_code error;
  const fs::path temporaryRoot = fs::temp_directory_path(error);
  if (error) return nullptr;
  ScratchDirectory scratch(temporaryRoot / ("ravo-orx-check-" + RavoUUID::random().uuidString()));
  if (!fs::create_directories(scratch.path(), error) || error) return nullptr;
  for (const char* name : kArtifactFiles) {
    if (!fs::copy_file(artifacts / name, scratch.path() / name, error) || error) return nullptr;
  }
  try {
    if (!editEvidence(scratch.path() / "evidence.json", mutate)) return nullptr;
  } catch (const std::exception&) {
    return nullptr;
  }
  auto runtime = std::make_unique<OrxPolicyRuntime>(scratch.path());
  if (!scratch.remove()) return nullptr;
  return runtime;
}
