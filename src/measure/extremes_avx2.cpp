#include "measure/extremes_kernels.hpp"
#include "vectors/lanes_avx2.hpp"

namespace orlix {
namespace {

// Lanes::Min and Max return their second operand when either is NaN, so a NaN pixel changes nothing.
template <class T>
void Scan(const T* pixels, size_t n, T& min, T& max) {
    using Lanes = PixelLanes<T>;
    constexpr size_t kLanes = Lanes::kLanes;
    size_t i = 0;
    if (n >= kLanes) {
        T least[kLanes], most[kLanes];
        for (size_t lane = 0; lane < kLanes; ++lane) {
            least[lane] = min;
            most[lane] = max;
        }
        typename Lanes::Vector low = Lanes::Load(least), low2 = low;
        typename Lanes::Vector high = Lanes::Load(most), high2 = high;
        for (; i + 2 * kLanes <= n; i += 2 * kLanes) {
            const typename Lanes::Vector p = Lanes::Load(pixels + i), p2 = Lanes::Load(pixels + i + kLanes);
            low = Lanes::Min(p, low);
            high = Lanes::Max(p, high);
            low2 = Lanes::Min(p2, low2);
            high2 = Lanes::Max(p2, high2);
        }
        Lanes::Store(least, Lanes::Min(low, low2));
        Lanes::Store(most, Lanes::Max(high, high2));
        for (size_t lane = 0; lane < kLanes; ++lane) {
            min = least[lane] < min ? least[lane] : min;
            max = most[lane] > max ? most[lane] : max;
        }
    }
    Extremes_scalar(pixels + i, n - i, min, max);
}

}  // namespace

void Extremes_avx2(const uint8_t* pixels, size_t n, uint8_t& min, uint8_t& max) { Scan(pixels, n, min, max); }
void Extremes_avx2(const uint16_t* pixels, size_t n, uint16_t& min, uint16_t& max) { Scan(pixels, n, min, max); }
void Extremes_avx2(const uint32_t* pixels, size_t n, uint32_t& min, uint32_t& max) { Scan(pixels, n, min, max); }
void Extremes_avx2(const float* pixels, size_t n, float& min, float& max) { Scan(pixels, n, min, max); }

}  // namespace orlix
