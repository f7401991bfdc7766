#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <ravo-orx/core/ORXCanonicalJSON.h>
#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/core/ORXJSONDocument.h>

namespace ravo::orx {

using namespace internal;

namespace {

// Every value RFC 8259 allows is read, described by its kind and, for numbers, kept as written.
TEST(ORXJSONDocument, ReadsEveryKindOfJSONValue) {
  struct Case {
    std::string json;
    std::string kind;
    std::string text;
  };
  const std::vector<Case> cases = {
      {"null", "null", ""},
      {" true ", "a boolean", ""},
      {"-0", "an integer", "-0"},
      {"18446744073709551616", "an integer", "18446744073709551616"},
      {"1.5e-3", "a number", "1.5e-3"},
      {"1E+2", "a number", "1E+2"},
      {"-2.25", "a number", "-2.25"},
      {"7e9", "a number", "7e9"},
      {R"("a\u00e9\n")", "a string", "a\xC3\xA9\n"},
      {"[1, null, {}]", "an array", ""},
      {R"({"b": null, "a": [1.5]})", "an object", ""},
  };
  for (const auto& c : cases) {
    const auto document = ORXJSONDocument::read(c.json);
    EXPECT_EQ(document.describe(), c.kind) << c.json;
    EXPECT_EQ(document.text, c.text) << c.json;
  }
}

// What is not JSON is refused at its first wrong byte, as the canonical parser refuses it.
TEST(ORXJSONDocument, RefusesWhatIsNotJSON) {
  const std::vector<std::string> refused = {
      "",     "01",   "1.",   ".5",  "1e",        "1e+",   "-",         "+1",  "nul",  "nulls", "[1,]",
      "{\"a\"}", "{a:1}", "[1] 2", std::string("{}\0junk", 7), "\"\x01\"", "\"\xC3\"", "NaN", "[1 2]"};
  for (const auto& json : refused) {
    EXPECT_THROW(ORXJSONDocument::read(json), ORXError) << json;
  }
  const std::string deepest(ORXCanonicalJSON::kMaxNestingDepth, '[');
  EXPECT_NO_THROW(ORXJSONDocument::read(deepest + std::string(ORXCanonicalJSON::kMaxNestingDepth, ']')));
  EXPECT_THROW(ORXJSONDocument::read("[" + deepest + std::string(ORXCanonicalJSON::kMaxNestingDepth + 1, ']')),
               ORXError);
}

// Members keep their order and their repeats; a lookup finds the first and says how many there are.
TEST(ORXJSONDocument, MembersKeepOrderAndRepeats) {
  const auto document = ORXJSONDocument::read(R"({"b": 1, "a": {"c": [true]}, "b": "two"})");
  ASSERT_EQ(document.members.size(), 3u);
  EXPECT_EQ(document.members[0].key, "b");
  EXPECT_EQ(document.members[1].key, "a");
  std::size_t count = 0;
  const ORXJSONDocument* b = document.member("b", &count);
  ASSERT_NE(b, nullptr);
  EXPECT_EQ(count, 2u);
  EXPECT_EQ(b->text, "1");
  EXPECT_EQ(document.member("missing", &count), nullptr);
  EXPECT_EQ(count, 0u);
  const ORXJSONDocument* a = document.member("a");
  ASSERT_NE(a, nullptr);
  ASSERT_EQ(a->members.size(), 1u);
  ASSERT_EQ(a->members[0].value.items.size(), 1u);
  EXPECT_TRUE(a->members[0].value.items[0].boolean);
}

// The general grammar is an extension: the canonical parser still refuses null and fractions.
TEST(ORXJSONDocument, CanonicalParserStaysStrict) {
  for (const std::string json : {"null", "1.5", "[1e3]", "{\"a\":null}"}) {
    EXPECT_NO_THROW(ORXJSONDocument::read(json)) << json;
    EXPECT_THROW(ORXCanonicalJSON::parse(json), ORXError) << json;
  }
}

}  // namespace

}  // namespace ravo::orx
