#include <gtest/gtest.h>

#include <random>
#include <string>

#include <ravo-orx/core/ORXSHA256.h>

namespace ravo::orx {

namespace {

using Engine = ORXSHA256::Engine;

struct Vector {
  std::string message;
  const char* hex;
};

// FIPS 180-4 examples plus the lengths around the padding boundary (55 bytes fit one block with the
// length, 56 do not; 63 and 64 straddle a block); the boundary digests come from sha256sum.
std::vector<Vector> vectors() {
  return {
      {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
      {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
      {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
       "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
      {"abcdefghbcdefghicdefghijdefghijkefghijklfghijklmghijklmnhijklmnoijklmnopjklmnopqklmnopqrlmnopqrs"
       "mnopqrstnopqrstu",
       "cf5b16a778af8380036ce59e7b0492370b249b11e8f07a51afac45037afee9d1"},
      {std::string(55, 'a'), "9f4390f8d30c2dd92ec9f095b65e2b9ae9b0a925a5258e241c9f1e910f734318"},
      {std::string(56, 'a'), "b35439a4ac6f0948b6d6f9e3c6af0f5f590ce20f1bde7090ef7970686ec6738a"},
      {std::string(63, 'a'), "7d3e74a05d7db15bce4ad9ec0658ea98e3f06eeecf16b4c6fff2da457ddc2f34"},
      {std::string(64, 'a'), "ffe054fe7ae0cb6dc65c3af9b61d5209f439851db43d0ba5997337df154668eb"},
      {std::string(119, 'a'), "31eba51c313a5c08226adf18d4a359cfdfd8d2e816b13f4af952f7ea6584dcfb"},
      {std::string(1000000, 'a'), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
  };
}

std::string hexOf(Engine engine, std::string_view message) {
  ORXSHA256 hasher(engine);
  hasher.update(message);
  return ORXSHA256::toHex(hasher.finalize());
}

// Both engines on every machine: the portable one is forced, the CPU's instructions fall back to it
// where the CPU has none (the differential test below says so when it is skipped).
TEST(ORXSHA256, EachEngineMatchesReferenceDigestsWhetherHashedAtOnceOrInPieces) {
  for (const Engine engine : {Engine::portable, Engine::cpuInstructions}) {
    const auto engineName = engine == Engine::portable ? "portable" : "cpu instructions";
    for (const auto& v : vectors()) {
      const auto label = std::to_string(v.message.size()) + " bytes, " + engineName;
      EXPECT_EQ(hexOf(engine, v.message), v.hex) << label;
      // Odd chunk sizes exercise every split of the internal block buffer.
      for (std::size_t chunk : {1u, 7u, 63u, 64u, 65u}) {
        ORXSHA256 hasher(engine);
        for (std::size_t i = 0; i < v.message.size(); i += chunk) {
          hasher.update(std::string_view(v.message).substr(i, chunk));
        }
        EXPECT_EQ(ORXSHA256::toHex(hasher.finalize()), v.hex) << label << ", chunk " << chunk;
        if (v.message.size() > 100000) break;  // one streamed pass suffices for the long message
      }
    }
  }
  EXPECT_EQ(ORXSHA256::hex(vectors()[1].message), vectors()[1].hex) << "the one-shot form";
}

// The CPU's instructions against the portable reference: every length from 0 to 4,096 bytes of
// arbitrary content at once, then streamed in random pieces.
TEST(ORXSHA256, CpuInstructionsAgreeWithThePortableCodeOnEveryLengthAndSplit) {
  if (!ORXSHA256::cpuInstructionsAvailable()) GTEST_SKIP() << "this CPU has no SHA instructions";
  std::mt19937 random(20);
  std::string bytes(4096, '\0');
  for (char& byte : bytes) byte = static_cast<char>(random());
  for (std::size_t length = 0; length <= bytes.size(); ++length) {
    const std::string_view message(bytes.data(), length);
    const std::string expected = hexOf(Engine::portable, message);
    ASSERT_EQ(hexOf(Engine::cpuInstructions, message), expected) << length << " bytes";
    ORXSHA256 streamed(Engine::cpuInstructions);
    for (std::size_t at = 0; at < length;) {
      const std::size_t piece = std::min<std::size_t>(length - at, random() % 200);
      streamed.update(message.substr(at, piece));
      at += piece;
    }
    ASSERT_EQ(ORXSHA256::toHex(streamed.finalize()), expected) << length << " bytes streamed";
  }
}

TEST(ORXSHA256, FinalizeResetsTheHasherForTheNextMessage) {
  for (const Engine engine : {Engine::portable, Engine::cpuInstructions}) {
    ORXSHA256 hasher(engine);
    hasher.update("discarded");
    hasher.finalize();
    hasher.update("abc");
    EXPECT_EQ(ORXSHA256::toHex(hasher.finalize()), vectors()[1].hex);
  }
}

}  // namespace

}  // namespace ravo::orx
