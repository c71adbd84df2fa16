// Sums over a run of pixels of any type, for the fits of hemispheres.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <type_traits>

#include "fits/hemisphere_terms.hpp"

namespace orlix {

// Sums of the terms of n pixels at the columns first + step i, i = 0..n-1; T is a pixel type, or double. A single pixel
// gives its terms: the lanes would add only zeros to them.
template <class T, class Row>
std::array<double, Row::kTerms> SumsOfRun(HemisphereSumsFn<Row> add, const Row& row, const T* run, size_t n,
                                          double first, double step) {
    std::array<double, Row::kTerms> total;
    if (n == 1) {
        double term[Row::kTerms];
        TermsOf<OneDouble>(row, first, static_cast<double>(run[0]), term);
        std::copy_n(term, Row::kTerms, total.begin());
        return total;
    }
    LaneSums<Row> sums;
    if constexpr (std::is_same_v<T, double>) {
        add(row, run, n, first, step, sums);
    } else {
        constexpr size_t kPiece = 512;  // a multiple of the lanes; stays in the L1 cache
        double values[kPiece];
        for (size_t done = 0; done < n; done += kPiece) {
            const size_t part = std::min(n - done, kPiece);
            for (size_t i = 0; i < part; ++i) values[i] = static_cast<double>(run[done + i]);
            add(row, values, part, first + step * static_cast<double>(done), step, sums);
        }
    }
    for (size_t j = 0; j < Row::kTerms; ++j) total[j] = sums.Total(j);
    return total;
}

// n equidistant columns about their middle c: the sums of (column - c)^2 and (column - c)^4.
struct SpreadOfColumns {
    double squares, fourths;
    SpreadOfColumns(size_t count, double step) {
        const double n = static_cast<double>(count), nn = n * n, unit = step * step;
        squares = n * (nn - 1) / 12 * unit;
        fourths = squares * (3 * nn - 7) / 20 * unit;
    }
};

}  // namespace orlix
