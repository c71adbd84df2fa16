#include <zlib.h>

#include "files/checksums.hpp"

namespace orlix {

uint32_t Crc32_scalar(uint32_t checksum, const uint8_t* bytes, size_t size) {
    return static_cast<uint32_t>(::crc32_z(checksum, bytes, size));
}

uint32_t Adler32_scalar(uint32_t checksum, const uint8_t* bytes, size_t size) {
    return static_cast<uint32_t>(::adler32_z(checksum, bytes, size));
}

}  // namespace orlix
