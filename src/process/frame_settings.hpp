// Client settings for the operations of one pixel type.
#pragma once

#include <orlix/orlix.h>

#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

#include "component/failure.hpp"
#include "histogram/orlix_histogram.hpp"
#include "measure/counting.hpp"
#include "points/pixel_conversion.hpp"

namespace orlix {

// The luminance range, the number of bins and the look-up table, as documented in IImageProcess.
template <class Pixel>
class FrameSettings {
public:
    Pixel lower() const { return lower_; }
    Pixel upper() const { return upper_; }
    LONG bins() const { return bins_; }
    // One entry per bin; null while all entries have their default.
    const std::vector<Pixel>* table() const { return table_.get(); }

    void PutRange(double lower, double upper) {
        lower_ = TruncateToPixel<Pixel>(lower);
        upper_ = TruncateToPixel<Pixel>(upper);
    }

    void PutBins(LONG bins) {
        if constexpr (kIsByte) {
            if (bins != 256)
                throw Failure(
                    "IImageProcess::put_NumberOfBins: number of bins cannot be changed from 256 for byte images.");
        } else {
            if (bins <= 1) throw Failure("IImageProcess::put_NumberOfBins: there must be more than one bin.");
            if (bins != bins_) table_ = nullptr;
        }
        bins_ = bins;
    }

    double Entry(LONG entry) const {
        if (entry < 0 || entry >= bins_) throw Failure("IImageProcess::get_Table: Entry is out of range.");
        return table_ ? (*table_)[static_cast<size_t>(entry)] : DefaultEntry(entry);
    }

    void PutEntry(LONG entry, double value) {
        if (entry < 0 || entry >= bins_) throw Failure("IImageProcess::put_Table: Entry is out of range.");
        if (!table_ || table_.use_count() > 1) PutTable(WholeTable());
        (*table_)[static_cast<size_t>(entry)] = ToPixel<Pixel>(value);
    }

    // Of bins() entries.
    void PutTable(std::vector<Pixel> table) { table_ = std::make_shared<std::vector<Pixel>>(std::move(table)); }

    // The table with its default entries filled in.
    std::vector<Pixel> WholeTable() const {
        if (table_) return *table_;
        if (bins_ > kMostBins) throw std::bad_alloc();
        std::vector<Pixel> table(static_cast<size_t>(bins_));
        for (size_t i = 0; i < table.size(); ++i) table[i] = DefaultEntry(static_cast<LONG>(i));
        return table;
    }

private:
    static constexpr bool kIsByte = std::is_same_v<Pixel, BYTE>;

    // An entry that was never set: the location of its bin, so that applying the table changes little or nothing.
    Pixel DefaultEntry(LONG entry) const {
        if constexpr (kIsByte) {
            return static_cast<Pixel>(entry);
        } else {
            const HistogramShape shape = ShapeOfHistogram(lower_, upper_, bins_);
            const double width = shape.right - shape.left;
            const bool values = !kIsFloat<Pixel> && width + 1 == shape.bins;
            return ToPixel<Pixel>(values ? shape.left + entry : shape.left + width * (entry + 0.5) / shape.bins);
        }
    }

    Pixel lower_ = kTypeMinimum<Pixel>;
    Pixel upper_ = kTypeMaximum<Pixel>;
    LONG bins_ = 256;
    // Shared with the copies that running operations hold; written only while nobody else holds it.
    std::shared_ptr<std::vector<Pixel>> table_;
};

}  // namespace orlix
