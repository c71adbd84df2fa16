// Operations on the components of bitmaps of 4096 x 4096 pixels, compared with Leptonica and OpenCV on the same pixels.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <random>
#include <string>

#ifdef ORLIX_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif
#ifdef ORLIX_BENCH_LEPTONICA
// Names of ours that its headers take.
#define IFF_BMP LEPTONICA_IFF_BMP
#define IFF_PNG LEPTONICA_IFF_PNG
#define IFF_TIFF LEPTONICA_IFF_TIFF
#include <leptonica/allheaders.h>
#undef IFF_BMP
#undef IFF_PNG
#undef IFF_TIFF
#endif

#include "binary/area_filter.hpp"
#include "binary/component_hulls.hpp"
#include "binary/distance.hpp"
#include "binary/reconstruction.hpp"
#include "binary/thinning.hpp"
#include "binary/watershed.hpp"

namespace orlix::bench {
namespace {

constexpr int32_t kSize = 4096;
constexpr Connectivity kEight = Connectivity::Eight;

BitPlane Noise(double density) {
    BitPlane plane(kSize, kSize);
    std::mt19937_64 random(1);
    std::bernoulli_distribution set(density);
    for (int32_t y = 0; y < kSize; ++y)
        for (int32_t x = 0; x < kSize; ++x)
            if (set(random)) plane.setBit(x, y, true);
    return plane;
}

// Disks of radius 5 to 44 that overlap, each third with a hole.
BitPlane Grains() {
    BitPlane plane(kSize, kSize);
    std::mt19937_64 random(1);
    for (int i = 0; i < 3000; ++i) {
        const auto cx = static_cast<int32_t>(random() % kSize);
        const auto cy = static_cast<int32_t>(random() % kSize);
        const auto r = static_cast<int32_t>(5 + random() % 40);
        const int32_t hole = i % 3 == 0 ? r / 3 : -1;
        for (int32_t y = std::max(0, cy - r); y <= std::min(kSize - 1, cy + r); ++y)
            for (int32_t x = std::max(0, cx - r); x <= std::min(kSize - 1, cx + r); ++x) {
                const int32_t square = (x - cx) * (x - cx) + (y - cy) * (y - cy);
                if (square <= r * r) plane.setBit(x, y, square > hole * hole);
            }
    }
    return plane;
}

// One path, a pixel wide, up and down in columns two apart.
BitPlane Serpentine() {
    BitPlane plane(kSize, kSize);
    for (int32_t x = 0; x < kSize; ++x)
        for (int32_t y = 0; y < kSize; ++y) plane.setBit(x, y, x % 2 == 0 || y == (x % 4 == 1 ? 0 : kSize - 1));
    return plane;
}

BitPlane Full() {
    BitPlane plane(kSize, kSize);
    for (int32_t y = 0; y < kSize; ++y) SetRun(plane.row(y), {0, kSize - 1});
    plane.setBit(0, 0, false);
    return plane;
}

struct Input {
    const char* name;
    BitPlane (*make)();
};
constexpr Input kInputs[] = {{"noise 1 %", [] { return Noise(0.01); }},
                             {"noise 10 %", [] { return Noise(0.1); }},
                             {"noise 50 %", [] { return Noise(0.5); }},
                             {"grains", &Grains},
                             {"serpentine", &Serpentine},
                             {"full but one pixel", &Full}};

BitPlane Seeds() {
    BitPlane seeds(kSize, kSize);
    for (int32_t i = 0; i < 64 * 64; ++i) seeds.setBit(64 * (i % 64), 64 * (i / 64), true);
    return seeds;
}

using Body = std::function<void(benchmark::State&, const BitPlane&)>;

void Add(const std::string& operation, const char* who, const Body& body) {
    for (const Input& input : kInputs)
        benchmark::RegisterBenchmark((operation + " (" + input.name + ")/bit/4096/" + who).c_str(),
                                     [=](benchmark::State& state) {
                                         const BitPlane image = input.make();
                                         body(state, image);
                                         state.SetItemsProcessed(state.iterations() * kSize * kSize);
                                     })
            ->Unit(benchmark::kMillisecond);
}

void AddOurs(const std::string& operation, const std::function<BitPlane(const BitPlane&)>& apply) {
    Add(operation, "orlix", [=](benchmark::State& state, const BitPlane& image) {
        for (auto _ : state) benchmark::DoNotOptimize(apply(image));
    });
}

#ifdef ORLIX_BENCH_LEPTONICA
Pix* ToPix(const BitPlane& plane) {
    Pix* pix = pixCreate(plane.width(), plane.height(), 1);
    const int32_t words = pixGetWpl(pix);
    for (int32_t y = 0; y < plane.height(); ++y)
        for (int32_t i = 0; i < words; ++i)
            pixGetData(pix)[y * words + i] = static_cast<uint32_t>(plane.row(y)[i / 2] >> (i % 2 ? 0 : 32));
    return pix;
}

void AddLeptonica(const std::string& operation, const std::function<Pix*(Pix*)>& apply) {
    Add(operation, "leptonica", [=](benchmark::State& state, const BitPlane& image) {
        Pix* pix = ToPix(image);
        for (auto _ : state) {
            Pix* result = apply(pix);
            pixDestroy(&result);
        }
        pixDestroy(&pix);
    });
}
#endif

}  // namespace
}  // namespace orlix::bench

