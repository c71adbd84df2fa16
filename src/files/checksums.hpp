// The checksums of zlib streams and of the chunks of PNG files. zlib's own functions define both; they take 8 to 13 %
// of the time to load a file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "vectors/variants.hpp"

namespace orlix {

// The checksum of some bytes, continued by these. CRC-32 starts with 0, Adler-32 with 1.
using ChecksumFn = uint32_t (*)(uint32_t checksum, const uint8_t* bytes, size_t size);

Kernel<ChecksumFn> Crc32_scalar, Crc32_avx2, Adler32_scalar, Adler32_avx2;

inline constexpr Variant<ChecksumFn> kCrc32[] = {
    {"avx2", Cpu::Avx2, &Crc32_avx2},
    {"scalar", Cpu::Any, &Crc32_scalar},
};
inline constexpr Variant<ChecksumFn> kAdler32[] = {
    {"avx2", Cpu::Avx2, &Adler32_avx2},
    {"scalar", Cpu::Any, &Adler32_scalar},
};

}  // namespace orlix
