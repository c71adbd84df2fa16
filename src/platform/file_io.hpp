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

// Memory for the content of a file, initially not cleared.
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
    CannotOpen,  // no such file, no permission, not a regular file, or a path that cannot name one
    CannotRead,  // the file was opened, but reading failed
};

// Reads a file, or its first bytes up to the given number. Only regular files: a folder, device or pipe gives
// CannotOpen at once. Bytes that another program appends meanwhile are not read; bytes that it cuts off are missing in
// the content. The content is empty unless the status is Done. Throws std::bad_alloc.
ReadStatus ReadWholeFile(WideStringView path, FileContent& content,
                         size_t maximum = std::numeric_limits<size_t>::max());

// Creates or replaces a file. The bytes are written and flushed to a new file in the same folder, which is then renamed
// in one step, so the path always names the complete old file or the complete new one. After a failure (false) the old
// file is unchanged and no other file is left. Refuses folders, devices, pipes, and files without permission to write.
// A symbolic link is kept, and the file that it leads to is replaced. Off Windows the new file keeps the access rights
// of the old one.
bool WriteWholeFile(WideStringView path, std::span<const uint8_t> bytes);

}  // namespace orlix
