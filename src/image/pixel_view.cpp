#include "image/pixel_view.hpp"

#include <algorithm>
#include <functional>

#include "image/image_layout.hpp"

namespace orlix {
namespace {

// The least and the greatest entry of an axis of the table, margins included. Small images spend as much time here as
// in the filter, so this is written for vectors: several extremes at a time, no branches.
struct Offsets {
    LONG least, most;
};
template <LONG VPAEntry::*axis>
Offsets OffsetsOf(const VPAEntry* table, int32_t length) {
    constexpr int64_t kTogether = 8;
    LONG least[kTogether], most[kTogether];
    std::fill_n(least, kTogether, table[0].*axis);
    std::copy_n(least, kTogether, most);
    const int64_t end = int64_t{length} + kTableMargin;
    int64_t i = -kTableMargin;
    const auto add = [&](int64_t k, LONG entry) {
        least[k] = entry < least[k] ? entry : least[k];
        most[k] = entry > most[k] ? entry : most[k];
    };
    for (; i + kTogether <= end; i += kTogether)
        for (int64_t k = 0; k < kTogether; ++k) add(k, table[i + k].*axis);
    for (; i < end; ++i) add(0, table[i].*axis);
    return {*std::min_element(least, least + kTogether), *std::max_element(most, most + kTogether)};
}

}  // namespace

template <class T>
bool SharesMemory(PixelView<const T> view, const void* begin, const void* end) {
    const VPAEntry* const table = view.table();
    if (std::less<const void*>()(table - kTableMargin, end) &&
        std::less<const void*>()(begin, table + std::max(view.width(), view.height()) + kTableMargin))
        return true;
    const Offsets x = OffsetsOf<&VPAEntry::XEntry>(table, view.width());
    const Offsets y = OffsetsOf<&VPAEntry::YEntry>(table, view.height());
    const auto base = static_cast<int64_t>(reinterpret_cast<uintptr_t>(view.base()));
    const int64_t size = sizeof(T);
    return base + (int64_t{x.least} + y.least) * size < static_cast<int64_t>(reinterpret_cast<uintptr_t>(end)) &&
           base + (int64_t{x.most} + y.most + 1) * size > static_cast<int64_t>(reinterpret_cast<uintptr_t>(begin));
}

template bool SharesMemory(PixelView<const uint8_t> view, const void* begin, const void* end);
template bool SharesMemory(PixelView<const uint16_t> view, const void* begin, const void* end);
template bool SharesMemory(PixelView<const uint32_t> view, const void* begin, const void* end);
template bool SharesMemory(PixelView<const float> view, const void* begin, const void* end);

}  // namespace orlix
