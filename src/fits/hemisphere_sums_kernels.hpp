// Kernels for the sums over the pixels of a run that fits of hemispheres need, and their variants. All accept n = 0.
#pragma once

#include <cstddef>

#include "vectors/variants.hpp"

namespace orlix {

// Terms of the algebraic fit, see hemisphere_fit.hpp: u = column - xMiddle, t = z - zMiddle, w = u^2 + v^2, q = t^2.
struct AlgebraicRow {
    double vv, zMiddle;
    enum Term : size_t { kT, kUT, kWT, kQ, kQU, kQT, kQQ, kTerms };
};

// Terms of its residuals rw = w - (wOnU u + wOnV + wOnT t + wOnOne), where wOnV includes v, and rq, the same of q.
struct RestRow {
    double vv, zMiddle;
    double wOnU, wOnV, wOnT, wOnOne, qOnU, qOnV, qOnT, qOnOne;
    enum Term : size_t { kW, kWU, kWT, kWW, kQ, kQU, kQT, kQQ, kTerms };
};

// Terms of the tilted fit, see angled_hemisphere_fit.hpp note (2): X; phi = s / (1 + sqrt(1 - q s)) and its derivatives
// E with respect to s and M with respect to q; D = E (X - a); the residual R = f - z. kDX is the sum of D X.
struct CapRow {
    double perUnit;          // X = (column - xMiddle) perUnit
    double a, squareOfY, q;  // s = (X - a)^2 + squareOfY
    double phiOutside, mOutside;
    double base, slope, c, z;  // f - z = base + slope X - c phi - z
    enum Term : size_t {
        kD,
        kE,
        kM,
        kPhi,
        kR,
        kDD,
        kDE,
        kEE,
        kDM,
        kEM,
        kDPhi,
        kEPhi,
        kDX,
        kEX,
        kMM,
        kMPhi,
        kMX,
        kPhiPhi,
        kPhiX,
        kDR,
        kER,
        kMR,
        kPhiR,
        kXR,
        kRR,
        kTerms
    };
};

// Sums of the terms of a run: those of pixel i are added to lane i % 8, in order of i.
template <class Row>
struct LaneSums {
    double lane[Row::kTerms][8] = {};
    double Total(size_t term) const {
        const double(&s)[8] = lane[term];
        return ((s[0] + s[1]) + (s[2] + s[3])) + ((s[4] + s[5]) + (s[6] + s[7]));
    }
};

// Adds the terms of values[i], i = 0..n-1, at the columns first + step i to the lanes; first counts from xMiddle.
template <class Row>
using HemisphereSumsFn = void (*)(const Row& row, const double* values, size_t n, double first, double step,
                                  LaneSums<Row>& sums);
using AlgebraicSumsFn = HemisphereSumsFn<AlgebraicRow>;
using RestSumsFn = HemisphereSumsFn<RestRow>;
using CapSumsFn = HemisphereSumsFn<CapRow>;

Kernel<AlgebraicSumsFn> AlgebraicSums_scalar, AlgebraicSums_sse2, AlgebraicSums_avx2, AlgebraicSums_avx512;
Kernel<RestSumsFn> RestSums_scalar, RestSums_sse2, RestSums_avx2, RestSums_avx512;
Kernel<CapSumsFn> CapSums_scalar, CapSums_sse2, CapSums_avx2, CapSums_avx512;

inline constexpr Variant<AlgebraicSumsFn> kAlgebraicSums[] = {
    {"avx512", Cpu::Avx512, &AlgebraicSums_avx512},
    {"avx2", Cpu::Avx2, &AlgebraicSums_avx2},
    {"sse2", Cpu::Sse2, &AlgebraicSums_sse2},
    {"scalar", Cpu::Any, &AlgebraicSums_scalar},
};
inline constexpr Variant<RestSumsFn> kRestSums[] = {
    {"avx512", Cpu::Avx512, &RestSums_avx512},
    {"avx2", Cpu::Avx2, &RestSums_avx2},
    {"sse2", Cpu::Sse2, &RestSums_sse2},
    {"scalar", Cpu::Any, &RestSums_scalar},
};
inline constexpr Variant<CapSumsFn> kCapSums[] = {
    {"avx512", Cpu::Avx512, &CapSums_avx512},
    {"avx2", Cpu::Avx2, &CapSums_avx2},
    {"sse2", Cpu::Sse2, &CapSums_sse2},
    {"scalar", Cpu::Any, &CapSums_scalar},
};

}  // namespace orlix
