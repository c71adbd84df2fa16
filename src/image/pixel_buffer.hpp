// The bytes of an image.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
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
    ~PixelBuffer() { Release(); }

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
        buffer.Allocate(size);
        buffer.size_ = size;
        return buffer;
    }

    void Resize(size_t size) {
        if (size > capacity_) {
            PixelBuffer larger = Unset(size);
            if (size_) std::memcpy(larger.bytes_, bytes_, size_);
            larger.size_ = size_;
            Swap(larger);
        }
        if (size > size_) std::memset(bytes_ + size_, 0, size - size_);
        size_ = size;
    }

private:
    static constexpr std::align_val_t kAlignment{64};

    // For a buffer without memory. A large block begins within a larger one, because operator new for so large an
    // alignment would give the bytes around it to others: once they are in use, the freed block is too short for its
    // equal, and a program that loads one image after the other takes more and more memory.
    void Allocate(size_t size) {
        if (size < kLargeBlock) {
            memory_ = ::operator new(size, kAlignment, std::nothrow);
            if (!memory_) throw std::bad_alloc();
            bytes_ = static_cast<uint8_t*>(memory_);
        } else {
            size_t room = size + kLargeBlockAlignment;
            void* start = memory_ = room > size ? ::operator new(room, std::nothrow) : nullptr;
            if (!memory_) throw std::bad_alloc();
            bytes_ = static_cast<uint8_t*>(std::align(kLargeBlockAlignment, size, start, room));
            AskForLargePages(bytes_, size);
        }
        capacity_ = size;
    }
    void Release() {
        if (capacity_ < kLargeBlock)  // not as an expression: clang 14 would evaluate both of its branches
            ::operator delete(memory_, kAlignment);
        else
            ::operator delete(memory_);
    }

    void Swap(PixelBuffer& other) noexcept {
        std::swap(memory_, other.memory_);
        std::swap(bytes_, other.bytes_);
        std::swap(size_, other.size_);
        std::swap(capacity_, other.capacity_);
    }

    void* memory_ = nullptr;
    uint8_t* bytes_ = nullptr;  // within the memory
    size_t size_ = 0;
    size_t capacity_ = 0;
};

}  // namespace orlix
