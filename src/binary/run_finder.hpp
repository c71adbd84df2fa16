// Finds runs of set pixels, 64 pixels at a time.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "geometry/run.hpp"

namespace orlix {

// The pixels of a row in the layout of a bitmap, the first pixel of each word in its highest bit; bits beyond the width
// are 0.
template <class Visit>
void ForEachWord(const uint8_t* row, int32_t width, Visit&& visit) {
    const auto bits = static_cast<size_t>(width);
    for (size_t whole = bits / 64; whole > 0; --whole, row += 8) {
        uint64_t word;
        std::memcpy(&word, row, 8);
        visit(std::endian::native == std::endian::little ? __builtin_bswap64(word) : word);
    }
    if (bits % 64 == 0) return;
    uint64_t word = 0;
    for (size_t i = 0; i < (bits % 64 + 7) / 8; ++i) word |= uint64_t{row[i]} << (56 - 8 * i);
    visit(word & ~uint64_t{0} << (64 - bits % 64));
}

class RunCounter {
public:
    void operator()(uint64_t word) {
        starts_ += static_cast<size_t>(std::popcount(word & ~(word >> 1 | last_ << 63)));
        last_ = word & 1;
    }
    size_t starts() const { return starts_; }

private:
    size_t starts_ = 0;
    uint64_t last_ = 0;  // the pixel before the next word
};

class RunFinder {
public:
    explicit RunFinder(Run* runs) : next_(runs) {}

    void operator()(uint64_t word) {
        // Bits that differ from the pixel before them: first pixels of runs, and pixels just behind one.
        uint64_t changes = word ^ (word >> 1 | uint64_t{open_} << 63);
        while (changes != 0) {
            const int bit = std::countl_zero(changes);
            changes ^= uint64_t{1} << (63 - bit);
            if (open_)
                (next_++)->stop = static_cast<int32_t>(column_ + static_cast<uint32_t>(bit)) - 1;
            else
                next_->start = static_cast<int32_t>(column_ + static_cast<uint32_t>(bit));
            open_ = !open_;
        }
        column_ += 64;
    }

    // The end of the runs of a row that is `width` pixels wide.
    Run* Finish(int32_t width) {
        if (open_) (next_++)->stop = width - 1;
        return next_;
    }

private:
    Run* next_;
    uint32_t column_ = 0;  // of the next word
    bool open_ = false;
};

}  // namespace orlix
