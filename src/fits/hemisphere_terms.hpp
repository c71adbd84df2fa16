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

// The first terms, and X. With root = sqrt(1 - q s): phi = s / (1 + root), E = 1 / (2 root), M = s phi / (2 root (1 +
// root)), all from one quotient. Near the rim, E and M are those at a root of 1 / 64; outside, phi is 1 / q.
constexpr size_t kCapX = 5, kCapFactors = 6;
template <class D, class V = typename D::Vector>
ORLIX_INLINE void FactorsOf(const CapRow& row, const V& u, const V& z, V (&factor)[kCapFactors]) {
    const V zero = D::All(0.0), one = D::All(1.0);
    const V x = u * D::All(row.perUnit), d = x - D::All(row.a);
    const V s = d * d + D::All(row.squareOfY), square = one - D::All(row.q) * s;
    const V root = D::Root(D::Larger(square, zero)), more = one + root;
    const V steep = D::Larger(root, D::All(1.0 / 64)), twice = steep + steep;
    const V quotient = one / (twice * more);
    const V phi = D::WherePositive(square, s * (twice * quotient), D::All(row.phiOutside));
    const V e = D::WherePositive(square, more * quotient, zero);
    factor[CapRow::kD] = e * d;
    factor[CapRow::kE] = e;
    factor[CapRow::kM] = D::WherePositive(square, s * phi * quotient, D::All(row.mOutside));
    factor[CapRow::kPhi] = phi;
    factor[CapRow::kR] = ((D::All(row.base) + D::All(row.slope) * x) - D::All(row.c) * phi) - (z - D::All(row.z));
    factor[kCapX] = x;
}

// The factors of the terms from kDD on.
constexpr size_t kCapPairs[][2] = {
    {CapRow::kD, CapRow::kD},     {CapRow::kD, CapRow::kE},   {CapRow::kE, CapRow::kE},   {CapRow::kD, CapRow::kM},
    {CapRow::kE, CapRow::kM},     {CapRow::kD, CapRow::kPhi}, {CapRow::kE, CapRow::kPhi}, {CapRow::kD, kCapX},
    {CapRow::kE, kCapX},          {CapRow::kM, CapRow::kM},   {CapRow::kM, CapRow::kPhi}, {CapRow::kM, kCapX},
    {CapRow::kPhi, CapRow::kPhi}, {CapRow::kPhi, kCapX},      {CapRow::kD, CapRow::kR},   {CapRow::kE, CapRow::kR},
    {CapRow::kM, CapRow::kR},     {CapRow::kPhi, CapRow::kR}, {kCapX, CapRow::kR},        {CapRow::kR, CapRow::kR}};

template <class D, class V = typename D::Vector>
ORLIX_INLINE void TermsOf(const CapRow& row, const V& u, const V& z, V (&term)[CapRow::kTerms]) {
    V factor[kCapFactors];
    FactorsOf<D>(row, u, z, factor);
    for (size_t j = 0; j < CapRow::kDD; ++j) term[j] = factor[j];
    for (size_t j = CapRow::kDD; j < CapRow::kTerms; ++j)
        term[j] = factor[kCapPairs[j - CapRow::kDD][0]] * factor[kCapPairs[j - CapRow::kDD][1]];
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

// Adds the terms Begin <= j < End of the pixels to the lanes from `part` on, as many as a vector has.
template <class D, size_t Begin, size_t End>
ORLIX_INLINE void AddCapTerms(const double (&factors)[kCapFactors][128], size_t part, size_t pixels,
                              LaneSums<CapRow>& sums) {
    using V = typename D::Vector;
    V sum[End - Begin];
#pragma GCC unroll 32
    for (size_t j = Begin; j < End; ++j) sum[j - Begin] = D::Load(sums.lane[j] + part);
    for (size_t i = part; i < pixels; i += 8) {
        V factor[kCapFactors];
#pragma GCC unroll 8
        for (size_t f = 0; f < kCapFactors; ++f) factor[f] = D::Load(factors[f] + i);
#pragma GCC unroll 32
        for (size_t j = Begin; j < End; ++j)
            if (j < CapRow::kDD)
                sum[j - Begin] = sum[j - Begin] + factor[j];
            else
                sum[j - Begin] =
                    sum[j - Begin] + factor[kCapPairs[j - CapRow::kDD][0]] * factor[kCapPairs[j - CapRow::kDD][1]];
    }
#pragma GCC unroll 32
    for (size_t j = Begin; j < End; ++j) D::Store(sums.lane[j] + part, sum[j - Begin]);
}

// In two steps, 128 pixels at a time: the factors, because roots and quotients would keep their products waiting; then
// the products, no more sums at once than there are registers.
template <class D>
ORLIX_INLINE size_t AddTerms(const CapRow& row, const double* values, size_t n, double first, double step,
                             LaneSums<CapRow>& sums) {
    using V = typename D::Vector;
    alignas(16) double factors[kCapFactors][128];
    V at = D::All(first) + D::Counting() * D::All(step);
    const V next = D::All(static_cast<double>(D::kLanes) * step);
    size_t i = 0;
    while (i + 8 <= n) {
        const size_t pixels = n - i < 128 ? (n - i) / 8 * 8 : 128;
        for (size_t k = 0; k < pixels; k += D::kLanes) {
            V factor[kCapFactors];
            FactorsOf<D>(row, at, D::Load(values + i + k), factor);
            for (size_t f = 0; f < kCapFactors; ++f) D::Store(factors[f] + k, factor[f]);
            at = at + next;
        }
        for (size_t part = 0; part < 8; part += D::kLanes)
            if constexpr (D::kLanes == 8) {
                AddCapTerms<D, 0, 25>(factors, part, pixels, sums);
            } else {
                AddCapTerms<D, 0, 9>(factors, part, pixels, sums);
                AddCapTerms<D, 9, 17>(factors, part, pixels, sums);
                AddCapTerms<D, 17, 25>(factors, part, pixels, sums);
            }
        i += pixels;
    }
    return i;
}

}  // namespace
}  // namespace orlix
