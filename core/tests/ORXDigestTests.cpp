#include <gtest/gtest.h>

#include <string>

#include <ravo-orx/core/ORXCanonicalJSON.h>
#include <ravo-orx/core/ORXDigest.h>
#include <ravo-orx/core/ORXPackageIdentity.h>
#include <ravo-orx/core/ORXVerifiedArtifact.h>
#include "core/tests/ORXTestSupport.h"

namespace ravo::orx {

namespace {

using V = ORXCanonicalValue;

ORXDigest repeated(char digit) { return ORXDigest("sha256:" + std::string(64, digit)); }

TEST(ORXCanonicalSerialization, WritesMinimalEscapesAndRawUTF8) {
  struct Case {
    V value;
    std::string text;
  };
  const Case cases[] = {
      {V::string(""), "\"\""},
      {V::string(" a b "), "\" a b \""},
      {V::string(" !#[]~"), "\" !#[]~\""},
      // A space in the same group of eight bytes as a byte that is escaped stays as it is.
      {V::string("a b\n c d"), "\"a b\\n c d\""},
      {V::string("\t\"\\/\x7f\xc3\xa9"), "\"\\t\\\"\\\\/\x7f\xc3\xa9\""},
      {V::string("\x1f\x0b\b\f\n\r"), "\"\\u001f\\u000b\\b\\f\\n\\r\""},
      {V::string(std::string("a\0b", 3)), "\"a\\u0000b\""},
      {V::integer(-5), "-5"},
      {V::integer(INT64_MIN), "-9223372036854775808"},
      {V::object({{"b", V::integer(1)}, {"a", V::array({V::boolean(true), V::boolean(false)})}}),
       "{\"a\":[true,false],\"b\":1}"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.value.canonicalString(), c.text);
    EXPECT_EQ(ORXCanonicalJSON::parse(c.text), c.value) << c.text;
  }
  EXPECT_EQ(V::string("ab").canonicalData(), (std::vector<std::uint8_t>{'"', 'a', 'b', '"'}));
}

TEST(ORXCanonicalObject, RefusesRepeatedAndNonUTF8Keys) {
  EXPECT_TRUE(orxThrows([] { V::object({{"b", V::integer(1)}, {"a", V::integer(2)}, {"b", V::integer(3)}}); },
                        "orx.v051.collection_duplicate: canonical object repeats key 'b'"));
  // Repeats that arrive in sorted order: adjacent, and after a sorted prefix.
  EXPECT_TRUE(orxThrows([] { V::object({{"a", V::integer(1)}, {"a", V::integer(2)}}); },
                        "orx.v051.collection_duplicate: canonical object repeats key 'a'"));
  EXPECT_TRUE(orxThrows([] { V::object({{"a", V::integer(1)}, {"b", V::integer(2)}, {"b", V::integer(2)}}); },
                        "orx.v051.collection_duplicate: canonical object repeats key 'b'"));
  const std::string notUTF8 = "orx.v051.value_invalid: canonical string must be valid UTF-8";
  EXPECT_TRUE(orxThrows([] { V::object({{"\xff", V::integer(1)}}); }, notUTF8));
  EXPECT_TRUE(orxThrows([] { V::object({{"a", V::integer(1)}, {"key\xc3", V::integer(2)}}); }, notUTF8));
  EXPECT_TRUE(orxThrows([] { V::string("\xed\xa0\x80"); }, notUTF8));
  const V object = V::object({{"b", V::integer(1)}, {"a", V::integer(2)}});
  EXPECT_EQ(object.asObject()->value("a"), &object.asObject()->fields()[0].second);
  EXPECT_EQ(object.asObject()->value("c"), nullptr);
}

TEST(ORXDigest, AcceptsOnlyLowercaseSHA256Text) {
  const std::string hex(64, 'a');
  EXPECT_EQ(ORXDigest("sha256:" + hex).value(), "sha256:" + hex);
  const std::string refusal =
      "orx.v051.digest_invalid: digest must be sha256: followed by 64 lowercase hex digits";
  for (const std::string& bad : {"sha256:" + hex.substr(1) + "A", "SHA256:" + hex, "sha512:" + hex,
                                 "sha256:" + hex.substr(1), "sha256:" + hex + "0", " sha256:" + hex.substr(1),
                                 "sha256:" + hex.substr(1) + "g", std::string()}) {
    EXPECT_TRUE(orxThrows([&] { ORXDigest{bad}; }, refusal)) << bad;
  }
}

TEST(ORXDigest, DomainTagsHaveTheirRawValues) {
  EXPECT_EQ(orxRawValue(ORXDigestDomain::intent), "ORX_DECISION_INTENT_V1");
  EXPECT_EQ(orxFromRawValue<ORXDigestDomain>("ORX_EFFECT_RECEIPT_V1"), ORXDigestDomain::effectReceipt);
  EXPECT_EQ(orxFromRawValue<ORXDigestDomain>("ORX_EFFECT_RECEIPT_V2"), std::nullopt);
}

// Expected digests were computed with sha256sum over the tag, a zero byte and the canonical text, e.g.
// printf 'ORX_GRANT_SET_V1\0{}' | sha256sum, so a wrong tag, separator or serializer byte shows here.
TEST(ORXDigest, DomainDigestsMatchAnIndependentHash) {
  const V mixed = V::object({
      {"\xef\xbd\xa1", V::string("\x1f\x7f\xc3\xa9/")},
      {"z", V::object({{"type", V::string("orx.host::FailureReason")}, {"discriminant", V::integer(3)}})},
      {"a\tb", V::array({V::integer(1), V::integer(-2), V::boolean(true), V::boolean(false)})},
  });
  const ORXPackageIdentity identity("0.11", repeated('1'), repeated('2'), repeated('3'));
  const ORXVerifiedArtifact artifact("0.12", repeated('1'), repeated('2'));
  struct Case {
    ORXDigest digest;
    const char* expected;
  };
  const Case cases[] = {
      {ORXDigest::domain(ORXDigestDomain::grantSet, V::object(ORXCanonicalObject())),
       "dc85339e73cc331c1fe8fb34bafb43361e90d38ca924b77f09915b14b21eb4ff"},
      {ORXDigest::domain("ORX_CANONICAL_TYPED_INPUT_V1", mixed),
       "1f6368c448ee09817568a14fcdd65d2d575c066c40b149eb2fa2a8a76b27519b"},
      {ORXDigest::domain("ORX_CANONICAL_TYPED_INPUT_V1", V::object({{"a b", V::string(" c d ")}})),
       "92d1bc41cc39a3d0331857cc87a5119d5ecf1fafb79769dce28e439dbc473dfb"},
      {ORXDigest::domainOfCanonicalText("ORX_CANONICAL_TYPED_INPUT_V1", mixed.canonicalString()),
       "1f6368c448ee09817568a14fcdd65d2d575c066c40b149eb2fa2a8a76b27519b"},
      {ORXDigest::domainOfCanonicalText(orxRawValue(ORXDigestDomain::grantSet), "{}"),
       "dc85339e73cc331c1fe8fb34bafb43361e90d38ca924b77f09915b14b21eb4ff"},
      {identity.digest(), "fb834eea9702744bc039901502bc02e29eae0f43edaea056b27c510985f5a21e"},
      {artifact.digest(), "f160c2777c576a4a7bc4c36e3dd2cb71908631a64b4b3020ae20dd1f5e26cec9"},
      {ORXDigest::raw(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
  };
  for (const auto& c : cases) EXPECT_EQ(c.digest.value(), std::string("sha256:") + c.expected);
}

TEST(ORXPackageIdentity, AdmitsOnlyTheKnownLanes) {
  for (const char* lane : {"0.10", "0.11", "0.12"}) {
    EXPECT_NO_THROW(ORXPackageIdentity(lane, repeated('1'), repeated('2'), repeated('3')));
    EXPECT_NO_THROW(ORXVerifiedArtifact(lane, repeated('1'), repeated('2')));
  }
  for (const char* lane : {"0.9", "0.13", "0.10.0", "", "0.1"}) {
    EXPECT_TRUE(orxThrows([&] { ORXPackageIdentity(lane, repeated('1'), repeated('2'), repeated('3')); },
                          "orx.v051.package_identity_invalid: ORX ABI lane is not admitted"));
    EXPECT_TRUE(orxThrows([&] { ORXVerifiedArtifact(lane, repeated('1'), repeated('2')); },
                          "orx.v051.verified_artifact_invalid: ORX ABI lane is not admitted"));
  }
  const ORXPackageIdentity identity("0.11", repeated('1'), repeated('2'), repeated('3'));
  EXPECT_NE(identity.digest(), ORXPackageIdentity("0.11", repeated('1'), repeated('4'), repeated('3')).digest());
}

}  // namespace

}  // namespace ravo::orx
