// The decision log: what a record holds for every path a decision takes, that every kind of tampering
// is caught and named, what each full-buffer policy does, and how the file sink continues a log.

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <fstream>
#include <regex>
#include <thread>

#include <ravo-orx/core/ORXCanonicalJSON.h>
#include <ravo-orx/core/ORXDigest.h>
#include <ravo-orx/runtime/OrxLog.h>
#include <ravo-orx/runtime/OrxPolicyRuntime.h>
#include "runtime/tests/DecisionLogTestSupport.h"

namespace ravo::orx {

using namespace internal;

namespace {

class QuietLog : public ::testing::Test {
 protected:
  void SetUp() override { setOrxLogSink([](OrxLogLevel, std::string_view) {}); }
  void TearDown() override { setOrxLogSink({}); }
};

using OrxDecisionLogRecords = QuietLog;

TEST_F(OrxDecisionLogRecords, OneRecordIsTheLiteralCanonicalLine) {
  LoggedPuppets logged;
  logged.decider.authorize(kAllowedAuthorization);
  logged.writer->flush();
  const auto lines = logged.ring->lines();
  ASSERT_EQ(lines.size(), 2u);
  // Times and the puppet's digest vary; everything else is fixed.
  const std::regex varying(R"re("moduleSha256":"[0-9a-f]{64}","monotonicNanoseconds":\d+,)re"
                           R"re(("sequence":0,"source":"policy","type":"decision",)"wallNanoseconds":\d+)re");
  EXPECT_EQ(std::regex_replace(lines[0], varying, "$1"),
            R"({"decision":{"isAllowed":true,"policyVersion":3,"reason":"allowed"},"emitted":[5201,1,6,0,3],)"
            R"("facts":{"command":6,"controlMode":1,"grantFlags":5201,"rateLimit":3,"rateUsed":0,"role":0,)"
            R"("tokenAgeMilliseconds":1,"tokenTTLMilliseconds":6},"kind":"authz",)"
            R"("sequence":0,"source":"policy","type":"decision",})");
  EXPECT_TRUE(std::regex_match(lines[1], std::regex(R"(\{"block":0,"dropped":0,"firstSequence":0,"nextSequence":1,)"
                                                    R"("records":\["sha256:[0-9a-f]{64}"\],"type":"seal"\})")));
  EXPECT_EQ(logged.writer->head(), orxDecisionLogLineDigest(kOrxDecisionSealDomain, lines[1]));
  // The seal lists the record by the system's domain digest of the record's value.
  EXPECT_NE(lines[1].find(ORXDigest::domain(kOrxDecisionRecordDomain, ORXCanonicalJSON::parse(lines[0])).value()),
            std::string::npos);
}

// Each path of each kind: the line is canonical and reads back as the decision that was returned, with
// the module's digest only when there was a module and the emission only when it emitted.
TEST_F(OrxDecisionLogRecords, EveryPathOfEveryKindReadsBackAsDecided) {
  using Source = OrxDecisionSource;
  LoggedPuppets puppets;
  LoggedPuppets empty({}, OrxPolicyModules{});
  struct Case {
    const char* name;
    LoggedPuppets* logged;
    OrxDecisionKindID kind;
    std::vector<std::int32_t> facts;
    Source source;
    bool hasModule;
    std::vector<std::int32_t> emitted;  // empty: no emission
  };
  const auto args = [](const auto& facts) {
    const auto a = facts.arguments();
    return std::vector<std::int32_t>(a.begin(), a.end());
  };
  const Case cases[] = {
      {"authz answered", &puppets, OrxDecisionKindID::authorization, args(kAllowedAuthorization), Source::policy, true,
       {5201, 1, 6, 0, 3}},
      {"authz trap", &puppets, OrxDecisionKindID::authorization, args(kTrappingAuthorization), Source::trap, true, {}},
      {"authz six values", &puppets, OrxDecisionKindID::authorization, {5, 6, 5201, 1, 6, 0, 3, 1},
       Source::invalidOutput, true, {5201, 1, 6, 0, 3, 1}},
      {"authz no module", &empty, OrxDecisionKindID::authorization, args(kAllowedAuthorization),
       Source::moduleUnavailable, false, {}},
      {"sync answered", &puppets, OrxDecisionKindID::sync, args(kNudgeSync), Source::policy, true, {5301, 1, 967, 0, 3}},
      {"sync out of band", &puppets, OrxDecisionKindID::sync, args(kOutOfBandSync), Source::invalidOutput, true,
       {5301, 1, 949, 0, 3}},
      {"sync no emission", &puppets, OrxDecisionKindID::sync, {1, 0, 5301, 1, 967, 0, 3, 1}, Source::invalidOutput,
       true, {}},
      {"cinema answered", &puppets, OrxDecisionKindID::cinemaAdmission, args(kFullFrameCinema), Source::policy, true,
       {5401, 1, 0, 272, 0}},
      {"cinema no module", &empty, OrxDecisionKindID::cinemaAdmission, args(kFullFrameCinema),
       Source::moduleUnavailable, false, {}},
  };
  for (const auto& c : cases) {
    std::array<std::int32_t, kOrxMaxDecisionFields> decided{};
    Source source{};
    auto keep = [&](const auto& sourced) {
      decided = orxDecisionFieldValues(sourced.decision);
      source = sourced.source;
    };
    switch (c.kind) {
      case OrxDecisionKindID::authorization:
        keep(c.logged->decider.authorizeWithSource({c.facts[0], c.facts[1], c.facts[2], c.facts[3], c.facts[4],
                                                    c.facts[5], c.facts[6], c.facts[7]}));
        break;
      case OrxDecisionKindID::sync:
        keep(c.logged->decider.correctSyncWithSource({c.facts[0], c.facts[1], c.facts[2], c.facts[3], c.facts[4],
                                                      c.facts[5], c.facts[6], c.facts[7]}));
        break;
      case OrxDecisionKindID::cinemaAdmission:
        keep(c.logged->decider.decideCinemaAdmissionWithSource(
            {c.facts[0], c.facts[1], c.facts[2], c.facts[3], c.facts[4], c.facts[5], c.facts[6], c.facts[7],
             c.facts[8], c.facts[9], c.facts[10], c.facts[11], c.facts[12]}));
        break;
    }
    c.logged->writer->flush();
    const auto lines = c.logged->ring->lines();
    ASSERT_GE(lines.size(), 2u) << c.name;
    const std::string& line = lines[lines.size() - 2];
    EXPECT_EQ(ORXCanonicalJSON::canonicalize(line), line) << c.name;
    const auto read = orxReadDecisionLogLine(line);
    ASSERT_EQ(read.type, OrxDecisionLogLine::Type::record) << c.name;
    const auto& record = read.record;
    EXPECT_EQ(record.kind, c.kind) << c.name;
    EXPECT_EQ(source, c.source) << c.name;
    EXPECT_EQ(record.source, c.source) << c.name;
    EXPECT_EQ(std::vector<std::int32_t>(record.factValues().begin(), record.factValues().end()), c.facts) << c.name;
    EXPECT_EQ(record.decision, decided) << c.name;
    EXPECT_EQ(record.hasModule, c.hasModule) << c.name;
    EXPECT_EQ(record.hasEmission, !c.emitted.empty()) << c.name;
    EXPECT_EQ(std::vector<std::int32_t>(record.emittedValues().begin(), record.emittedValues().end()), c.emitted)
        << c.name;
  }
  EXPECT_EQ(verifyLines(puppets.ring->lines()), std::nullopt);
  EXPECT_EQ(verifyLines(empty.ring->lines()), std::nullopt);
}

// A block is sealed when it is full, or when it has been open for `sealAfter`: a record that comes
// after a quiet spell opens a block, it is not sealed alone.
TEST_F(OrxDecisionLogRecords, BlocksAreSealedWhenFullOrOverdue) {
  OrxDecisionLogOptions options;
  options.blockRecords = 3;
  options.sealAfter = std::chrono::milliseconds(100);
  LoggedPuppets logged(options);
  const auto sealSizes = [&] {
    std::vector<std::size_t> sizes;
    for (const auto& line : logged.ring->lines()) {
      const auto read = orxReadDecisionLogLine(line);
      if (read.type == OrxDecisionLogLine::Type::seal) sizes.push_back(read.seal.records.size());
    }
    return sizes;
  };
  for (int i = 0; i < 4; ++i) logged.decider.authorize(kAllowedAuthorization);
  std::this_thread::sleep_for(std::chrono::milliseconds(400));
  EXPECT_EQ(sealSizes(), (std::vector<std::size_t>{3, 1})) << "full, then overdue";
  logged.decider.authorize(kAllowedAuthorization);
  logged.decider.authorize(kAllowedAuthorization);
  logged.writer->flush();
  EXPECT_EQ(sealSizes(), (std::vector<std::size_t>{3, 1, 2}));
}

// Lines a reader must refuse even though they are JSON: each names what is wrong.
TEST_F(OrxDecisionLogRecords, MalformedLinesAreRefusedWithTheReason) {
  LoggedPuppets logged;
  logged.decider.authorize(kAllowedAuthorization);
  logged.writer->flush();
  const std::string record = logged.ring->lines()[0];
  const auto replaced = [&](const std::string& from, const std::string& to) {
    return std::regex_replace(record, std::regex(from), to);
  };
  const struct {
    std::string line;
    const char* reason;
  } cases[] = {
      {replaced("\"role\":0", "\"role\":2147483648"), "\"role\" must be an integer from -2147483648 to 2147483647"},
      {replaced("\"role\":0", "\"role\":-2147483649"), "\"role\" must be an integer from -2147483648"},
      {replaced("\"role\":0,", ""), "\"facts\" must hold exactly the 8 facts of authz"},
      {replaced("\"reason\":\"allowed\"", "\"reason\":\"whatever\""), "\"reason\" is not a case of its enumeration"},
      {replaced("\"kind\":\"authz\"", "\"kind\":\"other\""), "\"kind\" must be authz, sync or cinema"},
      {replaced("\"source\":\"policy\"", "\"source\":\"guess\""), "\"source\" is not a decision source"},
      {replaced("\"type\":\"decision\"", "\"type\":\"note\""), "\"type\" must be \"decision\" or \"seal\""},
      {replaced("\"sequence\":0", "\"sequence\":-1"), "\"sequence\" must be an integer from 0"},
      {replaced("\"emitted\":\\[5201,1,6,0,3\\]", "\"emitted\":[1,2,3,4,5,6,7,8,9]"), "\"emitted\" must be an array"},
      {replaced("\"emitted\":\\[5201,", "\"emitted\":[-2147483649,"), "\"emitted\" holds a value that is not 32-bit"},
      {replaced("\"moduleSha256\":\"[0-9a-f]{64}\"", "\"moduleSha256\":\"ABC\""), "64 lowercase hex digits"},
      {replaced("\\{\"decision\"", "{ \"decision\""), "not canonical JSON"},
      {replaced("\"kind\":\"authz\",", "\"kind\":\"authz\",\"extra\":1,"), "not canonical JSON"},
      {"[1,2]", "a line must be an object"},
      {std::string(2 << 20, ' '), "the line is longer than"},
  };
  for (const auto& c : cases) {
    try {
      orxReadDecisionLogLine(c.line);
      ADD_FAILURE() << "accepted: " << c.reason;
    } catch (const std::exception& error) {
      EXPECT_NE(std::string(error.what()).find(c.reason), std::string::npos) << c.reason << "\n" << error.what();
    }
  }
}

using OrxDecisionLogTampering = QuietLog;

// Three blocks of three records: lines 1-3 (sequences 0-2), seal 0 on line 4, lines 5-7 (3-5), seal 1 on
// line 8, lines 9-11 (6-8), seal 2 on line 12. Each kind of tampering is found, and the message names
// where.
TEST_F(OrxDecisionLogTampering, EveryKindIsDetectedAndNamed) {
  OrxDecisionLogOptions options;
  options.blockRecords = 3;
  LoggedPuppets logged(options);
  for (std::int32_t i = 0; i < 9; ++i) logged.decider.authorize({0, 6, 5201, 1, 6, 0, 3 + i, 1});
  logged.writer->flush();
  const std::vector<std::string> log = logged.ring->lines();
  ASSERT_EQ(log.size(), 12u);
  const auto head = logged.writer->head();
  ASSERT_EQ(verifyLines(log, false, head), std::nullopt);

  using Lines = std::vector<std::string>;
  const auto edit = [](std::size_t line, const std::string& from, const std::string& to) {
    return [=](Lines lines) {
      lines[line - 1] = std::regex_replace(lines[line - 1], std::regex(from), to, std::regex_constants::format_first_only);
      return lines;
    };
  };
  const auto erase = [](std::size_t first, std::size_t last) {
    return [=](Lines lines) {
      lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(first - 1), lines.begin() + static_cast<std::ptrdiff_t>(last));
      return lines;
    };
  };
  const auto copy = [](std::size_t first, std::size_t last, std::size_t before) {
    return [=](Lines lines) {
      Lines copied(lines.begin() + static_cast<std::ptrdiff_t>(first - 1), lines.begin() + static_cast<std::ptrdiff_t>(last));
      lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(before - 1), copied.begin(), copied.end());
      return lines;
    };
  };
  const auto swap = [](std::size_t first, std::size_t second, std::size_t count) {
    return [=](Lines lines) {
      std::swap_ranges(lines.begin() + static_cast<std::ptrdiff_t>(first - 1),
                       lines.begin() + static_cast<std::ptrdiff_t>(first - 1 + count),
                       lines.begin() + static_cast<std::ptrdiff_t>(second - 1));
      return lines;
    };
  };
  const struct {
    const char* tampering;
    std::function<Lines(Lines)> apply;
    bool midLine;
    std::string message;
  } cases[] = {
      {"edit a fact", edit(5, "\"role\":0", "\"role\":1"), false, "line 5 (sequence 3) was altered"},
      {"edit a decision", edit(2, "\"isAllowed\":true", "\"isAllowed\":false"), false, "line 2 (sequence 1) was altered"},
      {"edit a module digest", edit(10, "\"moduleSha256\":\"[0-9a-f]", "\"moduleSha256\":\"x"), false,
       "line 10: \"moduleSha256\" must be 64 lowercase hex digits"},
      {"replace a module digest", edit(10, "\"moduleSha256\":\"[0-9a-f]{64}\"", "\"moduleSha256\":\"" + std::string(64, 'a') + "\""),
       false, "line 10 (sequence 7) was altered"},
      {"edit a digest in a seal", edit(4, "\"records\":\\[\"sha256:[0-9a-f]{64}", "\"records\":[\"sha256:" + std::string(64, '0')), false,
       "line 1 (sequence 0) was altered"},
      {"drop a record", erase(6, 6), false,
       "the record block 1's seal lists as number 2 of 3 is missing, after line 5 (sequence 3)"},
      {"drop the first record", erase(1, 1), false, "number 1 of 3 is missing, at the block's start"},
      {"duplicate a record", copy(5, 5, 6), false, "line 6 (sequence 3) repeats line 5 (sequence 3)"},
      {"reorder records", swap(5, 6, 1), false, "line 5 (sequence 4) is out of place: block 1's seal lists it as number 2, not 1"},
      {"insert a record", copy(10, 10, 7), false, "line 7 (sequence 7) is not among the records block 1's seal lists"},
      {"drop a block", erase(5, 8), false, "line 8: the seal of block 2 does not follow the seal before it (block 0, line 4)"},
      {"drop the first block", erase(1, 4), false, "line 4: the seal of block 1 continues a chain this file does not start"},
      {"duplicate a block", copy(5, 8, 9), false, "line 12: the seal of block 1 repeats or comes after a later block"},
      {"reorder blocks", swap(5, 9, 4), false, "line 8: the seal of block 2 does not follow the seal before it"},
      {"edit a seal's count", edit(8, "\"dropped\":0", "\"dropped\":1"), false, "line 8: the sequence range does not hold"},
      {"shift the last block's range",
       [&](Lines lines) { return edit(12, "\"nextSequence\":9", "\"nextSequence\":10")(edit(12, "\"firstSequence\":6", "\"firstSequence\":7")(lines)); },
       false, "line 12: the seal of block 2 starts at sequence 7 where the block before it ended at 6"},
      {"truncate mid-line", [](Lines lines) { lines.pop_back(); return lines; }, true,
       "line 12: the file ends in the middle of this line: it was cut short, or its writer stopped mid-write (blocks 0 "
       "to 1 verified, up to line 8)"},
      {"cut the last seal (head given)", erase(12, 12), false, "not the head " + *head},
      {"add a space", edit(3, "\\{", "{ "), false, "line 3: not canonical JSON"},
  };
  for (const auto& c : cases) {
    const auto problem = verifyLines(c.apply(log), c.midLine, head);
    ASSERT_TRUE(problem) << c.tampering;
    EXPECT_NE(problem->find(c.message), std::string::npos) << c.tampering << "\n  got: " << *problem;
  }
}

