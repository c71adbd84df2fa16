// Binary images of 4096 x 4096 pixels: bytes per second are those of the bits, 2 MiB, whatever an operation reads and
// writes. The copy beside them is the limit. Every variant of the kernels; the operations on noise of 10 % and on
// grains; OpenCV (a byte per pixel) and Leptonica where they are installed.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "binary/logic_kernels.hpp"
#include "binary/morphology.hpp"
#include "binary/morphology_kernels.hpp"
#include "binary/neighbourhood_table.hpp"
#include "leptonica_bench.hpp"
#ifdef ORLIX_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace orlix::bench {
namespace {

constexpr int32_t kSize = 4096;
constexpr size_t kBytes = size_t{kSize} * kSize / 8;

void SetRate(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * int64_t{kSize} * kSize);
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kBytes));
}

// Disks of 2 to 40 pixels' radius that cover half of the picture, and a tenth of noise.
const BitmapStore& Grains() {
    static const BitmapStore store = [] {
        BitmapStore grains;
        grains.Create(kSize, kSize, true);
        std::mt19937 random(1);
        for (int i = 0; i < 7000; ++i) {
            const auto x = static_cast<int32_t>(random() % kSize), y = static_cast<int32_t>(random() % kSize);
            const auto r = static_cast<int32_t>(2 + random() % 39);
            for (int32_t dy = -r; dy <= r; ++dy)
                for (int32_t dx = -r; dx <= r; ++dx)
                    if (dx * dx + dy * dy <= r * r && grains.Contains(x + dx, y + dy))
                        grains.SetBit(x + dx, y + dy, true);
        }
        return grains;
    }();
    return store;
}

const BitmapStore& NoiseOfTen() {
    static const BitmapStore store = [] {
        BitmapStore noise;
        noise.Create(kSize, kSize, true);
        std::mt19937 random(2);
        for (int32_t y = 0; y < kSize; ++y)
            for (int32_t x = 0; x < kSize; ++x)
                if (random() % 10 == 0) noise.SetBit(x, y, true);
        return noise;
    }();
    return store;
}

template <class Body>
void Register(const std::string& operation, const std::string& who, const Body& body) {
    const std::string name = operation + "/bits/" + std::to_string(kSize) + "/" + who;
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
        body(state);
        SetRate(state);
    });
}

void RegisterKernels() {
    Register("copy", "memcpy", [](benchmark::State& state) {
        const BitmapStore& from = Grains();
        std::vector<uint8_t> to(kBytes);
        for (auto _ : state) {
            std::memcpy(to.data(), from.Row(0), kBytes);
            benchmark::DoNotOptimize(to.data());
            benchmark::ClobberMemory();
        }
    });
    const auto combine = [](const std::string& name, const auto& table) {
        for (const auto& variant : SupportedOnThisCpu(table))
            Register(name, variant.name, [=](benchmark::State& state) {
                std::vector<uint8_t> to(kBytes);
                for (auto _ : state) variant.fn(to.data(), Grains().Row(0), kBytes);
            });
    };
    combine("kernel and", kCombine<BitLogic::And>);
    combine("kernel xor", kCombine<BitLogic::Xor>);
    for (const auto& variant : SupportedOnThisCpu(kCombine<BitLogic::Not>))
        Register("kernel invert", variant.name, [=](benchmark::State& state) {
            std::vector<uint8_t> to(kBytes);
            for (auto _ : state) variant.fn(to.data(), to.data(), kBytes);
        });
    for (const auto& variant : SupportedOnThisCpu(kCountBits))
        Register("kernel count", variant.name, [=](benchmark::State& state) {
            for (auto _ : state) benchmark::DoNotOptimize(variant.fn(Grains().Row(0), kBytes));
        });
    const auto rows = [](const std::string& name, const auto& table, size_t scratchBytes, const auto& call) {
        for (const auto& variant : SupportedOnThisCpu(table)) {
            if (std::string(variant.name) == "scalar") continue;  // pixel by pixel
            Register(name, variant.name, [=](benchmark::State& state) {
                std::vector<uint8_t> to(Grains().Row(0), Grains().Row(0) + kBytes), scratch(scratchBytes);
                const MorphologyRows all{to.data(), kSize / 8, to.data(), kSize / 8, kSize, kSize / 8, 0xff};
                for (auto _ : state) call(variant.fn, all, scratch.data());
            });
        }
    };
    const auto square = [](SquareFn fn, const MorphologyRows& all, uint8_t* scratch) { fn(all, scratch); };
    rows("kernel erode 3x3", kSquare<false, true>, 3 * kSize / 8, square);
    rows("kernel erode cross", kSquare<false, false>, 3 * kSize / 8, square);
    for (const int32_t reach : {2, 15, 50, 500})
        for (const auto& [columns, lines] : {std::pair{reach, reach}, {reach, 0}, {0, reach}}) {
            const MorphologyRectangle window{{columns, columns}, {lines, lines}};
            rows("kernel erode " + std::to_string(2 * columns + 1) + "x" + std::to_string(2 * lines + 1),
                 kRectangle<false>, RectangleScratch(kSize / 8, kSize, window),
                 [=](RectangleFn fn, const MorphologyRows& all, uint8_t* scratch) { fn(all, window, scratch); });
        }
}

