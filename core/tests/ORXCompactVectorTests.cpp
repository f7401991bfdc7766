#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <ravo-orx/core/ORXCanonicalValue.h>
#include <ravo-orx/core/ORXCompactVector.h>

namespace ravo::orx {

namespace {

using V = ORXCanonicalValue;

// The same edits on a compact vector and a std::vector leave the same elements, for elements that move
// by their bytes (values, grown by realloc) and for ones that may not (strings, moved one by one).
template <class T>
void expectEditsAsStdVector(const std::vector<T>& samples) {
  ORXCompactVector<T> compact;
  std::vector<T> reference;
  const auto expectSame = [&](const char* step) {
    ASSERT_EQ(compact.size(), reference.size()) << step;
    EXPECT_TRUE(std::equal(compact.begin(), compact.end(), reference.begin())) << step;
    EXPECT_GE(compact.capacity(), compact.size()) << step;
  };
  for (std::size_t round = 0; round < 40; ++round) {
    const T& sample = samples[round % samples.size()];
    compact.push_back(sample);
    reference.push_back(sample);
    expectSame("push_back");
  }
  // An element of the list itself, pushed when the list must grow.
  while (compact.size() < compact.capacity()) {
    compact.push_back(compact[0]);
    reference.push_back(reference[0]);
  }
  compact.push_back(compact[1]);
  reference.push_back(reference[1]);
  expectSame("push_back of its own element");
  const struct {
    std::size_t from, to;
  } erasures[] = {{0, 0}, {3, 3}, {0, 2}, {5, 9}, {10, 11}};
  for (const auto& e : erasures) {
    compact.erase(compact.begin() + e.from, compact.begin() + e.to);
    reference.erase(reference.begin() + e.from, reference.begin() + e.to);
    expectSame("erase");
  }
  compact.erase(compact.end() - 3, compact.end());
  reference.erase(reference.end() - 3, reference.end());
  expectSame("erase at the end");
  const struct {
    std::size_t from, to;
  } extractions[] = {{4, 4}, {2, 6}, {0, 3}, {compact.size() - 10, compact.size() - 8}, {compact.size() - 16, compact.size() - 13}};
  for (const auto& e : extractions) {
    const ORXCompactVector<T> taken = compact.extract(e.from, e.to);
    EXPECT_TRUE(std::equal(taken.begin(), taken.end(), reference.begin() + e.from, reference.begin() + e.to));
    EXPECT_EQ(taken.capacity(), e.to - e.from);
    reference.erase(reference.begin() + e.from, reference.begin() + e.to);
    expectSame("extract");
  }
  compact.shrink_to_fit();
  EXPECT_EQ(compact.capacity(), compact.size());
  expectSame("shrink_to_fit");
  compact.pop_back();
  reference.pop_back();
  expectSame("pop_back");
  ORXCompactVector<T> copy = compact;
  EXPECT_EQ(copy, compact);
  EXPECT_EQ(copy.capacity(), copy.size());
  ORXCompactVector<T> moved = std::move(copy);
  EXPECT_EQ(moved, compact);
  EXPECT_TRUE(copy.empty());  // a moved-from list is empty
  compact.erase(compact.begin(), compact.end());
  reference.clear();
  expectSame("erase all");
  compact.shrink_to_fit();
  EXPECT_EQ(compact.capacity(), 0u);
  EXPECT_NE(moved, compact);
}

TEST(ORXCompactVector, EditsLeaveWhatStdVectorLeaves) {
  expectEditsAsStdVector<std::string>({"", "a", "a string longer than the small-string buffer", "\xc3\xa9"});
  expectEditsAsStdVector<V>({V::integer(-1), V::string("a"), V::string("a string longer than the buffer"),
                             V::array({V::boolean(true), V::string("")}), V::object({{"k", V::integer(2)}})});
}

// A value is 16 bytes whatever it holds; copies own their text and members, moves leave a valid value.
TEST(ORXCanonicalValue, CopiesAndMovesKeepTheirContent) {
  const std::string longText(100, 'x');
  const V samples[] = {
      V::string(""),
      V::string("a"),
      V::string("\x7f"),
      V::string("\xc3\xa9"),
      V::string(longText),
      V::boolean(false),
      V::integer(INT64_MIN),
      V::array({}),
      V::array({V::string(longText), V::array({V::integer(1)})}),
      V::object(ORXCanonicalObject()),
      V::object({{"b", V::string(longText)}, {"a", V::array({V::object({{"c", V::boolean(true)}})})}}),
  };
  for (const V& sample : samples) {
    const std::string text = sample.canonicalString();
    V copy = sample;
    EXPECT_EQ(copy, sample) << text;
    V moved = std::move(copy);
    EXPECT_EQ(moved, sample) << text;
    EXPECT_EQ(copy.kind(), sample.kind()) << text;  // a moved-from value is still one
    copy = moved;
    EXPECT_EQ(copy.canonicalString(), text);
    // Assigned a member of itself: the member is copied before the value is replaced.
    if (const auto* elements = moved.asArray(); elements && !elements->empty()) {
      const V first = (*elements)[0];
      moved = (*elements)[0];
      EXPECT_EQ(moved, first) << text;
    }
    for (const V& other : samples) EXPECT_EQ(sample == other, &sample == &other) << text << " vs " << other.canonicalString();
  }
  EXPECT_EQ(sizeof(V), 16u);
}

}  // namespace

}  // namespace ravo::orx
