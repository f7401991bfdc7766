#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "host_contract/tests/ORXHostContractFixtures.h"

namespace ravo::orx {

namespace {

using namespace orx_fixtures;

std::string golden(const std::string& name) {
  std::ifstream file("host_contract/tests/golden/" + name + ".json", std::ios::binary);
  EXPECT_TRUE(file) << name;
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

// The canonical texts are pinned in golden/; the digests were computed apart from this code, with
//   { printf '%s\0' ORX_DECISION_INTENT_V1; cat golden/intent.json; } | sha256sum
// so a change in any serialized byte, tag or separator fails here.
TEST(ORXHostContractGoldenVectors, CanonicalTextsAndDigestsArePinned) {
  struct Case {
    const char* name;
    ORXCanonicalValue value;
    ORXDigest digest;
    const char* expected;
  };
  const auto allow = evidence(ORXDecisionOutcome::allow);
  const auto deny = evidence(ORXDecisionOutcome::deny);
  const Case cases[] = {
      {"intent", intent().canonicalValue(), intent().digest(),
       "1efabc06ed831e2a9c1e3d5786d907312ea8cd8e0ad20ca4875316399d49a8eb"},
      {"grant_set", grantSet().canonicalValue(), grantSet().digest(),
       "b66b1a25eb36a1bc44adb68fb1f0bc433c4a84e78f6abd8249d887e9ed90bdb5"},
      {"evidence_allow", allow.canonicalValue(), allow.digest(),
       "6d85b17a4755c50ff650a7ae2337eb356227a8bf2a20b73c334ae66908ed73df"},
      {"evidence_deny", deny.canonicalValue(), deny.digest(),
       "6eb5a542434c3d97c98de2103ff3c5751ad00feaf561af8387d1fe61b672112d"},
      {"effect_receipt", receipt().canonicalValue(), receipt().digest(),
       "87116692e194943b079ae0f8b663873ff4415aeb9970ff977953df5f5e403d01"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.value.canonicalString(), golden(c.name)) << c.name;
    EXPECT_EQ(c.digest.value(), std::string("sha256:") + c.expected) << c.name;
  }
}

}  // namespace

}  // namespace ravo::orx
