// The table of file formats. A new format is a source file with its reader and writer, and a row here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "files/file_types.hpp"

namespace orlix {

struct FileFormat {
    std::string_view name;        // "PNG"
    std::string_view extensions;  // chosen for paths that end with one: lower case, with the dot, a blank between two
    ImageFileFormat code;         // chosen by clients; IFF_ByExtension for formats that are read only

    // From the first kLooksLikeBytes bytes of a file, or all of a shorter one. At most one format answers true.
    bool (*looksLike)(std::span<const uint8_t> start) noexcept;
    // Reads a file that looks like this format. See ReadImageFile() for failures.
    FileProperties (*read)(std::span<const uint8_t> bytes, PixelSink& sink, const ReadOptions& options);

    // Writes an image with some rows and columns, with one of the following numbers of bands (any number, if there is
    // none here) and of one of these types. Null and empty for a format that is read only.
    std::vector<uint8_t> (*write)(const FileProperties& properties, PixelSource& source,
                                  const WriteOptions& options) = nullptr;
    std::span<const int32_t> bands = {};
    std::span<const LONG> types = {};

    // The number of images in a file that looks like this format; null for a format that has one. Fails like read.
    int32_t (*pages)(std::span<const uint8_t> bytes) = nullptr;
};

constexpr size_t kLooksLikeBytes = 16;

std::span<const FileFormat> FileFormats() noexcept;

}  // namespace orlix
