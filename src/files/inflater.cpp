#include "files/inflater.hpp"

#include <algorithm>
#include <new>

namespace orlix {
namespace {

// zlib counts in unsigned int, which has 32 bits on all platforms.
constexpr size_t kLargestTransfer = size_t{1} << 30;

}  // namespace

Inflater::Inflater(std::span<const std::span<const uint8_t>> pieces) : pieces_(pieces) {
    if (::inflateInit(&stream_) != Z_OK) throw std::bad_alloc();
    ::inflateValidate(&stream_, 0);  // zlib would compute the checksum more slowly
}

// Decompresses until the input at hand is used up or the output is full. Without input there may still be output, from
// a match that did not fit before. If there is neither, zlib returns Z_BUF_ERROR: the stream is truncated.
void Inflater::Step() {
    while (stream_.avail_in == 0 && !(piece_.empty() && pieces_.empty())) {
        if (piece_.empty()) {
            piece_ = pieces_.front();
            pieces_ = pieces_.subspan(1);
        }
        const size_t step = std::min(piece_.size(), kLargestTransfer);
        stream_.next_in = const_cast<Bytef*>(piece_.data());  // zlib only reads; its interface is older than const
        stream_.avail_in = static_cast<uInt>(step);
        piece_ = piece_.subspan(step);
    }
    const Bytef* const input = stream_.next_in;
    const Bytef* const output = stream_.next_out;
    state_ = ::inflate(&stream_, Z_NO_FLUSH);
    if (state_ == Z_MEM_ERROR) throw std::bad_alloc();

    checksum_ = adler32_(checksum_, output, static_cast<size_t>(stream_.next_out - output));
    for (auto left = std::min<ptrdiff_t>(stream_.next_in - input, 4); left > 0; --left)
        lastBytes_ = lastBytes_ << 8 | stream_.next_in[-left];
    if (state_ == Z_STREAM_END && lastBytes_ != checksum_) state_ = Z_DATA_ERROR;
}

size_t Inflater::Read(std::span<uint8_t> output) {
    size_t done = 0;
    while (done < output.size() && state_ == Z_OK) {
        const size_t room = std::min(output.size() - done, kLargestTransfer);
        stream_.next_out = output.data() + done;
        stream_.avail_out = static_cast<uInt>(room);
        Step();
        done += room - stream_.avail_out;
    }
    return done;
}

bool Inflater::AtEnd() {
    uint8_t excess = 0;
    return Read({&excess, 1}) == 0 && state_ == Z_STREAM_END;
}

bool InflateWhole(std::span<const uint8_t> compressed, size_t maximum, std::vector<uint8_t>& output) {
    const std::span<const uint8_t> pieces[] = {compressed};
    Inflater inflater(pieces);
    size_t done = 0;
    output.resize(std::min<size_t>(maximum, 1024));
    for (;;) {
        done += inflater.Read(std::span(output).subspan(done));
        if (done < output.size() || done == maximum) break;
        output.resize(std::min(maximum, 2 * output.size()));
    }
    output.resize(done);
    return inflater.AtEnd();
}

}  // namespace orlix
