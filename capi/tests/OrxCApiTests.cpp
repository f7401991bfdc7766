// The C API through the shared library, as a C or Swift caller meets it: decisions equal the C++ API's
// (also taken through the shared library) over a grid of facts, and every error path returns its
// documented status.

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <unistd.h>
#include <string>
#include <vector>

#include <ravo-orx/orx.h>
#include <ravo-orx/runtime/OrxPolicyRuntime.h>

namespace {

namespace fs = std::filesystem;
using namespace ravo::orx;

const fs::path kArtifacts = "artifacts";  // tests run in the repository root

struct Runtime {
  explicit Runtime(const char* directory) { status = orx_runtime_open(directory, &handle); }
  ~Runtime() { orx_runtime_close(handle); }
  Runtime(const Runtime&) = delete;
  Runtime& operator=(const Runtime&) = delete;

  orx_runtime* handle = nullptr;
  orx_status status;
};

// Values a fact takes in the grid: the edges of the 32-bit range and of the policies' own thresholds.
constexpr std::array<std::int32_t, 7> kGridValues{INT32_MIN, -1, 0, 1, 2, 1000, INT32_MAX};

// Each fact in turn takes each grid value over a base vector, then neighbouring pairs do together.
template <std::size_t N>
std::vector<std::array<std::int32_t, N>> factGrid(std::array<std::int32_t, N> base) {
  std::vector<std::array<std::int32_t, N>> grid{base};
  for (std::size_t i = 0; i < N; ++i) {
    for (auto value : kGridValues) {
      auto one = base;
      one[i] = value;
      grid.push_back(one);
      for (auto other : kGridValues) {
        auto two = one;
        two[(i + 1) % N] = other;
        grid.push_back(two);
      }
    }
  }
  return grid;
}

template <class To, std::size_t N>
To as(const std::array<std::int32_t, N>& values) {
  static_assert(sizeof(To) == sizeof(values));
  To to;
  std::memcpy(&to, values.data(), sizeof(to));
  return to;
}

TEST(OrxCApi, DecisionsEqualTheCppApiOnAGridOfFacts) {
  Runtime c(kArtifacts.c_str());
  ASSERT_EQ(c.status, ORX_OK) << orx_last_error();
  OrxPolicyRuntime cpp(kArtifacts);

  std::size_t allowed = 0, sources = 0;
  for (const auto& facts : factGrid<8>({1, 3, 7, 100, 60000, 1, 10, 1})) {
    orx_authorization_decision got;
    const auto cFacts = as<orx_authorization_facts>(facts);
    ASSERT_EQ(orx_authorize(c.handle, &cFacts, &got), ORX_OK);
    auto want = cpp.authorizeWithSource(as<AuthorizationFacts>(facts));
    EXPECT_EQ(got.isAllowed, want.decision.isAllowed ? 1 : 0);
    EXPECT_EQ(got.reason, static_cast<std::int32_t>(want.decision.reason));
    EXPECT_EQ(got.policyVersion, want.decision.policyVersion);
    EXPECT_EQ(got.source, static_cast<std::int32_t>(want.source));
    allowed += got.isAllowed;
  }
  for (const auto& facts : factGrid<8>({60, 40, 5, 2000, 100, 0, 500, 40})) {
    orx_sync_decision got;
    const auto cFacts = as<orx_sync_facts>(facts);
    ASSERT_EQ(orx_correct_sync(c.handle, &cFacts, &got), ORX_OK);
    auto want = cpp.correctSyncWithSource(as<SyncFacts>(facts));
    EXPECT_EQ(got.action, static_cast<std::int32_t>(want.decision.action));
    EXPECT_EQ(got.rateX1000, want.decision.rateX1000);
    EXPECT_EQ(got.correctionMilliseconds, want.decision.correctionMilliseconds);
    EXPECT_EQ(got.reason, want.decision.reason);
    EXPECT_EQ(got.source, static_cast<std::int32_t>(want.source));
    sources += got.source != ORX_SOURCE_POLICY;
  }
  for (const auto& facts : factGrid<13>({2400, 6000, 500, 50, 0, 0, 20, 30, 40, 10, 10, 50, 8})) {
    orx_cinema_admission_decision got;
    const auto cFacts = as<orx_cinema_admission_facts>(facts);
    ASSERT_EQ(orx_decide_cinema_admission(c.handle, &cFacts, &got), ORX_OK);
    auto want = cpp.decideCinemaAdmissionWithSource(as<CinemaAdmissionFacts>(facts));
    EXPECT_EQ(got.route, static_cast<std::int32_t>(want.decision.route));
    EXPECT_EQ(got.sparseAnchorIntervalFrames, want.decision.sparseAnchorIntervalFrames);
    EXPECT_EQ(got.safeBudgetTenthsMilliseconds, want.decision.safeBudgetTenthsMilliseconds);
    EXPECT_EQ(got.reason, static_cast<std::int32_t>(want.decision.reason));
    EXPECT_EQ(got.source, static_cast<std::int32_t>(want.source));
  }
  // The grid reaches both answers, so agreement is not agreement on one constant.
  EXPECT_GT(allowed, 0u);
  EXPECT_EQ(sources, 0u);
  std::uint64_t failures = 99;
  ASSERT_EQ(orx_runtime_failure_count(c.handle, &failures), ORX_OK);
  EXPECT_EQ(failures, cpp.failureCount());
}

TEST(OrxCApi, MissingArgumentsGiveTheirStatusAndAFailSafeDecision) {
  Runtime c(kArtifacts.c_str());
  const orx_authorization_facts authorizationFacts{1, 3, 7, 100, 60000, 1, 10, 1};
  const orx_sync_facts syncFacts{};
  const orx_cinema_admission_facts cinemaFacts{};
  orx_authorization_decision authorization{1, 0, 7, ORX_SOURCE_POLICY};
  orx_sync_decision sync{2, 0, 0, 0, ORX_SOURCE_POLICY};
  orx_cinema_admission_decision cinema{1, 9, 9, 0, ORX_SOURCE_POLICY};
  char text[8];
  std::size_t length = 0;
  std::uint64_t count = 0;
  orx_runtime* opened = nullptr;
  char digest[ORX_DIGEST_TEXT_SIZE];

  const std::vector<std::pair<const char*, orx_status>> cases{
      {"authorize without a runtime", orx_authorize(nullptr, &authorizationFacts, &authorization)},
      {"authorize without facts", orx_authorize(c.handle, nullptr, &authorization)},
      {"authorize without a decision", orx_authorize(c.handle, &authorizationFacts, nullptr)},
      {"sync without a runtime", orx_correct_sync(nullptr, &syncFacts, &sync)},
      {"cinema without a runtime", orx_decide_cinema_admission(nullptr, &cinemaFacts, &cinema)},
      {"load error without a runtime", orx_runtime_load_error(nullptr, text, sizeof text, &length)},
      {"status without a runtime", orx_runtime_status(nullptr, text, sizeof text, &length)},
      {"status without a length", orx_runtime_status(c.handle, text, sizeof text, nullptr)},
      {"status into NULL with a capacity", orx_runtime_status(c.handle, nullptr, 8, &length)},
      {"failure count without a runtime", orx_runtime_failure_count(nullptr, &count)},
      {"failure count without a count", orx_runtime_failure_count(c.handle, nullptr)},
      {"open without a place for the runtime", orx_runtime_open(kArtifacts.c_str(), nullptr)},
      {"canonicalize NULL text of some length", orx_canonicalize_json(nullptr, 2, text, sizeof text, &length)},
      {"digest without a tag", orx_domain_digest(nullptr, "{}", 2, digest)},
      {"digest without a place for it", orx_domain_digest("T", "{}", 2, nullptr)},
      {"evidence NULL of some length", orx_check_decision_evidence(nullptr, 3)},
  };
  for (const auto& [what, status] : cases) EXPECT_EQ(status, ORX_STATUS_NULL_ARGUMENT) << what;
  EXPECT_EQ(opened, nullptr);
  EXPECT_STRNE(orx_last_error(), "");

  // The fail-safe decisions, marked as taken without a module.
  EXPECT_EQ(authorization.isAllowed, 0);
  EXPECT_EQ(authorization.reason, 100);
  EXPECT_EQ(authorization.source, ORX_SOURCE_MODULE_UNAVAILABLE);
  EXPECT_EQ(sync.action, 0);
  EXPECT_EQ(sync.rateX1000, 1000);
  EXPECT_EQ(sync.source, ORX_SOURCE_MODULE_UNAVAILABLE);
  EXPECT_EQ(cinema.route, 0);
  EXPECT_EQ(cinema.reason, 6);
  EXPECT_EQ(cinema.source, ORX_SOURCE_MODULE_UNAVAILABLE);
  EXPECT_EQ(orx_runtime_is_available(nullptr, ORX_DECISION_AUTHORIZATION), 0);
  EXPECT_EQ(orx_runtime_is_available(c.handle, 3), 0);
  EXPECT_EQ(orx_runtime_is_available(c.handle, ORX_DECISION_CINEMA_ADMISSION), 1);
  orx_runtime_close(nullptr);
}

TEST(OrxCApi, TextIsCopiedTheSnprintfWay) {
  const std::string json = R"({"b":[1,2],"a":"x"})";
  const std::string canonical = R"({"a":"x","b":[1,2]})";
  struct Case {
    const char* what;
    std::size_t capacity;
    orx_status status;
    std::string written;
  };
  const std::vector<Case> cases{
      {"room for the text and its NUL", canonical.size() + 1, ORX_OK, canonical},
      {"one byte short", canonical.size(), ORX_STATUS_BUFFER_TOO_SMALL, canonical.substr(0, canonical.size() - 1)},
      {"room for the NUL only", 1, ORX_STATUS_BUFFER_TOO_SMALL, ""},
  };
  for (const auto& c : cases) {
    std::vector<char> buffer(c.capacity, 'Z');
    std::size_t length = 0;
    EXPECT_EQ(orx_canonicalize_json(json.data(), json.size(), buffer.data(), buffer.size(), &length), c.status)
        << c.what;
    EXPECT_EQ(length, canonical.size()) << c.what;
    EXPECT_EQ(std::string(buffer.data()), c.written) << c.what;
  }
  std::size_t length = 0;
  EXPECT_EQ(orx_canonicalize_json(json.data(), json.size(), nullptr, 0, &length), ORX_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(length, canonical.size());
}

TEST(OrxCApi, RefusedInputGivesItsStatusAndTheCoresMessage) {
  struct Case {
    const char* what;
    std::string json;
    const char* message;
  };
  const std::vector<Case> cases{
      {"a float", "1.5", "orx.v051.parse_invalid"},
      {"a repeated key", R"({"a":1,"a":2})", "orx.v051.collection_duplicate"},
      {"trailing bytes", "{} x", "orx.v051.parse_invalid"},
      {"a NUL after the value", std::string("{}\0junk", 7), "orx.v051.parse_invalid"},
      {"nesting past 512 levels", std::string(600, '[') + std::string(600, ']'), "orx.v051"},
  };
  for (const auto& c : cases) {
    char buffer[64];
    std::size_t length = 0;
    EXPECT_EQ(orx_canonicalize_json(c.json.data(), c.json.size(), buffer, sizeof buffer, &length),
              ORX_STATUS_INVALID_INPUT)
        << c.what;
    EXPECT_EQ(std::string(orx_last_error()).rfind(c.message, 0), 0u) << c.what << ": " << orx_last_error();
    char digest[ORX_DIGEST_TEXT_SIZE];
    EXPECT_EQ(orx_domain_digest("ORX_DECISION_EVIDENCE_V1", c.json.data(), c.json.size(), digest),
              ORX_STATUS_INVALID_INPUT)
        << c.what;
  }
}

TEST(OrxCApi, DomainDigestIsOfTheTagAZeroByteAndTheCanonicalBytes) {
  // printf 'ORX_POLICY_ARTIFACT_V1\0{"a":"x","b":[1,2]}' | sha256sum
  char digest[ORX_DIGEST_TEXT_SIZE];
  const std::string json = R"({ "b" : [1,2], "a":"x" })";
  ASSERT_EQ(orx_domain_digest("ORX_POLICY_ARTIFACT_V1", json.data(), json.size(), digest), ORX_OK);
  EXPECT_STREQ(digest, "sha256:9d1d90fe77061abcaa1d7a5e03b6cb06fe13a7162825043b628b5e30ccaa47da");
}

std::string fileText(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

TEST(OrxCApi, EvidenceReaderGivesItsVerdictAndMessage) {
  const std::string allow = fileText("host_contract/tests/golden/evidence_allow.json");
  ASSERT_FALSE(allow.empty());
  EXPECT_EQ(orx_check_decision_evidence(allow.data(), allow.size()), ORX_OK);
  const std::string reordered = " " + allow;
  EXPECT_EQ(orx_check_decision_evidence(reordered.data(), reordered.size()), ORX_STATUS_INVALID_INPUT);
  EXPECT_STRNE(orx_last_error(), "");
  EXPECT_EQ(orx_check_decision_evidence(nullptr, 0), ORX_STATUS_INVALID_INPUT);
}

// An artifacts directory that loads none, or only some, of the modules still gives a runtime, whose
// decisions are fail-safe where a module is missing.
TEST(OrxCApi, UnloadableArtifactsGiveARuntimeAndTheirStatus) {
  const fs::path scratch = fs::temp_directory_path() / ("orx-capi-" + std::to_string(::getpid()));
  fs::remove_all(scratch);
  const auto alteredCopy = [&](const char* name, std::initializer_list<const char*> altered) {
    fs::create_directories(scratch / name);
    fs::copy(kArtifacts, scratch / name);
    for (const char* module : altered) std::ofstream(scratch / name / module, std::ios::binary | std::ios::app) << 'x';
  };
  alteredCopy("partial", {"cinema_admission.wasm"});
  alteredCopy("cinema-only", {"player_authz.wasm", "sync_correction.wasm"});
  alteredCopy("sync-only", {"player_authz.wasm", "cinema_admission.wasm"});

  struct Case {
    const char* what;
    fs::path directory;
    orx_status status;
    std::array<int32_t, 3> available;  // authorization, sync, cinema admission
    int32_t cinemaAvailable() const { return available[ORX_DECISION_CINEMA_ADMISSION]; }
  };
  const std::vector<Case> cases{
      {"no such directory", scratch / "missing", ORX_STATUS_UNAVAILABLE, {0, 0, 0}},
      {"one module altered", scratch / "partial", ORX_STATUS_PARTIALLY_AVAILABLE, {1, 1, 0}},
      {"only cinema admission intact", scratch / "cinema-only", ORX_STATUS_PARTIALLY_AVAILABLE, {0, 0, 1}},
      {"only sync intact", scratch / "sync-only", ORX_STATUS_PARTIALLY_AVAILABLE, {0, 1, 0}},
      {"the bundled artifacts", kArtifacts, ORX_OK, {1, 1, 1}},
  };
  std::vector<std::string> logged;
  orx_set_log_callback(
      [](void* context, orx_log_level level, const char* message, std::size_t length) {
        if (level == ORX_LOG_ERROR) static_cast<std::vector<std::string>*>(context)->emplace_back(message, length);
      },
      &logged);
  for (const auto& c : cases) {
    logged.clear();
    Runtime runtime(c.directory.c_str());
    ASSERT_NE(runtime.handle, nullptr) << c.what;
    EXPECT_EQ(runtime.status, c.status) << c.what;
    for (orx_decision_kind kind : {ORX_DECISION_AUTHORIZATION, ORX_DECISION_SYNC, ORX_DECISION_CINEMA_ADMISSION}) {
      EXPECT_EQ(orx_runtime_is_available(runtime.handle, kind), c.available[kind]) << c.what << ", kind " << kind;
    }

    std::size_t length = 0;
    char error[512];
    EXPECT_EQ(orx_runtime_load_error(runtime.handle, error, sizeof error, &length), ORX_OK) << c.what;
    EXPECT_EQ(c.status == ORX_OK, length == 0) << c.what;
    // Each failure is logged at error level, the load error last.
    EXPECT_EQ(logged.empty(), c.status == ORX_OK) << c.what;
    if (!logged.empty()) {
      EXPECT_NE(logged.back().find(std::string(error, length)), std::string::npos) << c.what;
    }

    orx_cinema_admission_decision cinema;
    const orx_cinema_admission_facts facts{2400, 6000, 500, 50, 0, 0, 20, 30, 40, 10, 10, 50, 8};
    EXPECT_EQ(orx_decide_cinema_admission(runtime.handle, &facts, &cinema), ORX_OK);
    EXPECT_EQ(cinema.source == ORX_SOURCE_MODULE_UNAVAILABLE, c.cinemaAvailable() == 0) << c.what;
  }
  orx_set_log_callback(nullptr, nullptr);
  fs::remove_all(scratch);
}

TEST(OrxCApi, VersionsAreTheBuildsOwn) {
  EXPECT_EQ(orx_abi_version(), ORX_ABI_VERSION);
  EXPECT_STREQ(orx_version(), "1.0.0");
  Runtime searched(nullptr);  // the working directory's "artifacts" come first
  EXPECT_EQ(searched.status, ORX_OK) << orx_last_error();
}

}  // namespace
