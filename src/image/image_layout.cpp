#include "image/image_layout.hpp"

#include <algorithm>
#include <cstdlib>
#include <limits>

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

// The entries of one axis in ascending order, without a division for each: a small image is created in the time that
// its margins take.
class Axis {
public:
    Axis(int64_t length, int64_t step)
        : last_(length - 1),
          step_(static_cast<LONG>(step)),
          rest_(length + 2 * kTableMargin),
          position_(MirroredIndex(-kTableMargin, length)),
          rising_(MirroredIndex(1 - kTableMargin, length) > position_) {
        Turn();
    }

    LONG entry() const { return entry_; }
    LONG change() const { return change_; }     // from entry to entry, `steady()` times
    int64_t steady() const { return steady_; }  // at least 1

    // n <= steady()
    void Advance(int64_t n) {
        rest_ -= n;
        steady_ -= n;
        position_ += rising_ ? n : -n;
        if (steady_ == 0) {
            rising_ = !rising_;
            Turn();
        } else {
            entry_ += static_cast<LONG>(n) * change_;
        }
    }

private:
    void Turn() {
        const bool constant = last_ == 0 || rest_ <= 0;  // beyond the margin entries have no meaning
        entry_ = constant ? 0 : static_cast<LONG>(position_ * step_);
        change_ = constant ? 0 : rising_ ? step_ : -step_;
        steady_ = rest_ <= 0 ? kEndless : constant ? rest_ : std::min(rest_, rising_ ? last_ - position_ : position_);
    }

    static constexpr int64_t kEndless = std::numeric_limits<int64_t>::max();
    int64_t last_;
    LONG step_;
    int64_t rest_;  // entries to come
    int64_t position_;
    bool rising_;
    LONG entry_ = 0, change_ = 0;
    int64_t steady_ = 0;
};

}  // namespace

std::vector<VPAEntry> MakeOffsetTable(const ImageLayout& layout) {
    const int64_t size = OffsetTableSize(layout);
    if (static_cast<uint64_t>(size) > std::vector<VPAEntry>().max_size()) throw FailedResult(E_FAIL);
    std::vector<VPAEntry> table(static_cast<size_t>(size));
    Axis x(layout.width, 1), y(layout.height, layout.rowStride / layout.bytesPerSample);
    VPAEntry* to = table.data();
    for (VPAEntry* const end = to + size; to < end;) {
        const int64_t n = std::min({x.steady(), y.steady(), int64_t{end - to}});
        // Sums beyond the last entry of the piece could overflow, so the steps are multiplied.
        for (LONG i = 0; i < n; ++i) to[i] = {x.entry() + i * x.change(), y.entry() + i * y.change()};
        to += n;
        x.Advance(n);
        y.Advance(n);
    }
    return table;
}

}  // namespace orlix
