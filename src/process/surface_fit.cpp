#include "process/surface_fit.hpp"

#include <algorithm>
#include <cmath>

#include "process/moments_kernels.hpp"

namespace orlix {
namespace {

constexpr int32_t kRowsOfTile = 64;

// Sums of t^k over the n odd or even t from -(n - 1) to n - 1, for even k up to `degree`.
void AddCentredPowers(double n, int degree, DoublePair* m) {
    const DoublePair square = ExactProduct(n, n);
    const DoublePair cube = (square - 1.0) * n;  // n (n^2 - 1)
    for (int k = 0; k <= degree; ++k) m[k] = 0.0;
    m[0] = n;
    if (degree >= 2) m[2] = cube / 3;
    if (degree >= 4) m[4] = cube * (square * 3 - 7.0) / 15;
    if (degree >= 6) m[6] = cube * ((square * 3 - 18.0) * square + 31.0) / 21;
}

void Scale(DoublePair* m, int degree, double scale) {
    double power = 1;
    for (int k = 1; k <= degree; ++k) m[k] *= power *= scale;
}

template <class T>
auto ChooseMoments(int degree) {
    if constexpr (std::is_same_v<T, float>)
        return degree == 1   ? Choose(kFloatMoments<1>)
               : degree == 2 ? Choose(kFloatMoments<2>)
                             : Choose(kFloatMoments<3>);
    else
        return degree == 1 ? Choose(kMoments<T, 1>) : degree == 2 ? Choose(kMoments<T, 2>) : Choose(kMoments<T, 3>);
}

}  // namespace

PixelBounds BoundsOf(const RegionRows& rows) {
    PixelBounds bounds;
    for (int32_t y = rows.top(); y <= rows.bottom(); ++y) {
        const std::span<const Run> runs = rows.row(y);
        if (runs.empty()) continue;
        if (bounds.empty()) bounds = {runs.front().start, y, runs.back().stop, y};
        bounds.left = std::min(bounds.left, runs.front().start);
        bounds.right = std::max(bounds.right, runs.back().stop);
        bounds.bottom = y;
    }
    return bounds;
}

NormalEquations::NormalEquations(int degree, const RegionRows& rows, const PixelBounds& bounds)
    : degree_(degree), frame_(bounds.left, bounds.top, bounds.right, bounds.bottom) {
    // Rows that are one run, the same in each, are added together.
    Run same = {0, -1};
    int32_t first = bounds.top;
    for (int32_t y = bounds.top; y <= bounds.bottom; ++y) {
        const std::span<const Run> runs = rows.row(y);
        if (runs.size() == 1 && runs[0] == same) continue;
        if (same.length() > 0) AddRectangle(same, first, y - 1);
        same = {0, -1};
        if (runs.size() == 1) {
            same = runs[0];
            first = y;
        } else {
            for (const Run run : runs) AddRectangle(run, y, y);
        }
    }
    if (same.length() > 0) AddRectangle(same, first, bounds.bottom);
}

void NormalEquations::AddRectangle(Run columns, int32_t top, int32_t bottom) {
    const int degree = 2 * degree_;
    DoublePair x[7], y[7];
    AddCentredPowers(static_cast<double>(columns.length()), degree, x);
    Scale(x, degree, 1 / frame_.width());
    ShiftMoments(x, degree, frame_.u(0.5 * (static_cast<double>(columns.start) + columns.stop)));
    AddCentredPowers(static_cast<double>(bottom) - top + 1, degree, y);
    Scale(y, degree, 1 / frame_.height());
    ShiftMoments(y, degree, frame_.v(0.5 * (static_cast<double>(top) + bottom)));
    for (int q = 0; q <= degree; ++q)
        for (int p = 0; p + q <= degree; ++p) matrix_[MonomialIndex(p, q)] += x[p] * y[q];
}

void NormalEquations::AddMoments(DoublePair (&moments)[4][4], double uScale, double u, double vScale, double v) {
    for (int q = 0; q <= degree_; ++q) {
        Scale(moments[q], degree_ - q, uScale);
        ShiftMoments(moments[q], degree_ - q, u);
    }
    for (int p = 0; p <= degree_; ++p) {
        DoublePair column[4];
        for (int q = 0; p + q <= degree_; ++q) column[q] = moments[q][p];
        Scale(column, degree_ - p, vScale);
        ShiftMoments(column, degree_ - p, v);
        for (int q = 0; p + q <= degree_; ++q) right_[MonomialIndex(p, q)] += column[q];
    }
}

bool NormalEquations::finite() const {
    return std::all_of(right_.begin(), right_.end(), [](const DoublePair& sum) { return std::isfinite(sum.high); });
}

SurfacePolynomial NormalEquations::Solve(double origin) const {
    const size_t unknowns = NumberOfMonomials(degree_);
    std::array<DoublePair, kMostUnknowns * kMostUnknowns> matrix;
    for (int q = 0; q <= degree_; ++q)
        for (int p = 0; p + q <= degree_; ++p)
            for (int s = 0; s <= degree_; ++s)
                for (int r = 0; r + s <= degree_; ++r)
                    matrix[MonomialIndex(p, q) * unknowns + MonomialIndex(r, s)] = matrix_[MonomialIndex(p + r, q + s)];
    const double count = static_cast<double>(matrix_[0]);
    std::array<DoublePair, kMostUnknowns> solution;
    SolveRefined({matrix.data(), unknowns * unknowns}, {right_.data(), unknowns},
                 count < static_cast<double>(unknowns) ? Road::SingularValues : Road::Either,
                 {solution.data(), unknowns});
    solution[0] += DoublePair(origin);
    SurfacePolynomial surface = frame_.InPixels(degree_, solution);
    surface.average = static_cast<double>(DoublePair(origin) + right_[0] / count);
    return surface;
}

template <class T>
SurfaceFitter<T>::SurfaceFitter(int degree, const RegionRows& rows, const PixelBounds& bounds)
    : moments_(ChooseMoments<T>(degree)),
      degree_(degree),
      bounds_(bounds),
      top_(bounds.top),
      tiles_(kFloat ? 1 : static_cast<size_t>(bounds.right - bounds.left) / kMostOfMoments<T> + 1),
      equations_(degree, rows, bounds) {}

template <class T>
void SurfaceFitter<T>::operator()(const T* pixels, size_t n, int32_t x, int32_t y) {
    if (y - top_ >= kRowsOfTile) {
        Flush();
        top_ = y;
    }
    if constexpr (kFloat) {
        if (!started_ && n > 0 && std::isfinite(pixels[0])) origin_ = static_cast<double>(pixels[0]);
        started_ = true;
        FloatMoments lanes;
        moments_(pixels, n, origin_, 2.0 * x - (static_cast<double>(bounds_.left) + bounds_.right), lanes);
        double m[4] = {};
        for (int p = 0; p <= degree_; ++p) {
            const double(&s)[8] = lanes.lane[p];
            m[p] = ((s[0] + s[1]) + (s[2] + s[3])) + ((s[4] + s[5]) + (s[6] + s[7]));
        }
        Add(tiles_[0], m, y);
    } else {
        size_t column = static_cast<size_t>(x - bounds_.left);
        while (n > 0) {
            const size_t within = column % kMostOfMoments<T>;
            const size_t part = std::min(n, kMostOfMoments<T> - within);
            uint64_t m[4];
            moments_(pixels, part, m);
            if (within > 0) ShiftMoments(m, degree_, uint64_t{within});
            Add(tiles_[column / kMostOfMoments<T>], m, y);
            pixels += part;
            column += part;
            n -= part;
        }
    }
}

template <class T>
void SurfaceFitter<T>::Add(Tile& tile, const Sum (&m)[4], int32_t y) {
    const Sum j = static_cast<Sum>(y - top_);
    Sum power = 1;
    for (int q = 0; q <= degree_; ++q, power *= j)
        for (int p = 0; p + q <= degree_; ++p) tile.sums[q][p] += power * m[p];
}

template <class T>
void SurfaceFitter<T>::Flush() {
    const SurfaceFrame& frame = equations_.frame();
    const double v = frame.v(top_), vScale = 2 / frame.height();
    for (size_t k = 0; k < tiles_.size(); ++k) {
        DoublePair moments[4][4];
        for (int q = 0; q <= degree_; ++q)
            for (int p = 0; p + q <= degree_; ++p) {
                const Sum sum = tiles_[k].sums[q][p];
                if constexpr (kFloat)
                    moments[q][p] = sum;
                else
                    moments[q][p] =
                        ExactSum(static_cast<double>(sum >> 32) * 0x1p32, static_cast<double>(sum & 0xffffffff));
            }
        if constexpr (kFloat)
            equations_.AddMoments(moments, 1 / frame.width(), 0.0, vScale, v);
        else
            equations_.AddMoments(moments, 2 / frame.width(),
                                  frame.u(static_cast<double>(bounds_.left) +
                                          static_cast<double>(k) * static_cast<double>(kMostOfMoments<T>)),
                                  vScale, v);
        tiles_[k] = {};
    }
}

template <class T>
bool SurfaceFitter<T>::Finish(SurfacePolynomial& surface) {
    Flush();
    if (!equations_.finite()) return false;
    surface = equations_.Solve(origin_);
    return true;
}

template class SurfaceFitter<uint8_t>;
template class SurfaceFitter<uint16_t>;
template class SurfaceFitter<uint32_t>;
template class SurfaceFitter<float>;

}  // namespace orlix
