// Text chunks of PNG files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "files/file_types.hpp"

namespace orlix::png {

// Decompressed bytes that the texts of one file may take together.
constexpr size_t kTextBudget = size_t{16} << 20;

// The entry that a text chunk holds, nothing where the chunk is to be skipped. What decompression yields is taken from
// the budget, whatever becomes of it.
std::optional<FileText> ReadText(uint32_t type, std::span<const uint8_t> data, size_t& budget);

struct TextChunk {
    uint32_t type;
    std::string data;
};

// The chunk for an entry: tEXt for printable Latin-1 with line feeds, else iTXt; nothing for an entry that cannot be
// kept.
std::optional<TextChunk> WriteText(const FileText& entry);

}  // namespace orlix::png
