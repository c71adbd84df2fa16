// Kernels that cast pixels or add another image, and their variants.
#pragma once

#include "points/casting.hpp"
#include "vectors/variants.hpp"

namespace orlix {

template <class To, class From>
using CastFn = void (*)(To* to, const From* from, size_t n);

template <class To, class From>
void Cast_scalar(To* to, const From* from, size_t n);
template <class To, class From>
void Plus_scalar(To* to, const From* from, size_t n);

template <class To, class From>
void Cast_avx2(To* to, const From* from, size_t n);
template <class To, class From>
void Cast_avx512(To* to, const From* from, size_t n);
template <class To, class From>
void Plus_avx2(To* to, const From* from, size_t n);
template <class To, class From>
void Plus_avx512(To* to, const From* from, size_t n);

template <class To>
void Cast_sse2(To* to, const float* from, size_t n);
template <class To>
void Plus_sse2(To* to, const float* from, size_t n);

// Without AVX2 the definitions are used for integers, which the compiler vectorises with SSE2.
template <class To, class From>
inline constexpr Variant<CastFn<To, From>> kCast[] = {
    {"avx512", Cpu::Avx512, &Cast_avx512},
    {"avx2", Cpu::Avx2, &Cast_avx2},
    {"scalar", Cpu::Any, &Cast_scalar},
};
template <class To>
requires std::is_integral_v<To>
inline constexpr Variant<CastFn<To, float>> kCast<To, float>[] = {
    {"avx512", Cpu::Avx512, &Cast_avx512},
    {"avx2", Cpu::Avx2, &Cast_avx2},
    {"sse2", Cpu::Sse2, &Cast_sse2},
    {"scalar", Cpu::Any, &Cast_scalar},
};
// A copy.
template <class T>
inline constexpr Variant<CastFn<T, T>> kCast<T, T>[] = {{"scalar", Cpu::Any, &Cast_scalar}};

template <class To, class From>
inline constexpr Variant<CastFn<To, From>> kPlus[] = {
    {"avx512", Cpu::Avx512, &Plus_avx512},
    {"avx2", Cpu::Avx2, &Plus_avx2},
    {"scalar", Cpu::Any, &Plus_scalar},
};
template <class To>
requires std::is_integral_v<To>
inline constexpr Variant<CastFn<To, float>> kPlus<To, float>[] = {
    {"avx512", Cpu::Avx512, &Plus_avx512},
    {"avx2", Cpu::Avx2, &Plus_avx2},
    {"sse2", Cpu::Sse2, &Plus_sse2},
    {"scalar", Cpu::Any, &Plus_scalar},
};

}  // namespace orlix
