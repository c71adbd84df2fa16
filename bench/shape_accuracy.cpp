// Measures the figures of docs/accuracy.md for shapes: discs, squares, ellipses and strips of known size at random
// positions and angles, digitised (a pixel is set if its centre lies in the shape), measured, and compared with the
// truth; the same for outlines at a grey level, of pixels whose grey value is the share of them that the shape covers.
// Prints a table for each shape.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "blobs/level_outline.hpp"
#include "blobs/shape_measurements.hpp"

namespace orlix {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr int kSamples = 1000;

class Uniform {
public:
    double operator()() { return (static_cast<double>(random_()) + 0.5) / 4294967296.0; }

private:
    std::mt19937 random_{1};
};

enum class Kind { Disc, Square, Ellipse };

// Of radius r: a disc; a square with sides of 2 r; an ellipse with semi-axes of r and r / 2.
struct Shape {
    Kind kind;
    double radius;
    double x, y, angle;

    bool Contains(double px, double py) const {
        const double dx = px - x, dy = py - y, c = std::cos(angle), s = std::sin(angle);
        const double u = (dx * c + dy * s) / radius, v = (dy * c - dx * s) / radius;
        if (kind == Kind::Square) return std::fabs(u) <= 1 && std::fabs(v) <= 1;
        return u * u + (kind == Kind::Ellipse ? 4 : 1) * v * v <= 1;
    }
    double Area() const { return (kind == Kind::Square ? 4 : kind == Kind::Disc ? kPi : kPi / 2) * radius * radius; }
    double Perimeter() const {
        if (kind == Kind::Square) return 8 * radius;
        if (kind == Kind::Disc) return 2 * kPi * radius;
        constexpr double kH = 1 / 9.0;  // ((a - b) / (a + b))^2 in Ramanujan's second formula, good to 1e-9 here
        return kPi * 1.5 * radius * (1 + 3 * kH / (10 + std::sqrt(4 - 3 * kH)));
    }
    double Longest() const { return (kind == Kind::Square ? std::sqrt(8.0) : 2) * radius; }
    double Narrowest() const { return kind == Kind::Ellipse ? radius : 2 * radius; }
    double MajorAxis() const { return kind == Kind::Square ? 4 / std::sqrt(3.0) * radius : 2 * radius; }
    double MinorAxis() const { return MajorAxis() / (kind == Kind::Ellipse ? 2 : 1); }
};

// The pixels of a square with the given side, in pixels of the given size, whose centres are inside.
template <class Inside>
Labelling Digitised(double side, const PixelSize& pixel, const Inside& inside) {
    RunTable table;
    table.width = static_cast<int32_t>(side / pixel.x);
    table.height = static_cast<int32_t>(side / pixel.y);
    for (int32_t y = 0; y < table.height; ++y) {
        bool before = false;
        for (int32_t x = 0; x < table.width; ++x) {
            const bool in = inside(x * pixel.x, y * pixel.y);
            if (in && before) table.runs.back().stop = x;
            if (in && !before) table.runs.push_back({x, x});
            before = in;
        }
        table.ends.push_back(static_cast<uint32_t>(table.runs.size()));
    }
    return Label(table, Connectivity::Eight);
}

Labelling Digitised(const Shape& shape, const PixelSize& pixel) {
    const double reach = 1.5 * shape.radius + 3;
    Shape moved = shape;
    moved.x += reach;
    moved.y += reach;
    return Digitised(2 * reach, pixel, [&](double x, double y) { return moved.Contains(x, y); });
}

// Thin tips may come off as single pixels: the largest blob is measured.
uint32_t Largest(const Labelling& labelling) {
    uint32_t largest = 0;
    for (uint32_t label = 1; label < labelling.blobs.count(); ++label)
        if (labelling.blobs.runs(label).size() > labelling.blobs.runs(largest).size()) largest = label;
    return largest;
}

struct Quantity {
    const char* name;
    bool relative;  // in percent of the truth; otherwise the difference
    std::function<double(const ShapeMeasurements&)> measured;
    std::function<double(const Shape&)> truth;
};

std::vector<Quantity> Quantities(Kind kind, const PixelSize& pixel) {
    using M = ShapeMeasurements;
    std::vector<Quantity> all = {
        {"area", true, [](const M& m) { return m.area; }, [](const Shape& s) { return s.Area(); }},
        {"centroid.x, pixels", false, [=](const M& m) { return m.centroid.x; },
         [=](const Shape& s) { return (s.x + 1.5 * s.radius + 3) / pixel.x; }},
        {"perimeter", true, [](const M& m) { return m.perimeter; }, [](const Shape& s) { return s.Perimeter(); }},
        {"croftonPerimeter", true, [](const M& m) { return m.croftonPerimeter; },
         [](const Shape& s) { return s.Perimeter(); }},
        {"circularity", true, [](const M& m) { return m.circularity; },
         [](const Shape& s) { return 4 * kPi * s.Area() / (s.Perimeter() * s.Perimeter()); }},
        {"hullArea", true, [](const M& m) { return m.hullArea; }, [](const Shape& s) { return s.Area(); }},
        {"hullPerimeter", true, [](const M& m) { return m.hullPerimeter; },
         [](const Shape& s) { return s.Perimeter(); }},
        {"solidity", true, [](const M& m) { return m.solidity; }, [](const Shape&) { return 1.0; }},
        {"feretMaximum", true, [](const M& m) { return m.feretMaximum.length; },
         [](const Shape& s) { return s.Longest(); }},
        {"feretMinimum", true, [](const M& m) { return m.feretMinimum.length; },
         [](const Shape& s) { return s.Narrowest(); }},
        {"roundness", true, [](const M& m) { return m.roundness; },
         [](const Shape& s) { return 4 * s.Area() / (kPi * s.Longest() * s.Longest()); }},
        {"compactness", true, [](const M& m) { return m.compactness; },
         [](const Shape& s) { return std::sqrt(4 * s.Area() / kPi) / s.Longest(); }},
        {"orientedBox, length x width", true, [](const M& m) { return m.orientedBox.length * m.orientedBox.width; },
         [](const Shape& s) { return s.kind == Kind::Ellipse ? 2 * s.radius * s.radius : 4 * s.radius * s.radius; }},
        {"ellipse.majorAxis", true, [](const M& m) { return m.ellipse.majorAxis; },
         [](const Shape& s) { return s.MajorAxis(); }},
        {"ellipse.minorAxis", true, [](const M& m) { return m.ellipse.minorAxis; },
         [](const Shape& s) { return s.MinorAxis(); }},
        {"aspectRatio", true, [](const M& m) { return m.aspectRatio; },
         [](const Shape& s) { return s.MajorAxis() / s.MinorAxis(); }},
        {"huMoments[0]", true, [](const M& m) { return m.huMoments[0]; },
         [](const Shape& s) {
             return (s.MajorAxis() * s.MajorAxis() + s.MinorAxis() * s.MinorAxis()) / 16 / s.Area();
         }},
        {"inscribedCircle", true, [](const M& m) { return m.inscribedCircle.radius; },
         [](const Shape& s) { return s.Narrowest() / 2; }},
        {"enclosingCircle", true, [](const M& m) { return m.enclosingCircle.radius; },
         [](const Shape& s) { return s.Longest() / 2; }},
    };
    if (kind == Kind::Disc) {
        all.push_back({"skeletonLength", true, [](const M& m) { return m.skeletonLength; },
                       [](const Shape& s) { return 2 * s.radius; }});
        all.push_back({"meanWidth", true, [](const M& m) { return m.meanWidth; },
                       [](const Shape& s) { return kPi / 2 * s.radius; }});
    }
    if (kind == Kind::Ellipse) {
        all.push_back({"ellipse.angle, degrees", false, [](const M& m) { return m.ellipse.angle; },
                       [](const Shape& s) { return s.angle * 180 / kPi; }});
        all.push_back({"feretMaximum.angle, degrees", false, [](const M& m) { return m.feretMaximum.angle; },
                       [](const Shape& s) { return s.angle * 180 / kPi; }});
    }
    return all;
}

void Table(Kind kind, const char* title, const PixelSize& pixel) {
    static constexpr double kRadii[] = {2, 5, 10, 20, 50, 100};
    std::printf("\n%s\n\n| measurement |", title);
    for (const double radius : kRadii) std::printf(" R = %g |", radius);
    std::puts("\n|---|---|---|---|---|---|---|");
    const std::vector<Quantity> quantities = Quantities(kind, pixel);
    std::vector<std::vector<std::string>> cells(quantities.size());
    for (const double radius : kRadii) {
        std::vector<double> sums(quantities.size()), squares(quantities.size());
        Uniform random;
        for (int i = 0; i < kSamples; ++i) {
            const Shape shape{kind, radius, random() * pixel.x, random() * pixel.y, random() * kPi};
            const Labelling labelling = Digitised(shape, pixel);
            ShapeMeasurements measured;
            ShapeMeasurer(labelling, SG_All, pixel).Measure(Largest(labelling), measured);
            for (size_t k = 0; k < quantities.size(); ++k) {
                const Quantity& q = quantities[k];
                double error = q.measured(measured) - q.truth(shape);
                if (q.relative) error *= 100 / q.truth(shape);
                if (std::string(q.name).find("angle") != std::string::npos) error -= 180 * std::round(error / 180);
                sums[k] += error;
                squares[k] += error * error;
            }
        }
        for (size_t k = 0; k < quantities.size(); ++k) {
            const double mean = sums[k] / kSamples;
            const double deviation = std::sqrt(std::max(0.0, squares[k] / kSamples - mean * mean));
            char text[64];
            const int digits = deviation < 0.1 ? 3 : 2;
            std::snprintf(text, sizeof text, "%+.*f (%.*f)", digits, mean, digits, deviation);
            cells[k].push_back(text);
        }
    }
    for (size_t k = 0; k < quantities.size(); ++k) {
        if (std::isnan(std::strtod(cells[k][0].c_str(), nullptr))) continue;
        std::printf("| %s |", quantities[k].name);
        for (const std::string& cell : cells[k]) std::printf(" %s |", cell.c_str());
        std::puts("");
    }
    std::fflush(stdout);
}

// The skeletons of strips with round or square ends.
void StripTable(bool round, const char* title, const PixelSize& pixel) {
    static constexpr double kLengths[] = {20, 50, 100, 200};
    std::printf("\n%s\n\n| measurement, width |", title);
    for (const double length : kLengths) std::printf(" L = %g |", length);
    std::puts("\n|---|---|---|---|---|");
    for (const bool ofWidth : {false, true})
        for (const double width : {2.0, 3.0, 5.0, 8.0, 15.0}) {
            std::printf("| %s, %g |", ofWidth ? "meanWidth" : "skeletonLength, pixels", width);
            for (const double length : kLengths) {
                Uniform random;
                double sum = 0, squares = 0;
                for (int i = 0; i < kSamples; ++i) {
                    const double reach = length / 2 + 3, x = reach + random() * pixel.x, y = reach + random() * pixel.y,
                                 angle = random() * kPi, c = std::cos(angle), s = std::sin(angle);
                    const Labelling labelling = Digitised(2 * reach, pixel, [&](double px, double py) {
                        const double along = std::fabs((px - x) * c + (py - y) * s);
                        const double across = std::fabs((py - y) * c - (px - x) * s);
                        if (!round) return along <= length / 2 && across <= width / 2;
                        return std::hypot(std::max(0.0, along - (length - width) / 2), across) <= width / 2;
                    });
                    ShapeMeasurements measured;
                    ShapeMeasurer(labelling, SG_Skeleton, pixel).Measure(Largest(labelling), measured);
                    const double error =
                        ofWidth ? 100 * (measured.meanWidth / width - 1) : measured.skeletonLength - length;
                    sum += error / kSamples;
                    squares += error * error / kSamples;
                }
                std::printf(" %+.2f (%.2f) |", sum, std::sqrt(std::max(0.0, squares - sum * sum)));
            }
            std::puts("");
        }
    std::fflush(stdout);
}

// The share of a pixel that the shape covers, from 32 x 32 points where its border may pass.
double Coverage(const Shape& shape, double x, double y) {
    const bool inside = shape.Contains(x, y);
    bool whole = true;
    for (const double dx : {-0.8, 0.0, 0.8})
        for (const double dy : {-0.8, 0.0, 0.8}) whole &= shape.Contains(x + dx, y + dy) == inside;
    if (whole) return inside;
    int covered = 0;
    for (int i = 0; i < 32; ++i)
        for (int k = 0; k < 32; ++k) covered += shape.Contains(x - 0.5 + (i + 0.5) / 32, y - 0.5 + (k + 0.5) / 32);
    return covered / 1024.0;
}

LevelMeasurements AtOneHalf(const Shape& shape) {
    const double reach = 1.5 * shape.radius + 3;
    const auto size = static_cast<int32_t>(2 * reach);
    Shape moved = shape;
    moved.x += reach;
    moved.y += reach;
    std::vector<double> grey(static_cast<size_t>(size) * static_cast<size_t>(size));
    const auto at = [&](int32_t x, int32_t y) -> double& {
        return grey[static_cast<size_t>(y) * static_cast<size_t>(size) + static_cast<size_t>(x)];
    };
    RunTable table;
    table.width = table.height = size;
    for (int32_t y = 0; y < size; ++y) {
        bool before = false;
        for (int32_t x = 0; x < size; ++x) {
            const bool inside = (at(x, y) = Coverage(moved, x, y)) > 0.5;
            if (inside && before) table.runs.back().stop = x;
            if (inside && !before) table.runs.push_back({x, x});
            before = inside;
        }
        table.ends.push_back(static_cast<uint32_t>(table.runs.size()));
    }
    PixelPaths paths;
    paths.Trace(Connected(table, Connectivity::Eight).runs(0), Connectivity::Eight);
    return MeasureLevelOutline(LevelOutlineOf(paths, size, size, 0.5, at), 1, 1);
}

void LevelTable(Kind kind, const char* title) {
    static constexpr double kRadii[] = {2, 3, 5, 10, 20, 50};
    const struct {
        const char* name;
        double (*measured)(const LevelMeasurements&);
        double (*truth)(const Shape&);
    } quantities[] = {
        {"area", [](const LevelMeasurements& m) { return m.area; }, [](const Shape& s) { return s.Area(); }},
        {"perimeter", [](const LevelMeasurements& m) { return m.perimeter; },
         [](const Shape& s) { return s.Perimeter(); }},
        {"circularity", [](const LevelMeasurements& m) { return m.circularity; },
         [](const Shape& s) { return 4 * kPi * s.Area() / (s.Perimeter() * s.Perimeter()); }},
        {"feretMaximum", [](const LevelMeasurements& m) { return m.feretMaximum; },
         [](const Shape& s) { return s.Longest(); }},
        {"feretMinimum", [](const LevelMeasurements& m) { return m.feretMinimum; },
         [](const Shape& s) { return s.Narrowest(); }},
        {"majorAxis", [](const LevelMeasurements& m) { return m.majorAxis; },
         [](const Shape& s) { return s.MajorAxis(); }},
        {"minorAxis", [](const LevelMeasurements& m) { return m.minorAxis; },
         [](const Shape& s) { return s.MinorAxis(); }},
    };
    std::printf("\n%s\n\n| measurement |", title);
    for (const double radius : kRadii) std::printf(" R = %g |", radius);
    std::puts("\n|---|---|---|---|---|---|---|");
    std::vector<std::vector<LevelMeasurements>> measured(std::size(kRadii));
    std::vector<std::vector<Shape>> shapes(std::size(kRadii));
    for (size_t r = 0; r < std::size(kRadii); ++r) {
        Uniform random;
        for (int i = 0; i < kSamples; ++i) {
            shapes[r].push_back({kind, kRadii[r], random(), random(), random() * kPi});
            measured[r].push_back(AtOneHalf(shapes[r].back()));
        }
    }
    for (const auto& quantity : quantities) {
        std::printf("| %s |", quantity.name);
        for (size_t r = 0; r < std::size(kRadii); ++r) {
            double sum = 0, squares = 0;
            for (size_t i = 0; i < kSamples; ++i) {
                const double error = 100 * (quantity.measured(measured[r][i]) / quantity.truth(shapes[r][i]) - 1);
                sum += error / kSamples;
                squares += error * error / kSamples;
            }
            std::printf(" %+.3f (%.3f) |", sum, std::sqrt(std::max(0.0, squares - sum * sum)));
        }
        std::puts("");
    }
}

}  // namespace
}  // namespace orlix

int main() {
    using namespace orlix;
    Table(Kind::Disc, "Discs of radius R:", {});
    Table(Kind::Square, "Squares with sides of 2R:", {});
    Table(Kind::Ellipse, "Ellipses with semi-axes of R and R / 2:", {});
    Table(Kind::Disc, "Discs in pixels of 1 x 1.5:", {1, 1.5});
    StripTable(false, "Strips with square ends:", {});
    StripTable(true, "Strips with round ends:", {});
    StripTable(false, "Strips with square ends in pixels of 1 x 1.5:", {1, 1.5});
    LevelTable(Kind::Disc, "Discs, outlines at a grey level:");
    LevelTable(Kind::Ellipse, "Ellipses, outlines at a grey level:");
}
