// Whole files, by UTF-16 path.
#pragma once

#include <orlix/orlix.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <span>
#include <string_view>

#include "text/wide_string.hpp"

namespace orlix {

// Memory for the content of a file, not cleared before it is read into.
class FileContent {
public:
    FileContent() = default;
    explicit FileContent(size_t size) : memory_(std::make_unique_for_overwrite<uint8_t[]>(size)), size_(size) {}

    uint8_t* data() { return memory_.get(); }
    std::span<const uint8_t> bytes() const { return {memory_.get(), size_}; }
    void Shorten(size_t size) { size_ = size < size_ ? size : size_; }

private:
    std::unique_ptr<uint8_t[]> memory_;
    size_t size_ = 0;
};

enum class ReadStatus {
    Done,
    CannotOpen,  // no such file, no right to read it, not a regular file, or a path that names none
    CannotRead,  // opened, but reading failed
};

// Reads a file, or its first bytes up to the given number. Regular files only: a folder, device or pipe is CannotOpen
// at once. What another program adds to the file meanwhile is not read, and what it cuts off is missing in the content,
// which is empty unless the status is Done. Throws std::bad_alloc.
ReadStatus ReadWholeFile(WideStringView path, FileContent& content,
                         size_t maximum = std::numeric_limits<size_t>::max());

// Makes or replaces a file. The bytes are written and flushed to a new file in the same folder, which then takes the
// final place in one step, so that at any moment the path names the complete old file or the complete new one. After a
// failure (false) the old file is as it was and nothing is left beside it. Refused: folders, devices, pipes, and files
// that may not be written. A symbolic link to a file stays, and the file it leads to is replaced; the new file keeps
// the access rights of the old one (off Windows).
bool WriteWholeFile(WideStringView path, std::span<const uint8_t> bytes);

}  // namespace orlix
