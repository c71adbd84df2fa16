// Least-squares fits of polynomial surfaces to pixels.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "fits/surface_polynomial.hpp"
#include "geometry/region_rows.hpp"

namespace orlix {

struct FloatMoments;

// The smallest rectangle that holds all pixels of a region; left > right for an empty region.
struct PixelBounds {
    int32_t left = 0, top = 0, right = -1, bottom = -1;
    bool empty() const { return right < left; }
};
PixelBounds BoundsOf(const RegionRows& rows);

// The normal equations of a fit. In exact arithmetic their solution is that of the equations in x and y. They are
// formed and solved in the frame's u and v, with sums and solution in some 100 bits, so that the results are as
// accurate as double coefficients can be, wherever the region lies and however large it is.
//
// Where the pixels do not determine the surface (a single row, a line, few columns: whatever makes a singular value of
// the matrix in u and v at most 1e-12 of the largest), the solution is, among the surfaces that fit best, the one whose
// coefficients in u and v have the least sum of squares.
class NormalEquations {
public:
    // Takes the coordinates of the pixels of rows. bounds contains them and is not empty.
    NormalEquations(int degree, const RegionRows& rows, const PixelBounds& bounds);

    const SurfaceFrame& frame() const { return frame_; }

    // Adds sums of grey value times i^p j^q, moments[q][p], p + q <= degree, over pixels at u = uScale i + u,
    // v = vScale j + v. The scales are powers of two.
    void AddMoments(DoublePair (&moments)[4][4], double uScale, double u, double vScale, double v);

    // Whether all grey values were finite.
    bool finite() const;

    // Takes the gathered grey values as differences from origin.
    SurfacePolynomial Solve(double origin);

private:
    int degree_;
    SurfaceFrame frame_;
    std::array<DoublePair, 28> matrix_;  // sum of u^p v^q, p + q <= 6
    std::array<DoublePair, 10> right_;   // sum of z u^p v^q, p + q <= 3
};

// Gathers the pixels of a region, run by run in row order. T is uint8_t, uint16_t, uint32_t or float.
//
// If there are fewer pixels than monomials, they are kept and give the ShortestPolynomial. Otherwise they enter the
// normal equations. Integer pixels: sums over tiles of 64 rows by some hundred columns or more are exact integers.
// Float pixels: the sums of a run are doubles in eight lanes, of the difference from the first pixel if that is finite,
// so that a common offset costs no precision.
template <class T>
class SurfaceFitter {
public:
    // bounds are those of rows, not empty.
    SurfaceFitter(int degree, const RegionRows& rows, const PixelBounds& bounds);

    void operator()(const T* pixels, size_t n, int32_t x, int32_t y);

    // To be called after the last run. Returns false when a pixel is NaN or infinite.
    bool Finish(SurfacePolynomial& surface);

private:
    static constexpr bool kFloat = std::is_same_v<T, float>;
    using Sum = std::conditional_t<kFloat, double, uint64_t>;
    using Fn = std::conditional_t<kFloat, void (*)(const float*, size_t, double, double, FloatMoments&),
                                  void (*)(const T*, size_t, uint64_t*)>;
    struct Tile {
        Sum sums[4][4] =
            {};  // [q][p], i and j from the tile's corner; float: i in half columns from the frame's centre
    };

    void Add(Tile& tile, const Sum (&m)[4], int32_t y);
    void Flush();

    Fn moments_;
    int degree_;
    PixelBounds bounds_;
    int32_t top_;              // of the current tiles
    std::vector<Tile> tiles_;  // adjacent tiles; float: a single one
    bool started_ = false;     // float: whether there is an origin
    double origin_ = 0;
    bool few_;                          // fewer pixels than monomials
    std::vector<SurfacePoint> points_;  // the pixels, if few_
    NormalEquations equations_;
};

extern template class SurfaceFitter<uint8_t>;
extern template class SurfaceFitter<uint16_t>;
extern template class SurfaceFitter<uint32_t>;
extern template class SurfaceFitter<float>;

}  // namespace orlix
