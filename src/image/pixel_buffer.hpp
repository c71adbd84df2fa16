// The bytes of an image.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

#include "platform/large_pages.hpp"

namespace orlix {

// Bytes aligned to 64, for the widest vectors. Resizing keeps the existing bytes and zeroes new ones; when memory runs
// out it raises std::bad_alloc and changes nothing.
class PixelBuffer {
public:
    PixelBuffer() = default;
    PixelBuffer(PixelBuffer&& other) noexcept { Swap(other); }
    PixelBuffer& operator=(PixelBuffer&& other) noexcept {
        Swap(other);
        return *this;
    }
    ~PixelBuffer() { ::operator delete(bytes_, AlignmentOf(capacity_)); }

    uint8_t* data() const { return bytes_; }
    size_t size() const { return size_; }

    // Whether any of the size bytes at the given address belong to this buffer.
    bool Overlaps(const void* bytes, size_t size) const {
        const auto first = reinterpret_cast<uintptr_t>(bytes), own = reinterpret_cast<uintptr_t>(bytes_);
        return first < own ? own - first < size && capacity_ > 0 : first - own < capacity_;
    }

    // A buffer of uninitialised bytes.
    static PixelBuffer Unset(size_t size) {
        PixelBuffer buffer;
        buffer.bytes_ = Allocate(size);
        buffer.size_ = buffer.capacity_ = size;
        return buffer;
    }

    void Resize(size_t size) {
        if (size > capacity_) {
            uint8_t* const bytes = Allocate(size);
            if (size_) std::memcpy(bytes, bytes_, size_);
            ::operator delete(bytes_, AlignmentOf(capacity_));
            bytes_ = bytes;
            capacity_ = size;
        }
        if (size > size_) std::memset(bytes_ + size_, 0, size - size_);
        size_ = size;
    }

private:
    static std::align_val_t AlignmentOf(size_t capacity) {
        return std::align_val_t{capacity >= kLargeBlock ? kLargeBlockAlignment : 64};
    }
    static uint8_t* Allocate(size_t size) {
        auto* const bytes = static_cast<uint8_t*>(::operator new(size, AlignmentOf(size), std::nothrow));
        if (!bytes) throw std::bad_alloc();
        if (size >= kLargeBlock) AskForLargePages(bytes, size);
        return bytes;
    }

    void Swap(PixelBuffer& other) noexcept {
        std::swap(bytes_, other.bytes_);
        std::swap(size_, other.size_);
        std::swap(capacity_, other.capacity_);
    }

    uint8_t* bytes_ = nullptr;
    size_t size_ = 0;
    size_t capacity_ = 0;
};

}  // namespace orlix
