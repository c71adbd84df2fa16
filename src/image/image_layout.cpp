#include "image/image_layout.hpp"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "component/failure.hpp"

namespace orlix {
namespace {

int64_t Mirrored(int64_t index, int64_t length) {
    if (index >= 0 && index < length) return index;
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
    // At most 2^31 rows of 2^34 bytes, and less after the test above.
    const uint64_t bandSize = static_cast<uint64_t>(layout.rowStride) * static_cast<uint64_t>(height);
    const uint64_t limit = std::numeric_limits<ptrdiff_t>::max();
    if (bandSize > limit / static_cast<uint64_t>(bands)) throw FailedResult(E_FAIL);
    layout.bandSize = static_cast<size_t>(bandSize);
    layout.totalSize = static_cast<size_t>(bandSize * static_cast<uint64_t>(bands));
    return layout;
}

VPAEntry OffsetTableEntry(const ImageLayout& layout, int64_t index) {
    VPAEntry entry = {};
    if (HasColumnEntry(layout, index)) entry.XEntry = static_cast<LONG>(Mirrored(index, layout.width));
    if (HasRowEntry(layout, index))
        entry.YEntry = static_cast<LONG>(Mirrored(index, layout.height) * (layout.rowStride / layout.bytesPerSample));
    return entry;
}

std::vector<VPAEntry> MakeOffsetTable(const ImageLayout& layout) {
    const int64_t size = OffsetTableSize(layout);
    if (static_cast<uint64_t>(size) > std::vector<VPAEntry>().max_size()) throw FailedResult(E_FAIL);
    std::vector<VPAEntry> table(static_cast<size_t>(size));
    int64_t index = -kTableMargin;
    for (VPAEntry& entry : table) entry = OffsetTableEntry(layout, index++);
    return table;
}

}  // namespace orlix
