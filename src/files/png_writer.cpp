#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <stdexcept>

#include "files/checksums.hpp"
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
    const auto put = [&](uint32_t number) {
        std::array<uint8_t, 4> stored;
        PutBigEndian32(stored.data(), number);
        bytes.insert(bytes.end(), stored.begin(), stored.end());
    };
    put(static_cast<uint32_t>(data.size()));
    const size_t checked = bytes.size();
    put(type);
    bytes.insert(bytes.end(), data.begin(), data.end());
    put(Choose(kCrc32)(0, bytes.data() + checked, bytes.size() - checked));
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

// Writes compressed streams, one after the other, each as a sequence of pixel chunks.
class Compressor {
public:
    Compressor() {
        // Without zlib's own frame, whose checksum it would compute more slowly.
        if (::deflateInit2(&stream_, Z_DEFAULT_COMPRESSION, Z_DEFLATED, -kWindowBits, kMemory, Z_RLE) != Z_OK)
            throw std::bad_alloc();
    }
    Compressor(const Compressor&) = delete;
    Compressor& operator=(const Compressor&) = delete;
    ~Compressor() { ::deflateEnd(&stream_); }

    // Chunks are appended to the bytes until the stream is finished.
    void Start(std::vector<uint8_t>& bytes, int level, int strategy) {
        bytes_ = &bytes;
        checksum_ = 1;
        ::deflateReset(&stream_);
        Renew();
        ::deflateParams(&stream_, level, strategy);
        const int effort = strategy >= Z_HUFFMAN_ONLY || level < 2 ? 0 : level < 6 ? 1 : level == 6 ? 2 : 3;
        const int start = (kWindowBits - 8) << 12 | Z_DEFLATED << 8 | effort << 6;
        PutBigEndian<2>(static_cast<uint32_t>(start + 31 - start % 31));
    }
    void Append(std::span<const uint8_t> data) {
        while (!data.empty()) {
            const size_t step = std::min(data.size(), kLargestTransfer);
            checksum_ = adler32_(checksum_, data.data(), step);
            Run(data.first(step), Z_NO_FLUSH);
            data = data.subspan(step);
        }
    }
    void Finish() {
        Run({}, Z_FINISH);
        PutBigEndian<4>(checksum_);
        AppendChunk(*bytes_, kPixels, {buffer_.get(), kPiece - stream_.avail_out});
    }

private:
    static constexpr int kWindowBits = 15, kMemory = 9;
    static constexpr size_t kPiece = 256 * 1024;
    static constexpr size_t kLargestTransfer = size_t{1} << 30;

    void Renew() {
        stream_.next_out = buffer_.get();
        stream_.avail_out = kPiece;
    }
    void AppendPiece() {
        AppendChunk(*bytes_, kPixels, {buffer_.get(), kPiece});
        Renew();
    }
    void Run(std::span<const uint8_t> data, int flush) {
        stream_.next_in = const_cast<Bytef*>(data.data());
        stream_.avail_in = static_cast<uInt>(data.size());
        for (;;) {
            const int state = ::deflate(&stream_, flush);
            if (stream_.avail_out > 0 && (flush == Z_NO_FLUSH || state == Z_STREAM_END)) return;
            AppendPiece();
        }
    }
    template <int kBytes>
    void PutBigEndian(uint32_t number) {
        for (int shift = 8 * (kBytes - 1); shift >= 0; shift -= 8) {
            *stream_.next_out++ = static_cast<uint8_t>(number >> shift);
            if (--stream_.avail_out == 0) AppendPiece();
        }
    }

    std::unique_ptr<uint8_t[]> buffer_ = std::make_unique_for_overwrite<uint8_t[]>(kPiece);
    std::vector<uint8_t>* bytes_ = nullptr;
    z_stream stream_ = NewZlibStream();
    ChecksumFn adler32_ = Choose(kAdler32);
    uint32_t checksum_ = 1;  // of what was appended
};

