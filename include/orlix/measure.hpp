// For clients in C++: measurements that take several calls of the interfaces. Failed calls throw Error, see client.hpp.
//
//     ComPtr<IHistogram> histogram;
//     Check(process->get_Histogram(histogram.Out()), process);
//     const AutoThreshold otsu = FindAutoThreshold(histogram, ThresholdMethod::MinimizeVariance, 0, 0);
//     if (otsu.status == AutoThreshold::Status::Found && Dip(Bins(histogram)) >= LeastDipOfTwoPeaks(pixels)) {
//         ComPtr<IBitmap> dark;
//         Check(process->Threshold(0, otsu.darkCut, 1, dark.Out()), process);
//         std::printf("%g %%\n", 100.0 * MeasureBitmap(dark).pixelCount / pixels);
//     }
#ifndef ORLIX_MEASURE_HPP
#define ORLIX_MEASURE_HPP

#include <orlix/client.hpp>
#include <orlix/com_ptr.hpp>
#include <orlix/counted_object.hpp>
#include <orlix/statistics.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <span>
#include <utility>
#include <vector>

namespace orlix {

// ------------------------------------------------------------------------------------------------------------- bitmaps

// The pixels of a bitmap that are 1. The centroid is the mean of their columns and rows, in pixels from the centre of
// the pixel at the top left; it is NaN without such pixels.
struct BinaryMeasurements {
    int64_t pixelCount = 0;
    double xCentroid = implementation::kNaN;
    double yCentroid = implementation::kNaN;
};

BinaryMeasurements MeasureBitmap(const ComPtr<IBitmap>& bitmap);

// ---------------------------------------------------------------------------------------------------------- histograms

// The bins of a histogram, which belong to it: valid until it changes or goes. Empty if it has none.
std::span<LONG> Bins(const ComPtr<IHistogram>& histogram);

// A new histogram of at most `mostBins` bins. The same number of neighbours is added up for each, as few as possible;
// bins of any other width would put a comb into the counts. The last bin may reach beyond the right end of the given
// histogram. Sums are limited to 2^31 - 1. A histogram that is small enough is copied. Throws Error (E_INVALIDARG) if
// `mostBins` is below 1.
ComPtr<IHistogram> Regrouped(const ComPtr<IHistogram>& histogram, LONG mostBins);
// The same in a histogram that exists.
void Regroup(const ComPtr<IHistogram>& histogram, LONG mostBins, const ComPtr<IHistogram>& regrouped);

// ---------------------------------------------------------------------------------------------------------- thresholds

// The automatic thresholds of IHistogram, with the two parameters that each takes there.
enum class ThresholdMethod {
    MinimizeVariance,  // smallest fractions of the pixels left and right of the threshold
    Trim,              // fractions that are the dark and the bright tail
    SearchForMinimum,  // fractions trimmed off left and right before the search
    GaussianMixture,   // smallest fractions left and right
    MaximizeEntropy,   // smallest fractions left and right
    Exponential,       // fraction left above the threshold; the second parameter is not used
};

// The parameters of a method that suit most pictures. Half a per cent of the counts is more than a few hot or dead
// pixels and less than any phase worth measuring.
constexpr std::array<double, 2> UsualParameters(ThresholdMethod method);

// What an automatic threshold means for pixels. The interface gives the location of a bin, which belongs to the lower
// class; the cuts are the edges of bins (the location itself for Exponential). Pixels of at most darkCut are dark and
// those above brightCut are bright, whatever their type. The cuts are equal except for Trim, which leaves the bins of
// both limits to neither tail.
struct AutoThreshold {
    enum class Status {
        Found,
        OneLevel,          // all pixels lie in one bin; the cuts are NaN
        NotSeparable,      // no threshold separates two classes (the method returned S_FALSE); the cuts are NaN
        FractionsNotLeft,  // no threshold leaves the fractions asked for; the cuts are those of the first bin
    };
    Status status = Status::Found;
    double darkCut = implementation::kNaN;
    double brightCut = implementation::kNaN;
    // The threshold lies where its search ends, not where the method found what it looks for: on the first or last bin
    // that leaves the fractions asked for, or for SearchForMinimum beside an emptier bin. Look at the histogram.
    bool atSearchLimit = false;
};

// Throws Error with the text of the IHistogram method where that fails, for parameters out of range for instance.
AutoThreshold FindAutoThreshold(const ComPtr<IHistogram>& histogram, ThresholdMethod method, double first,
                                double second);

// Least and greatest level of a type of pixels (DT_BYTE, ...); infinite for floating point.
double TypeMinimum(LONG dataType);
double TypeMaximum(LONG dataType);

// The pixels of an image's band and region whose level is at most `cut`, or those above it.
ComPtr<IBitmap> SideOf(const ComPtr<IImageProcess>& process, LONG dataType, double cut, bool bright);

// ------------------------------------------------------------------------------------------------------------- regions

// A byte for each pixel of an image of that size, rows from the top: 1 inside the region, 0 outside. Runs are clipped
// to the image. Without a region all pixels are inside. Throws Error (E_INVALIDARG) if width or height is negative.
std::vector<uint8_t> RegionMask(const ComPtr<IRegionOfInterest>& region, LONG width, LONG height);

// The reverse: a region of that size with the pixels whose byte is not 0. A new object, which keeps the mask. Throws
// Error (E_INVALIDARG) unless the mask has width * height bytes.
ComPtr<IRegionOfInterest> RegionOfMask(std::vector<uint8_t> mask, LONG width, LONG height);

// ------------------------------------------------------------------------------------------------------ implementation

namespace implementation {

// Of the bits of a byte that are 1: their number, and the sum of their columns. Bit 7 is the leftmost.
struct ByteBits {
    uint8_t count = 0, columns = 0;
};
inline constexpr std::array<ByteBits, 256> kByteBits = [] {
    std::array<ByteBits, 256> table;
    for (unsigned byte = 0; byte < 256; ++byte)
        for (unsigned column = 0; column < 8; ++column)
            if (byte >> (7 - column) & 1) {
                ++table[byte].count;
                table[byte].columns = static_cast<uint8_t>(table[byte].columns + column);
            }
    return table;
}();

}  // namespace implementation

inline BinaryMeasurements MeasureBitmap(const ComPtr<IBitmap>& bitmap) {
    LONG width = 0, height = 0;
    Check(bitmap->get_Width(&width), bitmap);
    Check(bitmap->get_Height(&height), bitmap);
    BinaryMeasurements out;
    uint64_t xSum = 0, ySum = 0;
    const size_t bytes = width > 0 ? (static_cast<size_t>(width) + 7) / 8 : 0;
    for (LONG y = 0; y < height && width > 0; ++y) {
        BYTE* row = nullptr;
        Check(bitmap->GetRowPtr(y, &row), bitmap);
        if (!row) throw Error(E_POINTER, "MeasureBitmap: the bitmap has no rows.", {});
        uint64_t inRow = 0;
        const auto add = [&](size_t i, unsigned byte) {
            const implementation::ByteBits bits = implementation::kByteBits[byte];
            inRow += bits.count;
            xSum += uint64_t{8 * i} * bits.count + bits.columns;
        };
        const size_t whole = width % 8 ? bytes - 1 : bytes;
        size_t i = 0;
        for (; i + 8 <= whole; i += 8) {
            uint64_t word = 0;
            std::memcpy(&word, row + i, 8);
            if (word == 0) continue;
            if (word == ~uint64_t{0}) {
                inRow += 64;
                xSum += uint64_t{8 * i} * 64 + 63 * 64 / 2;
            } else {
                for (size_t k = i; k < i + 8; ++k) add(k, row[k]);
            }
        }
        for (; i < whole; ++i) add(i, row[i]);
        if (whole < bytes) add(whole, row[whole] & 0xff00u >> (width % 8) & 0xffu);  // padding bits may be set
        out.pixelCount += static_cast<int64_t>(inRow);
        ySum += inRow * static_cast<uint64_t>(y);
    }
    if (out.pixelCount > 0) {
        out.xCentroid = static_cast<double>(xSum) / static_cast<double>(out.pixelCount);
        out.yCentroid = static_cast<double>(ySum) / static_cast<double>(out.pixelCount);
    }
    return out;
}

inline std::span<LONG> Bins(const ComPtr<IHistogram>& histogram) {
    LONG count = 0;
    LONG* bins = nullptr;
    Check(histogram->get_NumberOfBins(&count), histogram);
    Check(histogram->get_Bins(&bins), histogram);
    return {bins, bins && count > 0 ? static_cast<size_t>(count) : 0};
}

inline ComPtr<IHistogram> Regrouped(const ComPtr<IHistogram>& histogram, LONG mostBins) {
    if (mostBins < 1) throw Error(E_INVALIDARG, "Regrouped: at least one bin is needed.", {});
    auto regrouped = CreateObject<IHistogram>("Orlix.Histogram");
    Regroup(histogram, mostBins, regrouped);
    return regrouped;
}

inline void Regroup(const ComPtr<IHistogram>& histogram, LONG mostBins, const ComPtr<IHistogram>& coarse) {
    if (mostBins < 1) throw Error(E_INVALIDARG, "Regroup: at least one bin is needed.", {});
    const std::span<const LONG> bins = Bins(histogram);
    const size_t most = static_cast<size_t>(mostBins);
    size_t group = (bins.size() + most - 1) / most;
    if (group <= 1) {
        Check(coarse->CreateFromHistogram(histogram.get()), coarse);
        return;
    }
    double left = 0, right = 0;
    Check(histogram->BinToLocation(-0.5, &left), histogram);
    for (;; ++group) {
        const size_t count = (bins.size() + group - 1) / group;
        Check(histogram->BinToLocation(static_cast<double>(count * group) - 0.5, &right), histogram);
        // Over exactly `count` whole numbers the bins would stand for these and not for intervals.
        if (count == 1 || left != std::floor(left) || right - left + 1 != static_cast<double>(count)) {
            Check(coarse->Create(static_cast<LONG>(count), left, right), coarse);
            break;
        }
    }
    const std::span<LONG> sums = Bins(coarse);
    for (size_t i = 0; i < bins.size(); ++i) {
        LONG& sum = sums[i / group];
        sum = static_cast<LONG>(std::min<int64_t>(int64_t{sum} + bins[i], std::numeric_limits<LONG>::max()));
    }
}

constexpr std::array<double, 2> UsualParameters(ThresholdMethod method) {
    switch (method) {
        case ThresholdMethod::Trim:
            return {0.05, 0.05};
        case ThresholdMethod::SearchForMinimum:
        case ThresholdMethod::GaussianMixture:
        case ThresholdMethod::MaximizeEntropy:
            return {0.005, 0.005};
        case ThresholdMethod::Exponential:
            return {0.05, 0};
        case ThresholdMethod::MinimizeVariance:
            break;
    }
    return {0, 0};
}

inline double TypeMinimum(LONG dataType) { return dataType == DT_Float ? -std::numeric_limits<double>::infinity() : 0; }
inline double TypeMaximum(LONG dataType) {
    return dataType == DT_Float ? std::numeric_limits<double>::infinity() : std::ldexp(1.0, dataType) - 1;
}

inline ComPtr<IBitmap> SideOf(const ComPtr<IImageProcess>& process, LONG dataType, double cut, bool bright) {
    const double least = TypeMinimum(dataType);
    ComPtr<IBitmap> bits;
    if (!(cut >= least))  // all pixels are above the cut
        Check(process->Threshold(least, TypeMaximum(dataType), bright, bits.Out()), process);
    else
        Check(process->Threshold(least, cut, !bright, bits.Out()), process);
    return bits;
}

namespace implementation {

// Sums of the counts up to each bin, the bin included.
inline std::vector<int64_t> Cumulative(std::span<const LONG> counts) {
    std::vector<int64_t> sums;
    int64_t sum = 0;
    for (const LONG count : counts) sums.push_back(sum += count);
    return sums;
}

// Whether the threshold `bin` lies at the end of its search; see AutoThreshold. The minimum is sought in a window: an
// emptier bin close by shows that the window ended there. The other methods leave a fraction on either side.
inline bool AtSearchLimit(std::span<const LONG> counts, const std::vector<int64_t>& below, size_t bin,
                          ThresholdMethod method, double left, double right) {
    if (method == ThresholdMethod::SearchForMinimum) {
        const size_t close = counts.size() / 100 + 1;
        const auto around = counts.subspan(bin - std::min(bin, close));
        return std::ranges::min(around.first(std::min(around.size(), 2 * close + 1))) < counts[bin];
    }
    const int64_t total = below.back();
    const size_t last = counts.size() - 1;
    const auto first = [&](auto condition) {
        size_t i = 0;
        while (i < last && !condition(i)) ++i;
        return i;
    };
    size_t low = 0, high = last;
    if (method == ThresholdMethod::GaussianMixture) {
        // The last bins at which the counts from either end do not exceed the fraction,
        const auto limit = [&](double fraction) { return std::floor(static_cast<double>(total) * fraction + 0.5); };
        low = first([&](size_t i) { return static_cast<double>(below[i + 1]) > limit(left); });
        high =
            std::min(first([&](size_t i) { return static_cast<double>(total - below[i]) <= limit(right); }) + 1, last);
        // and no bin that leaves one side without pixels.
        low = std::max(low, first([&](size_t i) { return below[i] > 0; }));
        high = std::min(high, first([&](size_t i) { return below[i + 1] == total; }));
        return low < high && (bin <= low || bin >= high);
    }
    const auto fraction = [&](int64_t pixels) { return static_cast<double>(pixels) / static_cast<double>(total); };
    low = first([&](size_t i) { return fraction(below[i]) >= left; });
    high = first([&](size_t i) { return 1 - fraction(below[i + 1]) < right; });
    return (left > 0 && bin <= low) || (right > 0 && bin >= high);
}

}  // namespace implementation

inline AutoThreshold FindAutoThreshold(const ComPtr<IHistogram>& histogram, ThresholdMethod method, double first,
                                       double second) {
    double step = 1, origin = 0, location = 0, right = 0;
    Check(histogram->GetBinToLocationMapping(&step, &origin), histogram);
    const auto find = [&] {
        switch (method) {
            case ThresholdMethod::MinimizeVariance:
                return histogram->AutoThresholdMinimizeVariance(first, second, &location);
            case ThresholdMethod::Trim:
                return histogram->AutoThresholdTrim(first, &location, second, &right);
            case ThresholdMethod::SearchForMinimum:
                return histogram->AutoThresholdSearchForMinimum(first, second, &location);
            case ThresholdMethod::GaussianMixture:
                return histogram->AutoThresholdGaussianMixture(first, second, &location);
            case ThresholdMethod::MaximizeEntropy:
                return histogram->AutoThresholdMaximizeEntropy(first, second, &location);
            case ThresholdMethod::Exponential:
                return histogram->AutoThresholdExponential(first, &location);
        }
        return E_INVALIDARG;
    };
    const HRESULT found = Check(find(), histogram);
    const std::span<const LONG> counts = Bins(histogram);
    AutoThreshold out;
    if (std::count_if(counts.begin(), counts.end(), [](LONG count) { return count > 0; }) < 2) {
        out.status = AutoThreshold::Status::OneLevel;
        return out;
    }
    if (found == S_FALSE) {
        out.status = AutoThreshold::Status::NotSeparable;
        return out;
    }
    if (method == ThresholdMethod::Trim) {
        out.darkCut = location - step / 2;
        out.brightCut = right + step / 2;
        return out;
    }
    out.darkCut = out.brightCut = method == ThresholdMethod::Exponential ? location : location + step / 2;
    if (method == ThresholdMethod::Exponential) return out;

    const double place = std::floor((location - origin) / step + 0.5), last = static_cast<double>(counts.size() - 1);
    const size_t bin = place > 0 ? static_cast<size_t>(std::min(place, last)) : 0;
    const std::vector<int64_t> below = implementation::Cumulative(counts);
    const double dark = static_cast<double>(below[0]) / static_cast<double>(below.back());
    // The interface answers with the first bin when no threshold leaves the fractions.
    if (method != ThresholdMethod::SearchForMinimum && bin == 0 && (dark <= 0 || dark < first || 1 - dark < second))
        out.status = AutoThreshold::Status::FractionsNotLeft;
    else
        out.atSearchLimit = implementation::AtSearchLimit(counts, below, bin, method, first, second);
    return out;
}

inline std::vector<uint8_t> RegionMask(const ComPtr<IRegionOfInterest>& region, LONG width, LONG height) {
    if (width < 0 || height < 0) throw Error(E_INVALIDARG, "RegionMask: the size must not be negative.", {});
    const size_t columns = static_cast<size_t>(width), rows = static_cast<size_t>(height);
    std::vector<uint8_t> mask;
    if (rows > 0 && columns > mask.max_size() / rows) throw std::bad_alloc();
    mask.resize(columns * rows, region ? uint8_t{0} : uint8_t{1});
    for (LONG y = 0; region && y < height; ++y) {
        SRun* run = nullptr;
        SRun* end = nullptr;
        Check(region->GetRowRuns(y, &run, &end), region);
        uint8_t* const row = mask.data() + static_cast<size_t>(y) * columns;
        for (; run && run < end; ++run) {
            const LONG start = std::max<LONG>(run->m_lStart, 0), stop = std::min<LONG>(run->m_lStop, width - 1);
            if (start <= stop) std::fill(row + start, row + stop + 1, uint8_t{1});
        }
    }
    return mask;
}

namespace implementation {

// Makes the runs of a row on demand. For one thread at a time, like the library's objects.
class MaskRegion final : public CountedObject<IRegionOfInterest> {
public:
    MaskRegion(std::vector<uint8_t> mask, LONG width, LONG height)
        : mask_(std::move(mask)), width_(width), height_(height) {
        for (LONG y = 0; y < height; ++y)
            for (LONG x = 0; x < width; ++x) {
                if (!Inside(x, y)) continue;
                const bool first = box_.right < box_.left;
                box_.left = first ? x : std::min(box_.left, x);
                box_.right = first ? x : std::max(box_.right, x);
                box_.top = first ? y : box_.top;
                box_.bottom = y;
            }
    }

