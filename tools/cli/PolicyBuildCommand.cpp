#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <stdexcept>

#include <ravo-orx/cli/OrxCliCommand.h>
#include <ravo-orx/cli/OrxCliIO.h>
#include <ravo-orx/package_check/OrxArtifactBuild.h>
#include <ravo-orx/prove/OrxPolicyProver.h>

namespace ravo::orx {

namespace {

namespace fs = std::filesystem;

// Marks the repository root: the declarations the written constants define.
const fs::path kConstantsHeader = "runtime/constants/include/ravo-orx/runtime/OrxBuildConstants.h";

// Held for a whole build: two builds in one repository would interleave their writes, so the second
// waits for the first. The lock is on the constants header, which every repository has and no build
// writes; the kernel drops it when the process ends, however it ends.
class RepositoryBuildLock {
 public:
  RepositoryBuildLock() : descriptor_(::open(kConstantsHeader.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (descriptor_ < 0) throw std::runtime_error("cannot open " + kConstantsHeader.string() + " to lock the build");
    if (::flock(descriptor_, LOCK_EX | LOCK_NB) == 0) return;
    std::fprintf(stderr, "ravo-orx policy build: waiting for another policy build in this repository\n");
    while (::flock(descriptor_, LOCK_EX) != 0) {
      if (errno != EINTR) throw std::runtime_error("cannot lock " + kConstantsHeader.string());
    }
  }
  ~RepositoryBuildLock() { ::close(descriptor_); }
  RepositoryBuildLock(const RepositoryBuildLock&) = delete;
  RepositoryBuildLock& operator=(const RepositoryBuildLock&) = delete;

 private:
  int descriptor_;
};

int runBuild(OrxCliArguments& arguments) {
  const OrxArtifactBuildPaths paths{arguments.option("--policies").value_or("policies"), "."};
  const fs::path artifacts = arguments.option("--artifacts").value_or("artifacts");
  const bool check = arguments.flag("--check") || arguments.flag("--dry-run");
  arguments.finish();
  if (!fs::exists(kConstantsHeader) || !fs::is_directory("tools/package_check")) {
    throw std::runtime_error("it runs from the repository root (no " + kConstantsHeader.string() +
                             " and tools/package_check/ here)");
  }
  const RepositoryBuildLock lock;
  auto compilers = OrxPolicyCompilers::find();
  // A module is approved only once the prover shows that decide never traps and that the host accepts
  // every record it can emit, unless its manifest says why not.
  const auto build = buildOrxArtifacts(paths, compilers, orxValidityProblems);
  if (!build.failures.empty()) {
    for (const auto& failure : build.failures) std::fprintf(stderr, "ravo-orx policy build: %s\n", failure.c_str());
    std::fprintf(stderr, "ravo-orx policy build: the package check failed; nothing was written\n");
    return kOrxCliRefusedInput;
  }
  for (const auto& module : build.modules) {
    std::string line = module.module;
    line.resize(18, ' ');
    orxCliPrint(line + "pass  wasm " + module.wasm.substr(0, 8));
  }
  orxCliPrint("compiler   " + build.toolchain.compilerIdentity);
  if (check) {
    const auto changed = changedArtifactFiles(artifacts, build.files);
    for (const auto& name : changed) orxCliPrint("would write " + (artifacts / name).string());
    orxCliPrint(changed.empty() ? "artifacts and build constants are up to date; nothing written (--check)"
                                : "nothing written (--check)");
    return changed.empty() ? 0 : kOrxCliRefusedInput;
  }
  const auto replaced = replaceArtifactSet(artifacts, build.files);
  for (const auto& name : replaced.written) orxCliPrint("wrote " + (artifacts / name).string());
  for (const auto& warning : replaced.warnings) orxCliWarn("ravo-orx policy build", warning);
  if (replaced.written.empty()) orxCliPrint("artifacts and build constants unchanged");
  else orxCliPrint("rebuild the project to approve the new artifacts");
  return 0;
}

}  // namespace

constinit const OrxCliCommand kOrxCliPolicyBuildCommand{
    "build", "[--check|--dry-run] [--policies DIR] [--artifacts DIR]",
    "build the artifacts and the constants that approve them",
    "Run from the repository root. Compiles the source of record of each of the three modules\n"
    "(policies/<module>.wat with wat2wasm, .c with clang and wasm-ld, .rs with rustc), runs the\n"
    "package check on each (the runtime's module host and budgets, the manifest's contract\n"
    "and every case), proves as 'policy prove' does that decide never traps and the host accepts every\n"
    "record it can emit (a refuted or unknown obligation fails the module, unless its manifest's\n"
    "\"proof\": {\"skip\": REASON} says why it need not be proved) and, only when every module\n"
    "passes, writes the artifacts (<module>.wasm,\n"
    "<module>.package-check.json, evidence.json) and the build constants source that approves them\n"
    "(OrxBuildConstants.cpp, which the next build of the project compiles) into artifacts/. The\n"
    "directory is replaced as a whole, so a failure or a crash leaves the old set or the new one; it\n"
    "must hold nothing else. Files whose bytes do not change keep their times: rebuilding unchanged\n"
    "policies touches nothing. When anything fails it writes nothing and exits with status 1. A second\n"
    "build in the same repository waits for the first to end.\n"
    "--check (or --dry-run) does everything but write: it lists the files a build would write and\n"
    "exits with status 0 when there are none, 1 when the artifacts are out of date.\n"
    "tools/README.md defines the compiler identity and toolchain digest.\n",
    runBuild};

}  // namespace ravo::orx
