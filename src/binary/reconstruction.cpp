#include "binary/reconstruction.hpp"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace orlix {
namespace {

constexpr int kTop = 63;  // the leftmost pixel of a word is its highest bit

// The pixels of runs of the mask that lie at or left of a seed in the run: adding the seed to the ones of its run
// carries to the left end. seeds is a part of mask.
uint64_t FilledLeft(uint64_t seeds, uint64_t mask) { return seeds | (mask & ~(mask + seeds)); }

uint64_t FilledRight(uint64_t seeds, uint64_t mask) {
    for (int step = 1; step < 64; step *= 2) {
        seeds |= mask & seeds >> step;
        mask &= mask >> step;
    }
    return seeds;
}

// Grows a part of a mask until nothing is added: the components of the mask that it touches.
template <bool diagonal>
class Growth {
public:
    Growth(BitPlane& reached, const BitPlane& mask)
        : reached_(reached), mask_(mask), words_(mask.wordsPerRow()), height_(mask.height()) {}

    // Passes over all rows while each leaves at most half as much to do as the one before, then word by word.
    void Run() {
        const size_t few = static_cast<size_t>(height_) * words_ / 64;
        size_t left = SIZE_MAX;
        for (Pass(); queue_.size() > few && queue_.size() < left / 2; Pass()) {
            left = queue_.size();
            for (const size_t word : queue_) queued_[word] = 0;
            queue_.clear();
        }
        while (!queue_.empty()) {
            current_.swap(queue_);
            queue_.clear();
            for (const size_t word : current_) GrowWord(word);
        }
    }

private:
    // Down, and up again; queues the words that could still grow.
    void Pass() {
        for (int32_t y = 0; y < height_; ++y) GrowRow(y, y - 1);
        filled_ = true;
        for (int32_t y = height_ - 1; y >= 0; --y)
            if (GrowRow(y, y + 1) && y + 1 < height_)
                for (size_t i = 0; i < words_; ++i) QueueIfOpen(y + 1, y, i);
    }

    // The pixels to which those of word i of a row are connected in the rows above and below.
    uint64_t Spread(const uint64_t* row, size_t i) const {
        uint64_t spread = row[i];
        if constexpr (diagonal) {
            spread |= row[i] << 1 | row[i] >> 1;
            if (i > 0) spread |= row[i - 1] << kTop;
            if (i + 1 < words_) spread |= row[i + 1] >> kTop;
        }
        return spread;
    }

    // Takes in what is connected with the neighbouring row (which may lie outside) and fills the runs of the row;
    // whether anything was added. In the first pass down, the runs of a row are not filled before.
    bool GrowRow(int32_t y, int32_t neighbour) {
        uint64_t* row = reached_.row(y);
        const uint64_t* mask = mask_.row(y);
        const uint64_t* other = neighbour >= 0 && neighbour < height_ ? reached_.row(neighbour) : nullptr;
        uint64_t added = 0;
        uint64_t found = 0;
        uint64_t carry = 0;
        for (size_t i = words_; i-- > 0;) {
            uint64_t seeds = row[i];
            if (seeds != mask[i]) {
                seeds |= carry;
                if (other) seeds |= Spread(other, i);
                seeds &= mask[i];
                if (seeds != 0) seeds = FilledLeft(seeds, mask[i]);
                added |= seeds ^ row[i];
                row[i] = seeds;
            }
            found |= seeds;
            carry = seeds >> kTop;
        }
        if ((filled_ ? added : found) == 0) return false;
        carry = 0;
        for (size_t i = 0; i < words_; ++i) {
            if (row[i] != mask[i]) {
                uint64_t seeds = row[i] | (carry << kTop & mask[i]);
                if (seeds != 0 && seeds != mask[i]) seeds = FilledRight(seeds, mask[i]);
                added |= seeds ^ row[i];
                row[i] = seeds;
            }
            carry = row[i] & 1;
        }
        return added != 0;
    }

    // Queues word i of row y if the neighbouring row would make it grow.
    void QueueIfOpen(int32_t y, int32_t neighbour, size_t i) {
        if (Spread(reached_.row(neighbour), i) & mask_.row(y)[i] & ~reached_.row(y)[i])
            Queue(static_cast<size_t>(y) * words_ + i);
    }

    void Queue(size_t word) {
        if (queued_.empty()) queued_.resize(static_cast<size_t>(height_) * words_);
        if (queued_[word]) return;
        queued_[word] = 1;
        queue_.push_back(word);
    }

