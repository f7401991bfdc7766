// A manifest's properties: what each form means (precedence, ranges, cases by their field, sums that
// never wrap), and every malformed property refused with the column at fault.

#include <gtest/gtest.h>

#include <ravo-orx/package_check/OrxPolicyProperty.h>

namespace ravo::orx {

namespace {

const OrxDecisionKind& kAuthorization = orxDecisionKind(OrxDecisionKindID::authorization);
const OrxDecisionKind& kSync = orxDecisionKind(OrxDecisionKindID::sync);
const OrxDecisionKind& kCinema = orxDecisionKind(OrxDecisionKindID::cinemaAdmission);

constexpr std::int32_t kMin = -2147483647 - 1;
constexpr std::int32_t kMax = 2147483647;

TEST(OrxPolicyProperty, EachFormMeansWhatTheManifestSays) {
  struct Case {
    const OrxDecisionKind& kind;
    std::string text;
    std::vector<std::int32_t> facts;
    std::vector<std::int32_t> fields;
    bool holds;
  };
  const std::vector<std::int32_t> authz{1, 6, 63, 0, 10, 0, 5, 1};  // role 1, command 6, ...
  const std::vector<std::int32_t> admin{3, 6, 63, 0, 10, 0, 5, 1};
  const std::vector<std::int32_t> sync{10, 0, 0, 0, 100, 0, 0, 40};
  const std::vector<std::int32_t> drifting{41, 0, 0, 0, 100, 0, 0, 40};
  const std::vector<std::int32_t> cinema(13, 0);
  const Case cases[] = {
      {kAuthorization, "role != 2 and role != 3 implies not isAllowed", authz, {1, 0, 3}, false},
      {kAuthorization, "role != 2 and role != 3 implies not isAllowed", authz, {0, 5, 3}, true},
      {kAuthorization, "role != 2 and role != 3 implies not isAllowed", admin, {1, 0, 3}, true},
      {kSync, "driftMilliseconds in -40..40 implies action == hold", sync, {1, 967, 0, 3}, false},
      {kSync, "driftMilliseconds in -40..40 implies action == hold", sync, {0, 1000, 0, 0}, true},
      {kSync, "driftMilliseconds in -40..40 implies action == hold", drifting, {1, 967, 0, 3}, true},
      // "and" binds tighter than "or", "implies" is the loosest and groups to the right.
      {kAuthorization, "true or false and false", authz, {0, 0, 0}, true},
      {kAuthorization, "(true or false) and false", authz, {0, 0, 0}, false},
      {kAuthorization, "not true or true", authz, {0, 0, 0}, true},
      {kAuthorization, "not (true or true)", authz, {0, 0, 0}, false},
      {kAuthorization, "false implies false implies false", authz, {0, 0, 0}, true},
      {kAuthorization, "(false implies false) implies false", authz, {0, 0, 0}, false},
      // Sums and negations are exact: no 32-bit wrapping.
      {kAuthorization, "tokenAgeMilliseconds - tokenTTLMilliseconds >= 0", {0, 0, 0, kMax, kMin, 0, 0, 0}, {0, 0, 0}, true},
      {kAuthorization, "-role > 0", {kMin, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0}, true},
      {kAuthorization, "rateUsed + rateLimit + 1 == 4294967295", {0, 0, 0, 0, 0, kMax, kMax, 0}, {0, 0, 0}, true},
      {kAuthorization, "(role + 1) - command == -4", authz, {0, 0, 0}, true},
      {kAuthorization, "policyVersion in 1..10000 and reason == 101", authz, {0, 101, 3}, true},
      // A case is named by the field it is compared with, on either side.
      {kAuthorization, "reason == tokenExpired", authz, {0, 2, 3}, true},
      {kAuthorization, "tokenExpired != reason", authz, {0, 2, 3}, false},
      {kCinema, "route == calibration and reason == calibration", cinema, {3, 0, 0, 5}, true},
      {kCinema, "route == calibration and reason == calibration", cinema, {3, 0, 0, 3}, false},
      {kSync, "action != seek implies rateX1000 <= 1050", sync, {1, 1051, 0, 0}, false},
      {kSync, "((reason < 6))", sync, {0, 1000, 0, 5}, true},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(OrxPolicyProperty::parse(c.text, c.kind).holdsFor(c.facts, c.fields), c.holds) << c.text;
  }
}

TEST(OrxPolicyProperty, AMalformedPropertyIsRefusedAtItsColumn) {
  struct Case {
    const OrxDecisionKind& kind;
    std::string text;
    std::string refusal;
  };
  const Case cases[] = {
      {kAuthorization, "", "at 1: the property is empty"},
      {kAuthorization, "  ", "at 1: the property is empty"},
      {kAuthorization, "role ==", "at 8: expected a fact, a decision field, a case or an integer, found the end of the property"},
      {kAuthorization, "rol == 1", "at 1: \"rol\" is no fact or decision field of authz"},
      {kAuthorization, "reason == hold", "at 11: \"hold\" is no case of the field it is compared with"},
      {kAuthorization, "role", "at 5: expected a comparison (==, !=, <, <=, >, >=) or \"in\", found the end of the property"},
      {kAuthorization, "not role", "at 9: expected a comparison (==, !=, <, <=, >, >=) or \"in\", found the end of the property"},
      {kAuthorization, "role == 1 and", "at 14: expected a fact, a decision field, a case or an integer, found the end of the property"},
      {kAuthorization, "role == 1 role == 2", "at 11: expected and, or or implies, found \"role\""},
      {kAuthorization, "role # 1", "at 6: unexpected character \"#\""},
      {kAuthorization, "role in 5..1", "at 9: the range 5..1 is empty"},
      {kAuthorization, "role in 1...2", "at 12: unexpected character \".\""},
      {kAuthorization, "role == 99999999999", "at 9: \"99999999999\" is beyond 32 bits"},
      {kAuthorization, "isAllowed + 1 == 2", "at 11: expected and, or or implies, found \"+\""},
      {kAuthorization, "policyVersion == isAllowed", "at 18: \"isAllowed\" is a condition: write isAllowed or not isAllowed"},
      {kAuthorization, "(role == 1) + 1 == 2", "at 13: a condition cannot be compared or computed with"},
      {kAuthorization, "(role == 1", "at 11: expected \")\", found the end of the property"},
      {kAuthorization, "tokenExpired + 1 == 3", "at 1: \"tokenExpired\" is no fact or decision field of authz"},
      {kSync, "action == tokenExpired", "at 11: \"tokenExpired\" is no case of the field it is compared with"},
      // Built by append: g++ 12 sees false bounds errors in operator+ on a temporary (GCC bug 105651).
      {kAuthorization, std::string(33, '(').append("true").append(33, ')'), "at 33: nested deeper than 32 levels"},
      {kAuthorization, std::string(40, 'n').append("ot == 1"),
       std::string("at 1: \"").append(40, 'n').append("ot\" is no fact or decision field of authz")},
      {kAuthorization, std::string(1001, ' '), "longer than 1000 characters"},
  };
  for (const auto& c : cases) {
    try {
      OrxPolicyProperty::parse(c.text, c.kind);
      ADD_FAILURE() << c.text << " was accepted";
    } catch (const std::runtime_error& error) {
      EXPECT_EQ(error.what(), c.refusal) << c.text;
    }
  }
}

}  // namespace

}  // namespace ravo::orx
