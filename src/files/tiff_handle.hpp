// A TIFF file in memory, open in libtiff.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

#include "files/tiff_library.hpp"

namespace orlix {

// What libtiff calls: the bytes of a file. No exception passes through libtiff.
class TiffMemory {
public:
    virtual ~TiffMemory() = default;
    virtual size_t Read(void* to, size_t size) noexcept = 0;
    virtual size_t Write(const void* from, size_t size) noexcept = 0;
    virtual uint64_t Size() const noexcept = 0;
    // Memory that holds the whole file and that libtiff may read directly, or null.
    virtual const uint8_t* Whole() const noexcept = 0;

    uint64_t Seek(uint64_t offset, int whence) noexcept {
        position_ = whence == SEEK_SET ? offset : whence == SEEK_CUR ? position_ + offset : Size() + offset;
        return position_;
    }

protected:
    uint64_t position_ = 0;
};

// For reading. Positions behind the end read as the end.
class TiffInput final : public TiffMemory {
public:
    explicit TiffInput(std::span<const uint8_t> bytes) : bytes_(bytes) {}
    size_t Read(void* to, size_t size) noexcept override {
        if (position_ >= bytes_.size()) return 0;
        const auto rest = bytes_.subspan(static_cast<size_t>(position_));
        if (size > rest.size()) size = rest.size();
        if (size > 0) std::memcpy(to, rest.data(), size);
        position_ += size;
        return size;
    }
    size_t Write(const void*, size_t) noexcept override { return 0; }
    uint64_t Size() const noexcept override { return bytes_.size(); }
    const uint8_t* Whole() const noexcept override { return bytes_.data(); }

private:
    std::span<const uint8_t> bytes_;
};

class TiffHandle {
public:
    // mode as for TIFFOpen; libtiff allocates at most `most` bytes at once. Null on failure. Whatever libtiff has to
    // say about the file is dropped: it would go to the standard output or into a window.
    TiffHandle(const TiffLibrary& library, TiffMemory& memory, const char* mode, uint64_t most);
    ~TiffHandle() { Close(); }
    TiffHandle(const TiffHandle&) = delete;
    TiffHandle& operator=(const TiffHandle&) = delete;

    explicit operator bool() const { return tiff_ != nullptr; }
    TIFF* get() const { return tiff_; }
    // Whether libtiff dropped pixels that did not fit, which it takes for no error.
    bool discarded() const { return discarded_; }
    void Close() {
        if (tiff_) library_.TIFFClose(tiff_);
        tiff_ = nullptr;
    }

private:
    const TiffLibrary& library_;
    TIFF* tiff_ = nullptr;
    bool discarded_ = false;
};

}  // namespace orlix
