#include "files/platform_picture.hpp"

#include <algorithm>
#include <string_view>

#include "image/byte_order.hpp"

namespace orlix {
namespace {

using namespace std::string_view_literals;

bool StartsWith(std::span<const uint8_t> bytes, std::string_view start) {
    return bytes.size() >= start.size() && std::equal(start.begin(), start.end(), bytes.begin(),
                                                      [](char c, uint8_t byte) { return uint8_t(c) == byte; });
}

}  // namespace

bool LooksLikeGif(std::span<const uint8_t> bytes) noexcept {
    return StartsWith(bytes, "GIF87a") || StartsWith(bytes, "GIF89a");
}

bool LooksLikeIcon(std::span<const uint8_t> bytes) noexcept {
    // A number of pictures, not 0; a reserved byte of the first one.
    return bytes.size() >= 10 && StartsWith(bytes, "\0\0\1\0"sv) && LittleEndian16(&bytes[4]) > 0 && bytes[9] == 0;
}

bool LooksLikeEnhancedMetafile(std::span<const uint8_t> bytes) noexcept {
    // The record of the header and its size, a multiple of 4.
    constexpr uint32_t kLeast = 88, kMost = 1 << 16;
    if (bytes.size() < 8 || LittleEndian32(&bytes[0]) != 1) return false;
    const uint32_t size = LittleEndian32(&bytes[4]);
    return size >= kLeast && size <= kMost && size % 4 == 0;
}

bool LooksLikeWindowsMetafile(std::span<const uint8_t> bytes) noexcept {
    return StartsWith(bytes, "\xD7\xCD\xC6\x9A"sv) || StartsWith(bytes, "\1\0\x09\0\0\3"sv);
}

}  // namespace orlix
