// Text chunks of PNG files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "files/file_types.hpp"

namespace orlix::png {

// Limit of the decompressed bytes of all texts of a file.
constexpr size_t kTextBudget = size_t{16} << 20;

// The entry of a text chunk, or nullopt if the chunk has to be skipped. Decompressed bytes are taken from the budget
// even if the text is then refused.
std::optional<TextEntry> ReadText(uint32_t type, std::span<const uint8_t> data, size_t& budget);

struct TextChunk {
    uint32_t type;
    std::string data;
};

// The chunk of an entry: tEXt for printable Latin-1 and line feeds, iTXt for everything else. nullopt for an entry that
// such a chunk cannot hold exactly: an empty text, one with a character 0 or half a surrogate pair, or a keyword that
// IsFileKeyword() refuses.
std::optional<TextChunk> WriteText(const TextEntry& entry);

}  // namespace orlix::png
