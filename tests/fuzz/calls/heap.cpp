#include "fuzz/calls/heap.hpp"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#ifdef ORLIX_SANITIZED
// GCC brings the function, but not the header that declares it.
extern "C" size_t __sanitizer_get_allocated_size(const volatile void* memory);
#endif

namespace orlix::fuzz {
namespace {

// More than any object of these sequences needs, less than absurd sizes ask for.
constexpr size_t kMostBytes = size_t{48} << 20;

size_t liveBytes = 0;

bool Refused(size_t size) noexcept {
    if (!heapUse.byLibrary) return false;
    if (size > kMostBytes || liveBytes > kMostBytes - size) return true;
    return heapUse.failAfter >= 0 && heapUse.failAfter-- == 0;
}

#ifdef ORLIX_SANITIZED

void* Allocate(size_t size, size_t alignment) noexcept {
    if (Refused(size)) return nullptr;
    void* const memory = alignment <= alignof(std::max_align_t)
                             ? std::malloc(size)
                             : std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
    if (memory) liveBytes += __sanitizer_get_allocated_size(memory);
    return memory;
}

void Free(void* memory) noexcept {
    if (memory) liveBytes -= __sanitizer_get_allocated_size(memory);
    std::free(memory);
}

#else

// Every block is preceded by this, at the alignment that was asked for.
struct Header {
    size_t size;
    void* allocated;
    Header* next;  // in the ring of live blocks or in that of freed ones
    Header* previous;
    uint64_t mark;
};
constexpr uint64_t kLive = 0x6C6976656C697665;
constexpr uint64_t kFreed = 0x6672656566726565;

constexpr size_t kTail = 32;
constexpr uint8_t kCanary = 0xA7;
constexpr uint8_t kFreedByte = 0xDD;  // as a pointer: an address that no process of 32 bits has
constexpr size_t kMostKept = size_t{8} << 20;
size_t keptBytes = 0;

// The middle of the ring of the blocks with this mark. Needed before the first static object, and after the last.
Header& Blocks(uint64_t mark) noexcept {
    static Header middles[2];
    Header& middle = middles[mark == kFreed];
    if (!middle.next) middle.next = middle.previous = &middle;
    return middle;
}
void PushBack(Header* header, uint64_t mark) noexcept {
    Header& middle = Blocks(mark);
    header->mark = mark;
    header->previous = middle.previous;
    header->next = &middle;
    middle.previous->next = header;
    middle.previous = header;
}
void Remove(const Header* header) noexcept {
    header->previous->next = header->next;
    header->next->previous = header->previous;
}

[[noreturn]] void Hurt(const Header* header, const char* what) noexcept {
    std::fprintf(stderr, "heap: %s, block of %zu bytes at %p\n", what, header->size,
                 static_cast<const void*>(header + 1));
    std::fflush(stderr);
    std::abort();
}

void Check(const Header* header, uint64_t mark) noexcept {
    const auto allAre = [](const uint8_t* bytes, size_t size, uint8_t wanted) {
        return std::all_of(bytes, bytes + size, [&](uint8_t byte) { return byte == wanted; });
    };
    const auto* const bytes = reinterpret_cast<const uint8_t*>(header + 1);
    if (header->mark != mark) Hurt(header, mark == kFreed ? "written before a freed block" : "written before a block");
    if (mark == kFreed && !allAre(bytes, header->size, kFreedByte)) Hurt(header, "written to after it was freed");
    if (!allAre(bytes + header->size, kTail, kCanary)) Hurt(header, "written behind a block");
}

void* Allocate(size_t size, size_t alignment) noexcept {
    alignment = std::max(alignment, alignof(std::max_align_t));
    if (Refused(size) || size > SIZE_MAX / 4) return nullptr;
    auto* const allocated = static_cast<uint8_t*>(std::malloc(size + sizeof(Header) + alignment + kTail));
    if (!allocated) return nullptr;
    const uintptr_t first = reinterpret_cast<uintptr_t>(allocated) + sizeof(Header);
    uint8_t* const bytes = allocated + sizeof(Header) + (alignment - first % alignment) % alignment;
    Header* const header = reinterpret_cast<Header*>(bytes) - 1;
    *header = {size, allocated, nullptr, nullptr, kLive};
    liveBytes += size;
    std::memset(bytes, 0xCD, size);  // what is read before it is written differs from zero
    std::memset(bytes + size, kCanary, kTail);
    PushBack(header, kLive);
    return bytes;
}

void Free(void* memory) noexcept {
    if (!memory) return;
    Header* const header = static_cast<Header*>(memory) - 1;
    if (header->mark == kFreed) Hurt(header, "freed twice");
    if (header->mark != kLive) Hurt(header, "freed what is no block, or written before one");
    Check(header, kLive);
    Remove(header);
    std::memset(memory, kFreedByte, header->size);
    liveBytes -= header->size;
    keptBytes += header->size;
    PushBack(header, kFreed);
    while (keptBytes > kMostKept) {
        Header* const oldest = Blocks(kFreed).next;
        Check(oldest, kFreed);
        Remove(oldest);
        keptBytes -= oldest->size;
        std::free(oldest->allocated);
    }
}

#endif

void* AllocateOrThrow(size_t size, size_t alignment) {
    void* const memory = Allocate(size, alignment);
    if (!memory) throw std::bad_alloc();
    return memory;
}

}  // namespace

void CheckHeap() noexcept {
#ifndef ORLIX_SANITIZED
    for (const uint64_t mark : {kLive, kFreed})
        for (const Header* header = Blocks(mark).next; header != &Blocks(mark); header = header->next)
            Check(header, mark);
#endif
}

}  // namespace orlix::fuzz

