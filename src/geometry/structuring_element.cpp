#include "geometry/structuring_element.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "component/failure.hpp"

namespace orlix {
namespace {

// Modulo 2^32.
LONG Sum(LONG a, LONG b) { return static_cast<LONG>(static_cast<ULONG>(a) + static_cast<ULONG>(b)); }
LONG Negative(LONG a) { return static_cast<LONG>(0 - static_cast<ULONG>(a)); }

uint8_t MaskOf(int64_t byte, int64_t rest) {
    if (byte >= 0) return rest >= 0 ? static_cast<uint8_t>(0x80 >> rest) : uint8_t{0};
    return rest < 0 ? static_cast<uint8_t>(1 << (-1 - rest)) : uint8_t{0};
}

}  // namespace

int64_t DiskHalfWidth(int64_t y, double radius) {
    const auto inside = [&](int64_t x) { return std::sqrt(static_cast<double>(x * x + y * y)) <= radius; };
    const double square = radius * radius - static_cast<double>(y * y);
    auto x = static_cast<int64_t>(std::sqrt(square > 0 ? square : 0));
    while (inside(x + 1)) ++x;
    while (x >= 0 && !inside(x)) --x;
    return x;
}

std::vector<SElement> DiskElements(double radius) {
    // For larger radii the area alone, pi radius^2, exceeds the limit.
    constexpr double kLargestRadius = 2320;
    int64_t count = 0;
    if (radius < kLargestRadius) {
        const auto last = static_cast<int64_t>(radius);
        for (int64_t y = -last; y <= last; ++y) count += 2 * DiskHalfWidth(y, radius) + 1;
    }
    if (!(radius < kLargestRadius) || count > kLargestDisk)
        throw Failure("IStructuringElement::CreateDisk: the disk has more than 16777216 pixels.");
    const auto last = static_cast<int64_t>(radius);
    std::vector<SElement> disk;
    disk.reserve(static_cast<size_t>(count));
    for (int64_t y = -last; y <= last; ++y) {
        const int64_t half = DiskHalfWidth(y, radius);
        for (int64_t x = -half; x <= half; ++x) disk.push_back({static_cast<LONG>(x), static_cast<LONG>(y), 0, 0});
    }
    return disk;
}

void Reflect(std::span<SElement> elements) {
    for (SElement& element : elements) {
        element.m_lX = Negative(element.m_lX);
        element.m_lY = Negative(element.m_lY);
    }
}

void Translate(std::span<SElement> elements, LONG x, LONG y) {
    for (SElement& element : elements) {
        element.m_lX = Sum(element.m_lX, x);
        element.m_lY = Sum(element.m_lY, y);
    }
}

Extent ExtentOf(std::span<const SElement> elements) {
    const auto [left, right] = std::ranges::minmax(elements, {}, &SElement::m_lX);
    const auto [top, bottom] = std::ranges::minmax(elements, {}, &SElement::m_lY);
    return {left.m_lX, top.m_lY, right.m_lX, bottom.m_lY};
}

void ByteLists::Reset() {
    inOrder_.reset();
    for (auto& list : lists_) list.reset();
}

// When elements are in reading order or its reverse, those of one byte are adjacent whatever the bit. Disks and most
// client lists are. All others are sorted once.
void ByteLists::Sort(std::span<const SElement> elements) {
    const auto before = [](const SElement& a, const SElement& b) {
        return a.m_lY != b.m_lY ? a.m_lY < b.m_lY : a.m_lX < b.m_lX;
    };
    std::vector<uint32_t> order;
    if (!std::is_sorted(elements.begin(), elements.end(), before) &&
        !std::is_sorted(elements.rbegin(), elements.rend(), before)) {
        order.resize(elements.size());
        std::iota(order.begin(), order.end(), uint32_t{0});
        std::sort(order.begin(), order.end(), [&](uint32_t a, uint32_t b) { return before(elements[a], elements[b]); });
    }
    inOrder_ = std::move(order);
}

std::vector<SElement>& ByteLists::At(int32_t bit, std::span<const SElement> elements) {
    std::optional<std::vector<SElement>>& list = lists_[static_cast<size_t>(bit)];
    if (list) return *list;
    if (!inOrder_) Sort(elements);

    // m_lOffset holds the index of the byte's first element until the bytes have been sorted by it.
    std::vector<SElement> bytes;
    bool ordered = true;
    for (size_t i = 0; i < elements.size(); ++i) {
        const size_t index = inOrder_->empty() ? i : (*inOrder_)[i];
        const SElement& element = elements[index];
        const int64_t v = int64_t{bit} + element.m_lX, byte = v / 8;
        if (bytes.empty() || bytes.back().m_lX != byte || bytes.back().m_lY != element.m_lY)
            bytes.push_back({static_cast<LONG>(byte), element.m_lY, static_cast<LONG>(index), 0});
        SElement& entry = bytes.back();
        entry.m_yValue |= MaskOf(byte, v % 8);
        entry.m_lOffset = std::min(entry.m_lOffset, static_cast<LONG>(index));
        ordered = ordered && (bytes.size() < 2 || bytes[bytes.size() - 2].m_lOffset < entry.m_lOffset);
    }
    if (!ordered)
        std::sort(bytes.begin(), bytes.end(),
                  [](const SElement& a, const SElement& b) { return a.m_lOffset < b.m_lOffset; });
    for (SElement& entry : bytes) entry.m_lOffset = 0;
    return list.emplace(std::move(bytes));
}

}  // namespace orlix
