#include <filesystem>
#include <map>
#include <memory>
#include <vector>

#include <ravo-orx/core/ORXMessageText.h>
#include <ravo-orx/core/ORXSHA256.h>
#include <ravo-orx/loader/OrxModuleLoader.h>
#include <ravo-orx/runtime/OrxArtifactFiles.h>
#include <ravo-orx/runtime/OrxDecisionLogFormat.h>
#include <ravo-orx/runtime/OrxPolicyRuntime.h>
#include <ravo-orx/cli/OrxCliCommand.h>
#include <ravo-orx/cli/OrxCliDecisionLog.h>
#include <ravo-orx/cli/OrxCliIO.h>
#include <ravo-orx/cli/OrxCliPolicyModule.h>

namespace ravo::orx {

using namespace internal;

namespace {

// How many records of each kind of difference a report shows.
constexpr std::size_t kShownPerDifference = 5;

// Keeps the record a decider makes of the decision it just took.
class LastRecord final : public OrxDecisionRecorder {
 public:
  void waitForRoom(std::unique_lock<std::mutex>&) override {}
  bool append(OrxDecisionRecord& record) noexcept override {
    last = record;
    return true;
  }
  void overflowed(const OrxDecisionRecord&) noexcept override {}

  OrxDecisionRecord last;
};

// The decision of `record` taken again by `decider`, as the decider records it.
OrxDecisionRecord redecide(OrxPolicyDecider& decider, LastRecord& recorder, const OrxDecisionRecord& record) {
  const auto facts = record.factValues();
  switch (record.kind) {
    case OrxDecisionKindID::authorization: decider.authorizeWithSource(orxFactsFrom<AuthorizationFacts>(facts)); break;
    case OrxDecisionKindID::sync: decider.correctSyncWithSource(orxFactsFrom<SyncFacts>(facts)); break;
    case OrxDecisionKindID::cinemaAdmission:
      decider.decideCinemaAdmissionWithSource(orxFactsFrom<CinemaAdmissionFacts>(facts));
      break;
  }
  return recorder.last;
}

// The fields in which the decision taken again differs from the logged one: each decision field by
// name, "source" and "emitted".
std::vector<std::string_view> differences(const OrxDecisionRecord& logged, const OrxDecisionRecord& again) {
  std::vector<std::string_view> fields;
  const auto& kind = logged.kindEntry();
  for (std::size_t i = 0; i < kind.decisionFields.size(); ++i) {
    if (logged.decision[i] != again.decision[i]) fields.push_back(kind.decisionFields[i].name);
  }
  if (logged.source != again.source) fields.push_back("source");
  const auto a = logged.emittedValues();
  const auto b = again.emittedValues();
  if (logged.hasEmission != again.hasEmission || logged.emittedLength != again.emittedLength ||
      !std::equal(a.begin(), a.end(), b.begin(), b.end())) {
    fields.push_back("emitted");
  }
  return fields;
}

std::string fieldText(const OrxDecisionRecord& record, std::string_view field) {
  const auto& kind = record.kindEntry();
  if (field == "source") return std::string(orxCaseName(record.source));
  if (field == "emitted") {
    if (!record.hasEmission) return "none";
    std::string text = "[";
    for (const auto value : record.emittedValues()) text += (text.size() > 1 ? "," : "") + std::to_string(value);
    return text + "]";
  }
  for (std::size_t i = 0; i < kind.decisionFields.size(); ++i) {
    if (kind.decisionFields[i].name == field) return orxDecisionFieldText(kind.decisionFields[i], record.decision[i]);
  }
  return {};
}

// Counts of each kind of difference, with the first records of each.
class DifferenceReport {
 public:
  void add(const OrxDecisionRecord& logged, const OrxDecisionRecord& again, std::uint64_t line) {
    const auto fields = differences(logged, again);
    ++compared_;
    if (fields.empty()) return;
    ++changed_;
    for (const auto field : fields) {
      auto& entry = fields_[std::string(field)];
      ++entry.count;
      if (entry.first.size() < kShownPerDifference) {
        entry.first.push_back("line " + std::to_string(line) + " (sequence " + std::to_string(logged.sequence) +
                              ") " + fieldText(logged, field) + " -> " + fieldText(again, field));
      }
    }
  }
  std::uint64_t compared() const { return compared_; }
  std::uint64_t changed() const { return changed_; }
  void print() const {
    for (const auto& [field, entry] : fields_) {
      orxCliPrint("  " + field + ": " + std::to_string(entry.count));
      for (const auto& example : entry.first) orxCliPrint("    " + example);
    }
  }

