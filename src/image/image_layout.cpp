#include "image/image_layout.hpp"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "component/failure.hpp"

namespace orlix {
namespace {

int64_t Mirrored(int64_t index, int64_t length) {
    if (length == 1) return 0;
    const int64_t period = 2 * (length - 1);
    const int64_t folded = std::abs(index) % period;
    return std::min(folded, period - folded);
}

}  // namespace

int32_t BytesPerSample(LONG dataType) {
    const int32_t bytes = ((dataType & 0x1ff) + 7) / 8;
    if (bytes > 8) throw FailedResult(E_FAIL);
    if (bytes > 4) return 8;
    return bytes == 3 ? 4 : bytes;
}

ImageLayout MakeLayout(int32_t width, int32_t height, int32_t bands, LONG dataType) {
    constexpr int64_t kLargestOffset = std::numeric_limits<LONG>::max();
    ImageLayout layout{width, height, bands, BytesPerSample(dataType)};
    layout.rowStride = (int64_t{width} * layout.bytesPerSample + 3) / 4 * 4;
    const int64_t samplesPerRow = layout.rowStride / layout.bytesPerSample;
    if (height > 1 && samplesPerRow > kLargestOffset / (height - 1)) throw FailedResult(E_FAIL);
    // At most 2^31 (rows) * 2^34 bytes, and less after the test above.
    const uint64_t bandSize = static_cast<uint64_t>(layout.rowStride) * static_cast<uint64_t>(height);
    const uint64_t limit = std::numeric_limits<ptrdiff_t>::max();
    if (bandSize > limit / static_cast<uint64_t>(bands)) throw FailedResult(E_FAIL);
    layout.bandSize = static_cast<size_t>(bandSize);
    layout.totalSize = static_cast<size_t>(bandSize * static_cast<uint64_t>(bands));
    return layout;
}

std::vector<VPAEntry> MakeOffsetTable(const ImageLayout& layout) {
    const int64_t length = std::max<int64_t>(layout.width, layout.height) + 2 * int64_t{kTableMargin};
    if (static_cast<uint64_t>(length) > std::vector<VPAEntry>().max_size()) throw FailedResult(E_FAIL);
    std::vector<VPAEntry> table(static_cast<size_t>(length));
    VPAEntry* const origin = table.data() + kTableMargin;
    for (int64_t x = 0; x < layout.width; ++x) origin[x].XEntry = static_cast<LONG>(x);
    const int64_t samplesPerRow = layout.rowStride / layout.bytesPerSample;
    for (int64_t y = 0; y < layout.height; ++y) origin[y].YEntry = static_cast<LONG>(y * samplesPerRow);
    for (int64_t i = 1; i <= kTableMargin; ++i) {
        const int64_t right = layout.width - 1 + i;
        const int64_t below = layout.height - 1 + i;
        origin[-i].XEntry = origin[Mirrored(-i, layout.width)].XEntry;
        origin[right].XEntry = origin[Mirrored(right, layout.width)].XEntry;
        origin[-i].YEntry = origin[Mirrored(-i, layout.height)].YEntry;
        origin[below].YEntry = origin[Mirrored(below, layout.height)].YEntry;
    }
    return table;
}

}  // namespace orlix
