#include "lp/network/block_scan.h"

#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace tovik::lp::network {
namespace {

BestArc go_on(const PricedArcs& arcs, int begin, int end, BestArc best) {
  for (int a = begin; a < end; ++a)
    if (const double gain = arcs.gain(a); gain > best.gain) best = {gain, a};
  return best;
}

BestArc one_by_one(const PricedArcs& arcs, int begin, int end, double floor) {
  return go_on(arcs, begin, end, {floor, kNoArc});
}

using Scan = BestArc (*)(const PricedArcs&, int, int, double);

#if defined(__x86_64__)
/* Registers of four lanes are no faster than one arc after the other: gathers take the time.
 * The best of some lanes, each with the first arc that is the best of its own. */
BestArc best_lane(const double* gain, const int* arc, int lanes) {
  BestArc best{gain[0], arc[0]};
  for (int k = 1; k < lanes; ++k)
    if (gain[k] > best.gain || (gain[k] == best.gain && arc[k] != kNoArc && arc[k] < best.arc))
      best = {gain[k], arc[k]};
  return best;
}

__attribute__((target("avx512f,avx512vl"))) BestArc by_eights(const PricedArcs& arcs, int begin, int end,
                                                              double floor) {
  __m512d best = _mm512_set1_pd(floor);
  __m256i best_at = _mm256_set1_epi32(kNoArc);
  __m256i here = _mm256_add_epi32(_mm256_set1_epi32(begin), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
  const __m256i eight = _mm256_set1_epi32(8);
  // Masked forms with full masks: of the others GCC 12 says that they read what was never set.
  constexpr __mmask8 kAll = 0xff;
  const __m512d none = _mm512_setzero_pd();
  int a = begin;
  for (; a + 8 <= end; a += 8) {
    const __m256i tail = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(arcs.tail + a));
    const __m256i head = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(arcs.head + a));
    const __m128i states = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(arcs.state + a));
    const __m512d state = _mm512_maskz_cvtepi32_pd(kAll, _mm256_cvtepi8_epi32(states));
    const __m512d from = _mm512_mask_i32gather_pd(none, kAll, tail, arcs.potential, 8);
    const __m512d to = _mm512_mask_i32gather_pd(none, kAll, head, arcs.potential, 8);
    const __m512d drop = _mm512_sub_pd(_mm512_sub_pd(from, to), _mm512_loadu_pd(arcs.cost + a));
    const __m512d gain = _mm512_mul_pd(state, drop);
    const __mmask8 better = _mm512_cmp_pd_mask(gain, best, _CMP_GT_OQ);
    best = _mm512_mask_mov_pd(best, better, gain);
    best_at = _mm256_mask_mov_epi32(best_at, better, here);
    here = _mm256_add_epi32(here, eight);
  }
  double gain[8];
  int arc[8];
  _mm512_storeu_pd(gain, best);
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(arc), best_at);
  return go_on(arcs, a, end, best_lane(gain, arc, 8));
}

Scan fastest() {
  const bool has_wide_gathers =
      __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512vl") != 0;
  return has_wide_gathers ? by_eights : one_by_one;
}
#else
Scan fastest() {
  return one_by_one;
}
#endif

const Scan kScan = fastest();

}  // namespace

BestArc best_arc(const PricedArcs& arcs, int begin, int end, double floor) {
  return kScan(arcs, begin, end, floor);
}

}  // namespace tovik::lp::network