 private:
  struct Entry {
    std::uint64_t count = 0;
    std::vector<std::string> first;
  };
  std::uint64_t compared_ = 0;
  std::uint64_t changed_ = 0;
  std::map<std::string, Entry> fields_;
};

// The modules of the named artifacts directories, found by the digest of their bytes, each loaded
// once into a decider of its own when a record first names it.
class ModulesByDigest {
 public:
  explicit ModulesByDigest(std::vector<std::filesystem::path> directories) : directories_(std::move(directories)) {
    unavailable_.setRecorder(&recorder_);
  }

  // The decider that takes `record` again, or null when no directory holds its module.
  OrxPolicyDecider* deciderFor(const OrxDecisionRecord& record) {
    if (!record.hasModule) return &unavailable_;
    const std::string digest(record.moduleDigest());
    if (auto found = deciders_.find(digest); found != deciders_.end()) return found->second.get();
    const auto file = files().find(digest);
    if (file == files().end()) return nullptr;
    const auto& kind = record.kindEntry();
    auto& decider = deciders_[digest];
    decider = std::make_unique<OrxPolicyDecider>(orxModulesWith(kind, loadModule(kind.module, readArtifactFile(file->second))));
    decider->setRecorder(&recorder_);
    return decider.get();
  }
  LastRecord& recorder() { return recorder_; }

 private:
  const std::map<std::string, std::filesystem::path>& files() {
    if (indexed_) return files_;
    indexed_ = true;
    for (const auto& directory : directories_) {
      std::error_code error;
      for (const auto& entry : std::filesystem::directory_iterator(directory, error)) {
        if (entry.path().extension() != ".wasm" || !entry.is_regular_file(error)) continue;
        files_.emplace(ORXSHA256::hex(readArtifactFile(entry.path())), entry.path());
      }
      if (error) {
        throw std::runtime_error("could not read " + ORXMessageText::printable(directory.string()) + ": " +
                                 error.message());
      }
    }
    return files_;
  }