// Blocks sealed over chosen records of a real log: every number a block's range covers without a
// record is a gap the verifier reports, wherever it falls, and the dropped counts add up over blocks.
TEST_F(OrxDecisionLogTampering, ReportsEveryGapAndAddsTheDroppedCounts) {
  OrxDecisionLogOptions options;
  options.blockRecords = 64;
  LoggedPuppets logged(options);
  for (int i = 0; i < 8; ++i) logged.decider.authorize(kAllowedAuthorization);
  logged.writer->flush();
  std::vector<std::string> records;  // by sequence
  for (const auto& line : logged.ring->lines()) {
    if (orxReadDecisionLogLine(line).type == OrxDecisionLogLine::Type::record) records.push_back(line);
  }
  ASSERT_EQ(records.size(), 8u);

  struct Block {
    std::uint64_t first, next;
    std::vector<std::uint64_t> present;
  };
  using Gap = std::tuple<std::uint64_t, std::uint64_t, std::uint64_t>;  // block, first missing, count
  const auto logOf = [&](const std::vector<Block>& blocks) {
    std::vector<std::string> lines;
    std::optional<std::string> previous;
    for (std::size_t b = 0; b < blocks.size(); ++b) {
      OrxDecisionLogSeal seal{b, blocks[b].first, blocks[b].next, 0, previous, {}};
      for (const auto sequence : blocks[b].present) {
        lines.push_back(records[sequence]);
        seal.records.push_back(orxDecisionLogLineDigest(kOrxDecisionRecordDomain, records[sequence]));
      }
      seal.dropped = seal.nextSequence - seal.firstSequence - seal.records.size();
      std::string line;
      orxAppendSealLine(line, seal);
      previous = orxDecisionLogLineDigest(kOrxDecisionSealDomain, line);
      lines.push_back(line);
    }
    return std::pair(lines, previous);
  };
  const struct {
    const char* name;
    std::vector<Block> blocks;
    std::vector<Gap> gaps;
  } cases[] = {
      {"none missing", {{0, 3, {0, 1, 2}}}, {}},
      {"one missing inside", {{0, 4, {0, 2, 3}}}, {{0, 1, 1}}},
      {"one missing at the start", {{0, 3, {1, 2}}}, {{0, 0, 1}}},
      {"one missing at the end", {{0, 3, {0, 1}}}, {{0, 2, 1}}},
      {"two runs", {{0, 6, {0, 2, 5}}}, {{0, 1, 1}, {0, 3, 2}}},
      {"one per block", {{0, 3, {0, 2}}, {3, 6, {3, 4}}}, {{0, 1, 1}, {1, 5, 1}}},
      {"a block of nothing but gaps", {{0, 2, {}}, {2, 4, {2, 3}}}, {{0, 0, 2}}},
  };
  for (const auto& c : cases) {
    const auto [lines, head] = logOf(c.blocks);
    internal::OrxDecisionLogVerifier verifier;
    for (const auto& line : lines) ASSERT_TRUE(verifier.read(line)) << c.name << ": " << *verifier.problem();
    verifier.finish(false, head);
    ASSERT_EQ(verifier.problem(), std::nullopt) << c.name;
    std::vector<Gap> gaps;
    std::uint64_t missing = 0;
    for (const auto& gap : verifier.gaps()) {
      gaps.emplace_back(gap.block, gap.firstSequence, gap.count);
      missing += gap.count;
    }
    EXPECT_EQ(gaps, c.gaps) << c.name;
    EXPECT_EQ(verifier.droppedRecords(), missing) << c.name;
  }

  // A head names a seal: a log that holds none cannot end in it, whatever records it has.
  const std::string someHead = "sha256:" + std::string(64, 'a');
  for (const std::vector<std::string>& unsealed : {std::vector<std::string>{}, std::vector<std::string>{records[0]}}) {
    const auto problem = verifyLines(unsealed, false, someHead);
    ASSERT_TRUE(problem) << unsealed.size() << " records";
    EXPECT_NE(problem->find("the log's last seal is absent, not the head " + someHead), std::string::npos) << *problem;
  }
}

