#include <ravo-orx/runtime/OrxEvidence.h>

#include <set>

#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/core/ORXJSONDocument.h>
#include <ravo-orx/core/ORXSHA256.h>
#include <ravo-orx/runtime/OrxArtifactFiles.h>
#include <ravo-orx/runtime/OrxBuildConstants.h>
#include <ravo-orx/runtime/OrxDecisionKinds.h>
#include <ravo-orx/runtime/RuntimeError.h>

namespace ravo::orx::internal {

namespace {

bool matchesTable(const OrxBuildConstants::DigestTable& table, std::string_view name, const std::string& digest) {
  auto entry = table.find(name);
  return entry != table.end() && entry->second == digest;
}

// Decoding as a standard JSON decoder does: every listed key required with its type, unknown keys of
// any type ignored. Messages name the value by its path ("evidence.modules[2].wasmSha256: missing
// key"). A listed key written twice is refused: provenance must not depend on which one a reader keeps.
[[noreturn]] void refuse(const std::string& path, std::string_view message) {
  throw RuntimeError(path + ": " + std::string(message));
}

const ORXJSONDocument& required(const ORXJSONDocument& object, const std::string& path, const char* key) {
  std::size_t count = 0;
  const ORXJSONDocument* value = object.member(key, &count);
  if (!value) refuse(path + "." + key, "missing key");
  if (count > 1) refuse(path + "." + key, "duplicate key");
  return *value;
}

void expectKind(const ORXJSONDocument& value, ORXJSONDocument::Kind kind, const std::string& path,
                const char* expected) {
  if (value.kind == kind) return;
  refuse(path, std::string("expected ") + expected + ", found " + std::string(value.describe()));
}

std::string text(const ORXJSONDocument& object, const std::string& path, const char* key) {
  const ORXJSONDocument& value = required(object, path, key);
  expectKind(value, ORXJSONDocument::Kind::string, path + "." + key, "a string");
  return value.text;
}

OrxModuleEvidence decodeModule(const ORXJSONDocument& record, const std::string& path) {
  expectKind(record, ORXJSONDocument::Kind::object, path, "an object");
  return {text(record, path, "module"),       text(record, path, "orxAbi"),
          text(record, path, "hostAbi"),      text(record, path, "compilerIdentity"),
          text(record, path, "sourceSha256"), text(record, path, "packageManifestSha256"),
          text(record, path, "wasmSha256"),   text(record, path, "packageCheckSha256"),
          text(record, path, "packageCheckStatus")};
}

}  // namespace

std::string orxModuleFileName(std::string_view module) { return std::string(module) + ".wasm"; }

std::string orxPackageCheckFileName(std::string_view module) { return std::string(module) + ".package-check.json"; }

std::vector<std::string> orxArtifactFileNames() {
  std::vector<std::string> names{std::string(kOrxEvidenceFile)};
  for (const auto& kind : kOrxDecisionKinds) {
    names.push_back(orxModuleFileName(kind.module));
    names.push_back(orxPackageCheckFileName(kind.module));
  }
  return names;
}

OrxEvidence OrxEvidence::decode(std::span<const std::uint8_t> json) {
  ORXJSONDocument document;
  try {
    document = ORXJSONDocument::read(std::string_view(reinterpret_cast<const char*>(json.data()), json.size()));
  } catch (const ORXError& error) {
    throw RuntimeError("malformed JSON: " + error.message());
  }
  const std::string path = "evidence";
  expectKind(document, ORXJSONDocument::Kind::object, path, "an object");
  OrxEvidence evidence{text(document, path, "generatedBy"), text(document, path, "profile"),
                       text(document, path, "compilerIdentity"), text(document, path, "toolchainBundleSha256"), {}};
  const ORXJSONDocument& modules = required(document, path, "modules");
  expectKind(modules, ORXJSONDocument::Kind::array, path + ".modules", "an array");
  for (std::size_t i = 0; i < modules.items.size(); ++i) {
    evidence.modules.push_back(decodeModule(modules.items[i], path + ".modules[" + std::to_string(i) + "]"));
  }
  return evidence;
}

void verifyBuildProvenance(const OrxEvidence& evidence) {
  if (evidence.generatedBy != kOrxEvidenceGeneratedBy || evidence.profile != kOrxEvidenceProfile ||
      evidence.compilerIdentity != OrxBuildConstants::compilerIdentity() ||
      evidence.toolchainBundleSha256 != OrxBuildConstants::toolchainBundleSha256()) {
    throw RuntimeError("ORX build provenance is not approved by this Ravo build");
  }
  std::set<std::string_view> names;
  for (const auto& record : evidence.modules) names.insert(record.module);
  if (names.size() != evidence.modules.size()) throw RuntimeError("ORX evidence contains duplicate module records");
}

OrxVerifiedModuleBytes verifyModuleArtifacts(std::string_view name, const std::filesystem::path& directory,
                                             const OrxEvidence& evidence) {
  const OrxModuleEvidence* record = nullptr;
  size_t matches = 0;
  for (const auto& candidate : evidence.modules) {
    if (candidate.module == name) {
      record = &candidate;
      ++matches;
    }
  }
  const std::string moduleName(name);
  if (matches != 1 || record->packageCheckStatus != kOrxPackageCheckPassing) {
    throw RuntimeError("Missing passing package-check evidence for " + moduleName);
  }
  if (record->orxAbi != kOrxAbiLane || record->hostAbi != kOrxHostAbiLane ||
      record->compilerIdentity != OrxBuildConstants::compilerIdentity() ||
      !matchesTable(OrxBuildConstants::expectedSourceDigests(), name, record->sourceSha256) ||
      !matchesTable(OrxBuildConstants::expectedManifestDigests(), name, record->packageManifestSha256)) {
    throw RuntimeError("ORX source/package/compiler identity mismatch for " + moduleName);
  }
  if (!matchesTable(OrxBuildConstants::expectedDigests(), name, record->wasmSha256)) {
    throw RuntimeError("ORX evidence is not approved by this Ravo build");
  }
  const auto packageCheck = readArtifactFile(directory / orxPackageCheckFileName(name));
  if (ORXSHA256::hex(packageCheck) != record->packageCheckSha256) {
    throw RuntimeError("ORX package-check digest mismatch for " + moduleName);
  }
  OrxVerifiedModuleBytes module{readArtifactFile(directory / orxModuleFileName(name)), {}};
  module.digest = ORXSHA256::hex(module.bytes);
  if (!matchesTable(OrxBuildConstants::expectedDigests(), name, module.digest)) {
    throw RuntimeError("ORX artifact digest mismatch for " + moduleName);
  }
  return module;
}

}  // namespace ravo::orx::internal
