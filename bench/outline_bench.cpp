// Measurements of outlines of 100, 10^4 and 10^6 vertices, compared with OpenCV's and, where all vertices are only
// read, with memcpy. OpenCV takes vertices in single precision, its widest type; its sums are in double precision, but
// rounded at each step. It has no diameter: its smallest rectangle around the outline takes the same steps, a hull and
// a turn around it. Its distance is that from the edges, ours that from the vertices; both tell inside from outside.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#ifdef ORLIX_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

#include "geometry/outline.hpp"

namespace orlix::bench {
namespace {

constexpr double kTolerance = 1.5;  // of Smooth
constexpr Point kReference = {2100, 2000};

enum class Kind { Random, Circle, Pixels };

const char* NameOf(Kind kind) { return kind == Kind::Random ? "random" : kind == Kind::Circle ? "circle" : "pixels"; }

// At random in a square, on a circle, or along the edges of the pixels of a round particle with a rough edge.
std::vector<Point> Vertices(Kind kind, int count) {
    std::mt19937_64 random(1);
    std::vector<Point> vertices;
    if (kind == Kind::Pixels) {
        const int rows = count / 4;
        const double radius = rows / 2.0;
        const auto side = [&](int sign) {
            for (int k = 0; k < rows; ++k) {
                const int row = sign > 0 ? k : rows - 1 - k;
                const double off = row + 0.5 - radius, half = std::sqrt(radius * radius - off * off);
                const double depth = row % 2 ? 0 : static_cast<double>(1 + random() % 3);
                // Neighbouring rows never end in one column.
                const double x = 2100.5 + sign * 2 * (std::floor(half) + 4 - depth + 0.5 * (row % 2));
                const double top = 1999.5 - rows / 2 + row;
                vertices.push_back({x, sign > 0 ? top : top + 1});
                vertices.push_back({x, sign > 0 ? top + 1 : top});
            }
        };
        side(1);
        side(-1);
        return vertices;
    }
    std::uniform_real_distribution<double> anywhere(0, 4096);
    for (int i = 0; i < count; ++i) {
        const double angle = 6.283185307179586 * i / count;
        if (kind == Kind::Circle)
            vertices.push_back({2048 + 2000 * std::cos(angle), 2048 + 2000 * std::sin(angle)});
        else
            vertices.push_back({anywhere(random), anywhere(random)});
    }
    return vertices;
}

template <class Body>
void Add(const std::string& operation, const char* who, const Body& body) {
    for (const Kind kind : {Kind::Random, Kind::Circle, Kind::Pixels})
        for (const int count : {100, 10000, 1000000}) {
            const std::string name = operation + " (" + NameOf(kind) + ")/f64/" + std::to_string(count) + "/" + who;
            benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
                body(state, Vertices(kind, count));
                state.SetItemsProcessed(state.iterations() * count);
            });
        }
}

template <class Call>
void AddOurs(const std::string& operation, const Call& call) {
    Add(operation, "orlix", [=](benchmark::State& state, const std::vector<Point>& vertices) {
        for (auto _ : state) benchmark::DoNotOptimize(call(Outline(vertices)));
    });
}

void RegisterOurs() {
    AddOurs("hull", [](Outline outline) { return ConvexHull(outline); });
    AddOurs("diameter", [](Outline outline) { return DiameterOf(outline); });
    AddOurs("area", [](Outline outline) { return Area(outline); });
    AddOurs("perimeter", [](Outline outline) { return Perimeter(outline); });
    AddOurs("smooth", [](Outline outline) { return Simplify(outline, kTolerance); });
    AddOurs("distance", [](Outline outline) {
        return DistancesFrom(kReference, outline).nearestDistance * (Encloses(outline, kReference) ? 1 : -1);
    });
    AddOurs("bounds", [](Outline outline) { return BoundsOf(outline); });
    Add("bounds", "memcpy", [](benchmark::State& state, const std::vector<Point>& vertices) {
        std::vector<Point> copy(vertices.size());
        for (auto _ : state) {
            std::memcpy(copy.data(), vertices.data(), copy.size() * sizeof(Point));
            benchmark::ClobberMemory();
        }
    });
}

#ifdef ORLIX_BENCH_OPENCV
template <class Call>
void AddOpenCv(const std::string& operation, const Call& call) {
    Add(operation, "opencv", [=](benchmark::State& state, const std::vector<Point>& vertices) {
        std::vector<cv::Point2f> points;
        for (const Point& p : vertices) points.emplace_back(static_cast<float>(p.x), static_cast<float>(p.y));
        for (auto _ : state) benchmark::DoNotOptimize(call(points));
    });
}

void RegisterOpenCv() {
    using Points = std::vector<cv::Point2f>;
    cv::setNumThreads(1);
    AddOpenCv("hull", [](const Points& points) {
        Points hull;
        cv::convexHull(points, hull);
        return hull;
    });
    AddOpenCv("diameter", [](const Points& points) { return cv::minAreaRect(points); });
    AddOpenCv("area", [](const Points& points) { return cv::contourArea(points); });
    AddOpenCv("perimeter", [](const Points& points) { return cv::arcLength(points, true); });
    AddOpenCv("smooth", [](const Points& points) {
        Points fewer;
        cv::approxPolyDP(points, fewer, kTolerance, true);
        return fewer;
    });
    AddOpenCv("distance", [](const Points& points) {
        return cv::pointPolygonTest(points, {static_cast<float>(kReference.x), static_cast<float>(kReference.y)}, true);
    });
    AddOpenCv("bounds", [](const Points& points) { return cv::boundingRect(points); });
}
#endif

}  // namespace
}  // namespace orlix::bench

int main(int argc, char** argv) {
    using namespace orlix::bench;
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    RegisterOurs();
#ifdef ORLIX_BENCH_OPENCV
    RegisterOpenCv();
#endif
    benchmark::RunSpecifiedBenchmarks();
}
