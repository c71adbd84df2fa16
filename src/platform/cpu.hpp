// The instruction sets that kernels may use in this process.
#pragma once

#include <cstdint>

namespace orlix {

// In ascending order: a processor that offers one offers all before it.
//   Any     what the build's baseline guarantees (SSE2 arithmetic in 32-bit builds too)
//   Sse2    the same processors; names variants that are written with SSE2 vectors
//   Avx2    AVX2, FMA, BMI1, BMI2, POPCNT, PCLMULQDQ, and an operating system that saves 256-bit registers
//   Avx512  AVX-512 F, BW, VL, DQ, CD, VBMI, VBMI2, VPOPCNTDQ, GFNI (Ice Lake, Zen 4 and later); saved 512-bit state
enum class Cpu : uint8_t { Any, Sse2, Avx2, Avx512 };

// The best instruction set of this machine.
Cpu CpuOfThisMachine() noexcept;

// The best instruction set for dispatch: CpuOfThisMachine(), or less if the environment variable ORLIX_VARIANT is
// scalar, sse2, avx2 or avx512 at the first call. Other values, and those beyond the machine, change nothing.
Cpu CpuInUse() noexcept;

}  // namespace orlix
