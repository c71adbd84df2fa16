// Numbers in the byte order of a file, at addresses of any alignment.
#pragma once

#include <cstdint>

namespace orlix {

constexpr uint16_t BigEndian16(const uint8_t* p) { return static_cast<uint16_t>(p[0] << 8 | p[1]); }
constexpr uint32_t BigEndian32(const uint8_t* p) {
    return uint32_t{p[0]} << 24 | uint32_t{p[1]} << 16 | uint32_t{p[2]} << 8 | uint32_t{p[3]};
}
constexpr uint16_t LittleEndian16(const uint8_t* p) { return static_cast<uint16_t>(p[1] << 8 | p[0]); }
constexpr uint32_t LittleEndian32(const uint8_t* p) {
    return uint32_t{p[3]} << 24 | uint32_t{p[2]} << 16 | uint32_t{p[1]} << 8 | uint32_t{p[0]};
}

constexpr void PutBigEndian16(uint8_t* p, uint16_t value) {
    p[0] = static_cast<uint8_t>(value >> 8);
    p[1] = static_cast<uint8_t>(value);
}
constexpr void PutBigEndian32(uint8_t* p, uint32_t value) {
    PutBigEndian16(p, static_cast<uint16_t>(value >> 16));
    PutBigEndian16(p + 2, static_cast<uint16_t>(value));
}
constexpr void PutLittleEndian16(uint8_t* p, uint16_t value) {
    p[0] = static_cast<uint8_t>(value);
    p[1] = static_cast<uint8_t>(value >> 8);
}
constexpr void PutLittleEndian32(uint8_t* p, uint32_t value) {
    PutLittleEndian16(p, static_cast<uint16_t>(value));
    PutLittleEndian16(p + 2, static_cast<uint16_t>(value >> 16));
}

}  // namespace orlix
