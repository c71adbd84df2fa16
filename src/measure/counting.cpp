#include "measure/counting.hpp"

#include <xmmintrin.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <type_traits>

#include "measure/counting_kernels.hpp"

namespace orlix {
namespace {

constexpr uint32_t kMostCounts = 0x7fffffff;
constexpr uint64_t kSettleAfter = uint64_t{1} << 31;

// From this size on, counting pairs of bytes pays for its 256 KiB table, which is cleared once and read once.
constexpr uint64_t kPairsFrom = 1 << 18;

// From this size on, counting 16-bit values pays for two tables of 256 KiB, which are cleared once and read once.
constexpr uint64_t kWordsFrom = 1 << 17;

uint32_t Saturated(uint64_t count) { return static_cast<uint32_t>(std::min<uint64_t>(count, kMostCounts)); }

}  // namespace

template <class T>
HistogramShape ShapeOfHistogram(T lower, T upper, int32_t numberOfBins) {
    if constexpr (std::is_same_v<T, uint8_t>) {
        return {256, 0.0, 255.0};
    } else {
        HistogramShape shape{numberOfBins, static_cast<double>(lower), static_cast<double>(upper)};
        if constexpr (!std::is_same_v<T, float>) {
            const int64_t values = int64_t{upper} - int64_t{lower} + 1;
            if (values >= 2 && values <= numberOfBins) shape.bins = static_cast<int32_t>(values);
        }
        return shape;
    }
}

void CountBytes(const uint8_t* pixels, size_t n, uint32_t* counts) {
    size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        uint64_t word;
        std::memcpy(&word, pixels + i, 8);
        for (unsigned table = 0; table < kByteTables; ++table) ++counts[256 * table + (word >> 8 * table & 0xff)];
    }
    for (; i < n; ++i) ++counts[pixels[i]];
}

void CountBytePairs(const uint8_t* pixels, size_t n, uint32_t* counts) {
    constexpr size_t kBlock = 32;
    constexpr size_t kAhead =
        2048;  // bytes; rows of 4096 bytes are pages, and hardware prefetching restarts at each page
    size_t i = 0;
    for (; i + kBlock <= n; i += kBlock) {
        _mm_prefetch(reinterpret_cast<const char*>(pixels) + i + kAhead, _MM_HINT_T0);
        uint64_t words[4];
        std::memcpy(words, pixels + i, kBlock);
        if (words[0] == words[1] && words[1] == words[2] && words[2] == words[3] &&
            words[0] == (words[0] >> 16 | words[0] << 48)) {
            // Flat areas: one update of a counter, because sixteen would wait for one another on most processors.
            counts[words[0] & 0xffff] += kBlock / 2;
            continue;
        }
        for (size_t k = 0; k < kBlock; k += 2) {
            uint16_t pair;
            std::memcpy(&pair, pixels + i + k, 2);
            ++counts[pair];
        }
    }
    for (; i < n; ++i) ++counts[65536 + pixels[i]];
}

void CountWords(const uint16_t* pixels, size_t n, uint32_t* counts) {
    size_t i = 0;
    for (; i + 4 <= n; i += 4) {
        uint64_t word;
        std::memcpy(&word, pixels + i, 8);
        const uint64_t first = word & 0xffff;
        if (word == first * 0x0001000100010001) {
            counts[first] += 4;
            continue;
        }
        ++counts[first];
        ++counts[65536 + (word >> 16 & 0xffff)];
        ++counts[word >> 32 & 0xffff];
        ++counts[65536 + (word >> 48)];
    }
    for (; i < n; ++i) ++counts[pixels[i]];
}

template <class T>
BinRule<T> RuleOfHistogram(T lower, T upper, const HistogramShape& shape) {
    bool onePerValue = false;
    if constexpr (!std::is_same_v<T, float>) onePerValue = int64_t{upper} - int64_t{lower} + 1 == shape.bins;
    return {lower, upper, static_cast<uint32_t>(shape.bins), onePerValue};
}

template <class T>
Counter<T>::Counter(T lower, T upper, int32_t numberOfBins, [[maybe_unused]] uint64_t expectedPixels)
    : shape_(ShapeOfHistogram(lower, upper, numberOfBins)), rule_(RuleOfHistogram(lower, upper, shape_)) {
    if constexpr (std::is_same_v<T, uint8_t>) {
        const bool pairs = expectedPixels >= kPairsFrom;
        tables_ = pairs ? 1 : kByteTables;
        counts_.resize(pairs ? kPairSize : kByteTables * 256);
    } else if (std::is_same_v<T, uint16_t> && expectedPixels >= kWordsFrom) {
        tables_ = kWordTables;
        counts_.resize(kWordTables * 65536);
    } else {
        binsOf_ = Choose(kBins<T>);
        // One more than there are bins, for excluded pixels. Several tables as long as they fit the first-level cache.
        tables_ = rule_.bins < 1024 ? 4 : 1;
        counts_.resize(tables_ * (size_t{rule_.bins} + 1));
    }
}

