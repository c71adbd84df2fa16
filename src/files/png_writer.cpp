#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>

#include "files/interleave.hpp"
#include "files/png.hpp"
#include "files/png_filter.hpp"
#include "files/png_format.hpp"
#include "files/png_samples.hpp"
#include "files/png_text.hpp"
#include "files/private_chunks.hpp"
#include "files/zlib_memory.hpp"
#include "image/byte_order.hpp"
#include "image/pixel_size.hpp"

namespace orlix {
namespace {

using namespace png;

void AppendChunk(std::vector<uint8_t>& bytes, uint32_t type, std::span<const uint8_t> data) {
    if (data.size() > kLargestNumber) throw std::length_error("PNG chunk");
    const size_t start = bytes.size();
    bytes.resize(start + kChunkFrame + data.size());
    uint8_t* chunk = bytes.data() + start;
    PutBigEndian32(chunk, static_cast<uint32_t>(data.size()));
    PutBigEndian32(chunk + 4, type);
    if (!data.empty()) std::memcpy(chunk + 8, data.data(), data.size());
    PutBigEndian32(chunk + 8 + data.size(), static_cast<uint32_t>(::crc32_z(0, chunk + 4, 4 + data.size())));
}

void AppendHeader(std::vector<uint8_t>& bytes, const FileProperties& properties) {
    std::array<uint8_t, kHeaderSize> data{};
    PutBigEndian32(&data[0], static_cast<uint32_t>(properties.width));
    PutBigEndian32(&data[4], static_cast<uint32_t>(properties.height));
    data[8] = properties.dataType == DT_WORD ? 16 : 8;
    data[9] = properties.bands == 3 ? kColour : kGrey;
    AppendChunk(bytes, kHeader, data);
}

void AppendPixelSize(std::vector<uint8_t>& bytes, const FileProperties& properties) {
    const int32_t x = PixelsPerMetre(properties.kept.micronsX), y = PixelsPerMetre(properties.kept.micronsY);
    if (x == 0 || y == 0) return;
    std::array<uint8_t, kPixelSizeSize> data{};
    PutBigEndian32(&data[0], static_cast<uint32_t>(x));
    PutBigEndian32(&data[4], static_cast<uint32_t>(y));
    data[8] = kMetre;
    AppendChunk(bytes, kPixelSize, data);
}

// The original number of bits of all channels, which are scaled to those of the file.
void AppendSignificantBits(std::vector<uint8_t>& bytes, const FileProperties& properties, int32_t bits) {
    const std::vector<uint8_t> data(static_cast<size_t>(properties.bands), static_cast<uint8_t>(bits));
    AppendChunk(bytes, kSignificantBits, data);
}

void AppendTexts(std::vector<uint8_t>& bytes, const FileProperties& properties) {
    for (const TextEntry& entry : properties.kept.AllTexts()) {
        if (const auto chunk = WriteText(entry)) {
            AppendChunk(bytes, chunk->type, {reinterpret_cast<const uint8_t*>(chunk->data.data()), chunk->data.size()});
        } else {
            const PrivateChunk whole = TextEntryChunk(entry);
            AppendChunk(bytes, whole.type, whole.data);
        }
    }
}

void AppendForeign(std::vector<uint8_t>& bytes, const FileProperties& properties, bool behindPixels) {
    for (const ForeignChunk& chunk : properties.kept.chunks)
        if (chunk.behindPixels == behindPixels) AppendChunk(bytes, chunk.type, chunk.bytes);
}

// Samples of fewer bits, scaled to all bits of their type.
class ScaledSource final : public PixelSource {
public:
    ScaledSource(const FileProperties& properties, PixelSource& source, int32_t bits)
        : source_(source),
          width_(static_cast<size_t>(properties.width)),
          words_(properties.dataType == DT_WORD),
          scaled_(ScaledSamples(bits, words_ ? 16 : 8)),
          row_(width_ * (words_ ? 2 : 1)) {}

    const void* Row(int32_t band, int32_t y) override {
        const void* row = source_.Row(band, y);
        words_ ? Scale<uint16_t>(row) : Scale<uint8_t>(row);
        return row_.data();
    }

private:
    template <class Sample>
    void Scale(const void* from) {
        const auto* in = static_cast<const Sample*>(from);
        auto* out = reinterpret_cast<Sample*>(row_.data());
        for (size_t x = 0; x < width_; ++x) out[x] = static_cast<Sample>(scaled_[in[x]]);
    }

