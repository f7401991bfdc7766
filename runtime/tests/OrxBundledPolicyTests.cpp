// The bundled policies answer every case of their package manifests through the runtime's own
// decisions, and rebuilding them from policies/ reproduces the committed bytes.

#include <gtest/gtest.h>

#include <array>
#include <cstdio>

#include <nlohmann/json.hpp>

#include <ravo-orx/runtime/OrxPolicyRuntime.h>
#include "runtime/tests/WatAssembler.h"

namespace ravo::orx {

namespace {

using Json = nlohmann::json;

Json manifest(const std::string& module) { return Json::parse(readTestFile("policies/" + module + ".manifest.json")); }

template <size_t N>
std::array<std::int32_t, N> factsOf(const Json& row) {
  const auto values = row.at("facts").get<std::vector<std::int32_t>>();
  std::array<std::int32_t, N> facts{};
  std::copy_n(values.begin(), N, facts.begin());
  return facts;
}

class OrxBundledPolicies : public ::testing::Test {
 protected:
  OrxPolicyRuntime runtime{std::filesystem::path("artifacts")};
};

TEST_F(OrxBundledPolicies, AuthorizationAnswersEveryManifestCase) {
  const Json cases = manifest("player_authz").at("cases");  // owned: a range-for over a temporary's member dangles
  for (const auto& row : cases) {
    const auto f = factsOf<8>(row);
    const auto expected = row.at("emits").get<std::vector<std::int32_t>>();
    const auto decision = runtime.authorize({f[0], f[1], f[2], f[3], f[4], f[5], f[6], f[7]});
    EXPECT_EQ(decision, (OrxAuthorizationDecision{expected[1] == 1, *orxAuthorizationReason(expected[3]), expected[4]}))
        << row.at("case");
  }
  EXPECT_EQ(runtime.failureCount(), 0u);
}

TEST_F(OrxBundledPolicies, SyncAnswersEveryManifestCase) {
  const Json cases = manifest("sync_correction").at("cases");  // owned: a range-for over a temporary's member dangles
  for (const auto& row : cases) {
    const auto f = factsOf<8>(row);
    const auto e = row.at("emits").get<std::vector<std::int32_t>>();
    const auto decision = runtime.correctSync({f[0], f[1], f[2], f[3], f[4], f[5], f[6], f[7]});
    EXPECT_EQ(decision, (OrxSyncDecision{*orxSyncAction(e[1]), e[2], e[3], e[4]})) << row.at("case");
  }
  EXPECT_EQ(runtime.failureCount(), 0u);
}

TEST_F(OrxBundledPolicies, CinemaAnswersEveryManifestCase) {
  const Json cases = manifest("cinema_admission").at("cases");  // owned: a range-for over a temporary's member dangles
  for (const auto& row : cases) {
    const auto f = factsOf<13>(row);
    const auto e = row.at("emits").get<std::vector<std::int32_t>>();
    const auto decision = runtime.decideCinemaAdmission(
        {f[0], f[1], f[2], f[3], f[4], f[5], f[6], f[7], f[8], f[9], f[10], f[11], f[12]});
    EXPECT_EQ(decision, (OrxCinemaAdmissionDecision{*orxCinemaAdmissionRoute(e[1]), e[2], e[3],
                                                    *orxCinemaAdmissionReason(e[4])}))
        << row.at("case");
  }
  EXPECT_EQ(runtime.failureCount(), 0u);
}

std::string installedAssemblerVersion() {
  std::string version;
  if (FILE* pipe = ::popen("wat2wasm --version 2>/dev/null", "r")) {
    char buffer[64];
    while (std::fgets(buffer, sizeof buffer, pipe)) version += buffer;
    ::pclose(pipe);
  }
  while (!version.empty() && version.back() == '\n') version.pop_back();
  return version;
}

TEST(OrxPolicyArtifacts, RebuildingFromSourcesReproducesTheCommittedBytes) {
  constexpr const char* kPinnedAssembler = "1.0.32";
  if (const auto version = installedAssemblerVersion(); version != kPinnedAssembler) {
    GTEST_SKIP() << "the artifacts were assembled by wat2wasm " << kPinnedAssembler << ", this machine has \""
                 << version << "\"";
  }
  for (const std::string module : {"player_authz", "sync_correction", "cinema_admission"}) {
    const auto source = readTestFile("policies/" + module + ".wat");
    EXPECT_EQ(assembleWat(std::string(source.begin(), source.end())), readTestFile("artifacts/" + module + ".wasm"))
        << module;
  }
}

}  // namespace

}  // namespace ravo::orx
