// The terms that the kernels of hemisphere_sums_kernels.hpp sum, of one pixel or of a vector of them.
#pragma once

#include "fits/hemisphere_sums_kernels.hpp"
#include "vectors/doubles.hpp"

namespace orlix {
namespace {  // used in files of every instruction set: each keeps its own copy

// D: OneDouble or WideDoubles. `u` is the column minus xMiddle.
template <class D, class V = typename D::Vector>
ORLIX_INLINE void TermsOf(const AlgebraicRow& row, const V& u, const V& z, V (&term)[AlgebraicRow::kTerms]) {
    const V t = z - D::All(row.zMiddle), q = t * t;
    term[AlgebraicRow::kT] = t;
    term[AlgebraicRow::kUT] = u * t;
    term[AlgebraicRow::kWT] = (u * u + D::All(row.vv)) * t;
    term[AlgebraicRow::kQ] = q;
    term[AlgebraicRow::kQU] = q * u;
    term[AlgebraicRow::kQT] = q * t;
    term[AlgebraicRow::kQQ] = q * q;
}

template <class D, class V = typename D::Vector>
ORLIX_INLINE void TermsOf(const RestRow& row, const V& u, const V& z, V (&term)[RestRow::kTerms]) {
    const V t = z - D::All(row.zMiddle);
    const V w = u * u + D::All(row.vv), q = t * t;
    const V rw = w - (((D::All(row.wOnU) * u + D::All(row.wOnV)) + D::All(row.wOnT) * t) + D::All(row.wOnOne));
    const V rq = q - (((D::All(row.qOnU) * u + D::All(row.qOnV)) + D::All(row.qOnT) * t) + D::All(row.qOnOne));
    term[RestRow::kW] = rw;
    term[RestRow::kWU] = rw * u;
    term[RestRow::kWT] = rw * t;
    term[RestRow::kWW] = rw * rw;
    term[RestRow::kQ] = rq;
    term[RestRow::kQU] = rq * u;
    term[RestRow::kQT] = rq * t;
    term[RestRow::kQQ] = rq * rq;
}

// With root = sqrt(1 - q s): phi = s / (1 + root), e = 1 / (2 root), m = s phi / (2 root (1 + root)), all from one
// quotient. Near the rim, e and m are those at a root of 1 / 64; outside, phi is 1 / q.
template <class D, class V = typename D::Vector>
ORLIX_INLINE void TermsOf(const CapRow& row, const V& u, const V& z, V (&term)[CapRow::kTerms]) {
    const V zero = D::All(0.0), one = D::All(1.0);
    const V x = u * D::All(row.perUnit), d = x - D::All(row.a);
    const V s = d * d + D::All(row.squareOfY), square = one - D::All(row.q) * s;
    const V root = D::Root(D::Larger(square, zero)), more = one + root;
    const V steep = D::Larger(root, D::All(1.0 / 64)), twice = steep + steep;
    const V quotient = one / (twice * more);
    const V phi = D::WherePositive(square, s * (twice * quotient), D::All(row.phiOutside));
    const V e = D::WherePositive(square, more * quotient, zero), eD = e * d;
    const V m = D::WherePositive(square, s * phi * quotient, D::All(row.mOutside));
    const V r = ((D::All(row.base) + D::All(row.slope) * x) - D::All(row.c) * phi) - (z - D::All(row.z));
    term[CapRow::kD] = eD;
    term[CapRow::kE] = e;
    term[CapRow::kM] = m;
    term[CapRow::kPhi] = phi;
    term[CapRow::kR] = r;
    term[CapRow::kDD] = eD * eD;
    term[CapRow::kDE] = eD * e;
    term[CapRow::kEE] = e * e;
    term[CapRow::kDM] = eD * m;
    term[CapRow::kEM] = e * m;
    term[CapRow::kDPhi] = eD * phi;
    term[CapRow::kEPhi] = e * phi;
    term[CapRow::kDX] = eD * x;
    term[CapRow::kEX] = e * x;
    term[CapRow::kMM] = m * m;
    term[CapRow::kMPhi] = m * phi;
    term[CapRow::kMX] = m * x;
    term[CapRow::kPhiPhi] = phi * phi;
    term[CapRow::kPhiX] = phi * x;
    term[CapRow::kDR] = eD * r;
    term[CapRow::kER] = e * r;
    term[CapRow::kMR] = m * r;
    term[CapRow::kPhiR] = phi * r;
    term[CapRow::kXR] = x * r;
    term[CapRow::kRR] = r * r;
}

// Whole groups of eight pixels, with kLanes of them in a vector; returns their number.
template <class D, class Row>
ORLIX_INLINE size_t AddTerms(const Row& row, const double* values, size_t n, double first, double step,
                             LaneSums<Row>& sums) {
    using V = typename D::Vector;
    constexpr size_t kParts = 8 / D::kLanes;
    V sum[kParts][Row::kTerms], at[kParts];
    for (size_t k = 0; k < kParts; ++k) {
        at[k] = D::All(first) + (D::All(static_cast<double>(k * D::kLanes)) + D::Counting()) * D::All(step);
#pragma GCC unroll 32
        for (size_t j = 0; j < Row::kTerms; ++j) sum[k][j] = D::Load(sums.lane[j] + k * D::kLanes);
    }
    const V next = D::All(8 * step);
    size_t i = 0;
    for (; i + 8 <= n; i += 8)
        for (size_t k = 0; k < kParts; ++k) {
            V term[Row::kTerms];
            TermsOf<D>(row, at[k], D::Load(values + i + k * D::kLanes), term);
#pragma GCC unroll 32
            for (size_t j = 0; j < Row::kTerms; ++j) sum[k][j] = sum[k][j] + term[j];
            at[k] = at[k] + next;
        }
    for (size_t k = 0; k < kParts; ++k)
#pragma GCC unroll 32
        for (size_t j = 0; j < Row::kTerms; ++j) D::Store(sums.lane[j] + k * D::kLanes, sum[k][j]);
    return i;
}

}  // namespace
}  // namespace orlix