// How rows are filtered and compressed. Measured on micrographs: the noise that is left once each row has its best
// filter holds runs but hardly any matches, whose search takes three times as long and makes the file larger. Height
// maps that use few of their levels keep their repetitions without a filter, or with one for all rows, as drawings and
// label images do, and pictures with three channels of nearly the same grey. Dim 16-bit pictures, whose upper bytes
// hardly change, are the exception: there the search gains 4 %, of which the strip of a trial shows a fifth.
struct Method {
    int filter;  // one for all rows, or kBestFilter
    int level, strategy;
    size_t atMost;  // thousandths of the size by the best method before it
};
constexpr int kBestFilter = -1;
// Faster methods first.
constexpr Method kMethods[] = {
    {kNone, 6, Z_RLE, 1000},           {kBestFilter, 6, Z_RLE, 990},      {kNone, 1, Z_DEFAULT_STRATEGY, 970},
    {kUp, 1, Z_DEFAULT_STRATEGY, 970}, {kBestFilter, 5, Z_FILTERED, 995},
};
// For what has become less than an eighth: label images and drawings lose up to 40 % more by a longer search. In noisy
// pictures it takes seven times as long and finds little.
constexpr Method kThoroughMethods[] = {{kNone, 6, Z_DEFAULT_STRATEGY, 800}, {kUp, 6, Z_DEFAULT_STRATEGY, 800}};

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
        compressor_.Start(bytes, method.level, method.strategy);
        std::fill(above_.begin(), above_.end(), uint8_t{0});
        for (int32_t y = first; y < end; ++y) {
            InterleaveRow(source_, properties_, y, row_.data());
            method.filter == kBestFilter ? FilterBest() : (void)FilterInto(best_, static_cast<uint8_t>(method.filter));
            compressor_.Append(best_);
            above_.swap(row_);
        }
        compressor_.Finish();
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
    Compressor compressor_;
};

// The method that makes a strip of rows in the middle smallest, or nearly so in less time.
struct Trial {
    int32_t rows;
    size_t stored;  // bytes of the rows
    Method best = kMethods[0];
    std::vector<uint8_t> least = {};  // the rows by that method
};

Trial Try(RowWriter& rows, int32_t height, size_t strip) {
    const auto count =
        static_cast<int32_t>(std::clamp<size_t>(strip / rows.StoredRowBytes(), 1, static_cast<size_t>(height)));
    const int32_t first = (height - count) / 2;
    Trial trial{count, static_cast<size_t>(count) * rows.StoredRowBytes()};
    const auto attempt = [&](const Method& method) {
        std::vector<uint8_t> bytes;
        rows.Write(first, first + count, method, bytes);
        if (!trial.least.empty() && bytes.size() * 1000 > trial.least.size() * method.atMost) return;
        trial.least.swap(bytes);
        trial.best = method;
    };
    for (const Method& method : kMethods) attempt(method);
    if (trial.least.size() * 8 < trial.stored)
        for (const Method& method : kThoroughMethods) attempt(method);
    return trial;
}

void AppendPixels(std::vector<uint8_t>& bytes, const FileProperties& properties, PixelSource& source) {
    // A sixteenth of the image, because a trial takes six times as long as the rows in the file. Where little is left,
    // a trial is fast, and repetitions are found in long strips only.
    constexpr size_t kShort = 8 * 1024, kLong = 32 * 1024, kLongest = 64 * 1024;
    RowWriter rows(properties, source);
    const int32_t height = properties.height;
    const auto share = static_cast<size_t>(
        std::clamp<uint64_t>(uint64_t{rows.StoredRowBytes()} * static_cast<size_t>(height) / 16, kShort, kLong));
    Trial trial = Try(rows, height, share);
    if (trial.least.size() * 4 < trial.stored && trial.rows < height) trial = Try(rows, height, kLongest);
    if (trial.rows == height) {
        bytes.insert(bytes.end(), trial.least.begin(), trial.least.end());
        return;
    }
    // Memory that grows is copied. An estimate that is too high costs nothing: pages are taken as they are written.
    const size_t strips = static_cast<size_t>(height / trial.rows) + 1;
    bytes.reserve(bytes.size() + trial.least.size() * strips + trial.least.size() * strips / 16);
    rows.Write(0, height, trial.best, bytes);
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
