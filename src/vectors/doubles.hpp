// Vectors of doubles for kernels that compute one formula with every instruction set. doubles_sse2.hpp,
// doubles_avx2.hpp and doubles_avx512.hpp define WideDoubles; a suffixed file includes the one with its suffix. Their
// functions, and those of OneDouble:
//
//     using Vector;                              has + - * /
//     static constexpr size_t kLanes;            doubles per vector
//     static Vector Load(p), All(d), Counting(); kLanes doubles from p on; the same in all lanes; 0, 1, 2, ...
//     static void Store(p, v);
//     static Vector Root(v), Larger(a, b);       Larger is b where either is NaN
//     static Vector WherePositive(v, a, b);      a where v > 0, else b
#pragma once

#include <cmath>
#include <cstddef>

#include "vectors/inline.hpp"

namespace orlix {
namespace {  // used in files of every instruction set: each keeps its own copy

struct OneDouble {
    using Vector = double;
    static constexpr size_t kLanes = 1;
    static double Load(const double* p) { return *p; }
    static void Store(double* p, double d) { *p = d; }
    static double All(double d) { return d; }
    static double Counting() { return 0; }
    static double Root(double d) { return std::sqrt(d); }
    static double Larger(double a, double b) { return a > b ? a : b; }
    static double WherePositive(double d, double a, double b) { return d > 0 ? a : b; }
};

}  // namespace
}  // namespace orlix
