#include <ravo-orx/checks/AlteredEvidenceRuntime.h>

#include <fstream>
#include <string_view>
#include <system_error>

#include <ravo-orx/contracts/support/RavoJSON.h>
#include <ravo-orx/contracts/support/RavoUUID.h>
#include <ravo-orx/runtime/OrxArtifactFiles.h>
#include <ravo-orx/runtime/OrxEvidence.h>

namespace ravo::orx {

using namespace internal;

namespace {

namespace fs = std::filesystem;

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

// Throws std::runtime_error when the file cannot be written whole.
void writeFile(const fs::path& file, std::string_view bytes) {
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out.flush()) throw std::runtime_error("could not write " + file.string());
}

// Artifacts are copied through the runtime's own reader, so that the copy refuses at once what the
// runtime would refuse (FIFOs, devices, oversized files) instead of blocking on it or copying it whole.
std::string readArtifactText(const fs::path& file) {
  const auto bytes = readArtifactFile(file);
  return std::string(bytes.begin(), bytes.end());
}

void editEvidence(const fs::path& file, const OrxEvidenceEdit& mutate) {
  // Read by the application JSON reader, which bounds nesting: nlohmann copies and writes documents
  // recursively, and hostile evidence may nest deeply enough to exhaust the stack. nlohmann::json keeps
  // object keys sorted and writes "/" unescaped.
  const nlohmann::json parsed(parseRavoJSON(readArtifactText(file)));
  nlohmann::json dictionary = parsed.is_object() ? parsed : nlohmann::json::object();
  mutate(dictionary);

  // Write then replace, atomically.
  const fs::path temporary = file.parent_path() / (file.filename().string() + ".tmp");
  writeFile(temporary, dictionary.dump());
  fs::rename(temporary, file);
}

}  // namespace

std::unique_ptr<OrxPolicyRuntime> alteredEvidenceRuntime(const fs::path& artifacts, const OrxEvidenceEdit& mutate) {
  std::error_code error;
  const fs::path temporaryRoot = fs::temp_directory_path(error);
  if (error) return nullptr;
  ScratchDirectory scratch(temporaryRoot / ("ravo-orx-check-" + RavoUUID::random().uuidString()));
  if (!fs::create_directories(scratch.path(), error) || error) return nullptr;
  try {
    for (const auto& name : orxArtifactFileNames()) writeFile(scratch.path() / name, readArtifactText(artifacts / name));
    editEvidence(scratch.path() / kOrxEvidenceFile, mutate);
  } catch (const std::exception&) {
    return nullptr;
  }
  auto runtime = std::make_unique<OrxPolicyRuntime>(scratch.path());
  if (!scratch.remove()) return nullptr;
  return runtime;
}

}  // namespace ravo::orx