void* operator new(size_t size) { return orlix::fuzz::AllocateOrThrow(size, 1); }
void* operator new[](size_t size) { return orlix::fuzz::AllocateOrThrow(size, 1); }
void* operator new(size_t size, std::align_val_t alignment) {
    return orlix::fuzz::AllocateOrThrow(size, static_cast<size_t>(alignment));
}
void* operator new[](size_t size, std::align_val_t alignment) {
    return orlix::fuzz::AllocateOrThrow(size, static_cast<size_t>(alignment));
}
void* operator new(size_t size, const std::nothrow_t&) noexcept { return orlix::fuzz::Allocate(size, 1); }
void* operator new[](size_t size, const std::nothrow_t&) noexcept { return orlix::fuzz::Allocate(size, 1); }
void* operator new(size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return orlix::fuzz::Allocate(size, static_cast<size_t>(alignment));
}
void* operator new[](size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return orlix::fuzz::Allocate(size, static_cast<size_t>(alignment));
}
void operator delete(void* memory) noexcept { orlix::fuzz::Free(memory); }
void operator delete[](void* memory) noexcept { orlix::fuzz::Free(memory); }
void operator delete(void* memory, size_t) noexcept { orlix::fuzz::Free(memory); }
void operator delete[](void* memory, size_t) noexcept { orlix::fuzz::Free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { orlix::fuzz::Free(memory); }
void operator delete[](void* memory, std::align_val_t) noexcept { orlix::fuzz::Free(memory); }
void operator delete(void* memory, size_t, std::align_val_t) noexcept { orlix::fuzz::Free(memory); }
void operator delete[](void* memory, size_t, std::align_val_t) noexcept { orlix::fuzz::Free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { orlix::fuzz::Free(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { orlix::fuzz::Free(memory); }
void operator delete(void* memory, std::align_val_t, const std::nothrow_t&) noexcept { orlix::fuzz::Free(memory); }
void operator delete[](void* memory, std::align_val_t, const std::nothrow_t&) noexcept { orlix::fuzz::Free(memory); }
