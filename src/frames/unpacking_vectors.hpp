// Unpacking in blocks, for the suffixed files. Each of these supplies
//
//     template <Packing kPacking>
//     struct Block {
//         static constexpr size_t kSamples;        of a block; whole groups
//         static constexpr size_t kReads;          bytes that Unpack reads, at least those of the block
//         static void Unpack(const uint8_t* groups, uint16_t* samples);
//     };
#pragma once

#include <cstring>

#include "frames/unpacking_kernels.hpp"
#include "vectors/inline.hpp"

namespace orlix {
namespace {

template <Packing kPacking>
struct Block;

// The samples of a group that has begun, blocks, and the rest.
template <Packing kPacking>
ORLIX_INLINE void UnpackInBlocks(const uint8_t* groups, size_t first, size_t n, uint16_t* samples) {
    using B = Block<kPacking>;
    constexpr PackedGroup kGroup = GroupOf(kPacking);
    constexpr size_t kBlockBytes = B::kSamples / kGroup.samples * kGroup.bytes;
    // Whole groups that hold the bytes which a block reads.
    constexpr size_t kNeeded = (B::kReads + kGroup.bytes - 1) / kGroup.bytes * kGroup.samples;

    groups += first / kGroup.samples * kGroup.bytes;
    first %= kGroup.samples;
    if (first > 0) {
        const size_t head = kGroup.samples - first < n ? kGroup.samples - first : n;
        Unpack_scalar<kPacking>(groups, first, head, samples);
        groups += kGroup.bytes;
        samples += head;
        n -= head;
    }
    for (; n >= kNeeded; n -= B::kSamples) {
        B::Unpack(groups, samples);
        groups += kBlockBytes;
        samples += B::kSamples;
    }
    // Fewer samples than two blocks, in a copy behind which a block may read.
    constexpr size_t kBlocks = 2;
    static_assert(kNeeded <= kBlocks * B::kSamples);
    uint8_t copy[kBlockBytes + B::kReads] = {};
    uint16_t unpacked[kBlocks * B::kSamples];
    std::memcpy(copy, groups, (n * kGroup.bytes + kGroup.samples - 1) / kGroup.samples);
    for (size_t i = 0; i < kBlocks; ++i) B::Unpack(copy + i * kBlockBytes, unpacked + i * B::kSamples);
    std::memcpy(samples, unpacked, n * sizeof(uint16_t));
}

}  // namespace
}  // namespace orlix
