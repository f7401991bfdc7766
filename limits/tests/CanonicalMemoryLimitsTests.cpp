// The peak memory and time of canonical JSON on hostile documents, each measured in a child process:
// canonicalize within three times its input, and a parsed value within the input plus 16 bytes per
// input byte. Each row's ceiling is what its shape costs by the layouts ORXCanonicalDocumentWriter.cpp
// and ORXCanonicalValue.h describe, with a little to spare, in bytes per input byte (the input itself
// included), and a megabyte more for the pages the child touches besides (its allocator, the measuring).

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include <ravo-orx/core/ORXCanonicalJSON.h>
#include "limits/HostileInputs.h"
#include "limits/PeakMemory.h"

namespace ravo::orx {

namespace {

using namespace hostile_inputs;

constexpr std::size_t kNineMegabytes = 9'000'000;
constexpr std::size_t kOwnPages = 1u << 20;

// The largest row: 64 MiB, or a quarter of that where sanitizers slow every byte down.
constexpr std::size_t kReversedObjectBytes = kLargeDocumentBytes == kHundredMegabytes ? 64u << 20 : 16u << 20;

struct Row {
  const char* name;
  std::function<std::string()> document;
  std::function<std::string()> canonical;  // the document's canonical text
  double maxBytesPerInputByte;
  double maxSeconds;
};

std::string zeros() { return arrayOf("0", kNineMegabytes); }

// `levels` out-of-order objects (or their canonical text) around a 9 MB array of zeros.
std::string objectsAroundZeros(std::size_t levels, bool canonical) {
  return objectsAround(levels, canonical, kNineMegabytes,
                       [](std::string& text) { appendArrayOf(text, "0", kNineMegabytes); });
}

std::string smallChain(bool canonical) {
  return objectsAround(511, canonical, 1, [](std::string& text) { text += '0'; });
}

// "canonical", or how the text differs from the row's canonical text.
std::string checked(const Row& row, const std::string& text) {
  const std::string canonical = row.canonical();
  if (text == canonical) return "canonical";
  return std::to_string(text.size()) + " bytes differ from the " + std::to_string(canonical.size()) + " canonical";
}

void expectWithin(const peak_memory::Measure& measure, const Row& row) {
  EXPECT_EQ(measure.outcome, "canonical") << row.name;
  if (!peak_memory::kMeasured) return;
  const auto ceiling = static_cast<std::size_t>(row.maxBytesPerInputByte * static_cast<double>(measure.inputBytes));
  EXPECT_LE(measure.peakRise, ceiling + kOwnPages) << row.name << ": " << measure.inputBytes << " bytes of input";
  EXPECT_LT(measure.seconds, row.maxSeconds) << row.name;
}

// Input and output are 2 bytes per input byte; what canonicalize keeps besides is the rest.
TEST(CanonicalMemoryLimits, CanonicalizeKeepsWithinThreeTimesItsInput) {
  const Row rows[] = {
      // One 4-byte key offset per 9-byte member: 2.44. Read twice (the second reading in key order)
      // and written once: seconds, not one.
      {"a 64 MiB object in reverse key order", [] { return objectOfShortKeys(kReversedObjectBytes, true); },
       [] { return objectOfShortKeys(kReversedObjectBytes, false); }, 2.6, 8},
      {"a 9 MB array of zeros", zeros, zeros, 2.2, 1},
      {"20 out-of-order objects around a 9 MB array", [] { return objectsAroundZeros(20, false); },
       [] { return objectsAroundZeros(20, true); }, 2.2, 1},
      {"511 out-of-order objects around a 9 MB array (512 levels)", [] { return objectsAroundZeros(511, false); },
       [] { return objectsAroundZeros(511, true); }, 2.2, 1},
      // Each small object is put in order in place, moving the whole chain inside it.
      {"9 MB of 512-level chains of small out-of-order objects",
       [] { return arrayOf(smallChain(false), kNineMegabytes); },
       [] { return arrayOf(smallChain(true), kNineMegabytes); }, 2.2, 1},
      {"9 MB of two-member objects in reverse order", [] { return arrayOf("{\"b\":0,\"a\":0}", kNineMegabytes); },
       [] { return arrayOf("{\"a\":0,\"b\":0}", kNineMegabytes); }, 2.2, 1},
  };
  for (const Row& row : rows) {
    ASSERT_LE(row.maxBytesPerInputByte, 3) << row.name;
    const auto measure = peak_memory::inChild(
        row.document, [](const std::string& text) { return ORXCanonicalJSON::canonicalize(text); },
        [&](const std::string& text) { return checked(row, text); });
    expectWithin(measure, row);
  }
}

// A value is 16 bytes; a string beyond one byte adds a 48-byte allocation; a container with members one
// allocation of 8 bytes and its members, rounded up to 16 with the allocator's own 8; a field is 48.
TEST(CanonicalMemoryLimits, ParsedValuesCostAtMostSixteenBytesPerInputByte) {
  const Row rows[] = {
      // 16 bytes per "0,": 8 and the input.
      {"a 9 MB array of zeros", zeros, zeros, 10, 1},
      {"20 out-of-order objects around a 9 MB array", [] { return objectsAroundZeros(20, false); },
       [] { return objectsAroundZeros(20, true); }, 10, 1},
      // One ASCII byte is a shared string: 16 bytes per "a",: 4 and the input.
      {"9 MB of one-byte strings", [] { return arrayOf("\"a\"", kNineMegabytes); },
       [] { return arrayOf("\"a\"", kNineMegabytes); }, 6, 1},
      // 64 bytes per "ab",: 12.8 and the input.
      {"9 MB of two-byte strings", [] { return arrayOf("\"ab\"", kNineMegabytes); },
       [] { return arrayOf("\"ab\"", kNineMegabytes); }, 15, 1},
      // 16 + 19 × 32 bytes per 41: 15.2 and the input.
      {"9 MB of arrays 20 deep", [] { return arrayOf(nestedArrays(20), kNineMegabytes); },
       [] { return arrayOf(nestedArrays(20), kNineMegabytes); }, 17, 1},
      // 16 + 2 × 64 bytes per 15: 9.6 and the input.
      {"9 MB of small objects two deep", [] { return arrayOf("{\"a\":{\"b\":{}}}", kNineMegabytes); },
       [] { return arrayOf("{\"a\":{\"b\":{}}}", kNineMegabytes); }, 12, 1},
      // 48 bytes per 9-byte member, held twice while trimmed to its length: 10.7 and the input.
      {"a 9 MB object in reverse key order", [] { return objectOfShortKeys(kNineMegabytes, true); },
       [] { return objectOfShortKeys(kNineMegabytes, false); }, 13, 1},
      {"objects 512 deep", [] { return nestedObjects(512); }, [] { return nestedObjects(512); }, 17, 1},
  };
  for (const Row& row : rows) {
    ASSERT_LE(row.maxBytesPerInputByte, 17) << row.name;
    const auto measure = peak_memory::inChild(
        row.document, [](const std::string& text) { return ORXCanonicalJSON::parse(text); },
        [&](const ORXCanonicalValue& value) { return checked(row, value.canonicalString()); });
    expectWithin(measure, row);
  }
}

}  // namespace

}  // namespace ravo::orx
