#include "binary/plane_kernels.hpp"
#include "vectors/intrinsics_avx512.hpp"

namespace orlix {

void OrWords_avx512(uint64_t* to, const uint64_t* from, size_t words) {
    for (size_t i = 0; i < words; i += 8) {
        const auto there = static_cast<__mmask8>(words - i < 8 ? (1u << (words - i)) - 1 : 0xffu);
        const __m512i a = _mm512_maskz_loadu_epi64(there, to + i), b = _mm512_maskz_loadu_epi64(there, from + i);
        _mm512_mask_storeu_epi64(to + i, there, _mm512_or_si512(a, b));
    }
}

void OrMoved_avx512(uint64_t* to, const uint64_t* from, size_t words, int n) {
    const __m128i right = _mm_cvtsi32_si128(n), left = _mm_cvtsi32_si128(64 - n);
    for (size_t i = 0; i < words; i += 8) {
        const auto there = static_cast<__mmask8>(words - i < 8 ? (1u << (words - i)) - 1 : 0xffu);
        const __m512i stay = _mm512_srl_epi64(_mm512_maskz_loadu_epi64(there, from + i), right);
        const __m512i come = _mm512_sll_epi64(_mm512_maskz_loadu_epi64(there, from + i - 1), left);
        const __m512i was = _mm512_maskz_loadu_epi64(there, to + i);
        _mm512_mask_storeu_epi64(to + i, there, _mm512_ternarylogic_epi64(was, stay, come, 0xfe));
    }
}

void ChooseWords_avx512(const TableChoice* choices, size_t n, ChoiceWords& words) {
    for (size_t i = 0; i < n; ++i)
        for (size_t k = 0; k < kChoiceWords; k += 8) {
            const __m512i pixel = _mm512_load_si512(words.pixels[choices[i].pixel] + k);
            const __m512i set = _mm512_load_si512(words.values[choices[i].set] + k);
            const __m512i clear = _mm512_load_si512(words.values[choices[i].clear] + k);
            _mm512_store_si512(words.values[2 + i] + k, _mm512_ternarylogic_epi64(pixel, set, clear, 0xca));
        }
}

}  // namespace orlix
