#include <immintrin.h>

#include "binary/plane_kernels.hpp"

namespace orlix {
namespace {

__m256i Load(const uint64_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
void Store(uint64_t* p, __m256i v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }

}  // namespace

void OrWords_avx2(uint64_t* to, const uint64_t* from, size_t words) {
    size_t i = 0;
    for (; i + 4 <= words; i += 4) Store(to + i, _mm256_or_si256(Load(to + i), Load(from + i)));
    if (i < words) OrWords_scalar(to + i, from + i, words - i);
}

void OrMoved_avx2(uint64_t* to, const uint64_t* from, size_t words, int n) {
    const __m128i right = _mm_cvtsi32_si128(n), left = _mm_cvtsi32_si128(64 - n);
    size_t i = 0;
    for (; i + 4 <= words; i += 4) {
        const __m256i moved =
            _mm256_or_si256(_mm256_srl_epi64(Load(from + i), right), _mm256_sll_epi64(Load(from + i - 1), left));
        Store(to + i, _mm256_or_si256(Load(to + i), moved));
    }
    if (i < words) OrMoved_scalar(to + i, from + i, words - i, n);
}

void ChooseWords_avx2(const TableChoice* choices, size_t n, ChoiceWords& words) {
    for (size_t i = 0; i < n; ++i)
        for (size_t k = 0; k < kChoiceWords; k += 4) {
            const __m256i pixel = Load(words.pixels[choices[i].pixel] + k);
            const __m256i set = _mm256_and_si256(pixel, Load(words.values[choices[i].set] + k));
            const __m256i clear = _mm256_andnot_si256(pixel, Load(words.values[choices[i].clear] + k));
            Store(words.values[2 + i] + k, _mm256_or_si256(set, clear));
        }
}

}  // namespace orlix
