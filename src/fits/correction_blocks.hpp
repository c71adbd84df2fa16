// 8-bit corrections in single precision, for kernels of every instruction set. Rounded shifts mostly follow from the
// polynomial in single precision, expanded about the middle of a segment of 1024 pixels, where it has an error of some
// 2^-16 grey levels. Only where a value comes closer to a half than the bound of that error may the definition round
// differently; such blocks are corrected by way of shifts in memory.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "fits/correction_kernels.hpp"

namespace orlix {
namespace {  // used in files of every instruction set: each keeps its own copy

constexpr size_t kSegment = 1024;
constexpr double kMiddle = 0.5 * (kSegment - 1), kRadius = 0.5 * kSegment;

// Taylor coefficients of a row's polynomial about t. Both the definition and these differ from the true polynomial by
// less than 2^-46 of the sum of its terms' magnitudes; in single precision, within kRadius, by less than `rounding` of
// the sum of the magnitudes of the expansion's terms.
struct Expansion {
    double a[4];
    double error;
    Expansion(const RowPolynomial& row, double t, double rounding) {
        const double(&c)[4] = row.c;
        const auto magnitude = [](const double(&terms)[4], double at) {
            return std::fabs(terms[0]) +
                   at * (std::fabs(terms[1]) + at * (std::fabs(terms[2]) + at * std::fabs(terms[3])));
        };
        a[0] = c[0] + t * (c[1] + t * (c[2] + t * c[3]));
        a[1] = c[1] + t * (2 * c[2] + t * (3 * c[3]));
        a[2] = c[2] + t * (3 * c[3]);
        a[3] = c[3];
        error = rounding * magnitude(a, kRadius) + 0x1p-46 * magnitude(c, std::fabs(t) + kRadius) + 0x1p-30;
    }
    // The magnitudes are then below 2^14, so shifts and shifted pixels fit in 16 bits. False for NaN.
    bool accurate() const { return error < 0x1p-8; }
};

// What single precision adds to the error of a polynomial of degree 3: 2^-24 for each coefficient and each rounded
// operation on the way of a term.
constexpr double kFusedRounding = 0x1p-22, kRounding = 0x1p-21;

// Corrects blocks of a segment, which start at its column `column`, up to the first with a value too close to a half;
// returns the number of pixels done.
using CorrectBlocksFn = size_t (*)(uint8_t* pixels, size_t n, const Expansion& expansion, size_t column,
                                   const CorrectionParameters<uint8_t>& parameters);

// blocks[d - 1] serves degree d, in blocks of `block` pixels.
inline void CorrectInBlocks(const CorrectBlocksFn (&blocks)[3], size_t block, double rounding, ShiftsFn fill,
                            CorrectFn<uint8_t> correct, uint8_t* pixels, size_t n, double x, const RowPolynomial& row,
                            const CorrectionParameters<uint8_t>& parameters) {
    const auto exactly = [&](size_t first, size_t count) {
        CorrectInPieces<uint8_t>(fill, correct, pixels + first, count, x + static_cast<double>(first), row, parameters);
    };
    if (parameters.lower > parameters.upper) return exactly(0, n);
    size_t i = 0;
    while (i + block <= n) {
        const size_t end = n - i < kSegment ? i + (n - i) / block * block : i + kSegment;
        const Expansion expansion(row, x + static_cast<double>(i) + kMiddle, rounding);
        if (!expansion.accurate()) {
            exactly(i, end - i);
        } else {
            const CorrectBlocksFn some = blocks[expansion.a[3] != 0 ? 2 : expansion.a[2] != 0 ? 1 : 0];
            for (size_t first = i; first < end; first += block) {
                first += some(pixels + first, end - first, expansion, first - i, parameters);
                if (first < end) exactly(first, block);
            }
        }
        i = end;
    }
    exactly(i, n - i);
}

}  // namespace
}  // namespace orlix
