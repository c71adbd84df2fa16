// Every hot kernel has one table of variants, best first. Dispatch, tests and benchmarks read the same table:
//
//     constexpr Variant<SumFn> kSum[] = {
//         {"avx2",   Cpu::Avx2, &Sum_avx2},
//         {"scalar", Cpu::Any,  &Sum_scalar},   // the definition: the others equal it bit for bit
//     };
//     const SumFn sum = Choose(kSum);           // once per image, not per row
#pragma once

#include <cstddef>
#include <span>

#include "platform/cpu.hpp"

namespace orlix {

template <class Fn>
struct Variant {
    const char* name;
    Cpu cpu;
    Fn fn;
};

// The best variants that a processor can run, best first. Every table ends with a variant for Cpu::Any.
template <class Fn, size_t N>
std::span<const Variant<Fn>> SupportedBy(Cpu cpu, const Variant<Fn> (&table)[N]) noexcept {
    size_t first = 0;
    while (first + 1 < N && table[first].cpu > cpu) ++first;
    return {table + first, N - first};
}

// For tests and benchmarks, whatever ORLIX_VARIANT says.
template <class Fn, size_t N>
std::span<const Variant<Fn>> SupportedOnThisCpu(const Variant<Fn> (&table)[N]) noexcept {
    return SupportedBy(CpuOfThisMachine(), table);
}

template <class Fn, size_t N>
const Variant<Fn>& ChosenVariant(const Variant<Fn> (&table)[N]) noexcept {
    return SupportedBy(CpuInUse(), table).front();
}

template <class Fn, size_t N>
Fn Choose(const Variant<Fn> (&table)[N]) noexcept {
    return ChosenVariant(table).fn;
}

}  // namespace orlix
