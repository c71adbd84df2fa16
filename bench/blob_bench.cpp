// Components of a bitmap of 4096 x 4096 pixels and their shapes: a thresholded synthetic micrograph, noise of three
// densities, and 20164 ellipses. Compared with OpenCV's components with statistics and with memcpy of the bits.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#ifdef ORLIX_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

#include "blobs/labelling.hpp"
#include "blobs/shape_measurements.hpp"
#include "pictures.hpp"

namespace orlix::bench {
namespace {

constexpr int32_t kSize = 4096;

BitPlane Noise(double density) {
    BitPlane plane(kSize, kSize);
    std::mt19937 random(1);
    const auto bound = static_cast<uint64_t>(density * 4294967296.0);
    for (int32_t y = 0; y < kSize; ++y)
        for (int32_t x = 0; x < kSize; ++x) plane.setBit(x, y, random() < bound);
    return plane;
}

BitPlane Micrograph() {
    BitPlane plane(kSize, kSize);
    const std::vector<uint8_t>& picture = Picture<uint8_t>(kSize);
    for (int32_t y = 0; y < kSize; ++y)
        for (int32_t x = 0; x < kSize; ++x) plane.setBit(x, y, picture[static_cast<size_t>(y) * kSize + x] >= 128);
    return plane;
}

// In the cells of a grid, with semi-axes of 5 to 13 and 0.5 to 1 times that.
BitPlane Ellipses() {
    BitPlane plane(kSize, kSize);
    std::mt19937 random(1);
    const auto uniform = [&] { return static_cast<double>(random()) / 4294967296.0; };
    constexpr int kCells = 142;
    constexpr double kCell = kSize / static_cast<double>(kCells);
    for (int row = 0; row < kCells; ++row)
        for (int column = 0; column < kCells; ++column) {
            const double cx = (column + 0.5) * kCell, cy = (row + 0.5) * kCell;
            const double a = 5 + 8 * uniform(), b = a * (0.5 + 0.5 * uniform()), t = 3.14159 * uniform();
            for (auto y = static_cast<int32_t>(cy - 14); y <= cy + 14; ++y)
                for (auto x = static_cast<int32_t>(cx - 14); x <= cx + 14; ++x) {
                    const double u = (x - cx) * std::cos(t) + (y - cy) * std::sin(t);
                    const double v = (y - cy) * std::cos(t) - (x - cx) * std::sin(t);
                    if (u * u / (a * a) + v * v / (b * b) <= 1) plane.setBit(x, y, true);
                }
        }
    return plane;
}

// In the layout of a bitmap.
std::vector<uint8_t> BytesOf(const BitPlane& plane) {
    std::vector<uint8_t> bytes(static_cast<size_t>(kSize) * kSize / 8);
    for (int32_t y = 0; y < kSize; ++y)
        for (size_t i = 0; i < plane.wordsPerRow(); ++i)
            StoreWord(bytes.data() + static_cast<size_t>(y) * (kSize / 8), i, kSize / 8, plane.row(y)[i]);
    return bytes;
}

struct Blob {
    int64_t pixels;
    Box box;
    Point centroid;
};

template <class Body>
void Add(const std::string& operation, const char* picture, const char* who, BitPlane (*make)(), const Body& body) {
    const std::string name = operation + " (" + picture + ")/bits/4096/" + who;
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
        const BitPlane plane = make();
        body(state, plane);
        state.SetItemsProcessed(state.iterations() * kSize * kSize);
    });
}

