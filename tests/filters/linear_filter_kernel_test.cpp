#include <algorithm>
#include <cmath>
#include <string_view>

#include "filters/linear_filter_kernels.hpp"
#include "support/kernel_testing.hpp"

namespace orlix {
namespace {

template <class T>
struct LinearFilter {
    const char* name;
    int radius;
    std::span<const Variant<FilterFn<T>>> variants;  // the definition last
};

template <class T>
std::vector<LinearFilter<T>> LinearFilters() {
    return {{"Laplacian", 1, SupportedOnThisCpu(kLaplacian<T>)},
            {"SharpenLow", 1, SupportedOnThisCpu(kSharpenLow<T>)},
            {"SharpenMedium", 1, SupportedOnThisCpu(kSharpenMedium<T>)},
            {"Gaussian3x3", 1, SupportedOnThisCpu(kGaussian3x3<T>)},
            {"Gaussian5x5", 2, SupportedOnThisCpu(kGaussian5x5<T>)}};
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
    SourceRows(int radius, size_t n, size_t offset, const Make& make) {
        for (size_t k = 0; k <= 2 * static_cast<size_t>(radius); ++k) {
            rows.push_back(make(k, offset + n + 2 * static_cast<size_t>(radius)));
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
                const SourceRows<T> rows(filter.radius, n, offset, [&](size_t k, size_t count) {
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
            const SourceRows<T> rows(filter.radius, 300, 0, [&](size_t, size_t count) {
                std::vector<T> row(count);
                for (T& p : row) p = random() % 64 < seed ? T(most - static_cast<T>(random() % 3)) : T(random() % 3);
                return row;
            });
            ExpectTheBits(filter, rows, 300, Ranges<T>().front());
        }
}

// The values of a square, row by row, through every variant and in every place of a row, one result.
template <class T>
T Filtered(const LinearFilter<T>& filter, const std::vector<T>& square, const FilterParameters<T>& range) {
    const size_t side = 2 * static_cast<size_t>(filter.radius) + 1;
    constexpr size_t n = 70;
    T result{};
    for (const auto& variant : filter.variants)
        for (size_t x = 0; x < n; ++x) {
            const SourceRows<T> rows(filter.radius, n, 0, [&](size_t k, size_t count) {
                std::vector<T> row(count);
                std::copy_n(square.data() + k * side, side, row.data() + x);
                return row;
            });
            std::vector<T> to(n);
            variant.fn(rows.pointers.data(), to.data(), n, range);
            if (variant.fn == filter.variants.front().fn && x == 0) result = to[x];
            EXPECT_TRUE(SameBits(&result, &to[x], 1)) << filter.name << " " << variant.name << " at " << x;
        }
    return result;
}

template <class T>
T Filtered(const char* name, const std::vector<double>& square) {
    const auto filters = LinearFilters<T>();
    const auto filter =
        std::find_if(filters.begin(), filters.end(), [&](const auto& f) { return std::string_view(f.name) == name; });
    return Filtered<T>(*filter, std::vector<T>(square.begin(), square.end()), Ranges<T>().front());
}

std::vector<double> Impulse(size_t side, size_t at, double height) {
    std::vector<double> square(side * side);
    square[at] = height;
    return square;
}

TYPED_TEST(LinearFilterKernel, AnswersWorkedOutByHand) {
    using T = TypeParam;
    const std::vector<double> peak = {7, 90, 200, 90, 100, 90, 3, 90, 0};  // the corners do not count
    EXPECT_EQ(T(140), Filtered<T>("SharpenMedium", peak));
    EXPECT_EQ(T(120), Filtered<T>("SharpenLow", peak));
    EXPECT_EQ(T(170), Filtered<T>("Laplacian", Impulse(3, 1, 255)));  // 4 * 255 / 6
    EXPECT_EQ(T(170), Filtered<T>("Laplacian", Impulse(3, 3, 255)));
    const std::vector<double> ones(9, 1.0), twos(25, 2.0);
    EXPECT_EQ(T(1), Filtered<T>("Gaussian3x3", ones));
    EXPECT_EQ(T(2), Filtered<T>("Gaussian5x5", twos));
    EXPECT_EQ(T(0), Filtered<T>("Laplacian", ones));
    const double binomial3[] = {1, 2, 1}, binomial5[] = {1, 4, 6, 4, 1};
    for (size_t i = 0; i < 9; ++i)
        EXPECT_EQ(T(10 * binomial3[i / 3] * binomial3[i % 3]), Filtered<T>("Gaussian3x3", Impulse(3, i, 160))) << i;
    for (size_t i = 0; i < 25; ++i) {
        const double half = binomial5[i / 5] * binomial5[i % 5] / 2;
        const double want =
            std::is_same_v<T, float> ? half : std::floor(std::is_same_v<T, uint32_t> ? half + 0.5 : half);
        EXPECT_EQ(T(want), Filtered<T>("Gaussian5x5", Impulse(5, i, 128))) << i;
    }
}

TEST(LinearFilterRounding, IsThatOfEachType) {
    const struct {
        const char* filter;
        std::vector<double> square;
        double words, doubleWords, floats;
    } cases[] = {
        {"Laplacian", Impulse(3, 0, 255), 42, 43, 42.5},         // 255 / 6
        {"Laplacian", Impulse(3, 4, 255), 0, 0, -850},           // -20 * 255 / 6
        {"SharpenLow", {0, 1, 0, 0, 2, 0, 0, 0, 0}, 5, 6, 5.5},  // (12 - 1) / 2
        {"Gaussian3x3", Impulse(3, 4, 10), 2, 3, 2.5},           // 40 / 16
        {"Gaussian5x5", Impulse(5, 12, 32), 4, 5, 4.5},          // 36 * 32 / 256
    };
    for (const auto& [filter, square, words, doubleWords, floats] : cases) {
        SCOPED_TRACE(filter);
        EXPECT_EQ(words, Filtered<uint8_t>(filter, square));
        EXPECT_EQ(words, Filtered<uint16_t>(filter, square));
        EXPECT_EQ(doubleWords, Filtered<uint32_t>(filter, square));
        EXPECT_EQ(floats, static_cast<double>(Filtered<float>(filter, square)));
    }
}

TYPED_TEST(LinearFilterKernel, OfAFlatImageIsTheImage) {
    using T = TypeParam;
    for (const T level : Noise<T>(200, 9)) {
        if (!(static_cast<double>(level) >= 0 && static_cast<double>(level) < 1e35)) continue;
        for (const auto& filter : LinearFilters<T>()) {
            const T want = std::string_view(filter.name) == "Laplacian" ? T(0) : level;
            const SourceRows<T> rows(filter.radius, 100, 0,
                                     [&](size_t, size_t count) { return std::vector<T>(count, level); });
            std::vector<T> to(100);
            filter.variants.back().fn(rows.pointers.data(), to.data(), 100, Ranges<T>().front());
            for (const T got : to) ASSERT_EQ(want, got) << filter.name;
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

TEST(LinearFilterFloats, KeepNanAndWhatInfinitiesLeave) {
    const auto bits = [](float f) { return std::bit_cast<uint32_t>(f); };
    for (const auto& filter : LinearFilters<float>()) {
        const size_t side = 2 * static_cast<size_t>(filter.radius) + 1;
        const size_t centre = side * side / 2;
        std::vector<float> square(side * side, 1.0f);
        square[centre] = -std::bit_cast<float>(0x7fc12345);
        EXPECT_EQ(0x7fc00000u, bits(Filtered<float>(filter, square, {0, 5}))) << filter.name;
        square[centre] = kFloatInfinity;
        const float want = std::string_view(filter.name) == "Laplacian" ? 0.0f : 5.0f;
        EXPECT_EQ(want, Filtered<float>(filter, square, {0, 5})) << filter.name;
        square[centre - 1] = std::string_view(filter.name).starts_with("Gauss") ? -kFloatInfinity : kFloatInfinity;
        EXPECT_EQ(0x7fc00000u, bits(Filtered<float>(filter, square, {0, 5}))) << filter.name;
    }
}

}  // namespace
}  // namespace orlix
