// Reference implementations of the sums for fits of hemispheres.
#include "fits/hemisphere_terms.hpp"

namespace orlix {
namespace {

template <class Row>
void Add(const Row& row, const double* values, size_t n, double first, double step, LaneSums<Row>& sums) {
    for (size_t i = 0; i < n; ++i) {
        double term[Row::kTerms];
        TermsOf<OneDouble>(row, first + step * static_cast<double>(i), values[i], term);
        for (size_t j = 0; j < Row::kTerms; ++j) sums.lane[j][i % 8] += term[j];
    }
}

}  // namespace

void AlgebraicSums_scalar(const AlgebraicRow& row, const double* values, size_t n, double first, double step,
                          LaneSums<AlgebraicRow>& sums) {
    Add(row, values, n, first, step, sums);
}
void RestSums_scalar(const RestRow& row, const double* values, size_t n, double first, double step,
                     LaneSums<RestRow>& sums) {
    Add(row, values, n, first, step, sums);
}
void CapSums_scalar(const CapRow& row, const double* values, size_t n, double first, double step,
                    LaneSums<CapRow>& sums) {
    Add(row, values, n, first, step, sums);
}

}  // namespace orlix
