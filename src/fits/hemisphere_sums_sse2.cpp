#include "vectors/doubles_sse2.hpp"

#include "fits/hemisphere_terms.hpp"

namespace orlix {

void AlgebraicSums_sse2(const AlgebraicRow& row, const double* values, size_t n, double first, double step,
                        LaneSums<AlgebraicRow>& sums) {
    const size_t done = AddTerms<WideDoubles>(row, values, n, first, step, sums);
    AlgebraicSums_scalar(row, values + done, n - done, first + step * static_cast<double>(done), step, sums);
}
void RestSums_sse2(const RestRow& row, const double* values, size_t n, double first, double step,
                   LaneSums<RestRow>& sums) {
    const size_t done = AddTerms<WideDoubles>(row, values, n, first, step, sums);
    RestSums_scalar(row, values + done, n - done, first + step * static_cast<double>(done), step, sums);
}
void CapSums_sse2(const CapRow& row, const double* values, size_t n, double first, double step,
                  LaneSums<CapRow>& sums) {
    const size_t done = AddTerms<WideDoubles>(row, values, n, first, step, sums);
    CapSums_scalar(row, values + done, n - done, first + step * static_cast<double>(done), step, sums);
}

}  // namespace orlix
