#include "text/encoding.hpp"

#include <cstddef>

namespace orlix {
namespace {

constexpr uint32_t kReplacement = 0xFFFD;
constexpr uint32_t kMalformed = 0xFFFFFFFF;

bool IsSurrogate(uint32_t character) { return character >= 0xD800 && character < 0xE000; }

// The character at the start of `bytes` (not empty) and its length; kMalformed and 1 if the bytes are malformed.
uint32_t DecodeUtf8(std::span<const uint8_t> bytes, size_t& length) {
    const uint8_t first = bytes[0];
    length = 1;
    if (first < 0x80) return first;
    const size_t wanted = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || bytes.size() < wanted) return kMalformed;
    uint32_t character = first & (0x7Fu >> wanted);
    for (size_t i = 1; i < wanted; ++i) {
        if ((bytes[i] & 0xC0) != 0x80) return kMalformed;
        character = character << 6 | (bytes[i] & 0x3Fu);
    }
    constexpr uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (character < kSmallest[wanted] || character > 0x10FFFF || IsSurrogate(character)) return kMalformed;
    length = wanted;
    return character;
}

void AppendUtf8(std::string& bytes, uint32_t character) {
    const auto put = [&](uint32_t byte) { bytes.push_back(static_cast<char>(byte)); };
    const auto continuation = [&](int shift) { put(0x80u | (character >> shift & 0x3Fu)); };
    if (character < 0x80) {
        put(character);
    } else if (character < 0x800) {
        put(0xC0u | character >> 6);
        continuation(0);
    } else if (character < 0x10000) {
        put(0xE0u | character >> 12);
        continuation(6);
        continuation(0);
    } else {
        put(0xF0u | character >> 18);
        continuation(12);
        continuation(6);
        continuation(0);
    }
}

}  // namespace

WideString FromLatin1(std::span<const uint8_t> bytes) { return {bytes.begin(), bytes.end()}; }

size_t FromUtf8(std::span<const uint8_t> bytes, OLECHAR* to) noexcept {
    OLECHAR* const begin = to;
    while (!bytes.empty()) {
        size_t length = 0;
        uint32_t character = DecodeUtf8(bytes, length);
        bytes = bytes.subspan(length);
        if (character == kMalformed) character = kReplacement;
        if (character >= 0x10000) {
            *to++ = static_cast<OLECHAR>(0xD7C0u + (character >> 10));  // 0xD800 - (0x10000 >> 10)
            character = 0xDC00u | (character & 0x3FFu);
        }
        *to++ = static_cast<OLECHAR>(character);
    }
    return static_cast<size_t>(to - begin);
}

WideString FromUtf8(std::span<const uint8_t> bytes) {
    WideString text(bytes.size(), 0);
    text.resize(FromUtf8(bytes, text.data()));
    return text;
}

WideString FromUtf8OrLatin1(std::span<const uint8_t> bytes) {
    WideString text = FromUtf8(bytes);
    // U+FFFD stands for what is malformed (or for itself, which nobody writes).
    return text.find(OLECHAR{0xFFFD}) == WideString::npos ? text : FromLatin1(bytes);
}

std::string ToLatin1(WideStringView text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (const OLECHAR unit : text) bytes.push_back(static_cast<char>(unit));
    return bytes;
}

std::string ToUtf8Bytes(WideStringView text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        uint32_t character = text[i];
        if (IsSurrogate(character)) {
            const uint32_t low = i + 1 < text.size() ? text[i + 1] : 0;
            if (character < 0xDC00 && low >= 0xDC00 && low < 0xE000) {
                character = 0x10000u + ((character & 0x3FFu) << 10 | (low & 0x3FFu));
                ++i;
            } else {
                character = kReplacement;
            }
        }
        AppendUtf8(bytes, character);
    }
    return bytes;
}

}  // namespace orlix
