// Texts of files: Latin-1 or UTF-8 there, UTF-16 here.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "files/image_file.hpp"

namespace orlix {

FileString FromLatin1(std::span<const uint8_t> bytes);

// Malformed sequences (truncated, overlong, surrogates, beyond U+10FFFF) become U+FFFD, one for each byte that starts none.
FileString FromUtf8(std::span<const uint8_t> bytes);

// Precondition: every character is below 256.
std::string ToLatin1(FileStringView text);

// Half a surrogate pair becomes U+FFFD.
std::string ToUtf8Bytes(FileStringView text);

}  // namespace orlix
