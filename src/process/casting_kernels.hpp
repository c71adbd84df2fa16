// Kernels of casts and of the addition of another image, and their variants.
#pragma once

#include "process/casting.hpp"
#include "process/variants.hpp"

namespace orlix {

template <class To, class From>
using CastFn = void (*)(To* to, const From* from, size_t n);

template <class To, class From>
void Cast_scalar(To* to, const From* from, size_t n);
template <class To, class From>
void Plus_scalar(To* to, const From* from, size_t n);

template <class To, class From>
inline constexpr Variant<CastFn<To, From>> kCast[] = {{"scalar", Cpu::Any, &Cast_scalar}};
template <class To, class From>
inline constexpr Variant<CastFn<To, From>> kPlus[] = {{"scalar", Cpu::Any, &Plus_scalar}};

}  // namespace orlix