    STDMETHODIMP get_Width(LONG* width) noexcept override { return width ? (*width = width_, S_OK) : E_POINTER; }
    STDMETHODIMP get_Height(LONG* height) noexcept override { return height ? (*height = height_, S_OK) : E_POINTER; }
    STDMETHODIMP get_BoundingBox(RECT* box) noexcept override { return box ? (*box = box_, S_OK) : E_POINTER; }
    STDMETHODIMP GetRowRuns(LONG row, SRun** begin, SRun** end) noexcept override {
        if (!begin || !end) return E_POINTER;
        *begin = *end = nullptr;
        if (row < 0 || row >= height_) return S_FALSE;
        try {
            runs_.clear();
            for (LONG x = 0; x < width_; ++x) {
                if (!Inside(x, row)) continue;
                SRun run = {};
                run.m_lStart = x;
                while (x + 1 < width_ && Inside(x + 1, row)) ++x;
                run.m_lStop = x;
                runs_.push_back(run);
            }
        } catch (const std::bad_alloc&) {
            return E_OUTOFMEMORY;
        }
        *begin = runs_.data();
        *end = runs_.data() + runs_.size();
        return S_OK;
    }

private:
    bool Inside(LONG x, LONG y) const {
        return mask_[static_cast<size_t>(y) * static_cast<size_t>(width_) + static_cast<size_t>(x)] != 0;
    }

    std::vector<uint8_t> mask_;
    LONG width_, height_;
    RECT box_ = {0, 0, -1, -1};
    std::vector<SRun> runs_;  // of the last row asked for
};

}  // namespace implementation

inline ComPtr<IRegionOfInterest> RegionOfMask(std::vector<uint8_t> mask, LONG width, LONG height) {
    if (width < 0 || height < 0 || static_cast<uint64_t>(width) * static_cast<uint64_t>(height) != mask.size())
        throw Error(E_INVALIDARG, "RegionOfMask: the mask must have width * height bytes.", {});
    return ComPtr<IRegionOfInterest>(MakeCounted<implementation::MaskRegion>(std::move(mask), width, height).get());
}

}  // namespace orlix

#endif
