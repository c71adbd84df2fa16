// <immintrin.h> for the AVX-512 files. GCC 12's own header leaves destinations of unmasked operations uninitialised on
// purpose and warns about it (GCC bug 105593).
#pragma once

#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#include <immintrin.h>
#pragma GCC diagnostic pop
#else
#include <immintrin.h>
#endif

#include <cstddef>
#include <cstdint>

namespace orlix {
namespace {  // used in several files of this instruction set: each keeps its own copy

// The pixels before the first whole cache line, as lanes of the vector that starts at their line. Vectors that straddle
// two lines take twice the loads and stores, and a masked store delays any load from its 64 bytes soon after, so this
// vector ends where the next one begins. Lanes outside the run are not accessed.
template <class T>
struct Head {
    size_t pixels;  // 0: the run starts at a line
    size_t firstLane;
    T* vector;
    Head(T* run, size_t n) {
        const auto address = reinterpret_cast<uintptr_t>(run);
        firstLane = address % 64 / sizeof(T);
        const size_t toNext = firstLane == 0 ? 0 : 64 / sizeof(T) - firstLane;
        pixels = toNext < n ? toNext : n;
        vector = reinterpret_cast<T*>(address - firstLane * sizeof(T));
    }
    uint64_t mask() const { return ((uint64_t{1} << pixels) - 1) << firstLane; }
};

}  // namespace
}  // namespace orlix