void RegisterOperations(const std::string& picture, const BitmapStore& (*source)()) {
    const auto in = [&](const std::string& name, const auto& operation) {
        Register(name + " (" + picture + ")", "orlix", [=](benchmark::State& state) {
            BitmapStore bitmap;
            bitmap.CopyFrom(source().record());
            const RegionRows all(nullptr, kSize, kSize);
            for (auto _ : state) operation(bitmap, all);
        });
    };
    in("and",
       [=](BitmapStore& bitmap, const RegionRows& all) { Combine(bitmap, BitLogic::And, RowsOf(source()), all); });
    in("invert", [](BitmapStore& bitmap, const RegionRows& all) { Invert(bitmap, all); });
    in("count",
       [](BitmapStore& bitmap, const RegionRows& all) { benchmark::DoNotOptimize(CountPixels(RowsOf(bitmap), all)); });
    in("translate 3 5", [](BitmapStore& bitmap, const RegionRows& all) { Translate(bitmap, 3, 5, all); });
    const auto erode = [&](const std::string& name, const auto& apply) {
        in(name, [=](BitmapStore& bitmap, const RegionRows& all) { apply(RowsOf(source()), bitmap, all); });
    };
    in("erode 3x3 in place", [](BitmapStore& bitmap, const RegionRows& all) {
        ApplySquare(RowsOf(bitmap), Morphology::Erosion, Connectivity::Eight, 1, bitmap, all);
    });
    for (const int32_t times : {1, 2, 3, 15}) {
        erode("erode 3x3 x" + std::to_string(times), [=](const BitRows& from, BitmapStore& to, const RegionRows& all) {
            ApplySquare(from, Morphology::Erosion, Connectivity::Eight, times, to, all);
        });
        erode("erode cross x" + std::to_string(times),
              [=](const BitRows& from, BitmapStore& to, const RegionRows& all) {
                  ApplySquare(from, Morphology::Erosion, Connectivity::Four, times, to, all);
              });
    }
    for (const int32_t side : {3, 5, 15, 31, 101, 1001})
        erode("erode " + std::to_string(side) + "x" + std::to_string(side),
              [=](const BitRows& from, BitmapStore& to, const RegionRows& all) {
                  ApplyRectangle(from, Morphology::Erosion, side, side, to, all);
              });
    for (const int32_t radius : {2, 5, 15, 50})
        erode("erode disk " + std::to_string(radius), [=](const BitRows& from, BitmapStore& to, const RegionRows& all) {
            ApplyDisk(from, Morphology::Erosion, radius, to, all);
        });
    in("table, one pass", [=](BitmapStore& bitmap, const RegionRows& all) {
        NeighbourhoodTable life;
        for (size_t i = 0; i < 512; ++i) {
            const int n = __builtin_popcountll(i & 0x1ef);
            life[i] = n == 3 || (n == 2 && (i & 16) != 0);
        }
        BitPlane plane(RowsOf(source()));
        ApplyTable(plane, life, 1);
        Store(plane, bitmap, all);
    });
}

#ifdef ORLIX_BENCH_OPENCV
void RegisterPeer(const std::string& picture, const BitmapStore& (*source)(), std::pair<std::string, cv::Mat> element) {
    Register("erode " + element.first + " (" + picture + ")", "opencv", [=](benchmark::State& state) {
        cv::setNumThreads(1);
        cv::Mat from(kSize, kSize, CV_8U), to(kSize, kSize, CV_8U);
        for (int32_t y = 0; y < kSize; ++y)
            for (int32_t x = 0; x < kSize; ++x) from.at<uint8_t>(y, x) = source().Bit(x, y) ? 255 : 0;
        for (auto _ : state) cv::erode(from, to, element.second);
    });
}
void RegisterOpenCv(const std::string& picture, const BitmapStore& (*source)()) {
    const auto box = [](int n) { return cv::getStructuringElement(cv::MORPH_RECT, {n, n}); };
    RegisterPeer(picture, source, {"3x3", box(3)});
    RegisterPeer(picture, source, {"31x31", box(31)});
    RegisterPeer(picture, source, {"101x101", box(101)});
    RegisterPeer(picture, source, {"disk 5", cv::getStructuringElement(cv::MORPH_ELLIPSE, {11, 11})});
    RegisterPeer(picture, source, {"disk 15", cv::getStructuringElement(cv::MORPH_ELLIPSE, {31, 31})});
}
#else
void RegisterOpenCv(const std::string&, const BitmapStore& (*)()) {}
#endif

}  // namespace
}  // namespace orlix::bench

int main(int argc, char** argv) {
    using namespace orlix::bench;
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    RegisterKernels();
    const std::pair<std::string, const orlix::BitmapStore& (*)()> pictures[] = {{"grains", &Grains},
                                                                                {"noise", &NoiseOfTen}};
    for (const auto& [picture, source] : pictures) {
        RegisterOperations(picture, source);
        RegisterOpenCv(picture, source);
#ifdef ORLIX_BENCH_LEPTONICA
        RegisterLeptonica(picture, source().Row(0), kSize);
#endif
    }
    benchmark::RunSpecifiedBenchmarks();
}
