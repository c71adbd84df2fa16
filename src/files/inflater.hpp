// Decompression of a zlib stream that comes in several pieces.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "files/checksums.hpp"
#include "files/zlib_memory.hpp"

namespace orlix {

// Largest ratio of decompressed to compressed bytes: a match of 258 bytes takes two bits.
constexpr uint64_t kLargestExpansion = 1032;

class Inflater {
public:
    // The pieces must outlive this object. Throws std::bad_alloc.
    explicit Inflater(std::span<const std::span<const uint8_t>> pieces);
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;
    ~Inflater() { ::inflateEnd(&stream_); }

    // Adds a piece of the stream, once the previous ones are used up. It must stay valid until it is used up too.
    void Feed(std::span<const uint8_t> piece) {
        piece_ = piece;
        if (state_ == Z_BUF_ERROR) state_ = Z_OK;
    }

    // Fills the output and returns its size, or less if the stream ends, is damaged or needs another piece.
    size_t Read(std::span<uint8_t> output);

    // Whether the stream ends here, with the right checksum. Bytes behind its end are ignored.
    bool AtEnd();

    // Whether no byte of the pieces is left.
    bool InputUsedUp() const { return stream_.avail_in == 0 && piece_.empty() && pieces_.empty(); }

private:
    void Step();

    z_stream stream_ = NewZlibStream();
    std::span<const std::span<const uint8_t>> pieces_;
    std::span<const uint8_t> piece_;  // the part of the current piece that zlib has not been given yet
    int state_ = Z_OK;                // anything else means the end, or damage
    ChecksumFn adler32_ = Choose(kAdler32);
    uint32_t checksum_ = 1;   // of the output
    uint32_t lastBytes_ = 0;  // the last four of the input, big-endian: at the end, the checksum of the stream
};

// Decompresses a whole stream; false if it is damaged or holds more than `maximum` bytes.
bool InflateWhole(std::span<const uint8_t> compressed, size_t maximum, std::vector<uint8_t>& output);

}  // namespace orlix
