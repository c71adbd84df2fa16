// The definition of unpacking.
#include "frames/unpacking_kernels.hpp"

namespace orlix {
namespace {

template <Packing kPacking>
unsigned SampleOf(const uint8_t* group, size_t k) {
    const auto word = [&](size_t at) { return unsigned{group[at]} + 256u * group[at + 1]; };
    switch (kPacking) {
        case Packing::Words10:
            return word(0) & 0x3ff;
        case Packing::Words12:
            return word(0) & 0xfff;
        case Packing::Words14:
            return word(0) & 0x3fff;
        case Packing::Words16:
            return word(0);
        case Packing::Lsb10:
            return word(10 * k / 8) >> 10 * k % 8 & 0x3ff;
        case Packing::Lsb12:
            return word(12 * k / 8) >> 12 * k % 8 & 0xfff;
        case Packing::Pairs10:
            return 4u * group[2 * k] + (group[1] >> 4 * k & 3u);
        case Packing::Pairs12:
            return 16u * group[2 * k] + (group[1] >> 4 * k & 15u);
    }
}

}  // namespace

template <Packing kPacking>
void Unpack_scalar(const uint8_t* groups, size_t first, size_t n, uint16_t* samples) {
    constexpr PackedGroup kGroup = GroupOf(kPacking);
    for (size_t i = 0; i < n; ++i) {
        const uint8_t* const group = groups + (first + i) / kGroup.samples * kGroup.bytes;
        samples[i] = static_cast<uint16_t>(SampleOf<kPacking>(group, (first + i) % kGroup.samples));
    }
}

void Split_scalar(const uint8_t* pixels, size_t n, uint8_t* first, uint8_t* second, uint8_t* third) {
    for (size_t i = 0; i < n; ++i) {
        first[i] = pixels[3 * i];
        second[i] = pixels[3 * i + 1];
        third[i] = pixels[3 * i + 2];
    }
}

template Kernel<UnpackFn> Unpack_scalar<Packing::Words10>;
template Kernel<UnpackFn> Unpack_scalar<Packing::Words12>;
template Kernel<UnpackFn> Unpack_scalar<Packing::Words14>;
template Kernel<UnpackFn> Unpack_scalar<Packing::Words16>;
template Kernel<UnpackFn> Unpack_scalar<Packing::Lsb10>;
template Kernel<UnpackFn> Unpack_scalar<Packing::Lsb12>;
template Kernel<UnpackFn> Unpack_scalar<Packing::Pairs10>;
template Kernel<UnpackFn> Unpack_scalar<Packing::Pairs12>;

}  // namespace orlix
