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

bool inLibrary = false;
int failuresIn = -1;
size_t liveBytes = 0;

bool Refused(size_t size) noexcept {
    if (!inLibrary) return false;
    if (size > kMostBytes || liveBytes > kMostBytes - size) return true;
    return failuresIn >= 0 && failuresIn-- == 0;
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
    Header* next;  // in the list of live blocks or in that of freed ones
    Header* previous;
    uint64_t mark;
};
constexpr uint64_t kLive = 0x6C6976656C697665;
constexpr uint64_t kFreed = 0x6672656566726565;

constexpr size_t kTail = 32;
constexpr uint8_t kCanary = 0xA7;
constexpr uint8_t kFreedByte = 0xDD;  // as a pointer: an address that no process of 32 bits has
constexpr size_t kMostKept = size_t{8} << 20;

[[noreturn]] void Hurt(const Header* header, const char* what) noexcept {
    std::fprintf(stderr, "heap: %s, block of %zu bytes at %p\n", what, header->size,
                 static_cast<const void*>(header + 1));
    std::fflush(stderr);
    std::abort();
}

// A ring with this in its middle.
struct Ring {
    Ring() { middle.next = middle.previous = &middle; }
    void PushBack(Header* header) {
        header->previous = middle.previous;
        header->next = &middle;
        middle.previous->next = header;
        middle.previous = header;
    }
    static void Remove(Header* header) {
        header->previous->next = header->next;
        header->next->previous = header->previous;
    }
    Header middle = {};
};
// Needed before the first static object, and after the last.
template <uint64_t mark>
Ring& Blocks() {
    alignas(Ring) static unsigned char memory[sizeof(Ring)];
    static Ring* const ring = new (memory) Ring;
    return *ring;
}
size_t keptBytes = 0;

void CheckTail(const Header* header) noexcept {
    const auto* const tail = reinterpret_cast<const uint8_t*>(header + 1) + header->size;
    if (std::any_of(tail, tail + kTail, [](uint8_t byte) { return byte != kCanary; }))
        Hurt(header, "written behind a block");
}

void CheckFreed(const Header* header) noexcept {
    if (header->mark != kFreed) Hurt(header, "written before a freed block");
    const auto* const bytes = reinterpret_cast<const uint8_t*>(header + 1);
    if (std::any_of(bytes, bytes + header->size, [](uint8_t byte) { return byte != kFreedByte; }))
        Hurt(header, "written to after it was freed");
    CheckTail(header);
}

void Join(Header* header, uint8_t* bytes) noexcept {
    std::memset(bytes, 0xCD, header->size);  // what is read before it is written differs from zero
    std::memset(bytes + header->size, kCanary, kTail);
    Blocks<kLive>().PushBack(header);
}

void Retire(Header* header, uint8_t* bytes) noexcept {
    CheckTail(header);
    Ring::Remove(header);
    std::memset(bytes, kFreedByte, header->size);
    header->mark = kFreed;
    Blocks<kFreed>().PushBack(header);
    keptBytes += header->size;
    while (keptBytes > kMostKept) {
        Header* const oldest = Blocks<kFreed>().middle.next;
        CheckFreed(oldest);
        Ring::Remove(oldest);
        keptBytes -= oldest->size;
        std::free(oldest->allocated);
    }
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
    Join(header, bytes);
    return bytes;
}

void Free(void* memory) noexcept {
    if (!memory) return;
    Header* const header = static_cast<Header*>(memory) - 1;
    if (header->mark != kLive) {
        std::fprintf(
            stderr, "heap: %s %p\n",
            header->mark == kFreed ? "freed twice:" : "freed what is no block, or written before one:", memory);
        std::fflush(stderr);
        std::abort();
    }
    liveBytes -= header->size;
    Retire(header, static_cast<uint8_t*>(memory));
}

#endif

void* AllocateOrThrow(size_t size, size_t alignment) {
    void* const memory = Allocate(size, alignment);
    if (!memory) throw std::bad_alloc();
    return memory;
}

}  // namespace

LibraryHeap::LibraryHeap(int failAfter) noexcept : before_(inLibrary), failAfterBefore_(failuresIn) {
    inLibrary = true;
    failuresIn = failAfter;
}
LibraryHeap::~LibraryHeap() {
    inLibrary = before_;
    failuresIn = failAfterBefore_;
}
ClientHeap::ClientHeap() noexcept : before_(inLibrary), failAfterBefore_(failuresIn) {
    inLibrary = false;
    failuresIn = -1;
}
ClientHeap::~ClientHeap() {
    inLibrary = before_;
    failuresIn = failAfterBefore_;
}

void CheckHeap() noexcept {
#ifndef ORLIX_SANITIZED
    for (const Header* header = Blocks<kLive>().middle.next; header != &Blocks<kLive>().middle; header = header->next) {
        if (header->mark != kLive) Hurt(header, "written before a block");
        CheckTail(header);
    }
    for (const Header* header = Blocks<kFreed>().middle.next; header != &Blocks<kFreed>().middle; header = header->next)
        CheckFreed(header);
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