int main(int argc, char** argv) {
    using namespace orlix;
    using namespace orlix::bench;
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    const BitPlane seeds = Seeds();
    AddOurs("reconstruct", [&](const BitPlane& image) { return Reconstruct(seeds, image, kEight); });
    AddOurs("fill holes", [](const BitPlane& image) { return FillHoles(image, kEight); });
    AddOurs("fill holes up to 50", [](const BitPlane& image) { return FillHolesUpTo(image, kEight, 50); });
    AddOurs("clear border", [](const BitPlane& image) { return ClearBorder(image, kEight); });
    AddOurs("area opening", [](const BitPlane& image) { return KeepByArea(image, kEight, 50, INT64_MAX); });
    AddOurs("hulls", [](const BitPlane& image) { return ConvexHulls(image, kEight); });
    Add("distance", "orlix", [](benchmark::State& state, const BitPlane& image) {
        for (auto _ : state) benchmark::DoNotOptimize(SquaredDistances<int32_t>(image));
    });
    AddOurs("ultimate points", [](const BitPlane& image) { return UltimatePoints(image, kEight); });
    AddOurs("split", [](const BitPlane& image) { return WatershedSplit(image, kEight, {1, 0}); });
    AddOurs("skeleton", [](const BitPlane& image) { return Skeleton(image, kEight); });
    AddOurs("thin 10", [](const BitPlane& image) { return Thin(image, kEight, 10); });
    AddOurs("prune 10", [](const BitPlane& image) { return Prune(image, kEight, 10); });
    AddOurs("thicken 10", [](const BitPlane& image) { return Thicken(image, kEight, 10); });
#ifdef ORLIX_BENCH_LEPTONICA
    Pix* seedPix = ToPix(seeds);
    AddLeptonica("reconstruct", [&](Pix* pix) {
        Pix* clipped = pixAnd(nullptr, seedPix, pix);
        Pix* result = pixSeedfillBinary(nullptr, clipped, pix, 8);
        pixDestroy(&clipped);
        return result;
    });
    AddLeptonica("fill holes", [](Pix* pix) { return pixHolesByFilling(pix, 4); });
    AddLeptonica("skeleton", [](Pix* pix) { return pixThinConnected(pix, L_THIN_FG, 8, 0); });
    AddLeptonica("thin 10", [](Pix* pix) { return pixThinConnected(pix, L_THIN_FG, 8, 10); });
#endif
#ifdef ORLIX_BENCH_OPENCV
    cv::setNumThreads(1);
    Add("distance", "opencv", [](benchmark::State& state, const BitPlane& image) {
        cv::Mat bytes(kSize, kSize, CV_8U), distances;
        for (int32_t y = 0; y < kSize; ++y)
            for (int32_t x = 0; x < kSize; ++x) bytes.at<uint8_t>(y, x) = image.bit(x, y) ? 255 : 0;
        for (auto _ : state) cv::distanceTransform(bytes, distances, cv::DIST_L2, cv::DIST_MASK_PRECISE);
    });
#endif
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
#ifdef ORLIX_BENCH_LEPTONICA
    pixDestroy(&seedPix);
#endif
}
