// Fits of hemispheres by least squares, "no dome" where the picture has none. Robust fits: one trial of the plane,
// compared with memcpy of the same picture, and whole searches; "periodic" is a picture of diagonal stripes, where many
// trials have equal scores. A trial is
//   near   scored 5 % above the best one, so that nearly the whole picture is read before it is clear that it does not
//          win;
//   far    scored many times above it;
//   winner scored in full.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>
#include <numeric>
#include <random>

#include "fits/angled_hemisphere_fit.hpp"
#include "fits/correction_kernels.hpp"
#include "fits/hemisphere_fit.hpp"
#include "fits/robust_fit.hpp"
#include "fits/trimmed_score.hpp"
#include "pictures.hpp"

namespace orlix::bench {
namespace {

struct Plane {
    double slope, height;
    RowPolynomial Row(int32_t) const { return {{height, slope}}; }
    void Values(int32_t x, int32_t y, size_t n, double* values) const {
        static const ShiftsFn row = Choose(kShifts);
        row(values, n, x, Row(y));
    }
};

template <class T>
constexpr double kLevel = std::is_same_v<T, uint16_t> ? 257 : 1;  // a grey level

// Diagonal stripes.
template <class T>
std::vector<T> Stripes(int size) {
    std::vector<T> pixels;
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) pixels.push_back(static_cast<T>((x + 3 * y) % 97 * kLevel<T>));
    return pixels;
}

// A tilted dome whose rim is outside, with noise.
template <class T>
std::vector<T> Dome(int size) {
    std::mt19937 random(5);
    std::uniform_real_distribution<float> noise(-5.0f, 5.0f);
    std::vector<T> pixels;
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            const double u = (x - 0.55 * size) / size, v = (y - 0.5 * size) / size;
            const double z = 60 + 20 * u + 120 * std::sqrt(std::max(0.0, 1 - u * u - v * v));
            pixels.push_back(static_cast<T>((z + static_cast<double>(noise(random))) * kLevel<T>));
        }
    return pixels;
}

template <class T>
class Scene {
public:
    Scene(int size, std::vector<T> pixels)
        : pixels_(std::move(pixels)), table_(static_cast<size_t>(size)), rows_(nullptr, size, size) {
        for (int i = 0; i < size; ++i) table_[static_cast<size_t>(i)] = {i, i * size};
        view_ = PixelView<T>(pixels_.data(), table_.data(), size, size);
    }
    const std::vector<T>& pixels() const { return pixels_; }
    RegionPixels<T> region() const { return RegionPixels<T>(view_, rows_); }

private:
    std::vector<T> pixels_;
    std::vector<VPAEntry> table_;
    RegionRows rows_;
    PixelView<T> view_;
};

template <class T>
double AverageOf(const RegionPixels<T>& pixels) {
    double sum = 0;
    pixels.ForEachRun([&](const T* run, size_t n, int32_t, int32_t) { sum += std::accumulate(run, run + n, 0.0); });
    return sum / static_cast<double>(pixels.count());
}

template <class T>
void RegisterType() {
    for (const int size : kSizes) {
        const auto add = [&](const char* operation, const char* who, const auto& body) {
            benchmark::RegisterBenchmark(Name<T>(operation, size, who).c_str(), [=](benchmark::State& state) {
                const Scene<T> scene(size, Picture<T>(size));
                body(state, scene);
                state.SetItemsProcessed(state.iterations() * int64_t{size} * size);
            });
        };
        add("memcpy", "memcpy", [](benchmark::State& state, const Scene<T>& scene) {
            std::vector<T> copy(scene.pixels().size());
            for (auto _ : state) {
                std::memcpy(copy.data(), scene.pixels().data(), copy.size() * sizeof(T));
                benchmark::ClobberMemory();
            }
        });
        // The background of the picture at P = 0.5: 70 + 20 x / size, deviation 5 or more.
        const double slope = 20.0 / size, level = kLevel<T>;
        const auto trial = [=](double off) {
            return [=](benchmark::State& state, const Scene<T>& scene) {
                const RegionPixels<T> region = scene.region();
                const Plane best{slope * level, 75 * level}, tried{slope * level, (75 + off) * level};
                TrimmedScore<T, Plane> score(region, region.count() / 2);
                score.Improves(best);
                for (auto _ : state)
                    if (score.Improves(tried)) state.SkipWithError("the trial won");
            };
        };
        add("robust plane trial", "near", trial(1.5));
        add("robust plane trial", "far", trial(30));
        const auto search = [&](const char* name, const auto& fit) {
            add(name, "search", [fit](benchmark::State& state, const Scene<T>& scene) {
                const RegionPixels<T> region = scene.region();
                for (auto _ : state) benchmark::DoNotOptimize(fit(region));
            });
        };
        add("robust plane trial", "winner", [=](benchmark::State& state, const Scene<T>& scene) {
            const RegionPixels<T> region = scene.region();
            for (auto _ : state) {
                TrimmedScore<T, Plane> score(region, region.count() / 2);
                benchmark::DoNotOptimize(score.Improves(Plane{slope * level, 75 * level}));
            }
        });
        search("robust plane 0.6", [](const RegionPixels<T>& region) { return RobustPolynomial(region, 1, 0.6); });
        search("robust biquadratic 0.7",
               [](const RegionPixels<T>& region) { return RobustPolynomial(region, 2, 0.7); });
        search("robust bicubic 0.8", [](const RegionPixels<T>& region) { return RobustPolynomial(region, 3, 0.8); });
        search("robust hemisphere 0.7",
               [](const RegionPixels<T>& region) { return RobustHemisphere(region, false, 0.7); });
        const auto searchIn = [&](const char* name, std::vector<T> (*pixels)(int), const auto& fit) {
            benchmark::RegisterBenchmark(Name<T>(name, size, "search").c_str(), [=](benchmark::State& state) {
                const Scene<T> scene(size, pixels(size));
                const RegionPixels<T> region = scene.region();
                const double average = AverageOf(region);
                for (auto _ : state) benchmark::DoNotOptimize(fit(region, average));
                state.SetItemsProcessed(state.iterations() * int64_t{size} * size);
            });
        };
        const auto hemisphere = [](const RegionPixels<T>& region, double average) {
            return FitHemisphere(region, average);
        };
        const auto tilted = [](const RegionPixels<T>& region, double average) {
            return FitAngledHemisphere(region, average);
        };
        searchIn("hemisphere", &Dome<T>, hemisphere);
        searchIn("tilted hemisphere", &Dome<T>, tilted);
        searchIn(
            "tilted hemisphere, no dome", [](int side) { return Picture<T>(side); }, tilted);
        searchIn("robust hemisphere 0.9, dome", &Dome<T>,
                 [](const RegionPixels<T>& region, double) { return RobustHemisphere(region, false, 0.9); });
        searchIn("robust plane 0.5, periodic", &Stripes<T>,
                 [](const RegionPixels<T>& region, double) { return RobustPolynomial(region, 1, 0.5); });
    }
}

}  // namespace
}  // namespace orlix::bench

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    orlix::bench::RegisterType<uint8_t>();
    orlix::bench::RegisterType<uint16_t>();
    orlix::bench::RegisterType<float>();
    benchmark::RunSpecifiedBenchmarks();
}
