// Parts that the readers of the portable maps share: numbers of a header, and rows of interleaved samples.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <span>

#include "component/failure.hpp"
#include "files/file_types.hpp"
#include "image/byte_order.hpp"

namespace orlix::pnm {

[[noreturn]] inline void BadFile(const char* text) { throw Failure(text, DISP_E_EXCEPTION); }

constexpr bool IsBlank(uint8_t c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
constexpr bool IsDigit(uint8_t c) { return c >= '0' && c <= '9'; }
constexpr bool IsLineEnd(uint8_t c) { return c == '\n' || c == '\r'; }

constexpr uint32_t kLargestSize = std::numeric_limits<int32_t>::max();
constexpr uint32_t kTooLargeNumber = kLargestSize + 1;
constexpr uint32_t kNoNumber = kLargestSize + 2;

class Scanner {
public:
    explicit Scanner(std::span<const uint8_t> bytes) : bytes_(bytes) {}

    std::span<const uint8_t> Rest() const { return bytes_.subspan(position_); }
    bool AtEnd() const { return position_ == bytes_.size(); }

    // Skips separators and reads a decimal number: kTooLargeNumber above 2^31 - 1, kNoNumber if there is none.
    uint32_t Number() {
        SkipSeparators();
        if (AtEnd() || !IsDigit(bytes_[position_])) return kNoNumber;
        uint64_t number = 0;
        for (; !AtEnd() && IsDigit(bytes_[position_]); ++position_)
            number = std::min<uint64_t>(number * 10 + (bytes_[position_] - uint32_t{'0'}), kTooLargeNumber);
        return static_cast<uint32_t>(number);
    }

    // Skips separators and reads up to the next one, or the end.
    std::span<const uint8_t> Word() {
        SkipSeparators();
        const size_t start = position_;
        while (!AtSeparator()) ++position_;
        return bytes_.subspan(start, position_ - start);
    }

    // Skips one blank, or a comment with its line end; false if there is neither.
    bool OneSeparator() {
        if (!AtEnd() && bytes_[position_] == '#') SkipComment();
        if (AtEnd() || !IsBlank(bytes_[position_])) return false;
        ++position_;
        return true;
    }

    // Whether a number has ended properly: nothing but a separator or the end may follow.
    bool AtSeparator() const { return AtEnd() || IsBlank(bytes_[position_]) || bytes_[position_] == '#'; }

private:
    void SkipComment() {
        while (!AtEnd() && !IsLineEnd(bytes_[position_])) ++position_;
    }
    void SkipSeparators() {
        for (; !AtEnd(); ++position_) {
            if (bytes_[position_] == '#') SkipComment();
            if (AtEnd() || !IsBlank(bytes_[position_])) return;
        }
    }

    std::span<const uint8_t> bytes_;
    size_t position_ = 0;
};

// A number of rows or columns, 1 .. 2^31 - 1.
constexpr bool IsSize(uint32_t number) { return number > 0 && number <= kLargestSize; }

// Type and significant bits of integer samples up to `maximum`, 1 .. 65535.
inline void PutMaximum(FileProperties& properties, uint32_t maximum) {
    properties.dataType = maximum <= 255 ? DT_BYTE : DT_WORD;
    if (std::has_single_bit(maximum + 1) && maximum != 255 && maximum != 65535)
        properties.kept.significantBits = std::countr_one(maximum);
}

// Whether the pixels, of at least `bytesEach` bytes each, fit into `present` bytes. Their number may reach 2^62.
inline bool Fits(const FileProperties& properties, uint64_t bytesEach, uint64_t present) {
    return static_cast<uint64_t>(properties.width) * bytesEach <= present / static_cast<uint64_t>(properties.height);
}

template <class Sample>
using BandRows = std::array<Sample*, 3>;

template <class Sample>
BandRows<Sample> RowsOf(PixelSink& sink, int32_t bands, int32_t y) {
    BandRows<Sample> rows{};
    for (int32_t band = 0; band < bands; ++band)
        rows[static_cast<size_t>(band)] = static_cast<Sample*>(sink.Row(band, y));
    return rows;
}

// Copies a row whose samples are interleaved: kDepth of them for each pixel, of which the first kBands count. Returns
// the largest of these.
template <class Sample, size_t kBands, size_t kDepth>
uint32_t CopyRawRow(const uint8_t* in, size_t width, BandRows<Sample> rows) {
    Sample largest = 0;
    for (size_t band = 0; band < kBands; ++band) {
        Sample* const out = rows[band];  // a copy, because a byte written through rows[band] might change rows itself
        for (size_t x = 0; x < width; ++x) {
            const uint8_t* at = in + (x * kDepth + band) * sizeof(Sample);
            const Sample value = sizeof(Sample) == 1 ? *at : static_cast<Sample>(BigEndian16(at));
            out[x] = value;
            largest = std::max(largest, value);
        }
    }
    return largest;
}

// Fills the sink with all rows. False if a value is above the maximum; the sink is then partly filled.
template <class Sample, size_t kBands, size_t kDepth = kBands>
bool CopyRawRows(const uint8_t* in, const FileProperties& properties, uint32_t maximum, PixelSink& sink) {
    const auto width = static_cast<size_t>(properties.width);
    for (int32_t y = 0; y < properties.height; ++y, in += width * kDepth * sizeof(Sample))
        if (CopyRawRow<Sample, kBands, kDepth>(in, width, RowsOf<Sample>(sink, kBands, y)) > maximum) return false;
    return true;
}

}  // namespace orlix::pnm
