#include "frames/mosaic_kernels.hpp"
#include "frames/unpacking_kernels.hpp"
#include "support/kernel_testing.hpp"

namespace orlix {
namespace {

template <Packing kPacking>
void ExpectUnpackingAgrees() {
    constexpr PackedGroup kGroup = GroupOf(kPacking);
    for (const size_t n : kAwkwardSizes)
        for (size_t first = 0; first < 2 * kGroup.samples; ++first) {
            // Exactly the bytes of the samples: no variant may read beyond.
            const size_t bytes = ((first + n) * kGroup.bytes + kGroup.samples - 1) / kGroup.samples;
            const auto noise = Noise<uint8_t>(bytes, static_cast<uint32_t>(n));
            const std::unique_ptr<uint8_t[]> groups(new uint8_t[bytes]);
            std::copy(noise.begin(), noise.end(), groups.get());
            ExpectTheBits(kUnpack<kPacking>, std::vector<uint16_t>(n, 0xeeee),
                          [&](UnpackFn unpack, uint16_t* to) { unpack(groups.get(), first, n, to); });
        }
}

TEST(UnpackKernel, EveryVariantEqualsTheDefinition) {
    ExpectUnpackingAgrees<Packing::Words10>();
    ExpectUnpackingAgrees<Packing::Words12>();
    ExpectUnpackingAgrees<Packing::Words14>();
    ExpectUnpackingAgrees<Packing::Words16>();
    ExpectUnpackingAgrees<Packing::Lsb10>();
    ExpectUnpackingAgrees<Packing::Lsb12>();
    ExpectUnpackingAgrees<Packing::Pairs10>();
    ExpectUnpackingAgrees<Packing::Pairs12>();
}

TEST(SplitKernel, EveryVariantEqualsTheDefinition) {
    for (const size_t n : kAwkwardSizes) {
        const auto pixels = Noise<uint8_t>(3 * n, 7);
        ExpectTheBits(kSplitColours, std::vector<uint8_t>(3 * n),
                      [&](SplitFn split, uint8_t* to) { split(pixels.data(), n, to, to + n, to + 2 * n); });
    }
}

template <class T>
class MosaicKernel : public testing::Test {};
using MosaicTypes = testing::Types<uint8_t, uint16_t>;
TYPED_TEST_SUITE(MosaicKernel, MosaicTypes, );

TYPED_TEST(MosaicKernel, EveryVariantEqualsTheDefinition) {
    using T = TypeParam;
    for (const unsigned limit : {255u, 1023u, 4095u, 65535u}) {
        const auto most = static_cast<T>(std::min<unsigned>(limit, std::numeric_limits<T>::max()));
        for (const size_t n : kAwkwardSizes) {
            std::vector<T> samples = Noise<T>(5 * (n + 4), static_cast<uint32_t>(n));
            // A third each at the ends of the range, where results are clamped.
            for (T& s : samples) s = s % 3 == 0 ? T{0} : s % 3 == 1 ? most : static_cast<T>(s & most);
            const T* rows[5];
            for (size_t k = 0; k < 5; ++k) rows[k] = samples.data() + k * (n + 4) + 2;
            for (const bool ownFirst : {false, true})
                ExpectTheBits(kMosaic<T>, std::vector<T>(3 * n), [&](MosaicFn<T> complete, T* to) {
                    complete(rows, n, ownFirst, most, to, to + n, to + 2 * n);
                });
        }
    }
}

TEST(MosaicKernel, RoundsHalvesUpAndClamps) {
    const uint16_t none[7] = {}, row[7] = {0, 0, 1, 0, 1, 0, 0}, bright[7] = {0, 0, 0, 1023, 1023, 1023, 0};
    uint16_t own = 9, green = 9, other = 9;
    const auto at = [&](const uint16_t* middle, int x, bool ownFirst) {
        const uint16_t* const rows[] = {none + x, none + x, middle + x, none + x, none + x};
        Mosaic_scalar<uint16_t>(rows, 1, ownFirst, 1023, &own, &green, &other);
        return std::array<int, 3>{own, green, other};
    };
    using Three = std::array<int, 3>;
    EXPECT_EQ(Three({0, 1, 0}), at(row, 3, true)) << "8 / 16";
    EXPECT_EQ(Three({1, 0, 1}), at(row, 2, true)) << "(8 - 2) / 16, (12 - 3) / 16";
    EXPECT_EQ(Three({1023, 1023, 639}), at(bright, 4, false)) << "26 * 1023 / 16; 10 * 1023 / 16 = 639.4";
}

}  // namespace
}  // namespace orlix
