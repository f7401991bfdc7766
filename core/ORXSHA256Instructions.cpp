// SHA-256 compression on the CPU's SHA instructions: SHA-NI on x86-64 (present or not, as cpuid says at
// run time; only the function below is compiled for it, so the rest of the build runs on any x86-64),
// and the ARMv8 SHA2 extension when the build targets it. Both follow the same schedule: four vectors
// of four message words, each group of four rounds adding its round constants, and the next group
// derived from the previous four by the message-schedule instructions.

#include <ravo-orx/core/ORXSHA256Blocks.h>

#if defined(__x86_64__)

#include <cpuid.h>
#include <immintrin.h>

namespace ravo::orx::internal {

namespace {

__attribute__((target("sha,sse4.1"))) void compressWithShaNi(std::uint32_t* state, const std::uint8_t* blocks,
                                                             std::size_t count) {
  const __m128i bigEndianWords = _mm_set_epi64x(0x0c0d0e0f08090a0bLL, 0x0405060700010203LL);
  // The round instructions keep the state as the halves ABEF and CDGH.
  const __m128i cdab = _mm_shuffle_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(state)), 0xB1);
  const __m128i hgfe = _mm_shuffle_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(state + 4)), 0x1B);
  __m128i abef = _mm_alignr_epi8(cdab, hgfe, 8);
  __m128i cdgh = _mm_blend_epi16(hgfe, cdab, 0xF0);

  for (; count > 0; --count, blocks += 64) {
    const __m128i abefBefore = abef;
    const __m128i cdghBefore = cdgh;
    __m128i words[4];
    for (int i = 0; i < 4; ++i) {
      words[i] = _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(blocks + 16 * i)), bigEndianWords);
    }
#pragma GCC unroll 16
    for (int group = 0; group < 16; ++group) {
      __m128i& current = words[group % 4];
      const __m128i constants =
          _mm_loadu_si128(reinterpret_cast<const __m128i*>(kORXSHA256RoundConstants.data() + 4 * group));
      const __m128i message = _mm_add_epi32(current, constants);
      cdgh = _mm_sha256rnds2_epu32(cdgh, abef, message);
      abef = _mm_sha256rnds2_epu32(abef, cdgh, _mm_shuffle_epi32(message, 0x0E));
      if (group < 12) {
        const __m128i& last = words[(group + 3) % 4];
        const __m128i sevenBack = _mm_alignr_epi8(last, words[(group + 2) % 4], 4);
        current = _mm_sha256msg2_epu32(_mm_add_epi32(_mm_sha256msg1_epu32(current, words[(group + 1) % 4]), sevenBack),
                                       last);
      }
    }
    abef = _mm_add_epi32(abef, abefBefore);
    cdgh = _mm_add_epi32(cdgh, cdghBefore);
  }

  const __m128i feba = _mm_shuffle_epi32(abef, 0x1B);
  const __m128i dchg = _mm_shuffle_epi32(cdgh, 0xB1);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(state), _mm_blend_epi16(feba, dchg, 0xF0));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(state + 4), _mm_alignr_epi8(dchg, feba, 8));
}

bool cpuHasShaNi() {
  unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
  if (!__get_cpuid(1, &eax, &ebx, &ecx, &edx)) return false;
  const bool sse41 = ecx & bit_SSE4_1;
  if (!__get_cpuid_count(7, 0, &eax, &ebx, &ecx, &edx)) return false;
  return sse41 && (ebx & bit_SHA);
}

}  // namespace

ORXSHA256CompressBlocks orxSHA256InstructionBlocks() {
  static const ORXSHA256CompressBlocks found = cpuHasShaNi() ? compressWithShaNi : nullptr;
  return found;
}

#elif defined(__ARM_FEATURE_SHA2)

#include <arm_neon.h>

namespace {

void compressWithArmSha2(std::uint32_t* state, const std::uint8_t* blocks, std::size_t count) {
  uint32x4_t abcd = vld1q_u32(state);
  uint32x4_t efgh = vld1q_u32(state + 4);
  for (; count > 0; --count, blocks += 64) {
    const uint32x4_t abcdBefore = abcd;
    const uint32x4_t efghBefore = efgh;
    uint32x4_t words[4];
    for (int i = 0; i < 4; ++i) words[i] = vreinterpretq_u32_u8(vrev32q_u8(vld1q_u8(blocks + 16 * i)));
#pragma GCC unroll 16
    for (int group = 0; group < 16; ++group) {
      uint32x4_t& current = words[group % 4];
      const uint32x4_t message = vaddq_u32(current, vld1q_u32(kORXSHA256RoundConstants.data() + 4 * group));
      const uint32x4_t abcdInRound = abcd;
      abcd = vsha256hq_u32(abcd, efgh, message);
      efgh = vsha256h2q_u32(efgh, abcdInRound, message);
      if (group < 12) {
        current = vsha256su1q_u32(vsha256su0q_u32(current, words[(group + 1) % 4]), words[(group + 2) % 4],
                                  words[(group + 3) % 4]);
      }
    }
    abcd = vaddq_u32(abcd, abcdBefore);
    efgh = vaddq_u32(efgh, efghBefore);
  }
  vst1q_u32(state, abcd);
  vst1q_u32(state + 4, efgh);
}

}  // namespace

ORXSHA256CompressBlocks orxSHA256InstructionBlocks() { return compressWithArmSha2; }

#else

ORXSHA256CompressBlocks orxSHA256InstructionBlocks() { return nullptr; }

#endif

}  // namespace ravo::orx::internal
