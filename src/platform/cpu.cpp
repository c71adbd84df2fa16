#include "platform/cpu.hpp"

#include <cpuid.h>

#include <cstdlib>
#include <cstring>

namespace orlix {
namespace {

constexpr bool HasAll(unsigned value, unsigned bits) { return (value & bits) == bits; }

// The register state that the operating system saves; 0 if that is unknown.
uint64_t SavedState() noexcept {
    unsigned a = 0, b = 0, c = 0, d = 0;
    if (!__get_cpuid(1, &a, &b, &c, &d) || !(c & bit_OSXSAVE)) return 0;
    unsigned low = 0, high = 0;
    __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return static_cast<uint64_t>(high) << 32 | low;
}

Cpu Detect() noexcept {
    constexpr uint64_t kYmm = 0x6, kZmm = 0xe6;  // SSE and AVX state; with it the mask registers and both parts of zmm
    const uint64_t saved = SavedState();
    unsigned a = 0, b = 0, c = 0, d = 0;
    if ((saved & kYmm) != kYmm || !__get_cpuid(1, &a, &b, &c, &d) ||
        !HasAll(c, bit_AVX | bit_FMA | bit_POPCNT | bit_PCLMUL))
        return Cpu::Sse2;
    if (!__get_cpuid_count(7, 0, &a, &b, &c, &d) || !HasAll(b, bit_AVX2 | bit_BMI | bit_BMI2)) return Cpu::Sse2;
    if ((saved & kZmm) != kZmm || !HasAll(b, bit_AVX512F | bit_AVX512BW | bit_AVX512VL | bit_AVX512DQ | bit_AVX512CD) ||
        !HasAll(c, bit_AVX512VBMI | bit_AVX512VBMI2 | bit_AVX512VPOPCNTDQ | bit_GFNI))
        return Cpu::Avx2;
    return Cpu::Avx512;
}

Cpu Capped(Cpu machine) noexcept {
    const char* wanted = std::getenv("ORLIX_VARIANT");
    if (!wanted) return machine;
    constexpr struct {
        const char* name;
        Cpu cpu;
    } kNames[] = {{"scalar", Cpu::Any}, {"sse2", Cpu::Sse2}, {"avx2", Cpu::Avx2}, {"avx512", Cpu::Avx512}};
    for (const auto& entry : kNames)
        if (std::strcmp(wanted, entry.name) == 0) return entry.cpu < machine ? entry.cpu : machine;
    return machine;
}

}  // namespace

Cpu CpuOfThisMachine() noexcept {
    static const Cpu cpu = Detect();
    return cpu;
}

Cpu CpuInUse() noexcept {
    static const Cpu cpu = Capped(CpuOfThisMachine());
    return cpu;
}

}  // namespace orlix