// Cutting a log at a line boundary leaves a shorter log that is itself consistent: only the head,
// published elsewhere, tells it was longer.
TEST_F(OrxDecisionLogTampering, ACutAtABlockBoundaryNeedsTheHead) {
  OrxDecisionLogOptions options;
  options.blockRecords = 2;
  LoggedPuppets logged(options);
  for (int i = 0; i < 4; ++i) logged.decider.authorize(kAllowedAuthorization);
  logged.writer->flush();
  auto lines = logged.ring->lines();
  lines.resize(3);
  EXPECT_EQ(verifyLines(lines), std::nullopt);
  EXPECT_TRUE(verifyLines(lines, false, logged.writer->head()));
}

// The ring keeps the newest lines, as many as its capacity.
TEST(OrxDecisionLogRing, KeepsTheNewestLinesUpToItsCapacity) {
  const struct {
    std::size_t capacity;
    std::vector<std::string> kept;
  } cases[] = {{1, {"c"}}, {2, {"b", "c"}}, {3, {"a", "b", "c"}}, {4, {"a", "b", "c"}}};
  for (const auto& c : cases) {
    OrxDecisionLogRingSink ring(c.capacity);
    for (const char* line : {"a", "b", "c"}) ring.write(line, OrxDecisionLogLineType::record);
    EXPECT_EQ(ring.lines(), c.kept) << c.capacity;
  }
}

