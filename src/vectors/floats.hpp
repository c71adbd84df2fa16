// Vectors of floats for kernels that compute one formula with every instruction set. floats_sse2.hpp, floats_avx2.hpp
// and floats_avx512.hpp define WideFloats; a suffixed file includes the one with its suffix. Their functions:
//
//     using Vector;                              has + - *
//     static constexpr size_t kLanes;            floats per vector
//     static Vector Load(p), All(f), Counting(); kLanes pixels from p on, exactly; the same in all lanes; 0, 1, 2, ...
//     static void Store(p, v);
//     static Vector Magnitude(v), Smaller(a, b); Smaller is b where either is NaN
//
// Load reads bytes, words or floats.
#pragma once

#include <cstddef>
#include <cstdint>

#include "vectors/inline.hpp"