    // A word is in the queue only while it can grow, and it never shrinks: each step adds pixels.
    void GrowWord(size_t word) {
        queued_[word] = 0;
        const auto y = static_cast<int32_t>(word / words_);
        const size_t i = word % words_;
        uint64_t* row = reached_.row(y);
        const uint64_t* mask = mask_.row(y);
        uint64_t seeds = row[i];
        if (i > 0) seeds |= row[i - 1] << kTop;
        if (i + 1 < words_) seeds |= row[i + 1] >> kTop;
        if (y > 0) seeds |= Spread(reached_.row(y - 1), i);
        if (y + 1 < height_) seeds |= Spread(reached_.row(y + 1), i);
        seeds &= mask[i];
        row[i] = FilledRight(FilledLeft(seeds, mask[i]), mask[i]);

        if (i > 0 && (row[i] >> kTop & mask[i - 1] & ~row[i - 1])) Queue(word - 1);
        if (i + 1 < words_ && (row[i] << kTop & mask[i + 1] & ~row[i + 1])) Queue(word + 1);
        if (y > 0) QueueNear(y - 1, y, i);
        if (y + 1 < height_) QueueNear(y + 1, y, i);
    }

    // Queues those of the words i - 1, i, i + 1 of row y that the neighbouring row would make grow.
    void QueueNear(int32_t y, int32_t neighbour, size_t i) {
        for (size_t k = diagonal && i > 0 ? i - 1 : i; k <= i + diagonal && k < words_; ++k)
            QueueIfOpen(y, neighbour, k);
    }

    BitPlane& reached_;
    const BitPlane& mask_;
    const size_t words_;
    const int32_t height_;
    bool filled_ = false;  // the runs of all rows
    std::vector<size_t> queue_, current_;
    std::vector<uint8_t> queued_;
};

void Grow(BitPlane& reached, const BitPlane& mask, Connectivity connectivity) {
    if (connectivity == Connectivity::Eight)
        Growth<true>(reached, mask).Run();
    else
        Growth<false>(reached, mask).Run();
}

// The pixels of the image at the edge of the bitmap.
BitPlane EdgeOf(const BitPlane& image) {
    BitPlane edge(image.width(), image.height());
    if (image.width() == 0) return edge;
    const size_t last = image.wordsPerRow() - 1;
    const uint64_t lastPixel = BitPlane::MaskOf(image.width() - 1);
    for (int32_t y = 0; y < image.height(); ++y) {
        const uint64_t* from = image.row(y);
        uint64_t* to = edge.row(y);
        if (y == 0 || y == image.height() - 1)
            for (size_t i = 0; i <= last; ++i) to[i] = from[i];
        to[0] |= from[0] & uint64_t{1} << kTop;
        to[last] |= from[last] & lastPixel;
    }
    return edge;
}

// Calls body(a, b, words) for the rows of two planes of one size.
template <class Body>
void ForEachRow(BitPlane& a, const BitPlane& b, const Body& body) {
    for (int32_t y = 0; y < a.height(); ++y) body(a.row(y), b.row(y), a.wordsPerRow());
}

void Invert(BitPlane& plane) {
    if (plane.width() == 0) return;
    const uint64_t lastMask = plane.lastWordMask();
    ForEachRow(plane, plane, [=](uint64_t* to, const uint64_t*, size_t words) {
        for (size_t i = 0; i < words; ++i) to[i] = ~to[i];
        to[words - 1] &= lastMask;
    });
}

}  // namespace

BitPlane Reconstruct(const BitPlane& seeds, const BitPlane& mask, Connectivity connectivity) {
    BitPlane reached = seeds;
    ForEachRow(reached, mask, [](uint64_t* to, const uint64_t* with, size_t words) {
        for (size_t i = 0; i < words; ++i) to[i] &= with[i];
    });
    Grow(reached, mask, connectivity);
    return reached;
}

BitPlane FillHoles(const BitPlane& image, Connectivity connectivity) {
    BitPlane background = image;
    Invert(background);
    BitPlane outside = EdgeOf(background);
    Grow(outside, background, Dual(connectivity));
    Invert(outside);
    return outside;
}

BitPlane ClearBorder(const BitPlane& image, Connectivity connectivity) {
    BitPlane touching = EdgeOf(image);
    Grow(touching, image, connectivity);
    ForEachRow(touching, image, [](uint64_t* to, const uint64_t* with, size_t words) {
        for (size_t i = 0; i < words; ++i) to[i] ^= with[i];
    });
    return touching;
}

}  // namespace orlix
