// Robust fits: one trial of the plane, compared with memcpy of the same picture, and whole searches. A trial is
//   near   scored 5 % above the best one, so that nearly the whole picture is read before it is clear that it does not
//          win;
//   far    scored many times above it;
//   winner scored in full.
#include <benchmark/benchmark.h>

#include <cstring>

#include "fits/correction_kernels.hpp"
#include "fits/robust_fit.hpp"
#include "fits/trimmed_score.hpp"
#include "pictures.hpp"

namespace orlix::bench {
namespace {

struct Plane {
    double slope, height;
    void Values(int32_t x, int32_t, size_t n, double* values) const {
        static const ShiftsFn row = Choose(kShifts);
        row(values, n, x, {{height, slope}});
    }
};

template <class T>
class Scene {
public:
    explicit Scene(int size)
        : pixels_(Picture<T>(size)), table_(static_cast<size_t>(size)), rows_(nullptr, size, size) {
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
void RegisterType() {
    for (const int size : kSizes) {
        const auto add = [&](const char* operation, const char* who, const auto& body) {
            benchmark::RegisterBenchmark(Name<T>(operation, size, who).c_str(), [=](benchmark::State& state) {
                const Scene<T> scene(size);
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
        const double slope = 20.0 / size, level = std::is_same_v<T, uint16_t> ? 257 : 1;
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
        search("robust hemisphere 0.7",
               [](const RegionPixels<T>& region) { return RobustHemisphere(region, false, 0.7); });
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
