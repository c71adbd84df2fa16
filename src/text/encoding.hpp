// Conversions between Latin-1 or UTF-8, as in files, and UTF-16.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "text/wide_string.hpp"

namespace orlix {

WideString FromLatin1(std::span<const uint8_t> bytes);

// Malformed sequences (truncated, overlong, surrogates, beyond U+10FFFF) become U+FFFD, one for each byte that starts
// none.
WideString FromUtf8(std::span<const uint8_t> bytes);
// The same into memory for bytes.size() units, without a terminator. Returns the number of units written.
size_t FromUtf8(std::span<const uint8_t> bytes, OLECHAR* to) noexcept;

// UTF-8 where all of it is well-formed, otherwise Latin-1: for formats that do not say which they hold.
WideString FromUtf8OrLatin1(std::span<const uint8_t> bytes);

// Precondition: every character is below 256.
std::string ToLatin1(WideStringView text);

// Half a surrogate pair becomes U+FFFD.
std::string ToUtf8Bytes(WideStringView text);

}  // namespace orlix
