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

// A histogram of more bins fails for want of memory. There is one bin for each value of 24 bits; the slowest statistic
// of so many (the mixture) takes about a second, and none takes more than half a gigabyte.
inline constexpr int64_t kMostBins = int64_t{1} << 24;

// An array of counts, zero at first. Zeroed memory comes from the system, which gives out only the pages that are used:
// a histogram of very many bins costs what is counted into it. Without bins there is no memory (null).
class CountBuffer {
public:
    CountBuffer() = default;
    // Raises std::bad_alloc, also for more than kMostBins; a size below 1 is 0.
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
