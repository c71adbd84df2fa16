// The processor variants at work.
#pragma once

#include <span>

namespace orlix {

// All kernels of the module and the variant that each uses in this process, in a fixed order. Names are ASCII and
// static.
struct KernelInUse {
    const char* kernel;   // "threshold 8-bit"
    const char* variant;  // "avx2"
};
std::span<const KernelInUse> KernelsInUse();

}  // namespace orlix
