// The counts of a histogram.
#pragma once

#include <orlix/orlix.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <span>

namespace orlix {

// The limit on bins; more fail for want of memory. It allows one bin for each 24-bit value. The slowest statistic of
// that many bins (the mixture) takes about a second, and none takes more than half a gigabyte.
inline constexpr int64_t kMostBins = int64_t{1} << 24;

// An array of counts, initially zero. The system zeroes the memory and commits only pages in use, so a histogram of
// very many bins costs only what is counted into it. No bins, no memory (null).
class CountBuffer {
public:
    CountBuffer() = default;
    // Raises std::bad_alloc when memory runs out and for more than kMostBins; a size below 1 counts as 0.
    explicit CountBuffer(int64_t size) {
        if (size < 1) return;
        if (size > kMostBins) throw std::bad_alloc();
        size_ = static_cast<size_t>(size);
        memory_.reset(static_cast<LONG*>(std::calloc(size_, sizeof(LONG))));
        if (!memory_) throw std::bad_alloc();
    }

    LONG* data() const { return memory_.get(); }
    size_t size() const { return size_; }
    std::span<LONG> counts() const { return {memory_.get(), size_}; }

private:
    struct Free {
        void operator()(LONG* memory) const { std::free(memory); }
    };
    std::unique_ptr<LONG[], Free> memory_;
    size_t size_ = 0;
};

}  // namespace orlix