void AddLabelling(const char* picture, BitPlane (*make)()) {
    Add("components with area, box, centroid", picture, "orlix", make,
        [](benchmark::State& state, const BitPlane& plane) {
            const std::vector<uint8_t> bytes = BytesOf(plane);
            const BitRows rows{bytes.data(), kSize / 8, kSize, kSize};
            for (auto _ : state) {
                const Labelling labelling = Label(RunsOf(rows), Connectivity::Eight);
                ShapeMeasurer measurer(labelling, SG_Size);
                std::vector<Blob> blobs(labelling.blobs.count());
                ShapeMeasurements shape;
                for (uint32_t i = 0; i < labelling.blobs.count(); ++i) {
                    measurer.Measure(i, shape);
                    blobs[i] = {shape.pixelCount, shape.box, shape.centroid};
                }
                benchmark::DoNotOptimize(blobs.data());
            }
        });
#ifdef ORLIX_BENCH_OPENCV
    Add("components with area, box, centroid", picture, "opencv", make,
        [](benchmark::State& state, const BitPlane& plane) {
            cv::setNumThreads(1);
            cv::Mat image(kSize, kSize, CV_8U), labels, statistics, centroids;
            for (int32_t y = 0; y < kSize; ++y)
                for (int32_t x = 0; x < kSize; ++x) image.at<uint8_t>(y, x) = plane.bit(x, y) ? 255 : 0;
            for (auto _ : state)
                benchmark::DoNotOptimize(
                    cv::connectedComponentsWithStats(image, labels, statistics, centroids, 8, CV_32S));
        });
#endif
    Add("runs of rows", picture, "orlix", make, [](benchmark::State& state, const BitPlane& plane) {
        const std::vector<uint8_t> bytes = BytesOf(plane);
        const BitRows rows{bytes.data(), kSize / 8, kSize, kSize};
        for (auto _ : state) benchmark::DoNotOptimize(RunsOf(rows));
    });
    Add("holes", picture, "orlix", make, [](benchmark::State& state, const BitPlane& plane) {
        const Labelling labelling = Label(RunsOf(plane), Connectivity::Eight);
        for (auto _ : state) benchmark::DoNotOptimize(HolesOf(labelling.blobs));
    });
}

void AddShapes(const char* group, uint32_t groups) {
    Add(std::string("shapes, ") + group, "20164 ellipses", "orlix", &Ellipses,
        [=](benchmark::State& state, const BitPlane& plane) {
            const Labelling labelling = Label(RunsOf(plane), Connectivity::Eight);
            for (auto _ : state) {
                ShapeMeasurer measurer(labelling, groups);
                ShapeMeasurements shape;
                for (uint32_t i = 0; i < labelling.blobs.count(); ++i) {
                    measurer.Measure(i, shape);
                    benchmark::DoNotOptimize(&shape);
                }
            }
        });
}

}  // namespace
}  // namespace orlix::bench

int main(int argc, char** argv) {
    using namespace orlix;
    using namespace orlix::bench;
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    AddLabelling("micrograph", &Micrograph);
    AddLabelling("noise 1 %", [] { return Noise(0.01); });
    AddLabelling("noise 10 %", [] { return Noise(0.1); });
    AddLabelling("noise 50 %", [] { return Noise(0.5); });
    Add("copy", "micrograph", "memcpy", &Micrograph, [](benchmark::State& state, const BitPlane& plane) {
        const std::vector<uint8_t> bytes = BytesOf(plane);
        std::vector<uint8_t> copy(bytes.size());
        for (auto _ : state) {
            std::memcpy(copy.data(), bytes.data(), bytes.size());
            benchmark::ClobberMemory();
        }
    });
    AddShapes("size", SG_Size);
    AddShapes("topology", SG_Topology);
    AddShapes("filled area", SG_FilledArea);
    AddShapes("perimeter", SG_Perimeter);
    AddShapes("Crofton perimeter", SG_CroftonPerimeter);
    AddShapes("convex hull", SG_Hull);
    AddShapes("Feret", SG_Feret);
    AddShapes("oriented box", SG_OrientedBox);
    AddShapes("ellipse", SG_Ellipse);
    AddShapes("moments", SG_Moments);
    AddShapes("border contact", SG_BorderContact);
    AddShapes("inscribed circle", SG_InscribedCircle);
    AddShapes("skeleton", SG_Skeleton);
    AddShapes("enclosing circle", SG_EnclosingCircle);
    AddShapes("all", SG_All);
    benchmark::RunSpecifiedBenchmarks();
}
