#include "image/image_layout.hpp"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <span>

#include "component/failure.hpp"

namespace orlix {
int64_t MirroredIndex(int64_t index, int64_t length) {
    if (index >= 0 && index < length) return index;
    if (length == 1) return 0;
    const int64_t period = 2 * (length - 1);
    const int64_t folded = std::abs(index) % period;
    return std::min(folded, period - folded);
}

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
    if (HasColumnEntry(layout, index)) entry.XEntry = static_cast<LONG>(MirroredIndex(index, layout.width));
    if (HasRowEntry(layout, index))
        entry.YEntry =
            static_cast<LONG>(MirroredIndex(index, layout.height) * (layout.rowStride / layout.bytesPerSample));
    return entry;
}

namespace {

// The entries of one axis in ascending order. They repeat after 2(n - 1), so that those of a small image, which are
// nearly all margin, are copies: it is created in the time that a few copies take.
class Axis {
public:
    Axis(int64_t length, int64_t step)
        : last_(length - 1),
          step_(static_cast<LONG>(step)),
          rest_(length + 2 * kTableMargin),
          phase_(last_ == 0 ? 0 : (2 * last_ - kTableMargin % (2 * last_)) % (2 * last_)) {}

    void Fill(std::span<LONG> to) {
        // Beyond the margin entries are 0, as are all of an axis of one entry.
        const int64_t entries = last_ == 0 ? 0 : std::min(rest_, static_cast<int64_t>(to.size()));
        const auto count = static_cast<size_t>(entries);
        rest_ -= entries;
        std::fill(to.begin() + static_cast<ptrdiff_t>(count), to.end(), 0);
        if (count == 0) return;
        const int64_t period = 2 * last_, first = std::min(entries, period);
        for (int64_t i = 0, phase = phase_; i < first; phase %= period) {
            const bool rising = phase < last_;
            const int64_t n = std::min((rising ? last_ : period) - phase, first - i);
            const auto entry = static_cast<LONG>((rising ? phase : period - phase) * step_);
            const LONG change = rising ? step_ : -step_;
            // Sums beyond the last entry of the piece could overflow, so the steps are multiplied.
            for (LONG k = 0; k < n; ++k) to[static_cast<size_t>(i + k)] = entry + k * change;
            i += n;
            phase += n;
        }
        for (size_t done = static_cast<size_t>(first); done < count; done *= 2)
            std::copy_n(to.begin(), std::min(done, count - done), to.begin() + static_cast<ptrdiff_t>(done));
        phase_ = (phase_ + entries) % period;
    }

private:
    int64_t last_;
    LONG step_;
    int64_t rest_;   // entries to come that have a meaning
    int64_t phase_;  // of the next one, 0 to 2(n - 1) - 1: that of an index inside the axis is the index
};

}  // namespace

std::vector<VPAEntry> MakeOffsetTable(const ImageLayout& layout) {
    const int64_t size = OffsetTableSize(layout);
    if (static_cast<uint64_t>(size) > std::vector<VPAEntry>().max_size()) throw FailedResult(E_FAIL);
    std::vector<VPAEntry> table(static_cast<size_t>(size));
    Axis x(layout.width, 1), y(layout.height, layout.rowStride / layout.bytesPerSample);
    constexpr size_t kBlock = 1024;
    LONG columns[kBlock], rows[kBlock];
    for (size_t first = 0; first < table.size(); first += kBlock) {
        const size_t n = std::min(kBlock, table.size() - first);
        x.Fill({columns, n});
        y.Fill({rows, n});
        for (size_t i = 0; i < n; ++i) table[first + i] = {columns[i], rows[i]};
    }
    return table;
}

}  // namespace orlix
