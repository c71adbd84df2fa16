// Every variant of every kernel that this processor supports, on whole pictures in one call.
#include <benchmark/benchmark.h>

#include <cmath>

#include "display/display_level_kernels.hpp"
#include "filters/extremum_sharpening_kernels.hpp"
#include "filters/filter_table.hpp"
#include "fits/correction_kernels.hpp"
#include "measure/counting_kernels.hpp"
#include "measure/extremes_kernels.hpp"
#include "measure/measuring_kernels.hpp"
#include "pictures.hpp"
#include "points/casting_kernels.hpp"
#include "points/point_kernels.hpp"
#include "points/threshold_kernels.hpp"

namespace orlix::bench {
namespace {

template <class T, class Body>
void Register(const std::string& kernel, const char* variant, const Body& body) {
    for (const int size : kSizes)
        benchmark::RegisterBenchmark(Name<T>(kernel, size, variant).c_str(), [=](benchmark::State& state) {
            std::vector<T> pixels = Picture<T>(size);
            body(state, pixels);
            state.SetItemsProcessed(state.iterations() * int64_t{size} * size);
        });
}

template <class T, class Table>
void RegisterPoint(const std::string& kernel, const Table& table, const PointParameters<T>& parameters) {
    for (const auto& variant : SupportedOnThisCpu(table))
        Register<T>(kernel, variant.name, [=](benchmark::State& state, std::vector<T>& pixels) {
            for (auto _ : state) variant.fn(pixels.data(), pixels.size(), parameters);
        });
}

template <class To, class From>
void RegisterCasts() {
    const std::string from = std::string(" ") + NameOf<From>();
    const auto each = [&](const std::string& kernel, const auto& table) {
        for (const auto& variant : SupportedOnThisCpu(table))
            for (const int size : kSizes)
                benchmark::RegisterBenchmark(Name<To>(kernel, size, variant.name).c_str(),
                                             [=](benchmark::State& state) {
                                                 std::vector<To> to = Picture<To>(size);
                                                 const std::vector<From>& pixels = Picture<From>(size);
                                                 for (auto _ : state)
                                                     variant.fn(to.data(), pixels.data(), pixels.size());
                                                 state.SetItemsProcessed(state.iterations() * int64_t{size} * size);
                                             });
    };
    each("cast from" + from, kCast<To, From>);
    each("plus" + from, kPlus<To, From>);
}

// Row by row, excluding the columns whose neighbours lie outside.
template <class T>
void RegisterFilter(const std::string& kernel, std::span<const Variant<FilterFn<T>>> table, size_t radius) {
    for (const auto& variant : SupportedOnThisCpu(table))
        Register<T>(kernel, variant.name, [=](benchmark::State& state, std::vector<T>& pixels) {
            const auto size = static_cast<size_t>(std::sqrt(static_cast<double>(pixels.size())));
            const FilterParameters<T> parameters{0, static_cast<T>(std::is_same_v<T, uint8_t> ? 255 : 65535)};
            std::vector<T> to(pixels.size());
            for (auto _ : state)
                for (size_t y = radius; y < size - radius; ++y) {
                    const T* rows[5];
                    for (size_t k = 0; k <= 2 * radius; ++k) rows[k] = pixels.data() + (y + k - radius) * size + radius;
                    variant.fn(rows, to.data() + y * size + radius, size - 2 * radius, parameters);
                }
        });
}

template <class T>
void RegisterType() {
    const T level = static_cast<T>(std::is_same_v<T, uint16_t> ? 257 : 1);
    for (const auto& variant : SupportedOnThisCpu(kThreshold<T>))
        Register<T>("threshold", variant.name, [=](benchmark::State& state, std::vector<T>& pixels) {
            std::vector<uint8_t> bits(pixels.size() / 8);
            const T lo = static_cast<T>(100 * level), hi = static_cast<T>(200 * level);
            for (auto _ : state) variant.fn(pixels.data(), pixels.size(), bits.data(), 0, lo, hi, true);
        });
    for (const auto& variant : SupportedOnThisCpu(kExtremes<T>))
        Register<T>("extremes", variant.name, [=](benchmark::State& state, std::vector<T>& pixels) {
            for (auto _ : state) {
                T min = pixels[0], max = pixels[0];
                variant.fn(pixels.data(), pixels.size(), min, max);
                benchmark::DoNotOptimize(min);
                benchmark::DoNotOptimize(max);
            }
        });
    for (const auto& variant : SupportedOnThisCpu(kSums<T>))
        Register<T>("sums", variant.name, [=](benchmark::State& state, std::vector<T>& pixels) {
            for (auto _ : state)
                for (size_t i = 0; i < pixels.size(); i += 65536) {
                    PixelSums<T> sums;
                    variant.fn(pixels.data() + i, 65536, 0.0, sums);
                    benchmark::DoNotOptimize(sums);
                }
        });
    if constexpr (sizeof(T) > 1)
        for (const auto& variant : SupportedOnThisCpu(kLevels<T>))
            Register<T>("display levels", variant.name, [=](benchmark::State& state, std::vector<T>& pixels) {
                std::vector<uint8_t> levels(pixels.size());
                const LevelRange<T> range{static_cast<T>(3 * level), static_cast<T>(250 * level), false};
                for (auto _ : state) variant.fn(pixels.data(), pixels.size(), range, levels.data());
            });
    PointParameters<T> parameters;
    parameters.value = 1.01;
    if constexpr (sizeof(T) > 1) RegisterPoint<T>("divide", kQuotient<T>, parameters);
    parameters.value = 3.0;
    parameters.upper = static_cast<T>(255 * level);
    if constexpr (std::is_same_v<T, float>) {
        RegisterPoint<T>("add", kSum<T>, parameters);
        parameters.value = 0.1;
        RegisterPoint<T>("add in double", kSum<T>, parameters);
    } else {
        parameters.last = static_cast<T>(250 * level);
        parameters.offset = static_cast<T>(3 * level);
        RegisterPoint<T>("add", kRamp<T>, parameters);
        parameters.falling = true;
        parameters.offset = parameters.upper;
        RegisterPoint<T>("invert", kRamp<T>, parameters);
    }
    RegisterCasts<T, uint8_t>();
    RegisterCasts<T, uint16_t>();
    RegisterCasts<T, float>();
    for (const FilterRow<T>& row : kFilters<T>)
        RegisterFilter<T>(row.name, row.kernels, static_cast<size_t>(row.radius));
    RegisterFilter<T>("ExtremumSharpening 1", std::span(kExtremumSharpening3x3<T>), 1);
}

template <class T>
void RegisterCorrections() {
    const CorrectionParameters<T> parameters{0, static_cast<T>(std::is_same_v<T, uint16_t> ? 65535 : 255), 0.5};
    if constexpr (std::is_same_v<T, uint8_t>) {
        for (const auto& variant : SupportedOnThisCpu(kCorrectRow))
            for (const bool cubic : {false, true})
                Register<T>(cubic ? "correct bicubic" : "correct plane", variant.name,
                            [=](benchmark::State& state, std::vector<T>& pixels) {
                                const RowPolynomial row = {{-12.3, 0.0101234, cubic ? 3e-6 : 0, cubic ? -1e-9 : 0}};
                                const auto size = static_cast<size_t>(std::sqrt(static_cast<double>(pixels.size())));
                                for (auto _ : state)
                                    for (size_t i = 0; i < pixels.size(); i += size)
                                        variant.fn(pixels.data() + i, size, 0.0, row, parameters);
                            });
    } else {
        for (const auto& variant : SupportedOnThisCpu(kCorrect<T>))
            Register<T>("correct", variant.name, [=](benchmark::State& state, std::vector<T>& pixels) {
                std::vector<double> shifts(512);
                for (size_t i = 0; i < shifts.size(); ++i) shifts[i] = -12.3 + 0.1 * static_cast<double>(i);
                for (auto _ : state)
                    for (size_t i = 0; i < pixels.size(); i += shifts.size())
                        variant.fn(pixels.data() + i, shifts.data(), shifts.size(), parameters);
            });
    }
}

void RegisterHistograms() {
    const auto way = []<class T>(const char* name, size_t counts, void (*fn)(const T*, size_t, uint32_t*)) {
        Register<T>("histogram", name, [=](benchmark::State& state, std::vector<T>& pixels) {
            std::vector<uint32_t> table(counts);
            for (auto _ : state) fn(pixels.data(), pixels.size(), table.data());
        });
    };
    way("tables", kByteTables * 256, &CountBytes);
    way("pairs", kPairSize, &CountBytePairs);
    way("tables", kWordTables * 65536, &CountWords);
    for (const auto& variant : SupportedOnThisCpu(kBins<float>))
        Register<float>("histogram", variant.name, [=](benchmark::State& state, std::vector<float>& pixels) {
            const BinRule<float> rule{0.0f, 255.0f, 256, false};
            uint32_t bins[512];
            for (auto _ : state)
                for (size_t i = 0; i < pixels.size(); i += 512) {
                    variant.fn(pixels.data() + i, 512, rule, bins);
                    benchmark::DoNotOptimize(bins);
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
    RegisterType<uint8_t>();
    RegisterType<uint16_t>();
    RegisterType<float>();
    RegisterHistograms();
    RegisterCorrections<uint8_t>();
    RegisterCorrections<uint16_t>();
    RegisterCorrections<float>();
    PointParameters<uint8_t> parameters;
    for (int i = 0; i < 256; ++i) parameters.table[i] = static_cast<uint8_t>(i * 167 + 13);
    RegisterPoint<uint8_t>("lut", kLookUp, parameters);
    Register<uint8_t>("display levels", "", [](benchmark::State& state, std::vector<uint8_t>& pixels) {
        std::vector<uint8_t> levels(pixels.size());
        const LevelMapping<uint8_t> levelsOf(3, 250);
        for (auto _ : state) levelsOf(pixels.data(), pixels.size(), levels.data());
    });
    benchmark::RunSpecifiedBenchmarks();
}
