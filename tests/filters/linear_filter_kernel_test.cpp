#include "filters/linear_filter_kernels.hpp"
#include "support/kernel_testing.hpp"

namespace orlix {
namespace {

template <class T>
struct LinearFilter {
    const char* name;
    std::span<const Variant<FilterFn<T>>> variants;  // the definition last
    std::vector<int> weights;                        // of a square, row by row
    int divisor;

    size_t side() const { return weights.size() == 25 ? 5 : 3; }
    size_t radius() const { return side() / 2; }
};

template <class T>
std::vector<LinearFilter<T>> LinearFilters() {
    std::vector<int> binomials;
    for (const int a : {1, 4, 6, 4, 1})
        for (const int b : {1, 4, 6, 4, 1}) binomials.push_back(a * b);
    return {{"Laplacian", SupportedOnThisCpu(kLaplacian<T>), {1, 4, 1, 4, -20, 4, 1, 4, 1}, 6},
            {"SharpenLow", SupportedOnThisCpu(kSharpenLow<T>), {0, -1, 0, -1, 6, -1, 0, -1, 0}, 2},
            {"SharpenMedium", SupportedOnThisCpu(kSharpenMedium<T>), {0, -1, 0, -1, 5, -1, 0, -1, 0}, 1},
            {"Gaussian3x3", SupportedOnThisCpu(kGaussian3x3<T>), {1, 2, 1, 2, 4, 2, 1, 2, 1}, 16},
            {"Gaussian5x5", SupportedOnThisCpu(kGaussian5x5<T>), binomials, 256}};
}

template <class T>
std::vector<FilterParameters<T>> Ranges() {
    if constexpr (std::is_same_v<T, float>) {
        constexpr float kMost = std::numeric_limits<float>::max();
        constexpr float kNan = kFloatNan, kInf = kFloatInfinity;
        return {{-kMost, kMost}, {0, 100}, {100, 0}, {0.0f, -0.0f}, {kNan, kNan}, {-kInf, kInf}};
    } else {
        constexpr T kMost = std::numeric_limits<T>::max();
        return {{0, kMost}, {T(kMost / 4), T(kMost / 2)}, {T(kMost / 2), T(kMost / 4)}, {kMost, kMost}, {kMost, 0}};
    }
}

// Rows of n pixels and their margins, each in memory of its own that ends where the row ends: AddressSanitizer sees a
// read beyond, without an offset also one before.
template <class T>
struct SourceRows {
    std::vector<std::vector<T>> rows;
    std::vector<const T*> pointers;
    template <class Make>
    SourceRows(size_t radius, size_t n, size_t offset, const Make& make) {
        for (size_t k = 0; k <= 2 * radius; ++k) {
            rows.push_back(make(k, offset + n + 2 * radius));
            pointers.push_back(rows.back().data() + offset + radius);
        }
    }
};

template <class T>
void ExpectTheBits(const LinearFilter<T>& filter, const SourceRows<T>& rows, size_t n,
                   const FilterParameters<T>& parameters) {
    SCOPED_TRACE(filter.name);
    ExpectTheBits(filter.variants, std::vector<T>(n, T{77}),
                  [&](auto fn, T* to) { fn(rows.pointers.data(), to, n, parameters); });
}

template <class T>
class LinearFilterKernel : public testing::Test {};
TYPED_TEST_SUITE(LinearFilterKernel, PixelTypes, );

TYPED_TEST(LinearFilterKernel, EveryVariantEqualsTheDefinitionForEverySize) {
    using T = TypeParam;
    for (const auto& filter : LinearFilters<T>())
        for (const size_t n : kAwkwardSizes)
            for (const size_t offset : {0, 1, 3}) {
                const SourceRows<T> rows(filter.radius(), n, offset, [&](size_t k, size_t count) {
                    return Noise<T>(count, static_cast<uint32_t>(1000 * k + n + offset));
                });
                for (const auto& range : Ranges<T>()) ExpectTheBits(filter, rows, n, range);
            }
}

// Sums of all sizes, the largest and smallest above all, which noise does not reach.
TYPED_TEST(LinearFilterKernel, EveryVariantEqualsTheDefinitionForExtremes) {
    using T = TypeParam;
    const T most = std::is_same_v<T, float> ? T(1e6) : std::numeric_limits<T>::max();
    for (const auto& filter : LinearFilters<T>())
        for (uint32_t seed = 0; seed < 50; ++seed) {
            std::mt19937 random(seed);
            const SourceRows<T> rows(filter.radius(), 300, 0, [&](size_t, size_t count) {
                std::vector<T> row(count);
                for (T& p : row) p = random() % 64 < seed ? T(most - static_cast<T>(random() % 3)) : T(random() % 3);
                return row;
            });
            ExpectTheBits(filter, rows, 300, Ranges<T>().front());
        }
}

// Bytes and words are rounded down, double words to the nearest, halves up; floats are not.
TYPED_TEST(LinearFilterKernel, EveryVariantGivesTheWeightedSum) {
    using T = TypeParam;
    constexpr size_t n = 2000;
    for (const auto& filter : LinearFilters<T>()) {
        std::mt19937 random(1);
        const SourceRows<T> rows(filter.radius(), n, 0, [&](size_t, size_t count) {
            std::vector<T> row(count);
            // From flat to the whole range of the type, or of a byte, whose sums are exact in float.
            const double most = std::is_same_v<T, float> ? 255 : std::numeric_limits<T>::max();
            for (size_t i = 0; i < count; ++i)
                row[i] = static_cast<T>(std::floor(
                    most * (0.4 + 0.6 * static_cast<double>(random() % 1000 * i) / static_cast<double>(1000 * count))));
            return row;
        });
        for (const auto& variant : filter.variants) {
            std::vector<T> to(n);
            variant.fn(rows.pointers.data(), to.data(), n, Ranges<T>().front());
            for (size_t x = 0; x < n; ++x) {
                double sum = 0;
                for (size_t k = 0; k < filter.weights.size(); ++k)
                    sum += filter.weights[k] * static_cast<double>(rows.rows[k / filter.side()][x + k % filter.side()]);
                sum /= filter.divisor;
                if constexpr (std::is_same_v<T, float>) {
                    ASSERT_FLOAT_EQ(static_cast<float>(sum), to[x]) << filter.name << " " << variant.name;
                } else {
                    const double rounded = std::floor(std::is_same_v<T, uint32_t> ? sum + 0.5 : sum);
                    const double most = std::numeric_limits<T>::max();
                    ASSERT_EQ(std::clamp(rounded, 0.0, most), to[x]) << filter.name << " " << variant.name;
                }
            }
        }
    }
}

// Every sum that 16-bit neighbours can make, 0 to 20 * 65535, and its quotient by 6 below the limit of the type.
TEST(LinearFilterWords, DivideBySixExactly) {
    constexpr size_t n = 6 * 65536;
    std::vector<uint16_t> ends(n + 2), row(n + 2);
    for (size_t i = 0; i < n; ++i) ends[i + 1] = static_cast<uint16_t>(i / 8), row[i] = static_cast<uint16_t>(i % 8);
    const uint16_t* const rows[] = {ends.data() + 1, row.data() + 1, ends.data() + 1};
    for (const auto& variant : SupportedOnThisCpu(kLaplacian<uint16_t>)) {
        std::vector<uint16_t> to(n);
        variant.fn(rows, to.data(), n, {0, 65535});
        for (size_t i = 0; i < n; ++i) {
            const int around = 2 * (ends[i] + ends[i + 2]) + 4 * (2 * ends[i + 1] + row[i] + row[i + 2]);
            ASSERT_EQ(std::clamp((around - 20 * row[i + 1]) / 6, 0, 65535), to[i]) << variant.name << " at " << i;
        }
    }
}

TEST(LinearFilterFloats, LeaveFlatImagesExactlyAsTheyAre) {
    for (const float level : FiniteNoise(200, 9))
        for (const auto& filter : LinearFilters<float>()) {
            const SourceRows<float> rows(filter.radius(), 100, 0,
                                         [&](size_t, size_t count) { return std::vector<float>(count, level); });
            std::vector<float> to(100);
            filter.variants.back().fn(rows.pointers.data(), to.data(), 100, Ranges<float>().front());
            const float want = std::string_view(filter.name) == "Laplacian" ? 0 : level;
            for (const float got : to) ASSERT_EQ(want, got) << filter.name;
        }
}

TEST(LinearFilterFloats, KeepNanAndWhatInfinitiesLeave) {
    const float nan = std::bit_cast<float>(0x7fc00000);
    for (const auto& filter : LinearFilters<float>()) {
        const bool laplacian = std::string_view(filter.name) == "Laplacian";
        const float other = std::string_view(filter.name).starts_with("Gauss") ? -kFloatInfinity : kFloatInfinity;
        const struct {
            float centre, left, want;
        } cases[] = {{-std::bit_cast<float>(0x7fc12345), 1, nan},
                     {kFloatInfinity, 1, laplacian ? 0.0f : 5.0f},
                     {kFloatInfinity, other, nan}};
        for (const auto& [centre, left, want] : cases)
            for (const auto& variant : filter.variants) {
                SourceRows<float> rows(filter.radius(), 70, 0,
                                       [](size_t, size_t count) { return std::vector<float>(count, 1.0f); });
                float to[70];
                for (const size_t x : {size_t{0}, size_t{5}, size_t{33}, size_t{69}}) {
                    const std::vector<float> before = rows.rows[filter.radius()];
                    rows.rows[filter.radius()][x + filter.radius()] = centre;
                    rows.rows[filter.radius()][x + filter.radius() - 1] = left;
                    variant.fn(rows.pointers.data(), to, 70, {0, 5});
                    EXPECT_TRUE(SameBits(&want, &to[x], 1)) << filter.name << " " << variant.name << " at " << x;
                    std::ranges::copy(before, rows.rows[filter.radius()].begin());
                }
            }
    }
}

}  // namespace
}  // namespace orlix