// A sink that holds the log's thread in write() until released, so the buffer can be filled on purpose.
class GatedSink : public OrxDecisionLogSink {
 public:
  void write(std::string_view line, OrxDecisionLogLineType) override {
    std::unique_lock guard(lock_);
    entered_ = true;
    changed_.notify_all();
    changed_.wait(guard, [&] { return open_; });
    lines_.emplace_back(line);
  }
  void waitUntilEntered() {
    std::unique_lock guard(lock_);
    changed_.wait(guard, [&] { return entered_; });
  }
  void open() {
    std::lock_guard guard(lock_);
    open_ = true;
    changed_.notify_all();
  }
  std::vector<std::string> lines() {
    std::lock_guard guard(lock_);
    return lines_;
  }

 private:
  std::mutex lock_;
  std::condition_variable changed_;
  bool entered_ = false;
  bool open_ = false;
  std::vector<std::string> lines_;
};

using OrxDecisionLogFullBuffer = QuietLog;

// A buffer of two records: the first decision is taken by the log's thread, which the sink then holds;
// two more fill the buffer and three find it full.
TEST_F(OrxDecisionLogFullBuffer, EachPolicyDropsCallsBackOrWaits) {
  const struct {
    const char* name;
    OrxDecisionLogWhenFull policy;
    std::uint64_t dropped;
    std::vector<std::uint64_t> handedBack;
  } cases[] = {
      {"drop", OrxDecisionLogWhenFull::drop, 3, {}},
      {"callBack", OrxDecisionLogWhenFull::callBack, 3, {3, 4, 5}},
      {"block", OrxDecisionLogWhenFull::block, 0, {}},
  };
  for (const auto& c : cases) {
    const char* name = c.name;
    auto sink = std::make_shared<GatedSink>();
    std::vector<std::uint64_t> handedBack;
    OrxDecisionLogOptions options;
    options.sink = sink;
    options.bufferRecords = 2;
    options.whenFull = c.policy;
    options.onFull = [&](std::string_view line) { handedBack.push_back(orxReadDecisionLogLine(line).record.sequence); };
    LoggedPuppets logged(options);
    logged.decider.authorize(kAllowedAuthorization);
    sink->waitUntilEntered();
    std::atomic<int> decided = 0;
    std::jthread deciding([&] {
      for (int i = 0; i < 5; ++i, ++decided) logged.decider.authorize(kAllowedAuthorization);
    });
    if (c.policy == OrxDecisionLogWhenFull::block) {
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
      EXPECT_EQ(decided.load(), 2) << name << ": decisions went on with no room for their records";
    } else {
      deciding.join();  // all five decided while the sink still holds the log's thread
    }
    sink->open();
    if (deciding.joinable()) deciding.join();
    logged.writer->flush();
    EXPECT_EQ(handedBack, c.handedBack) << name;
    EXPECT_EQ(logged.writer->dropped(), c.dropped) << name;
    internal::OrxDecisionLogVerifier verifier;
    for (const auto& line : sink->lines()) ASSERT_TRUE(verifier.read(line)) << name << ": " << *verifier.problem();
    verifier.finish(false, logged.writer->head());
    EXPECT_EQ(verifier.problem(), std::nullopt) << name;
    EXPECT_EQ(verifier.sealedRecords(), 6 - c.dropped) << name;
    EXPECT_EQ(verifier.droppedRecords(), c.dropped) << name;
    if (c.dropped > 0) {
      ASSERT_EQ(verifier.gaps().size(), 1u) << name;
      EXPECT_EQ(verifier.gaps()[0].firstSequence, 3u) << name;
      EXPECT_EQ(verifier.gaps()[0].count, 3u) << name;
    }
  }
}