    PixelSource& source_;
    size_t width_;
    bool words_;
    std::vector<uint16_t> scaled_;
    std::vector<uint8_t> row_;
};

// Writes a compressed stream as a sequence of pixel chunks.
class Compressor {
public:
    Compressor(std::vector<uint8_t>& bytes, int level, int strategy) : bytes_(bytes), buffer_(kPiece) {
        constexpr int kWindowBits = 15, kMemory = 9;
        if (::deflateInit2(&stream_, level, Z_DEFLATED, kWindowBits, kMemory, strategy) != Z_OK) throw std::bad_alloc();
        Renew();
    }
    Compressor(const Compressor&) = delete;
    Compressor& operator=(const Compressor&) = delete;
    ~Compressor() { ::deflateEnd(&stream_); }

    void Append(std::span<const uint8_t> data) {
        while (!data.empty()) {
            const size_t step = std::min(data.size(), kLargestTransfer);
            Run(data.first(step), Z_NO_FLUSH);
            data = data.subspan(step);
        }
    }
    void Finish() {
        Run({}, Z_FINISH);
        AppendChunk(bytes_, kPixels, std::span(buffer_).first(buffer_.size() - stream_.avail_out));
    }

private:
    static constexpr size_t kPiece = 256 * 1024;
    static constexpr size_t kLargestTransfer = size_t{1} << 30;

    void Renew() {
        stream_.next_out = buffer_.data();
        stream_.avail_out = static_cast<uInt>(buffer_.size());
    }
    void Run(std::span<const uint8_t> data, int flush) {
        stream_.next_in = const_cast<Bytef*>(data.data());
        stream_.avail_in = static_cast<uInt>(data.size());
        for (;;) {
            const int state = ::deflate(&stream_, flush);
            if (stream_.avail_out > 0 && (flush == Z_NO_FLUSH || state == Z_STREAM_END)) return;
            AppendChunk(bytes_, kPixels, buffer_);
            Renew();
        }
    }

    std::vector<uint8_t>& bytes_;
    std::vector<uint8_t> buffer_;
    z_stream stream_ = NewZlibStream();
};

// How rows are filtered and compressed. Measured on micrographs: the noise that is left once each row has its best
// filter holds runs but hardly any matches, whose search takes three times as long and makes the file larger. Height
// maps that use few of their levels keep their repetitions without a filter, or with one for all rows, as drawings and
// label images do, and pictures with three channels of nearly the same grey. Dim 16-bit pictures, whose upper bytes
// hardly change, are the exception: there the search gains 4 %.
struct Method {
    int filter;  // one for all rows, or kBestFilter
    int level, strategy;
    size_t atMost;  // percent of the size by the best method before it
};
constexpr int kBestFilter = -1;
// Faster methods first.
constexpr Method kMethods[] = {
    {kNone, 6, Z_RLE, 100},           {kBestFilter, 6, Z_RLE, 97},      {kNone, 1, Z_DEFAULT_STRATEGY, 97},
    {kUp, 1, Z_DEFAULT_STRATEGY, 97}, {kBestFilter, 5, Z_FILTERED, 99},
};
// For what has become less than an eighth: label images and drawings lose up to 40 % more by a longer search. In noisy
// pictures it takes seven times as long and finds little.
constexpr Method kThoroughMethods[] = {{kNone, 6, Z_DEFAULT_STRATEGY, 80}, {kUp, 6, Z_DEFAULT_STRATEGY, 80}};

class RowWriter {
public:
    RowWriter(const FileProperties& properties, PixelSource& source)
        : properties_(properties), source_(source), pixelBytes_(PixelBytes(properties)) {
        const uint64_t rowBytes = static_cast<uint64_t>(properties.width) * pixelBytes_;
        if (rowBytes > std::numeric_limits<size_t>::max() / 16) throw std::bad_alloc();
        rowBytes_ = static_cast<size_t>(rowBytes);
        for (auto* memory : {&above_, &row_}) memory->resize(rowBytes_);
        for (auto* memory : {&best_, &trial_}) memory->resize(1 + rowBytes_);
    }