template <class T>
void Counter<T>::operator()(const T* pixels, size_t n) {
    while (n > 0) {
        const size_t part = static_cast<size_t>(std::min<uint64_t>(n, kSettleAfter - unsettled_));
        Add(pixels, part);
        unsettled_ += part;
        if (unsettled_ == kSettleAfter) Settle();
        pixels += part;
        n -= part;
    }
}

template <class T>
void Counter<T>::Add(const T* pixels, size_t n) {
    if constexpr (std::is_same_v<T, uint8_t>) {
        if (tables_ == 1)
            CountBytePairs(pixels, n, counts_.data());
        else
            CountBytes(pixels, n, counts_.data());
    } else {
        if constexpr (std::is_same_v<T, uint16_t>)
            if (!binsOf_) return CountWords(pixels, n, counts_.data());
        constexpr size_t kBlock = 512;
        uint32_t bins[kBlock];
        const size_t stride = counts_.size() / tables_;
        uint32_t* const counts = counts_.data();
        while (n > 0) {
            const size_t part = std::min(n, kBlock);
            binsOf_(pixels, part, rule_, bins);
            size_t i = 0;
            if (tables_ == 4)
                for (; i + 4 <= part; i += 4) {
                    ++counts[bins[i]];
                    ++counts[stride + bins[i + 1]];
                    ++counts[2 * stride + bins[i + 2]];
                    ++counts[3 * stride + bins[i + 3]];
                }
            for (; i < part; ++i) ++counts[bins[i]];
            pixels += part;
            n -= part;
        }
    }
}

// A count that has reached 2^31 - 1 will end there, so it may be clamped now: 2^31 more pixels then fit 32 bits.
template <class T>
void Counter<T>::Settle() {
    for (uint32_t& count : counts_) count = std::min(count, kMostCounts);
    unsettled_ = 0;
}

template <class T>
void Counter<T>::Histogram(std::span<LONG> out) {
    if (binsOf_) {
        const size_t size = counts_.size() / tables_;
        for (size_t bin = 0; bin < out.size(); ++bin) {
            uint64_t count = 0;
            for (size_t table = 0; table < tables_; ++table) count += counts_[table * size + bin];
            out[bin] = static_cast<LONG>(Saturated(count));
        }
        return;
    }
    if constexpr (sizeof(T) <= 2) {
        std::fill(out.begin(), out.end(), 0);
        constexpr size_t kValues = size_t{1} << 8 * sizeof(T);
        std::vector<uint64_t> counts(kValues);
        if (std::is_same_v<T, uint8_t> && tables_ == 1) {
            for (size_t second = 0; second < 256; ++second) {
                const uint32_t* const row = counts_.data() + (second << 8);
                uint64_t total = 0;
                for (size_t first = 0; first < 256; ++first) {
                    counts[first] += row[first];
                    total += row[first];
                }
                counts[second] += total + counts_[65536 + second];
            }
        } else {
            for (size_t table = 0; table < tables_; ++table)
                for (size_t value = 0; value < kValues; ++value) counts[value] += counts_[table * kValues + value];
        }
        // floor((value - lower) bins / width) for ascending values, incrementally: bins <= width unless bins are
        // values.
        const uint32_t width = static_cast<uint32_t>(rule_.upper) - rule_.lower;
        uint32_t bin = std::is_same_v<T, uint8_t> ? rule_.lower : 0;
        uint32_t remainder = 0;
        for (uint32_t value = rule_.lower; value <= rule_.upper; ++value) {
            if (value == rule_.upper && !std::is_same_v<T, uint8_t>) bin = rule_.bins - 1;
            out[bin] = static_cast<LONG>(Saturated(static_cast<uint64_t>(out[bin]) + counts[value]));
            if (std::is_same_v<T, uint8_t> || rule_.onePerValue) {
                ++bin;
            } else if (remainder += rule_.bins; remainder >= width) {
                remainder -= width;
                ++bin;
            }
        }
    }
}

template HistogramShape ShapeOfHistogram(uint8_t, uint8_t, int32_t);
template HistogramShape ShapeOfHistogram(uint16_t, uint16_t, int32_t);
template HistogramShape ShapeOfHistogram(uint32_t, uint32_t, int32_t);
template HistogramShape ShapeOfHistogram(float, float, int32_t);
template BinRule<uint16_t> RuleOfHistogram(uint16_t, uint16_t, const HistogramShape&);
template BinRule<uint32_t> RuleOfHistogram(uint32_t, uint32_t, const HistogramShape&);
template BinRule<float> RuleOfHistogram(float, float, const HistogramShape&);
template class Counter<uint8_t>;
template class Counter<uint16_t>;
template class Counter<uint32_t>;
template class Counter<float>;

}  // namespace orlix
