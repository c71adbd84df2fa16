#include "geometry/structuring_element.hpp"

#include <cmath>
#include <limits>
#include <unordered_map>

#include "component/failure.hpp"

namespace orlix {
namespace {

// Columns -n..n of the row belong to the disk; -1 for none. Coordinates below 2^16.
int64_t HalfWidth(int64_t y, double radius) {
    const auto inside = [&](int64_t x) { return std::sqrt(static_cast<double>(x * x + y * y)) <= radius; };
    const double square = radius * radius - static_cast<double>(y * y);
    auto x = static_cast<int64_t>(std::sqrt(square > 0 ? square : 0));
    while (inside(x + 1)) ++x;
    while (x >= 0 && !inside(x)) --x;
    return x;
}

uint8_t MaskOf(int64_t byte, int64_t rest) {
    if (byte >= 0) return rest >= 0 ? static_cast<uint8_t>(0x80 >> rest) : uint8_t{0};
    return rest < 0 ? static_cast<uint8_t>(1 << (-1 - rest)) : uint8_t{0};
}

}  // namespace

std::vector<SElement> DiskElements(double radius) {
    // More than 2^31 pixels: pi radius^2.
    if (!(radius < 26146)) throw FailedResult(E_FAIL);
    const auto last = static_cast<int64_t>(radius);
    size_t count = 0;
    for (int64_t y = -last; y <= last; ++y) count += static_cast<size_t>(2 * HalfWidth(y, radius) + 1);
    if (count > static_cast<size_t>(std::numeric_limits<LONG>::max())) throw FailedResult(E_FAIL);
    std::vector<SElement> disk;
    disk.reserve(count);
    for (int64_t y = -last; y <= last; ++y) {
        const int64_t half = HalfWidth(y, radius);
        for (int64_t x = -half; x <= half; ++x) disk.push_back({static_cast<LONG>(x), static_cast<LONG>(y), 0, 0});
    }
    return disk;
}

BinaryElements BytesOf(std::span<const SElement> elements) {
    BinaryElements lists;
    for (int64_t bit = 0; bit < 8; ++bit) {
        std::vector<SElement>& list = lists[static_cast<size_t>(bit)];
        std::unordered_map<uint64_t, size_t> places;
        for (const SElement& element : elements) {
            const int64_t v = bit + element.m_lX, byte = v / 8, rest = v % 8;
            const uint64_t key =
                static_cast<uint64_t>(static_cast<uint32_t>(byte)) << 32 | static_cast<uint32_t>(element.m_lY);
            const auto [place, isNew] = places.emplace(key, list.size());
            if (isNew) list.push_back({static_cast<LONG>(byte), element.m_lY, 0, 0});
            list[place->second].m_yValue |= MaskOf(byte, rest);
        }
    }
    return lists;
}

}  // namespace orlix