    size_t StoredRowBytes() const { return 1 + rowBytes_; }

    // Appends the rows [first, end) as one stream.
    void Write(int32_t first, int32_t end, const Method& method, std::vector<uint8_t>& bytes) {
        Compressor compressor(bytes, method.level, method.strategy);
        std::fill(above_.begin(), above_.end(), uint8_t{0});
        for (int32_t y = first; y < end; ++y) {
            InterleaveRow(source_, properties_, y, row_.data());
            method.filter == kBestFilter ? FilterBest() : (void)FilterInto(best_, static_cast<uint8_t>(method.filter));
            compressor.Append(best_);
            above_.swap(row_);
        }
        compressor.Finish();
    }

private:
    uint64_t FilterInto(std::vector<uint8_t>& stored, uint8_t filter) {
        stored[0] = filter;
        return apply_(static_cast<Filter>(filter), row_.data(), above_.data(), rowBytes_, pixelBytes_,
                      stored.data() + 1);
    }
    void FilterBest() {
        uint64_t least = FilterInto(best_, kNone);
        for (uint8_t filter = kNone + 1; filter < kFilters; ++filter) {
            const uint64_t sum = FilterInto(trial_, filter);
            if (sum >= least) continue;
            least = sum;
            best_.swap(trial_);
        }
    }

    const FileProperties& properties_;
    PixelSource& source_;
    ApplyFilterFn apply_ = Choose(kApplyFilter);
    size_t pixelBytes_;
    size_t rowBytes_ = 0;
    std::vector<uint8_t> above_, row_;   // unfiltered, in the format's order
    std::vector<uint8_t> best_, trial_;  // filtered, behind the byte that names the filter
};

// Appends the pixels by the method that makes a strip of rows in the middle smallest, or nearly so in less time.
void AppendPixels(std::vector<uint8_t>& bytes, const FileProperties& properties, PixelSource& source) {
    constexpr size_t kStrip = 64 * 1024;
    RowWriter rows(properties, source);
    const auto count = static_cast<int32_t>(
        std::clamp<size_t>(kStrip / rows.StoredRowBytes(), 1, static_cast<size_t>(properties.height)));
    const int32_t first = (properties.height - count) / 2;
    std::vector<uint8_t> least;
    Method best = kMethods[0];
    const auto attempt = [&](const Method& method) {
        std::vector<uint8_t> strip;
        rows.Write(first, first + count, method, strip);
        if (!least.empty() && strip.size() * 100 > least.size() * method.atMost) return;
        least.swap(strip);
        best = method;
    };
    for (const Method& method : kMethods) attempt(method);
    if (least.size() * 8 < static_cast<size_t>(count) * rows.StoredRowBytes())
        for (const Method& method : kThoroughMethods) attempt(method);
    if (count == properties.height) {
        bytes.insert(bytes.end(), least.begin(), least.end());
        return;
    }
    // Memory that grows is copied. An estimate that is too high costs nothing: pages are taken as they are written.
    const size_t strips = static_cast<size_t>(properties.height) / static_cast<size_t>(count) + 1;
    bytes.reserve(bytes.size() + least.size() * strips + least.size() * strips / 16);
    rows.Write(0, properties.height, best, bytes);
}

}  // namespace

std::vector<uint8_t> WritePng(const FileProperties& properties, PixelSource& source, const WriteOptions&) {
    std::vector<uint8_t> bytes(kSignature.begin(), kSignature.end());
    AppendHeader(bytes, properties);
    const int32_t depth = properties.dataType == DT_WORD ? 16 : 8, bits = BitsInUse(properties, source);
    if (bits < depth) AppendSignificantBits(bytes, properties, bits);
    AppendPixelSize(bytes, properties);
    for (const PrivateChunk& chunk : PrivateChunks(properties)) AppendChunk(bytes, chunk.type, chunk.data);
    AppendTexts(bytes, properties);
    AppendForeign(bytes, properties, false);
    if (bits < depth) {
        ScaledSource scaled(properties, source, bits);
        AppendPixels(bytes, properties, scaled);
    } else {
        AppendPixels(bytes, properties, source);
    }
    AppendForeign(bytes, properties, true);
    AppendChunk(bytes, kEnd, {});
    return bytes;
}

}  // namespace orlix
