// What IBlobs tells, beside its slow definitions.
#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <cstdint>
#include <limits>
#include <map>
#include <numeric>
#include <vector>

#include "fuzz/bitmaps/gray_image.hpp"
#include "fuzz/bitmaps/world.hpp"
#include "support/slow_skeleton_length.hpp"
#include "support/slow_thinning.hpp"

namespace orlix::fuzz {
namespace {

bool Near(double expected, double found) {
    if (std::isnan(expected) || std::isnan(found)) return std::isnan(expected) && std::isnan(found);
    return std::fabs(expected - found) <= 1e-11 * std::max(1.0, std::fabs(expected));
}

// One blob alone in the image.
struct Alone {
    Picture pixels;
    SlowComponents outside;     // all other pixels, in the connectivity of the background
    std::vector<int> enclosed;  // those of them that do not reach the edge: the holes with what lies in them

    Alone(const std::vector<Place>& blob, const Picture& image, Connectivity connectivity)
        : pixels(Of(blob, image)), outside(Opposite(pixels), Dual(connectivity)) {
        for (size_t i = 0; i < outside.pixels.size(); ++i)
            if (!TouchesEdge(image, outside.pixels[i])) enclosed.push_back(static_cast<int>(i));
    }
    bool Encloses(const Place& at) const {
        return std::find(enclosed.begin(), enclosed.end(), outside.At(at.x, at.y)) != enclosed.end();
    }
    // Whether other pixels lie in it and touch it: so it is what they lie in.
    bool IsParentOf(const std::vector<Place>& other) const {
        return Encloses(other[0]) && std::any_of(other.begin(), other.end(), [&](const Place& at) {
                   return std::ranges::any_of(StepsOf(Connectivity::Four), [&](const Place& step) {
                       return IsSet(pixels, at.x + step.x, at.y + step.y);
                   });
               });
    }

private:
    static Picture Of(const std::vector<Place>& blob, const Picture& image) {
        Picture alone(image.width(), image.height());
        for (const auto& [x, y] : blob) alone.setBit(x, y, true);
        return alone;
    }
};

// In raster order of their first pixels.
std::vector<std::vector<Place>> HolesOf(const Picture& image, Connectivity connectivity) {
    auto holes = SlowComponents(Opposite(image), Dual(connectivity)).pixels;
    std::erase_if(holes, [&](const auto& hole) { return TouchesEdge(image, hole); });
    return holes;
}

// The label image has the number of the place of each blob.
void CheckLabelImage(const World& world, const ComPtr<IBlobs>& blobs, const Picture& image,
                     const std::vector<const std::vector<Place>*>& chosen) {
    const LONG count = Call(blobs, &IBlobs::get_Count), width = Call(blobs, &IBlobs::get_Width),
               height = Call(blobs, &IBlobs::get_Height);
    world.Require(count == static_cast<LONG>(chosen.size()), "get_Count", static_cast<double>(chosen.size()), count);
    world.Require(width == image.width() && height == image.height(), "size of the blobs", image.width(), width);
    std::vector<uint32_t> expected(static_cast<size_t>(width) * static_cast<size_t>(height));
    Picture pixels(width, height);
    for (size_t i = 0; i < chosen.size(); ++i)
        for (const auto& [x, y] : *chosen[i]) {
            expected[static_cast<size_t>(y * width + x)] = static_cast<uint32_t>(i + 1);
            pixels.setBit(x, y, true);
        }
    auto label = expected.begin();
    const auto labels = Call(blobs, &IBlobs::get_LabelImage);
    for (const std::span<uint32_t> row : Rows<uint32_t>(labels))
        for (const uint32_t found : row) {
            world.Require(found == *label, "get_LabelImage", *label, found);
            ++label;
        }
    world.Require(PixelsOf(Call(blobs, &IBlobs::get_Bitmap).get()) == pixels, "get_Bitmap of the blobs");
}

std::vector<const std::vector<Place>*> AllOf(const std::vector<std::vector<Place>>& components) {
    std::vector<const std::vector<Place>*> all;
    for (const auto& component : components) all.push_back(&component);
    return all;
}

std::vector<double> ValuesOf(const ComPtr<IBlobs>& blobs, SingleMeasurementType type, size_t count) {
    std::vector<double> values(count);
    Check(blobs->GetValues(type, 0, static_cast<LONG>(count), values.data()));
    return values;
}

// ------------------------------------------------------------------------------------------------------------- figures

struct Shape {
    SingleMeasurementType type;
    double expected, found;
};

// What can be counted, in pixels of sx x sy, and the fields of the record for it.
std::vector<Shape> ShapesOf(const SBinaryMeasurements& found, const Alone& alone, const std::vector<Place>& pixels,
                            const std::optional<Picture>& region, double sx, double sy) {
    const Picture& image = alone.pixels;
    double left = image.width(), top = image.height(), right = 0, bottom = 0, sumX = 0, sumY = 0;
    double atEdge = 0, atRegion = 0, xx = 0, yy = 0, xy = 0;
    for (const Place& at : pixels) {
        const int32_t x = at.x, y = at.y;
        left = std::min<double>(left, x), right = std::max<double>(right, x);
        top = std::min<double>(top, y), bottom = std::max<double>(bottom, y);
        sumX += x, sumY += y;
        atEdge += x == 0 || y == 0 || x == image.width() - 1 || y == image.height() - 1;
        atRegion += region && std::ranges::any_of(StepsOf(Connectivity::Four), [&](const Place& step) {
                        return IsInside(image, x + step.x, y + step.y) && !region->bit(x + step.x, y + step.y);
                    });
    }
    const auto n = static_cast<double>(pixels.size());
    double filled = n;
    for (const int hole : alone.enclosed)
        filled += static_cast<double>(alone.outside.pixels[static_cast<size_t>(hole)].size());
    for (const auto& [x, y] : pixels) {
        const double dx = (x - sumX / n) * sx, dy = (y - sumY / n) * sy;
        xx += dx * dx / n, yy += dy * dy / n, xy += dx * dy / n;
    }
    // The axes of the ellipse from the characters of its matrix.
    xx += sx * sx / 12, yy += sy * sy / 12;
    const double mean = (xx + yy) / 2, half = std::hypot((xx - yy) / 2, xy);
    double feret = 0;
    for (const Place& a : pixels)
        for (const Place& b : pixels)
            feret = std::max(feret,
                             std::pow((std::abs(a.x - b.x) + 1) * sx, 2) + std::pow((std::abs(a.y - b.y) + 1) * sy, 2));
    const auto holes = static_cast<double>(alone.enclosed.size());
    return {{SMT_PixelCount, n, double(found.m_lPixelCount)},
            {SMT_Area, n * sx * sy, found.m_dArea},
            {SMT_EquivalentRadius, std::sqrt(n * sx * sy / 3.14159265358979323846), found.m_dEquivalentRadius},
            {SMT_Left, left, double(found.m_lLeft)},
            {SMT_Top, top, double(found.m_lTop)},
            {SMT_Right, right, double(found.m_lRight)},
            {SMT_Bottom, bottom, double(found.m_lBottom)},
            {SMT_Extent, n / ((right - left + 1) * (bottom - top + 1)), found.m_dExtent},
            {SMT_XCentroid, sumX / n, found.m_dXCentroid},
            {SMT_YCentroid, sumY / n, found.m_dYCentroid},
            {SMT_Holes, holes, double(found.m_lHoles)},
            {SMT_EulerNumber, 1 - holes, double(found.m_lEulerNumber)},
            {SMT_FilledArea, filled * sx * sy, found.m_dFilledArea},
            {SMT_FeretMaximum, std::sqrt(feret), found.m_dFeretMaximum},
            {SMT_MajorAxis, 4 * std::sqrt(mean + half), found.m_dMajorAxis},
            {SMT_ImageBorderPixels, atEdge, double(found.m_lImageBorderPixels)},
            {SMT_RegionBorderPixels, atRegion, double(found.m_lRegionBorderPixels)}};
}

// ------------------------------------------------------------------------------------------------------------ geometry

using Vector = std::complex<double>;  // in the plane of the calibration
constexpr double kPi = 3.14159265358979323846;

// a x b
double Cross(const Vector& a, const Vector& b) { return (std::conj(a) * b).imag(); }

// The corners of the hull of points, around it (Andrew 1979).
std::vector<Vector> HullOf(std::vector<Vector> points) {
    const auto less = [](const Vector& a, const Vector& b) {
        return a.real() != b.real() ? a.real() < b.real() : a.imag() < b.imag();
    };
    std::sort(points.begin(), points.end(), less);
    std::vector<Vector> hull;
    for (int side = 0; side < 2; ++side, std::reverse(points.begin(), points.end())) {
        const size_t first = hull.size();
        for (const Vector& p : points) {
            while (hull.size() >= first + 2 && Cross(hull.back() - *(hull.end() - 2), p - hull.back()) <= 1e-9)
                hull.pop_back();
            hull.push_back(p);
        }
        hull.pop_back();
    }
    return hull;
}

// By the shares of directions nearest to each of eight: half of the angles to the ones before and after it.
double SlowCrofton(const Picture& blob, const std::vector<Place>& pixels, double sx, double sy) {
    std::vector<std::pair<double, Place>> directions;
    for (const Place& v : {Place{1, 0}, {2, 1}, {1, 1}, {1, 2}, {0, 1}, {-1, 2}, {-1, 1}, {-2, 1}})
        directions.push_back({std::atan2(v.y * sy, v.x * sx), v});
    double sum = 0;
    for (size_t k = 0; k < 8; ++k) {
        const auto& [angle, v] = directions[k];
        const double before = k > 0 ? directions[k - 1].first : directions[7].first - kPi;
        const double after = k < 7 ? directions[k + 1].first : kPi;
        const auto leaving = std::ranges::count_if(
            pixels, [&, step = v](const Place& at) { return !IsSet(blob, at.x + step.x, at.y + step.y); });
        sum += (after - before) / 2 * static_cast<double>(leaving) / std::hypot(v.x * sx, v.y * sy);
    }
    return sum * sx * sy;
}

void CheckGeometry(const World& world, const SBinaryMeasurements& found, const Alone& alone,
                   const std::vector<Place>& pixels, double sx, double sy) {
    const auto expect = [&](const char* name, double expected, double value, double scale = 0) {
        world.Require(std::fabs(expected - value) <= 1e-10 * std::max({1.0, scale, std::fabs(expected)}), name,
                      expected, value);
    };
    std::vector<Vector> corners;
    for (const auto& [x, y] : pixels)
        for (int i = 0; i < 4; ++i) corners.push_back({(x - 0.5 + i % 2) * sx, (y - 0.5 + i / 2) * sy});
    const std::vector<Vector> hull = HullOf(corners);
    double area = 0, perimeter = 0, narrowest = 1e300;
    for (size_t i = 0; i < hull.size(); ++i) {
        const Vector a = hull[i], side = hull[(i + 1) % hull.size()] - a;
        double width = 0;
        for (const Vector& p : hull) width = std::max(width, Cross(side, p - a) / std::abs(side));
        area += Cross(a - hull[0], side) / 2;
        perimeter += std::abs(side);
        narrowest = std::min(narrowest, width);
    }
    expect("HullArea", area, found.m_dHullArea);
    expect("HullPerimeter", perimeter, found.m_dHullPerimeter);
    expect("FeretMinimum", narrowest, found.m_dFeretMinimum);
    expect("CroftonPerimeter", SlowCrofton(alone.pixels, pixels, sx, sy), found.m_dCroftonPerimeter);

    // The smallest circle holds all corners, and those on it lie on no half of it alone.
    const Vector centre(found.m_dEnclosingXCenter * sx, found.m_dEnclosingYCenter * sy);
    const double radius = found.m_dEnclosingRadius;
    std::vector<double> angles;
    for (const Vector& p : hull) {
        world.Require(std::abs(p - centre) <= radius * (1 + 1e-11), "EnclosingRadius", std::abs(p - centre), radius);
        if (std::abs(p - centre) >= radius * (1 - 1e-11)) angles.push_back(std::arg(p - centre));
    }
    world.Require(!angles.empty(), "corners on the enclosing circle");
    std::sort(angles.begin(), angles.end());
    for (size_t i = 0; i < angles.size(); ++i) {
        const double next = i + 1 < angles.size() ? angles[i + 1] : angles[0] + 2 * kPi;
        world.Require(next - angles[i] <= kPi + 1e-4, "half of the enclosing circle", kPi, next - angles[i]);
    }

    // The pixels around the blob bound the largest circle in it.
    std::vector<Place> around;
    for (const auto& [x, y] : pixels)
        for (const auto& [dx, dy] : StepsOf(Connectivity::Eight))
            if (!IsSet(alone.pixels, x + dx, y + dy)) around.push_back({x + dx, y + dy});
    // The distance from the pixels around it, or any smaller one than `enough`.
    const auto room = [&](double x, double y, double enough) {
        double least = 1e300;
        for (size_t i = 0; i < around.size() && least > enough * enough; ++i) {
            const double across = std::max(std::fabs(x - around[i].x) - 0.5, 0.0) * sx;
            const double down = std::max(std::fabs(y - around[i].y) - 0.5, 0.0) * sy;
            least = std::min(least, across * across + down * down);
        }
        return std::sqrt(least);
    };
    double largest = 0;
    for (const auto& [x, y] : pixels)
        for (int i = 0; i < 9; ++i)
            largest = std::max(largest, room(x + i % 3 / 2.0 - 0.5, y + i / 3 / 2.0 - 0.5, largest));
    expect("InscribedRadius", largest, found.m_dInscribedRadius);
    expect("room about the inscribed circle's centre", largest,
           room(found.m_dInscribedXCenter, found.m_dInscribedYCenter, 0));

    static constexpr int kP[] = {0, 1, 0, 2, 1, 0, 3, 2, 1, 0}, kQ[] = {0, 0, 1, 0, 1, 2, 0, 1, 2, 3};
    for (size_t k = 0; k < 10; ++k) {
        long double raw = 0, central = 0, size = 0;
        for (const Place& at : pixels) {
            const auto power = [&](long double left, long double top) {
                return std::pow((at.x - left) * sx, kP[k]) * std::pow((at.y - top) * sy, kQ[k]) * sx * sy;
            };
            raw += power(0, 0);
            central += power(found.m_dXCentroid, found.m_dYCentroid);
            size += std::fabs(power(0, 0));
        }
        expect("RawMoments", static_cast<double>(raw), found.m_dRawMoments[k]);
        if (k >= 3)
            expect("CentralMoments", static_cast<double>(central), found.m_dCentralMoments[k - 3],
                   static_cast<double>(size));
    }
    // The invariants of complex moments (Flusser 2000): c_pq = sum of (x + i y)^p (x - i y)^q.
    std::array<double, 7> n;
    for (size_t k = 0; k < 7; ++k) {
        n[k] = found.m_dCentralMoments[k] / std::pow(found.m_dArea, k < 3 ? 2 : 2.5);
        expect("NormalizedMoments", n[k], found.m_dNormalizedMoments[k]);
    }
    const Vector c20(n[0] - n[2], 2 * n[1]), c30(n[3] - 3 * n[5], 3 * n[4] - n[6]), c12(n[3] + n[5], -n[4] - n[6]);
    const Vector fifth = c30 * c12 * c12 * c12;
    const double hu[] = {n[0] + n[2],  std::norm(c20),           std::norm(c30), std::norm(c12),
                         fifth.real(), (c20 * c12 * c12).real(), fifth.imag()};
    const double third = std::fabs(n[3]) + 3 * std::fabs(n[4]) + 3 * std::fabs(n[5]) + std::fabs(n[6]);
    for (size_t k = 0; k < 7; ++k)
        expect("HuMoments", hu[k], found.m_dHuMoments[k], std::pow(third, 4) + hu[0] * hu[0] + hu[0] * third * third);
    expect("SkeletonLength",
           SlowSkeletonLength(alone.pixels, SlowThin(alone.pixels, Connectivity::Eight, 1 << 20), sx, sy).Length(),
           found.m_dSkeletonLength);
}

// The outlines at a level pass once between each pixel of the blob and each neighbour that is not in it, and from each
// such place to one in the same square of four pixel centres.
void CheckLevelOutline(World& world, const ComPtr<IBlobs>& blobs, LONG index, const Alone& alone,
                       const std::vector<Place>& pixels, const GrayImage& gray) {
    const double level = world.choices.Byte() + 0.5;
    std::vector<std::pair<double, double>> expected, found;
    for (const auto& [x, y] : pixels)
        for (const auto& [dx, dy] : StepsOf(Connectivity::Four)) {
            if (IsSet(alone.pixels, x + dx, y + dy)) continue;
            double t = 0.5;
            if (IsInside(alone.pixels, x + dx, y + dy)) {
                const double here = gray.At(x, y), there = gray.At(x + dx, y + dy);
                if ((here > level) != (there > level)) t = (level - here) / (there - here);
            }
            expected.push_back({x + t * dx, y + t * dy});
        }
    for (LONG hole = -1; hole < static_cast<LONG>(alone.enclosed.size()); ++hole) {
        const auto outline = Call(blobs, &IBlobs::get_LevelOutline, index, gray.image.get(), LONG{0}, level, hole);
        const auto count = static_cast<size_t>(Call(outline, &IPolygon::get_NumberOfVertices));
        const SVertice* const vertices = Call(outline, &IPolygon::get_Vertices);
        for (size_t i = 0; i < count; ++i) {
            const SVertice &a = vertices[i], &b = vertices[(i + 1) % count];
            found.push_back({a.m_dX, a.m_dY});
            world.Require(std::floor(std::min(a.m_dX, b.m_dX)) + 1 >= std::max(a.m_dX, b.m_dX) &&
                              std::floor(std::min(a.m_dY, b.m_dY)) + 1 >= std::max(a.m_dY, b.m_dY),
                          "step of a level outline");
        }
    }
    std::sort(expected.begin(), expected.end());
    std::sort(found.begin(), found.end());
    world.Require(expected.size() == found.size(), "vertices of the level outlines",
                  static_cast<double>(expected.size()), static_cast<double>(found.size()));
    for (size_t i = 0; i < expected.size(); ++i)
        world.Require(std::fabs(expected[i].first - found[i].first) <= 1e-12 &&
                          std::fabs(expected[i].second - found[i].second) <= 1e-12,
                      "place of a level outline", expected[i].first, found[i].first);
}

// --------------------------------------------------------------------------------------------------------- grey values

void CheckGrayValues(const World& world, const SBlobGrayMeasurements& found, const Alone& alone,
                     const std::vector<Place>& pixels, const GrayImage& gray) {
    std::vector<double> values;
    std::map<double, int> counts;
    double sum = 0, boundarySum = 0, boundary = 0, sumX = 0, sumY = 0;
    for (const Place& at : pixels) {
        const double value = gray.At(at.x, at.y);
        values.push_back(value);
        ++counts[value];
        sum += value, sumX += value * at.x, sumY += value * at.y;
        if (std::ranges::all_of(StepsOf(Connectivity::Four),
                                [&](const Place& step) { return IsSet(alone.pixels, at.x + step.x, at.y + step.y); }))
            continue;
        boundarySum += value;
        ++boundary;
    }
    std::sort(values.begin(), values.end());
    const size_t n = values.size();
    const auto mode = std::max_element(counts.begin(), counts.end(),
                                       [](const auto& a, const auto& b) { return a.second < b.second; });
    double squares = 0;
    for (const double value : values)
        squares += (value - sum / static_cast<double>(n)) * (value - sum / static_cast<double>(n));
    const double deviation = std::sqrt(squares / static_cast<double>(n));
    const auto expect = [&](const char* name, double expected, double value) {
        world.Require(Near(expected, value), name, expected, value);
    };
    expect("GrayMinimum", values.front(), found.m_dGrayMinimum);
    expect("GrayMaximum", values.back(), found.m_dGrayMaximum);
    expect("GrayIntegrated", sum, found.m_dGrayIntegrated);
    expect("GrayAverage", sum / static_cast<double>(n), found.m_dGrayAverage);
    expect("GrayStandardDeviation", deviation, found.m_dGrayStandardDeviation);
    expect("GrayMedian", (values[(n - 1) / 2] + values[n / 2]) / 2, found.m_dGrayMedian);
    expect("GrayMode", mode->first, found.m_dGrayMode);
    expect("GrayBoundaryAverage", boundarySum / boundary, found.m_dGrayBoundaryAverage);
    expect("GrayXCentroid", sumX / sum, found.m_dGrayXCentroid);
    expect("GrayYCentroid", sumY / sum, found.m_dGrayYCentroid);
}

// ----------------------------------------------------------------------------------------------------------- selection

// Some of the blobs, in an order: by a measurement that all of them have.
void CheckChoice(World& world, const ComPtr<IBlobs>& blobs, const Picture& image, const SlowComponents& components) {
    constexpr SingleMeasurementType kTypes[] = {SMT_PixelCount, SMT_Left,        SMT_YCentroid,    SMT_FilledArea,
                                                SMT_Perimeter,  SMT_HullArea,    SMT_FeretMinimum, SMT_InscribedRadius,
                                                SMT_BoxWidth,   SMT_EllipseAngle};
    const SingleMeasurementType type = kTypes[world.choices.Below(std::size(kTypes))];
    const size_t count = components.pixels.size();
    const std::vector<double> values = ValuesOf(blobs, type, count);
    std::vector<size_t> places(count);
    std::iota(places.begin(), places.end(), size_t{0});
    ComPtr<IBlobs> chosen;
    if (world.OneIn(2)) {
        const bool descending = world.OneIn(2);
        world.Say("Sort by %d ", static_cast<int>(type));
        chosen = Call(blobs, &IBlobs::Sort, type, LONG{descending});
        std::stable_sort(places.begin(), places.end(), [&](size_t a, size_t b) {
            if (std::isnan(values[a]) || std::isnan(values[b])) return !std::isnan(values[a]) && std::isnan(values[b]);
            return descending ? values[a] > values[b] : values[a] < values[b];
        });
    } else {
        const double lower = values[world.choices.Below(count)];
        const double upper = std::max(lower, values[world.choices.Below(count)]);
        world.Say("Select by %d ", static_cast<int>(type));
        if (std::isnan(lower) || std::isnan(upper)) {
            world.Require(FAILED(blobs->Select(type, lower, upper, chosen.Out())), "Select from NaN on");
            return;
        }
        chosen = Call(blobs, &IBlobs::Select, type, lower, upper);
        std::erase_if(places, [&](size_t i) { return values[i] < lower || values[i] > upper; });
    }
    std::vector<const std::vector<Place>*> expected;
    for (const size_t i : places) expected.push_back(&components.pixels[i]);
    CheckLabelImage(world, chosen, image, expected);
    for (size_t i = 0; i < places.size(); ++i) {
        const LONG label = Call(chosen, &IBlobs::get_Label, static_cast<LONG>(i));
        world.Require(label == static_cast<LONG>(places[i]), "get_Label of a chosen blob",
                      static_cast<double>(places[i]), label);
    }
}

// The paths around the pixels' squares enclose the blob with its holes, and each of its holes.
void CheckOutlines(const World& world, const ComPtr<IBlobs>& blobs, LONG index, const Alone& alone, double filled) {
    for (LONG hole = -1; hole < static_cast<LONG>(alone.enclosed.size()); ++hole) {
        const double area = Call(Call(blobs, &IBlobs::get_Outline, index, OT_PixelEdges, hole), &IPolygon::get_Area);
        const double expected =
            hole < 0 ? filled
                     : static_cast<double>(
                           alone.outside.pixels[static_cast<size_t>(alone.enclosed[static_cast<size_t>(hole)])].size());
        world.Require(area == expected, "area inside an outline", expected, area);
    }
}

}  // namespace

void CheckLabels(World& world, const KeptBlobs& found) {
    const SlowComponents components(found.foreground, found.connectivity);
    CheckLabelImage(world, found.blobs, found.foreground, AllOf(components.pixels));
}

void CheckBlobs(World& world, const KeptBlobs& found, const std::optional<Picture>& region) {
    const ComPtr<IBlobs>& blobs = found.blobs;
    const Picture& image = found.foreground;
    const SlowComponents components(image, found.connectivity);
    CheckLabelImage(world, blobs, image, AllOf(components.pixels));
    const auto holes = HolesOf(image, found.connectivity);
    const auto holeBlobs = Call(blobs, &IBlobs::get_Holes);
    CheckLabelImage(world, holeBlobs, image, AllOf(holes));
    const size_t count = components.pixels.size();
    if (count == 0) return;

    double sx = 1, sy = 1;
    if (world.OneIn(2)) {
        sx = static_cast<double>(1 + world.choices.Below(24)) / 8,
        sy = static_cast<double>(1 + world.choices.Below(24)) / 8;
        Check(blobs->PutMicronsPerPixel(sx, sy), found.blobs);
    }
    world.Say("pixels of %g x %g ", sx, sy);
    std::vector<SBinaryMeasurements> records(count);
    Check(blobs->GetBinaryMeasurements(BEMT_All, 0, static_cast<LONG>(count), records.data()), found.blobs);
    const GrayImage gray = AnyGrayImage(world, image);
    Check(blobs->MeasureGray(gray.image.get(), 0, 31), found.blobs);
    std::vector<SBlobGrayMeasurements> grays(count);
    Check(blobs->GetGrayMeasurements(0, static_cast<LONG>(count), grays.data()), found.blobs);

    for (int sample = 0; sample < 3; ++sample) {
        const size_t i = world.choices.Below(count);
        const auto index = static_cast<LONG>(i);
        const std::vector<Place>& pixels = components.pixels[i];
        const Alone alone(pixels, image, found.connectivity);
        const std::vector<Shape> shapes = ShapesOf(records[i], alone, pixels, region, sx, sy);
        for (const auto& [type, expected, value] : shapes) {
            const std::string what = "measurement " + std::to_string(type) + " of blob " + std::to_string(i);
            world.Require(Near(expected, value), what.c_str(), expected, value);
        }
        const Shape& shape = shapes[world.choices.Below(shapes.size())];
        const double value = Call(blobs, &IBlobs::GetValues, shape.type, index, LONG{1});
        world.Require(value == shape.found, "GetValues", shape.expected, value);
        world.Require(records[i].m_lLabel == index && grays[i].m_lLabel == index, "label of a record", index,
                      records[i].m_lLabel);
        CheckGrayValues(world, grays[i], alone, pixels, gray);
        CheckGeometry(world, records[i], alone, pixels, sx, sy);
        CheckLevelOutline(world, blobs, index, alone, pixels, gray);
        world.Require(
            PixelsOf(Call(blobs, &IBlobs::get_Region, index).get(), image.width(), image.height()) == alone.pixels,
            "get_Region");
        const double filled = std::round(records[i].m_dFilledArea / (sx * sy));
        CheckOutlines(world, blobs, index, alone, filled);
        for (size_t k = 0; k < holes.size(); ++k) {
            const LONG parent = Call(holeBlobs, &IBlobs::get_Parent, static_cast<LONG>(k));
            world.Require((parent == index) == alone.IsParentOf(holes[k]), "get_Parent of a hole", index, parent);
        }
    }
    if (!holes.empty()) {
        const size_t k = world.choices.Below(holes.size());
        const Alone alone(holes[k], image, Dual(found.connectivity));
        for (size_t i = 0; i < count; ++i) {
            const LONG parent = Call(blobs, &IBlobs::get_Parent, static_cast<LONG>(i));
            world.Require((parent == static_cast<LONG>(k)) == alone.IsParentOf(components.pixels[i]),
                          "get_Parent of a blob", static_cast<double>(k), parent);
        }
    }
    CheckChoice(world, blobs, image, components);
}

}  // namespace orlix::fuzz
