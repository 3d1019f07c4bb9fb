#include "lp/network/block_scan.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace tovik::lp::network {
namespace {

LaneBests nothing_above(double floor) {
  LaneBests bests;
  bests.gain.fill(floor);
  bests.arc.fill(kNoArc);
  return bests;
}

void look_at(const PricedArcs& arcs, int a, std::size_t lane, LaneBests& bests) {
  if (const double gain = arcs.gain(a); gain > bests.gain[lane]) {
    bests.gain[lane] = gain;
    bests.arc[lane] = a;
  }
}

void finish(const PricedArcs& arcs, int a, int end, LaneBests& bests) {
  for (std::size_t lane = 0; a < end; ++a, ++lane) look_at(arcs, a, lane, bests);
}

using Scan = LaneBests (*)(const PricedArcs&, int, int, double);

LaneBests one_by_one(const PricedArcs& arcs, int begin, int end, double floor) {
  LaneBests bests = nothing_above(floor);
  int a = begin;
  for (; a + kLanes <= end; a += kLanes)
    for (int lane = 0; lane < kLanes; ++lane) look_at(arcs, a + lane, static_cast<std::size_t>(lane), bests);
  finish(arcs, a, end, bests);
  return bests;
}

#if defined(__x86_64__)
/* Registers of four lanes are no faster than one arc after the other, as gathers take the time; those of eight are. */
__attribute__((target("avx512f,avx512vl"))) LaneBests by_eights(const PricedArcs& arcs, int begin, int end,
                                                                double floor) {
  static_assert(kLanes == 8);
  // Masked forms with full masks: of the others GCC 12 says that they read what was never set.
  constexpr __mmask8 kAll = 0xff;
  const __m512d none = _mm512_setzero_pd();
  const __m256i eight = _mm256_set1_epi32(8);
  __m512d best = _mm512_set1_pd(floor);
  __m256i best_at = _mm256_set1_epi32(kNoArc);
  __m256i here = _mm256_add_epi32(_mm256_set1_epi32(begin), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
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
  LaneBests bests;
  _mm512_storeu_pd(bests.gain.data(), best);
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(bests.arc.data()), best_at);
  finish(arcs, a, end, bests);
  return bests;
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

int LaneBests::best_lane() const {
  int best = -1;
  for (int lane = 0; lane < kLanes; ++lane) {
    const auto k = static_cast<std::size_t>(lane), b = static_cast<std::size_t>(best);
    if (arc[k] == kNoArc) continue;
    if (best < 0 || gain[k] > gain[b] || (gain[k] == gain[b] && arc[k] < arc[b])) best = lane;
  }
  return best;
}

LaneBests best_arcs(const PricedArcs& arcs, int begin, int end, double floor) {
  return kScan(arcs, begin, end, floor);
}

}  // namespace tovik::lp::network
