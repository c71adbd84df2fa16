// The heap of the fuzzer: a bound on what the library may hold, allocations that fail on request, and, where no
// sanitizer does it, blocks between canaries whose bytes are overwritten when they are freed and watched for a while.
#pragma once

#include <cstddef>

#if defined(__SANITIZE_ADDRESS__)
#define ORLIX_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ORLIX_SANITIZED 1
#endif
#endif

namespace orlix::fuzz {

// While a call of the library runs. A client that is called back steps out of it again.
class LibraryHeap {
public:
    // failAfter: how many allocations succeed until one fails; negative: none fails.
    explicit LibraryHeap(int failAfter) noexcept;
    ~LibraryHeap();
    LibraryHeap(const LibraryHeap&) = delete;
    LibraryHeap& operator=(const LibraryHeap&) = delete;

private:
    bool before_;
    int failAfterBefore_;
};
class ClientHeap {
public:
    ClientHeap() noexcept;
    ~ClientHeap();
    ClientHeap(const ClientHeap&) = delete;
    ClientHeap& operator=(const ClientHeap&) = delete;

private:
    bool before_;
    int failAfterBefore_;
};

// Looks at the canaries of all live blocks and of all freed ones that are still kept; aborts with a message when one is
// hurt.
void CheckHeap() noexcept;

}  // namespace orlix::fuzz
