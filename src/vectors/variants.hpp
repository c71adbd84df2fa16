// How kernels are declared and chosen. A kernel has a type and a definition in its scalar file; all other variants
// equal the definition bit for bit:
//
//     template <class T>
//     using SumFn = void (*)(const T* pixels, size_t n, uint64_t& sum);
//     template <class T>
//     void Sum_scalar(const T* pixels, size_t n, uint64_t& sum);     // sum_scalar.cpp
//
// The variants for an instruction set are functions for one pixel type each, or a template like the definition:
//
//     Kernel<SumFn<uint8_t>> Sum_avx2;                       // sum_avx2.cpp
//     Kernel<SumFn<uint16_t>> Sum_avx2;
//
// The file of a template ends with its instances: template Kernel<SumFn<uint8_t>> Sum_scalar;
//
// One table names the variants, best first. Dispatch, tests and benchmarks read the same table:
//
//     template <class T>
//     inline constexpr Variant<SumFn<T>> kSum[] = {
//         {"avx2", Cpu::Avx2, &Sum_avx2},
//         {"scalar", Cpu::Any, &Sum_scalar},
//     };
//     const SumFn<T> sum = Choose(kSum<T>);                  // once per image, not per row
#pragma once

#include <cstddef>
#include <span>
#include <type_traits>

#include "platform/cpu.hpp"

namespace orlix {

// The function type that the pointer type Fn points to.
template <class Fn>
using Kernel = std::remove_pointer_t<Fn>;

template <class Fn>
struct Variant {
    const char* name;
    Cpu cpu;
    Fn fn;
};

// The variants that a processor can run, best first. Every table ends with a variant for Cpu::Any.
template <class Fn>
std::span<const Variant<Fn>> SupportedBy(Cpu cpu, std::span<const Variant<Fn>> table) noexcept {
    while (table.size() > 1 && table.front().cpu > cpu) table = table.subspan(1);
    return table;
}
template <class Fn, size_t N>
std::span<const Variant<Fn>> SupportedBy(Cpu cpu, const Variant<Fn> (&table)[N]) noexcept {
    return SupportedBy(cpu, std::span<const Variant<Fn>>(table));
}

// For tests and benchmarks; ignores ORLIX_VARIANT.
template <class Fn>
std::span<const Variant<Fn>> SupportedOnThisCpu(std::span<const Variant<Fn>> table) noexcept {
    return SupportedBy(CpuOfThisMachine(), table);
}
template <class Fn, size_t N>
std::span<const Variant<Fn>> SupportedOnThisCpu(const Variant<Fn> (&table)[N]) noexcept {
    return SupportedBy(CpuOfThisMachine(), table);
}

template <class Fn>
const Variant<Fn>& ChosenVariant(std::span<const Variant<Fn>> table) noexcept {
    return SupportedBy(CpuInUse(), table).front();
}
template <class Fn, size_t N>
const Variant<Fn>& ChosenVariant(const Variant<Fn> (&table)[N]) noexcept {
    return ChosenVariant(std::span<const Variant<Fn>>(table));
}

template <class Fn>
Fn Choose(std::span<const Variant<Fn>> table) noexcept {
    return ChosenVariant(table).fn;
}
template <class Fn, size_t N>
Fn Choose(const Variant<Fn> (&table)[N]) noexcept {
    return ChosenVariant(table).fn;
}

}  // namespace orlix
