// The prover's answers on small modules whose truth is known by hand: what it proves, what it refutes
// (each counterexample replayed by the runtime), and what it leaves unknown and why. Each module is an
// authorization policy whose last emission is [5201, allowed, command, reason, version].

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include <ravo-orx/prove/OrxPolicyProver.h>
#include <ravo-orx/prove/OrxProofSession.h>
#include <ravo-orx/prove/OrxProverReplay.h>
#include <ravo-orx/runtime/OrxLog.h>
#include "runtime/tests/WatAssembler.h"

namespace ravo::orx {

using namespace internal;

namespace {

const OrxDecisionKind& kAuthorization = orxDecisionKind(OrxDecisionKindID::authorization);

// A module whose decide runs `body` (which may use $role, $command and the locals $x $y) and then
// answers with $allowed, $reason and $version.
std::vector<std::uint8_t> authorization(const std::string& body, const std::string& more = "") {
  return assembleWat(R"wat((module
  (import "output" "emit" (func $emit (param i32 i32 i32 i32 i32) (result i32)))
  )wat" + more + R"wat(
  (func (export "decide") (param $role i32) (param $command i32) (param i32 i32 i32 i32 i32 i32) (result i32)
    (local $allowed i32) (local $reason i32) (local $version i32) (local $x i32) (local $y i32)
    (local.set $version (i32.const 3))
    )wat" + body + R"wat(
    (drop (call $emit (i32.const 5201) (local.get $allowed) (local.get $command) (local.get $reason)
                      (local.get $version)))
    (local.get $allowed))))wat");
}

OrxProofOptions within(std::vector<std::pair<std::size_t, OrxFactRange>> ranges, std::vector<std::string> properties = {},
                       unsigned unroll = 64) {
  OrxProofOptions options = OrxProofOptions::unrestricted(kAuthorization);
  for (const auto& [fact, range] : ranges) options.ranges[fact] = range;
  for (const auto& text : properties) options.properties.push_back(OrxPolicyProperty::parse(text, kAuthorization));
  options.unrollBound = unroll;
  return options;
}

std::string verdictOf(const OrxObligationResult& result) {
  switch (result.verdict) {
    case OrxProofVerdict::proved: return "proved";
    case OrxProofVerdict::refuted: return "refuted " + result.detail;
    case OrxProofVerdict::unknown: break;
  }
  return "unknown " + result.detail;
}

const std::string kNoTrap = "decide never traps";
const std::string kVersion = "no record is refused with \"[4] policy version {4} is outside 1…10000\"";

TEST(OrxPolicyProver, ProvesRefutesOrSaysWhyItCannotTell) {
  struct Case {
    std::string name;
    std::vector<std::uint8_t> module;
    OrxProofOptions options;
    std::string obligation;  // its verdict must start with `verdict`
    std::string verdict;
  };
  const auto all = OrxProofOptions::unrestricted(kAuthorization);
  const auto dividing = authorization("(local.set $x (i32.div_s (i32.const 100) (local.get $role)))");
  const auto overflowing = authorization("(local.set $x (i32.div_s (local.get $role) (local.get $command)))");
  const auto remainder = authorization(R"(
    (local.set $x (i32.rem_s (local.get $role) (local.get $command)))
    (if (i32.and (i32.eq (local.get $role) (i32.const -2147483648)) (i32.eq (local.get $command) (i32.const -1)))
      (then (local.set $version (i32.add (local.get $x) (i32.const 1))))))");
  const auto loading = authorization("(local.set $x (i32.load (local.get $role)))", "(memory 1)");
  auto counted = [](const std::string& version) {
    return authorization(R"(
    (block $done (loop $more
      (br_if $done (i32.ge_s (local.get $x) (local.get $role)))
      (local.set $x (i32.add (local.get $x) (i32.const 1)))
      (br $more)))
    (local.set $version )" + version + ")");
  };
  const auto counting = counted("(i32.add (i32.const 1) (local.get $x))");
  const auto countingFromZero = counted("(local.get $x)");
  const auto recursive = authorization("(local.set $x (call $down (local.get $role)))",
                                       "(func $down (param i32) (result i32) (if (result i32) (local.get 0) "
                                       "(then (call $down (i32.sub (local.get 0) (i32.const 1)))) (else (i32.const 0))))");
  const auto floating = authorization("(local.set $x (i32.trunc_sat_f32_s (f32.convert_i32_s (local.get $role))))");
  const auto stateful = authorization("(global.set $calls (i32.add (global.get $calls) (i32.const 1)))",
                                      "(global $calls (mut i32) (i32.const 0))");
  const auto versioned = authorization("(if (i32.lt_s (local.get $command) (i32.const 0)) (then (local.set $version (i32.const 0))))");
  const auto twice = authorization(R"(
    (drop (call $emit (i32.const 0) (i32.const 0) (i32.const 0) (i32.const 0) (i32.const 0))))");
  const auto deciding = authorization(R"(
    (if (i32.eq (local.get $role) (i32.const 2)) (then (local.set $allowed (i32.const 1))))
    (local.set $reason (select (i32.const 0) (i32.const 5) (local.get $allowed))))");
  // Version 0 only for two factors of a large odd number: a question no solver answers in 1 ms.
  const auto factoring = authorization(R"(
    (if (i32.and (i32.eq (i32.mul (local.get $role) (local.get $command)) (i32.const 1000000007))
                 (i32.and (i32.gt_u (local.get $role) (i32.const 1)) (i32.gt_u (local.get $command) (i32.const 1))))
      (then (local.set $version (i32.const 0)))))");
  auto slow = all;
  slow.timeoutMilliseconds = 1;
  const Case cases[] = {
      {"a division by a fact traps", dividing, all, kNoTrap, "refuted facts {\"role\":0"},
      {"unless the range excludes 0", dividing, within({{0, {1, 10}}}), kNoTrap, "proved"},
      {"INT_MIN / -1 traps", overflowing, within({{1, {-1, -1}}}), kNoTrap, "refuted facts {\"role\":-2147483648,\"command\":-1"},
      {"INT_MIN % -1 is 0", remainder, within({{1, {-1, 1}}}), kVersion, "proved"},
      {"a load past the memory traps", loading, all, kNoTrap, "refuted"},
      {"every load within it does not", loading, within({{0, {0, 65532}}}), kNoTrap, "proved"},
      {"a loop past the unroll bound", counting, within({{0, {0, 100}}}), kVersion,
       "unknown a loop may run more than 64 iterations (the unroll bound), as for facts {\"role\":"},
      {"a loop within it", counting, within({{0, {0, 100}}}, {}, 101), kVersion, "proved"},
      {"a refutation within the bound of a loop that runs past it", countingFromZero, within({{0, {0, 100}}}, {}, 4),
       kVersion, "refuted facts {\"role\":0,"},
      {"recursion", recursive, all, kNoTrap, "unknown a function may call itself (recursion)"},
      {"floating point", floating, all, kNoTrap, "unknown f32.convert_i32_s is not modelled"},
      {"state kept between calls", stateful, all, kNoTrap, "unknown decide may leave the instance changed"},
      {"a refused record", versioned, all, kVersion, "refuted facts {\"role\":"},
      {"only the last emission counts", twice, all,
       "no record is refused with \"[0] tag {0} is not {tag}\"", "proved"},
      {"a property that holds", deciding, within({}, {"role != 2 implies not isAllowed"}),
       "property \"role != 2 implies not isAllowed\"", "proved"},
      {"a property that does not", deciding, within({}, {"role == 2 implies reason == notController"}),
       "property \"role == 2 implies reason == notController\"",
       "refuted facts {\"role\":2,"},
      {"a question past the time limit", factoring, slow, kVersion, "unknown time limit (1 ms)"},
      {"a property of the fail-safe decision", dividing, within({}, {"reason != runtimeUnavailable"}),
       "property \"reason != runtimeUnavailable\"", "refuted facts {\"role\":0,"},
  };
  setOrxLogSink([](OrxLogLevel, std::string_view) {});
  for (const auto& c : cases) {
    const auto results = orxProvePolicy(c.module, kAuthorization, c.options);
    const auto found = std::find_if(results.begin(), results.end(), [&](const auto& r) { return r.obligation == c.obligation; });
    ASSERT_NE(found, results.end()) << c.name;
    EXPECT_TRUE(verdictOf(*found).starts_with(c.verdict)) << c.name << ": " << verdictOf(*found);
  }
  setOrxLogSink({});
}

// Whether the model answers everywhere is a question too: one past the time limit leaves it open. The
// model's own time limit bounds building it: the loop's second iteration is not modelled once a
// millisecond has gone into asking whether facts reach it. The generous limits leave room for a
// sanitizer build, whose 64 path checks take seconds.
TEST(OrxPolicyProver, WhereTheModelAnswersIsUnknownPastTheTimeLimit) {
  const auto spinning = authorization(R"(
    (if (i32.and (i32.eq (i32.mul (local.get $role) (local.get $command)) (i32.const 1000000007))
                 (i32.and (i32.gt_u (local.get $role) (i32.const 1)) (i32.gt_u (local.get $command) (i32.const 1))))
      (then (loop $forever (br $forever)))))");
  for (const unsigned milliseconds : {1u, 60000u}) {
    auto options = OrxProofOptions::unrestricted(kAuthorization);
    options.timeoutMilliseconds = milliseconds;
    options.modelMilliseconds = milliseconds;
    OrxProofSession session(kAuthorization, options);
    const OrxHostDecisionModel host = session.model(spinning);
    ASSERT_EQ(host.call.gaps.size(), 1u) << milliseconds;
    EXPECT_EQ(host.call.gaps[0].reason, milliseconds == 1 ? "the model took longer to build than the time limit (1 ms)"
                                                          : "a loop may run more than 64 iterations (the unroll bound)");
    const auto why = session.unanswered({&host});
    ASSERT_TRUE(why.has_value()) << milliseconds;
    EXPECT_TRUE(why->starts_with(milliseconds == 1 ? "time limit (1 ms)" : "a loop may run more than 64 iterations"))
        << *why;
  }
}

// Calls alone can make a model large: five levels of functions that each call the next eight times
// model some 300,000 instructions without a loop, and stop at the time limit as a loop does.
TEST(OrxPolicyProver, ABranchingCallTreeStopsAtTheTimeLimit) {
  std::string functions = "(func $f5 (param i32) (result i32) (i32.xor (i32.mul (local.get 0) (i32.const 31)) (i32.const 7)))";
  for (int level = 4; level >= 0; --level) {
    std::string body = "(local.get 0)";
    for (int call = 0; call < 8; ++call) body = "(call $f" + std::to_string(level + 1) + " (i32.add " + body + " (i32.const 1)))";
    functions += "(func $f" + std::to_string(level) + " (param i32) (result i32) " + body + ")";
  }
  auto options = OrxProofOptions::unrestricted(kAuthorization);
  options.modelMilliseconds = 1;
  OrxProofSession session(kAuthorization, options);
  const OrxHostDecisionModel host = session.model(authorization("(local.set $x (call $f0 (local.get $role)))", functions));
  ASSERT_EQ(host.call.gaps.size(), 1u);
  EXPECT_EQ(host.call.gaps[0].reason, "the model took longer to build than the time limit (1 ms)");
}

TEST(OrxPolicyProver, ACounterexampleNamesTheRuntimesDecisionAndWhy) {
  setOrxLogSink([](OrxLogLevel, std::string_view) {});
  const auto results = orxProvePolicy(authorization("(local.set $x (i32.div_u (i32.const 1) (local.get $command)))"),
                                      kAuthorization, within({{0, {1, 1}}, {1, {0, 0}}, {2, {7, 7}}, {3, {7, 7}},
                                                              {4, {7, 7}}, {5, {7, 7}}, {6, {7, 7}}, {7, {7, 7}}}));
  setOrxLogSink({});
  ASSERT_EQ(results.front().verdict, OrxProofVerdict::refuted);
  EXPECT_EQ(results.front().detail,
            "facts {\"role\":1,\"command\":0,\"grantFlags\":7,\"tokenAgeMilliseconds\":7,\"tokenTTLMilliseconds\":7,"
            "\"rateUsed\":7,\"rateLimit\":7,\"controlMode\":7} give {\"isAllowed\":false,\"reason\":\"runtimeUnavailable\","
            "\"policyVersion\":0,\"source\":\"trap\"} (trapped: RuntimeError: integer divide by zero)");
}

TEST(OrxPolicyProver, ARuntimeThatDisagreesWithTheModelIsTheProversFault) {
  OrxPolicyAnswer runtime{RavoJSON::object(), OrxDecisionSource::trap, {0, 100, 0, 0}};
  runtime.decision["isAllowed"] = false;
  OrxModelAnswer model{{1, 0, 3, 0}, OrxDecisionSource::policy};
  try {
    orxConfirm(kAuthorization, "the module", "{\"role\":1}", model, runtime);
    ADD_FAILURE() << "a disagreement was confirmed";
  } catch (const OrxProverDisagreement& error) {
    EXPECT_EQ(std::string(error.what()),
              "internal error: the model and the runtime disagree for facts {\"role\":1}: for the module the model "
              "decides {\"isAllowed\":true,\"reason\":\"allowed\",\"policyVersion\":3,\"source\":\"policy\"}, the "
              "runtime {\"isAllowed\":false,\"source\":\"trap\"}");
  }
  runtime.fields = model.fields;
  runtime.source = model.source;
  EXPECT_NO_THROW(orxConfirm(kAuthorization, "the module", "{}", model, runtime));
  runtime.source = OrxDecisionSource::invalidOutput;  // the same fields from another path
  EXPECT_THROW(orxConfirm(kAuthorization, "the module", "{}", model, runtime), OrxProverDisagreement);
}

TEST(OrxPolicyProver, DiffListsEachWayTwoModulesDiffer) {
  setOrxLogSink([](OrxLogLevel, std::string_view) {});
  const auto old = authorization(R"(
    (if (i32.eq (local.get $role) (i32.const 2)) (then (local.set $allowed (i32.const 1)))))");
  const auto widened = authorization(R"(
    (if (i32.ge_s (local.get $role) (i32.const 2)) (then (local.set $allowed (i32.const 1))))
    (if (i32.eq (local.get $role) (i32.const 9)) (then (local.set $reason (i32.const 7)))))");
  const auto same = orxDiffPolicies(old, old, kAuthorization, OrxProofOptions::unrestricted(kAuthorization), false);
  EXPECT_TRUE(same.differences.empty());
  EXPECT_FALSE(same.unknown);
  const auto diff = orxDiffPolicies(old, widened, kAuthorization, OrxProofOptions::unrestricted(kAuthorization), false);
  setOrxLogSink({});
  std::set<std::vector<std::string>> ways;
  for (const auto& difference : diff.differences) ways.insert(difference.fields);
  EXPECT_EQ(ways, (std::set<std::vector<std::string>>{{"isAllowed"}, {"isAllowed", "reason"}}));
  EXPECT_EQ(diff.fieldSummaries, (std::vector<std::string>{"isAllowed: differs for some facts vectors",
                                                           "reason: differs for some facts vectors",
                                                           "policyVersion: the same for every facts vector"}));
}

TEST(OrxPolicyProver, CoverageNamesTheDecisionsNoCaseReaches) {
  setOrxLogSink([](OrxLogLevel, std::string_view) {});
  // The version follows the role: an integer, which coverage does not list.
  const auto module = authorization(R"(
    (if (i32.eq (local.get $role) (i32.const 2)) (then (local.set $allowed (i32.const 1))))
    (if (i32.eq (local.get $role) (i32.const 5)) (then (local.set $reason (i32.const 7))))
    (local.set $version (i32.add (local.get $role) (i32.const 1))))");
  const auto unreached =
      orxUnreachedDecisions(module, kAuthorization, within({{0, {0, 5}}, {1, {0, 0}}}), {{0, 0, 0, 0, 0, 0, 0, 0}});
  setOrxLogSink({});
  ASSERT_EQ(unreached.size(), 2u);
  EXPECT_TRUE(unreached[0].starts_with("isAllowed true, as for facts {\"role\":2,")) << unreached[0];
  EXPECT_TRUE(unreached[1].starts_with("reason needsAdmin, as for facts {\"role\":5,")) << unreached[1];

  // needsAdmin only for two factors of a large odd number: within 1 ms, whether any facts reach it (or
  // anything else no case reached) is left open, and said so.
  const auto factoring = authorization(R"(
    (if (i32.and (i32.eq (i32.mul (local.get $role) (local.get $command)) (i32.const 1000000007))
                 (i32.and (i32.gt_u (local.get $role) (i32.const 1)) (i32.gt_u (local.get $command) (i32.const 1))))
      (then (local.set $reason (i32.const 7)))))");
  auto slow = OrxProofOptions::unrestricted(kAuthorization);
  slow.timeoutMilliseconds = 1;
  setOrxLogSink([](OrxLogLevel, std::string_view) {});
  const auto open = orxUnreachedDecisions(factoring, kAuthorization, slow, {{0, 0, 0, 0, 0, 0, 0, 0}});
  setOrxLogSink({});
  EXPECT_THAT(open, testing::Contains("reason needsAdmin: unknown (time limit (1 ms))"));

  // Past the unroll bound the model does not answer, and coverage says where.
  const auto counting = authorization(R"(
    (block $done (loop $more
      (br_if $done (i32.ge_s (local.get $x) (local.get $role)))
      (local.set $x (i32.add (local.get $x) (i32.const 1)))
      (br $more))))");
  setOrxLogSink([](OrxLogLevel, std::string_view) {});
  const auto gapped = orxUnreachedDecisions(counting, kAuthorization, within({{0, {0, 100}}}), {{0, 0, 0, 0, 0, 0, 0, 0}});
  setOrxLogSink({});
  EXPECT_THAT(gapped, testing::Contains(testing::StartsWith(
                          "the model does not answer everywhere: a loop may run more than 64 iterations")));
}

}  // namespace

}  // namespace ravo::orx
