#include "fits/surface_fit.hpp"

#include <algorithm>
#include <cmath>
#include <span>

#include "fits/moments_kernels.hpp"

namespace orlix {
namespace {

constexpr int32_t kRowsOfTile = 64;

// Sums of t^k over the n odd or even t from -(n - 1) to n - 1, for even k up to `degree`.
void CentredPowers(double n, int degree, DoublePair* m) {
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

// Converts moments m[q][p] of columns i and rows j to moments of u = uScale i + u, v = vScale j + v and adds them to
// sums.
template <size_t N>
void AddMapped(DoublePair (&m)[N][N], int degree, double uScale, double u, double vScale, double v,
               std::span<DoublePair> sums) {
    for (int q = 0; q <= degree; ++q) {
        Scale(m[q], degree - q, uScale);
        ShiftMoments(m[q], degree - q, u);
    }
    for (int p = 0; p <= degree; ++p) {
        DoublePair column[N];
        for (int q = 0; p + q <= degree; ++q) column[q] = m[q][p];
        Scale(column, degree - p, vScale);
        ShiftMoments(column, degree - p, v);
        for (int q = 0; p + q <= degree; ++q) sums[MonomialIndex(p, q)] += column[q];
    }
}

DoublePair ToPair(uint64_t value) {
    return ExactSum(static_cast<double>(value >> 32) * 0x1p32, static_cast<double>(value & 0xffffffff));
}

// Sums of i^p over i < k, k <= 256. 64 rows of the largest one stay below 2^60.
constexpr int32_t kCell = 256;
struct IndexPowerSums {
    uint64_t of[7][kCell + 1] = {};
    constexpr IndexPowerSums() {
        for (uint64_t i = 0; i < kCell; ++i)
            for (uint64_t p = 0, power = 1; p < 7; ++p, power *= i) of[p][i + 1] = of[p][i] + power;
    }
};
constexpr IndexPowerSums kIndexPowerSums;

// Sums of u^p v^q over the pixels of a region. Rectangles of many rows are summed in closed form. Any other
// run is cut at every 256th column: its ends go into exact integer sums of cells of 64 rows, the whole cells between
// them into rectangles.
class CoordinateSums {
public:
    CoordinateSums(int degree, const SurfaceFrame& frame, const PixelBounds& bounds, std::span<DoublePair> sums)
        : degree_(degree),
          frame_(frame),
          bounds_(bounds),
          sums_(sums),
          top_(bounds.top),
          cells_(static_cast<size_t>(bounds.right - bounds.left) / kCell + 1) {}

    void Add(const RegionRows& rows) {
        Block same;  // rows of a single run, identical in each
        for (int32_t y = bounds_.top; y <= bounds_.bottom; ++y) {
            const std::span<const Run> runs = rows.row(y);
            if (runs.size() == 1 && same.Grow(runs[0], y)) continue;
            AddBlock(same);
            same = {};
            if (runs.size() == 1) {
                same = {runs[0], y, y};
            } else {
                for (size_t k = 0; k < runs.size(); ++k) AddRun(runs[k], y, between_[k % 2]);
            }
        }
        AddBlock(same);
        for (const Block& block : between_) AddRectangle(block);
        Flush();
    }

private:
    struct Block {
        Run columns = {0, -1};
        int32_t top = 0, bottom = -1;
        bool Grow(Run run, int32_t y) {
            if (!(run == columns) || bottom + 1 != y) return false;
            bottom = y;
            return true;
        }
    };
    struct Cell {
        bool used = false;
        uint64_t sums[7][7] = {};  // [q][p], from the corner
    };

    void AddBlock(const Block& block) {
        constexpr int32_t kFew = 4;
        if (block.bottom - block.top >= kFew) return AddRectangle(block);
        for (int32_t y = block.top; y <= block.bottom; ++y) AddRun(block.columns, y, between_[0]);
    }

    void AddRun(Run run, int32_t y, Block& between) {
        const int32_t left = run.start - bounds_.left, end = run.stop - bounds_.left + 1;
        const int32_t firstWhole = left / kCell + (left % kCell != 0), endWhole = end / kCell;
        if (firstWhole > endWhole) return AddToCell(endWhole, left % kCell, end % kCell, y);
        if (left % kCell != 0) AddToCell(firstWhole - 1, left % kCell, kCell, y);
        if (end % kCell != 0) AddToCell(endWhole, 0, end % kCell, y);
        if (firstWhole == endWhole) return;
        const Run whole = {bounds_.left + firstWhole * kCell, bounds_.left + endWhole * kCell - 1};
        if (between.Grow(whole, y)) return;
        AddRectangle(between);
        between = {whole, y, y};
    }

    void AddToCell(int32_t index, int32_t begin, int32_t end, int32_t y) {
        if (y - top_ >= kRowsOfTile) {
            Flush();
            top_ = y;
        }
        Cell& cell = cells_[static_cast<size_t>(index)];
        cell.used = true;
        uint64_t powers[7];
        for (int p = 0; p <= degree_; ++p) powers[p] = kIndexPowerSums.of[p][end] - kIndexPowerSums.of[p][begin];
        const auto j = static_cast<uint64_t>(y - top_);
        uint64_t power = 1;
        for (int q = 0; q <= degree_; ++q, power *= j)
            for (int p = 0; p + q <= degree_; ++p) cell.sums[q][p] += power * powers[p];
    }

    void Flush() {
        for (size_t k = 0; k < cells_.size(); ++k) {
            if (!cells_[k].used) continue;
            DoublePair m[7][7];
            for (int q = 0; q <= degree_; ++q)
                for (int p = 0; p + q <= degree_; ++p) m[q][p] = ToPair(cells_[k].sums[q][p]);
            AddMapped(m, degree_, 2 / frame_.width(),
                      frame_.u(static_cast<double>(bounds_.left) + static_cast<double>(k) * kCell), 2 / frame_.height(),
                      frame_.v(top_), sums_);
            cells_[k] = {};
        }
    }

    void AddRectangle(const Block& block) {
        if (block.bottom < block.top) return;
        DoublePair x[7], y[7];
        CentredPowers(static_cast<double>(block.columns.length()), degree_, x);
        Scale(x, degree_, 1 / frame_.width());
        ShiftMoments(x, degree_, frame_.u(0.5 * (static_cast<double>(block.columns.start) + block.columns.stop)));
        CentredPowers(static_cast<double>(block.bottom) - block.top + 1, degree_, y);
        Scale(y, degree_, 1 / frame_.height());
        ShiftMoments(y, degree_, frame_.v(0.5 * (static_cast<double>(block.top) + block.bottom)));
        for (int q = 0; q <= degree_; ++q)
            for (int p = 0; p + q <= degree_; ++p) sums_[MonomialIndex(p, q)] += x[p] * y[q];
    }

    int degree_;
    const SurfaceFrame& frame_;
    PixelBounds bounds_;
    std::span<DoublePair> sums_;
    int32_t top_;  // of the current cells
    std::vector<Cell> cells_;
    Block between_[2];  // whole cells of the first and the second run of rows
};

bool HasFewerPixels(const RegionRows& rows, const PixelBounds& bounds, size_t than) {
    size_t pixels = 0;
    for (int32_t y = bounds.top; y <= bounds.bottom && pixels < than; ++y)
        for (const Run run : rows.row(y)) pixels += static_cast<size_t>(run.length());
    return pixels < than;
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
    CoordinateSums(2 * degree, frame_, bounds, matrix_).Add(rows);
}

void NormalEquations::AddMoments(DoublePair (&moments)[4][4], double uScale, double u, double vScale, double v) {
    AddMapped(moments, degree_, uScale, u, vScale, v, right_);
}

bool NormalEquations::finite() const {
    return std::all_of(right_.begin(), right_.end(), [](const DoublePair& sum) { return std::isfinite(sum.high); });
}

SurfacePolynomial NormalEquations::Solve(double origin) {
    const size_t unknowns = NumberOfMonomials(degree_);
    std::array<DoublePair, kMostUnknowns * kMostUnknowns> matrix;
    for (int q = 0; q <= degree_; ++q)
        for (int p = 0; p + q <= degree_; ++p)
            for (int s = 0; s <= degree_; ++s)
                for (int r = 0; r + s <= degree_; ++r)
                    matrix[MonomialIndex(p, q) * unknowns + MonomialIndex(r, s)] = matrix_[MonomialIndex(p + r, q + s)];
    // The unshifted grey values: which of several equally good surfaces is the shortest depends on where 0 is.
    for (size_t i = 0; i < unknowns; ++i) right_[i] += matrix_[i] * origin;
    std::array<DoublePair, kMostUnknowns> solution;
    SolveRefined({matrix.data(), unknowns * unknowns}, {right_.data(), unknowns}, {solution.data(), unknowns});
    SurfacePolynomial surface = frame_.InPixels(degree_, solution);
    surface.average = static_cast<double>(right_[0] / static_cast<double>(matrix_[0]));
    return surface;
}

template <class T>
SurfaceFitter<T>::SurfaceFitter(int degree, const RegionRows& rows, const PixelBounds& bounds)
    : moments_(ChooseMoments<T>(degree)),
      degree_(degree),
      bounds_(bounds),
      top_(bounds.top),
      tiles_(kFloat ? 1 : static_cast<size_t>(bounds.right - bounds.left) / kMostOfMoments<T> + 1),
      few_(HasFewerPixels(rows, bounds, NumberOfMonomials(degree))),
      equations_(degree, rows, bounds) {}

template <class T>
void SurfaceFitter<T>::operator()(const T* pixels, size_t n, int32_t x, int32_t y) {
    if (few_) {
        for (size_t i = 0; i < n; ++i)
            points_.push_back({x + static_cast<int32_t>(i), y, static_cast<double>(pixels[i])});
        return;
    }
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
                    moments[q][p] = ToPair(sum);
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
    if (few_) {
        if (!std::all_of(points_.begin(), points_.end(), [](const SurfacePoint& p) { return std::isfinite(p.z); }))
            return false;
        surface = ShortestPolynomial(degree_, points_);
        return true;
    }
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