  std::vector<std::filesystem::path> directories_;
  bool indexed_ = false;
  std::map<std::string, std::filesystem::path> files_;
  std::map<std::string, std::unique_ptr<OrxPolicyDecider>> deciders_;
  LastRecord recorder_;
  OrxPolicyDecider unavailable_{OrxPolicyModules{}};
};

void printVerified(const OrxDecisionLogVerifier& verifier) {
  orxCliPrint("chain: " + std::to_string(verifier.blocks()) + " blocks verified, head " +
              verifier.head().value_or("none"));
}

// Every record taken again with the module its digest names: each must reproduce exactly.
int reproduce(const std::optional<std::string>& file, std::vector<std::filesystem::path> directories) {
  if (directories.empty()) directories.push_back(OrxPolicyRuntime::locateArtifacts());
  ModulesByDigest modules(std::move(directories));
  DifferenceReport report;
  std::uint64_t missing = 0;
  std::vector<std::string> missingShown;
  const auto verifier = orxCliVerifyLog(file, std::nullopt, [&](const OrxDecisionRecord& record, std::uint64_t line) {
    OrxPolicyDecider* decider = modules.deciderFor(record);
    if (!decider) {
      if (missing++ < kShownPerDifference) {
        missingShown.push_back("line " + std::to_string(line) + " (sequence " + std::to_string(record.sequence) +
                               "): no module with sha256 " + std::string(record.moduleDigest()));
      }
      return;
    }
    report.add(record, redecide(*decider, modules.recorder(), record), line);
  });
  printVerified(verifier);
  orxCliPrint("replayed " + std::to_string(report.compared()) + " records: " +
              std::to_string(report.compared() - report.changed()) + " reproduced exactly, " +
              std::to_string(report.changed()) + " differ, " + std::to_string(missing) + " without their module");
  report.print();
  for (const auto& text : missingShown) orxCliPrint("  " + text);
  orxCliThrowLogProblem(file, verifier);
  return report.changed() == 0 && missing == 0 ? 0 : kOrxCliRefusedInput;
}

// The records of one kind taken with another module: every decision that would change.
int against(const std::optional<std::string>& file, const std::string& moduleFile, const OrxDecisionKind& kind) {
  const auto module = OrxCliPolicyModule::read(moduleFile);
  OrxPolicyDecider decider(orxModulesWith(kind, module.load(kind.module, /*allowPrecompiled=*/true)));
  LastRecord recorder;
  decider.setRecorder(&recorder);
  DifferenceReport report;
  std::uint64_t otherKinds = 0;
  const auto verifier = orxCliVerifyLog(file, std::nullopt, [&](const OrxDecisionRecord& record, std::uint64_t line) {
    if (record.kind != kind.id) {
      ++otherKinds;
      return;
    }
    report.add(record, redecide(decider, recorder, record), line);
  });
  printVerified(verifier);
  orxCliPrint("compared " + std::to_string(report.compared()) + " " + std::string(kind.name) + " records with " +
              module.file + " (sha256 " + module.digest.substr(0, 8) + "): " + std::to_string(report.changed()) +
              " would change, " + std::to_string(report.compared() - report.changed()) + " would not; " +
              std::to_string(otherKinds) + " records of other kinds left out");
  report.print();
  orxCliThrowLogProblem(file, verifier);
  return 0;
}

int runReplay(OrxCliArguments& arguments) {
  std::vector<std::filesystem::path> directories;
  while (const auto directory = arguments.option("--artifacts")) directories.emplace_back(*directory);
  const auto againstModule = arguments.option("--against");
  const auto file = arguments.next("FILE");
  if (!againstModule) {
    arguments.finish();
    return reproduce(file, std::move(directories));
  }
  const std::string kindName = arguments.next("the KIND after --against MODULE.wasm");
  arguments.finish();
  const auto* kind = orxDecisionKindNamed(kindName);
  if (!kind) throw OrxCliUsageError("unknown decision \"" + kindName + "\"; expected authz, sync or cinema");
  if (!directories.empty()) throw OrxCliUsageError("--artifacts and --against do not go together");
  return against(file, *againstModule, *kind);
}

}  // namespace

constinit const OrxCliCommand kOrxCliLogReplayCommand{
    "replay", "FILE|- [--artifacts DIR]... | FILE|- --against MODULE.wasm authz|sync|cinema",
    "take a log's decisions again and compare",
    "Verifies the log as 'log verify' does and takes every decision again from its record's facts.\n"
    "\n"
    "Without --against, each record runs on the module whose SHA-256 it names, found among the .wasm\n"
    "files of the DIRs (old releases kept side by side; default: the bundled artifacts), or on no module\n"
    "when it names none, and must reproduce exactly: decision, source and emitted values. Prints how\n"
    "many reproduced and the first records of each difference; exit status 1 when any differs or has no\n"
    "module, or the chain is broken.\n"
    "\n"
    "With --against MODULE.wasm KIND, the records of KIND run on MODULE instead, and the report counts\n"
    "the decisions that would change, by field (each decision field, \"source\", \"emitted\"), with the\n"
    "first records of each: the effect of a new policy on real traffic before it ships. Exit status 0\n"
    "unless the chain is broken (1).\n",
    runReplay};

}  // namespace ravo::orx
