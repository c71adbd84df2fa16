#include "numerics/linear_system.hpp"

#include <cmath>
#include <optional>
#include <utility>

namespace orlix {
namespace {

double Norm(std::span<const double> entries) {
    double squares = 0;
    for (const double entry : entries) squares += entry * entry;
    return std::sqrt(squares);
}

double Product(const double* a, const double* b, size_t n) {
    double sum = 0;
    for (size_t i = 0; i < n; ++i) sum += a[i] * b[i];
    return sum;
}

void Rotate(double* a, double* b, size_t n, double cosine, double sine) {
    for (size_t i = 0; i < n; ++i) {
        const double old = a[i];
        a[i] = cosine * old - sine * b[i];
        b[i] = sine * old + cosine * b[i];
    }
}

}  // namespace

LuDecomposition::LuDecomposition(std::span<const double> matrix, size_t size) : size_(size) {
    for (size_t i = 0; i < size * size; ++i) lu_[i] = matrix[i];
    for (size_t i = 0; i < size; ++i) row_[i] = i;
    for (size_t k = 0; k < size; ++k) {
        size_t best = k;
        for (size_t i = k + 1; i < size; ++i)
            if (std::fabs(lu_[i * size + k]) > std::fabs(lu_[best * size + k])) best = i;
        if (best != k) {
            for (size_t j = 0; j < size; ++j) std::swap(lu_[k * size + j], lu_[best * size + j]);
            std::swap(row_[k], row_[best]);
        }
        double& pivot = lu_[k * size + k];
        if (!(pivot < 0) && !(pivot > 0)) pivot = 1e-20;
        for (size_t i = k + 1; i < size; ++i) {
            const double factor = lu_[i * size + k] / pivot;
            lu_[i * size + k] = factor;
            for (size_t j = k + 1; j < size; ++j) lu_[i * size + j] -= factor * lu_[k * size + j];
        }
    }
}

void LuDecomposition::Solve(std::span<const double> b, std::span<double> x) const {
    std::array<double, kMostUnknowns> y;
    for (size_t i = 0; i < size_; ++i) y[i] = b[row_[i]] - Product(&lu_[i * size_], y.data(), i);
    for (size_t i = size_; i-- > 0;) {
        double sum = y[i];
        for (size_t j = i + 1; j < size_; ++j) sum -= lu_[i * size_ + j] * x[j];
        x[i] = sum / lu_[i * size_ + i];
    }
}

double LuDecomposition::NormOfInverse() const {
    double squares = 0;
    for (size_t k = 0; k < size_; ++k) {
        std::array<double, kMostUnknowns> unit = {}, column = {};
        unit[k] = 1;
        Solve(unit, column);
        squares += Product(column.data(), column.data(), size_);
    }
    return std::sqrt(squares);
}

SingularValueDecomposition::SingularValueDecomposition(std::span<const double> matrix, size_t rows, size_t columns)
    : rows_(rows), columns_(columns) {
    constexpr double kOrthogonal = 0x1p-50;  // cosine of the angle between columns
    constexpr int kMostSweeps = 60;          // some ten are enough; NaN would never be
    for (size_t j = 0; j < columns; ++j) {
        for (size_t i = 0; i < rows; ++i) w_[j * rows + i] = matrix[i * columns + j];
        v_[j * columns + j] = 1;
    }
    bool rotated = true;
    for (int sweep = 0; rotated && sweep < kMostSweeps; ++sweep) {
        rotated = false;
        for (size_t p = 0; p + 1 < columns; ++p)
            for (size_t q = p + 1; q < columns; ++q) {
                double* const a = &w_[p * rows];
                double* const b = &w_[q * rows];
                const double aa = Product(a, a, rows), bb = Product(b, b, rows), ab = Product(a, b, rows);
                if (!(std::fabs(ab) > kOrthogonal * (std::sqrt(aa) * std::sqrt(bb)))) continue;
                rotated = true;
                const double zeta = (bb - aa) / (2 * ab);
                const double tangent = (zeta < 0 ? -1 : 1) / (std::fabs(zeta) + std::sqrt(1 + zeta * zeta));
                const double cosine = 1 / std::sqrt(1 + tangent * tangent);
                Rotate(a, b, rows, cosine, cosine * tangent);
                Rotate(&v_[p * columns], &v_[q * columns], columns, cosine, cosine * tangent);
            }
    }
    for (size_t j = 0; j < columns; ++j) {
        values_[j] = Norm({&w_[j * rows], rows});
        if (values_[j] * kSingularValueCut > cut_) cut_ = values_[j] * kSingularValueCut;
    }
}

size_t SingularValueDecomposition::Rank() const {
    size_t rank = 0;
    for (const double value : singularValues())
        if (value > cut_) ++rank;
    return rank;
}

void SingularValueDecomposition::Solve(std::span<const double> b, std::span<double> x) const {
    for (size_t i = 0; i < columns_; ++i) x[i] = 0;
    for (size_t j = 0; j < columns_; ++j) {
        if (!(values_[j] > cut_)) continue;
        const double share = Product(&w_[j * rows_], b.data(), rows_) / values_[j] / values_[j];
        for (size_t i = 0; i < columns_; ++i) x[i] += share * v_[j * columns_ + i];
    }
}

void SolveRefined(std::span<const DoublePair> matrix, std::span<const DoublePair> b, std::span<DoublePair> x) {
    constexpr double kWellConditioned = 1e11;
    constexpr int kMostSteps = 30;  // each gains at least a decimal digit of some 30
    const size_t size = x.size();
    std::array<double, kMostUnknowns * kMostUnknowns> entries;
    for (size_t i = 0; i < size * size; ++i) entries[i] = static_cast<double>(matrix[i]);
    const std::span<const double> rounded(entries.data(), size * size);

    const LuDecomposition lu(rounded, size);
    std::optional<SingularValueDecomposition> singular;
    if (!(Norm(rounded) * lu.NormOfInverse() < kWellConditioned)) singular.emplace(rounded, size, size);

    for (DoublePair& value : x) value = 0.0;
    double last = 0;
    for (int step = 0; step < kMostSteps; ++step) {
        std::array<double, kMostUnknowns> rest, change;
        for (size_t i = 0; i < size; ++i) {
            DoublePair sum = b[i];
            for (size_t j = 0; j < size; ++j) sum += -(matrix[i * size + j] * x[j]);
            rest[i] = static_cast<double>(sum);
        }
        if (singular)
            singular->Solve(rest, change);
        else
            lu.Solve(rest, change);
        const double length = Norm({change.data(), size});
        if (!(length > 0) || (step > 0 && !(length < 0.5 * last))) break;
        last = length;
        for (size_t i = 0; i < size; ++i) x[i] += DoublePair(change[i]);
    }
}

}  // namespace orlix
