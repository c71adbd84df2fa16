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

// Without AVX2 the definitions are used; the compiler vectorises them with SSE2 for integers.
template <class To, class From>
inline constexpr Variant<CastFn<To, From>> kCast[] = {
    {"avx512", Cpu::Avx512, &Cast_avx512},
    {"avx2", Cpu::Avx2, &Cast_avx2},
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

}  // namespace orlix
