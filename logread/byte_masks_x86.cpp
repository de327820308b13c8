#include <immintrin.h>

#include "logread/byte_masks.h"

namespace logread {
namespace {

// Bytes are all ones where they equal the wanted one.
__m128i Equal(__m128i bytes, char wanted) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(wanted)); }

std::uint64_t Bits(__m128i bytes) { return static_cast<std::uint32_t>(_mm_movemask_epi8(bytes)); }

// Replaces the markup in 16 bytes at `text`, which is rare enough to be tested first.
__m128i WithoutMarkup(char* text) {
  __m128i* const place = reinterpret_cast<__m128i*>(text);
  const __m128i bytes = _mm_loadu_si128(place);
  const __m128i markup = _mm_or_si128(_mm_or_si128(Equal(bytes, '"'), Equal(bytes, '\'')),
                                      _mm_or_si128(Equal(bytes, '<'), Equal(bytes, '>')));
  if (_mm_movemask_epi8(markup) == 0) return bytes;
  const __m128i replaced =
      _mm_or_si128(_mm_andnot_si128(markup, bytes), _mm_and_si128(markup, _mm_set1_epi8('_')));
  _mm_storeu_si128(place, replaced);
  return replaced;
}

void MaskRunsSse2(char* text, std::size_t runs, RunMasks* masks) {
  constexpr std::size_t kStep = sizeof(__m128i);
  for (std::size_t run = 0; run < runs; ++run, text += kRunBytes) {
    masks[run] = {0, 0};
    for (std::size_t at = 0; at < kRunBytes; at += kStep) {
      const __m128i bytes = WithoutMarkup(text + at);
      const __m128i feeds = Equal(bytes, '\n');
      masks[run].separators |= Bits(_mm_or_si128(Equal(bytes, ' '), feeds)) << at;
      masks[run].feeds |= Bits(feeds) << at;
    }
  }
}

#ifdef HITWICK_AVX2
#define HITWICK_TARGET_AVX2 __attribute__((target("avx2")))

HITWICK_TARGET_AVX2 __m256i Equal(__m256i bytes, char wanted) {
  return _mm256_cmpeq_epi8(bytes, _mm256_set1_epi8(wanted));
}

HITWICK_TARGET_AVX2 std::uint64_t Bits(__m256i bytes) {
  return static_cast<std::uint32_t>(_mm256_movemask_epi8(bytes));
}

HITWICK_TARGET_AVX2 __m256i WithoutMarkupAvx2(char* text) {
  __m256i* const place = reinterpret_cast<__m256i*>(text);
  const __m256i bytes = _mm256_loadu_si256(place);
  const __m256i markup = _mm256_or_si256(_mm256_or_si256(Equal(bytes, '"'), Equal(bytes, '\'')),
                                         _mm256_or_si256(Equal(bytes, '<'), Equal(bytes, '>')));
  if (_mm256_movemask_epi8(markup) == 0) return bytes;
  const __m256i replaced = _mm256_blendv_epi8(bytes, _mm256_set1_epi8('_'), markup);
  _mm256_storeu_si256(place, replaced);
  return replaced;
}

HITWICK_TARGET_AVX2 void MaskRunsAvx2(char* text, std::size_t runs, RunMasks* masks) {
  constexpr std::size_t kStep = sizeof(__m256i);
  for (std::size_t run = 0; run < runs; ++run, text += kRunBytes) {
    masks[run] = {0, 0};
    for (std::size_t at = 0; at < kRunBytes; at += kStep) {
      const __m256i bytes = WithoutMarkupAvx2(text + at);
      const __m256i feeds = Equal(bytes, '\n');
      masks[run].separators |= Bits(_mm256_or_si256(Equal(bytes, ' '), feeds)) << at;
      masks[run].feeds |= Bits(feeds) << at;
    }
  }
}
#endif

}  // namespace

std::vector<MaskRuns> MaskVersions() {
  std::vector<MaskRuns> versions = {MaskRunsPlainly, MaskRunsSse2};
#ifdef HITWICK_AVX2
  if (__builtin_cpu_supports("avx2")) versions.push_back(MaskRunsAvx2);
#endif
  return versions;
}

}  // namespace logread