class FailingSink : public OrxDecisionLogSink {
 public:
  void write(std::string_view, OrxDecisionLogLineType) override {
    if (++lines_ > 2) throw std::runtime_error("disk full");
  }

 private:
  int lines_ = 0;
};

TEST_F(OrxDecisionLogFullBuffer, AFailedSinkStopsTheLogNotTheDecisions) {
  OrxDecisionLogOptions options;
  options.sink = std::make_shared<FailingSink>();
  LoggedPuppets logged(options);
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(logged.decider.authorizeWithSource(kAllowedAuthorization).source, OrxDecisionSource::policy);
    logged.writer->flush();
  }
  EXPECT_EQ(logged.writer->error(), "disk full");
  EXPECT_EQ(logged.writer->written(), 1u);  // the record and its seal went through, the second record did not
  EXPECT_EQ(logged.writer->lost(), 4u);
}

using OrxDecisionLogFile = QuietLog;

std::filesystem::path freshFile(const std::string& name) {
  const auto path = std::filesystem::temp_directory_path() / ("orx-log-" + std::to_string(::getpid()) + "-" + name);
  std::filesystem::remove(path);
  return path;
}

std::vector<std::string> fileLines(const std::filesystem::path& path) {
  std::ifstream in(path);
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

void writeSession(const std::filesystem::path& path, int decisions) {
  OrxDecisionLogOptions options;
  options.sink = std::make_shared<OrxDecisionLogFileSink>(path, OrxDecisionLogFileSync::afterSeal);
  options.blockRecords = 2;
  LoggedPuppets logged(options);
  for (int i = 0; i < decisions; ++i) logged.decider.authorize(kAllowedAuthorization);
}

// A second writer continues the chain where the first left it, covering records the first wrote but
// never sealed; a file it cannot continue is refused before anything is written to it.
TEST_F(OrxDecisionLogFile, ALaterWriterContinuesTheChain) {
  const auto path = freshFile("continued");
  writeSession(path, 5);
  writeSession(path, 3);
  auto lines = fileLines(path);
  EXPECT_EQ(verifyLines(lines), std::nullopt);
  ASSERT_EQ(lines.size(), 8u + 5u);  // 5 records in blocks of 2, 2, 1; then 3 in 2, 1

  // The first writer stopped before its last seal: the next one seals the record it left.
  lines.pop_back();
  std::ofstream(path, std::ios::trunc) << [&] {
    std::string text;
    for (const auto& line : lines) text += line + "\n";
    return text;
  }();
  writeSession(path, 1);
  internal::OrxDecisionLogVerifier verifier;
  for (const auto& line : fileLines(path)) ASSERT_TRUE(verifier.read(line)) << *verifier.problem();
  verifier.finish(false, std::nullopt);
  EXPECT_EQ(verifier.problem(), std::nullopt);
  EXPECT_EQ(verifier.sealedRecords(), 9u);
  EXPECT_EQ(verifier.unsealedRecords(), 0u);

  const struct {
    const char* content;
    const char* message;
  } refused[] = {
      {"{\"block\":0", "ends in the middle of a line"},
      {"hello\n", "does not end as a decision log (not canonical JSON"},
      {"{\"a\":1}\n", "does not end as a decision log (\"type\" must be"},
  };
  for (const auto& c : refused) {
    const auto other = freshFile("refused");
    std::ofstream(other) << c.content;
    try {
      OrxDecisionLogFileSink sink(other, OrxDecisionLogFileSync::none);
      ADD_FAILURE() << "continued: " << c.content;
    } catch (const std::runtime_error& error) {
      EXPECT_NE(std::string(error.what()).find(c.message), std::string::npos) << error.what();
    }
    EXPECT_EQ(std::filesystem::file_size(other), std::string_view(c.content).size());
    std::filesystem::remove(other);
  }
  std::filesystem::remove(path);
}

// The runtime's option: off by default, and on, each record names the digest of the module that
// decided (the artifact's SHA-256, as sha256sum prints it).
TEST_F(OrxDecisionLogFile, TheRuntimeLogsOnlyWhenMadeWithALog) {
  OrxPolicyRuntime plain(std::filesystem::path("artifacts"));
  EXPECT_EQ(plain.decisionLog(), nullptr);

  auto ring = std::make_shared<OrxDecisionLogRingSink>(10);
  OrxDecisionLogOptions options;
  options.sink = ring;
  OrxPolicyRuntime logged(std::filesystem::path("artifacts"), options);
  ASSERT_FALSE(logged.loadError());
  ASSERT_NE(logged.decisionLog(), nullptr);
  logged.authorize({2, 6, 63, 1000, 900000, 0, 600, 1});
  logged.decisionLog()->flush();
  const auto lines = ring->lines();
  ASSERT_EQ(lines.size(), 2u);
  const auto record = orxReadDecisionLogLine(lines[0]).record;
  std::array<char, 65> expected{};
  FILE* sum = ::popen("sha256sum artifacts/player_authz.wasm", "r");
  ASSERT_NE(sum, nullptr);
  ASSERT_EQ(std::fread(expected.data(), 1, 64, sum), 64u);
  ::pclose(sum);
  EXPECT_EQ(record.moduleDigest(), std::string_view(expected.data(), 64));
  EXPECT_EQ(logged.decisionLog()->head(), orxDecisionLogLineDigest(kOrxDecisionSealDomain, lines[1]));
  EXPECT_EQ(logged.decisionLog()->recordsWritten(), 1u);
}

}  // namespace

}  // namespace ravo::orx
