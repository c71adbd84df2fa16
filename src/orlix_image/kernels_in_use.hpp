// The processor variants in use.
#pragma once

#include <span>
#include <string>

namespace orlix {

// All kernels of the module and the variant that each one uses in this process, in a fixed order. Names are ASCII.
struct KernelInUse {
    std::string kernel;   // "threshold, 8 bits"
    const char* variant;  // "avx2"
};
std::span<const KernelInUse> KernelsInUse();

}  // namespace orlix
