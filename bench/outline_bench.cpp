// Hull, diameter and bounds of a million vertices, compared with OpenCV's convex hull (in single precision, its widest
// type) and memcpy.
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

constexpr int kVertices = 1000000;

std::vector<Point> Vertices(bool circular) {
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> anywhere(0, 4096);
    std::vector<Point> vertices;
    for (int i = 0; i < kVertices; ++i) {
        const double angle = 6.283185307179586 * i / kVertices;
        if (circular)
            vertices.push_back({2048 + 2000 * std::cos(angle), 2048 + 2000 * std::sin(angle)});
        else
            vertices.push_back({anywhere(random), anywhere(random)});
    }
    return vertices;
}

template <class Body>
void Add(const std::string& operation, const char* who, bool circular, const Body& body) {
    const std::string name = operation + (circular ? " (circle)" : " (random)") + "/f64/1000000/" + who;
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
        const std::vector<Point> vertices = Vertices(circular);
        body(state, vertices);
        state.SetItemsProcessed(state.iterations() * kVertices);
    });
}

}  // namespace
}  // namespace orlix::bench

int main(int argc, char** argv) {
    using namespace orlix;
    using namespace orlix::bench;
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    for (const bool circular : {false, true}) {
        Add("hull", "orlix", circular, [](benchmark::State& state, const std::vector<Point>& vertices) {
            for (auto _ : state) benchmark::DoNotOptimize(ConvexHull(vertices));
        });
        Add("diameter", "orlix", circular, [](benchmark::State& state, const std::vector<Point>& vertices) {
            for (auto _ : state) benchmark::DoNotOptimize(DiameterOf(vertices));
        });
        Add("bounds", "orlix", circular, [](benchmark::State& state, const std::vector<Point>& vertices) {
            for (auto _ : state) benchmark::DoNotOptimize(BoundsOf(vertices));
        });
        Add("bounds", "memcpy", circular, [](benchmark::State& state, const std::vector<Point>& vertices) {
            std::vector<Point> copy(vertices.size());
            for (auto _ : state) {
                std::memcpy(copy.data(), vertices.data(), copy.size() * sizeof(Point));
                benchmark::ClobberMemory();
            }
        });
#ifdef ORLIX_BENCH_OPENCV
        Add("hull", "opencv", circular, [](benchmark::State& state, const std::vector<Point>& vertices) {
            cv::setNumThreads(1);
            std::vector<cv::Point2f> points, hull;
            for (const Point& p : vertices) points.emplace_back(static_cast<float>(p.x), static_cast<float>(p.y));
            for (auto _ : state) {
                cv::convexHull(points, hull);
                benchmark::DoNotOptimize(hull.data());
            }
        });
#endif
    }
    benchmark::RunSpecifiedBenchmarks();
}
