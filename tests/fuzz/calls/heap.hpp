// The heap of the fuzzer: a bound on what the library may hold, allocations that fail on request, and, where no
// sanitizer does it, blocks between canaries whose bytes are overwritten when they are freed and watched for a while.
#pragma once

#include <cstddef>
#include <utility>

#if defined(__SANITIZE_ADDRESS__)
#define ORLIX_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ORLIX_SANITIZED 1
#endif
#endif

namespace orlix::fuzz {

// Gives a variable another value while it lives.
template <class T>
class Temporarily {
public:
    Temporarily(T& variable, T value) : variable_(variable), before_(std::exchange(variable, value)) {}
    ~Temporarily() { variable_ = before_; }
    Temporarily(const Temporarily&) = delete;
    Temporarily& operator=(const Temporarily&) = delete;

private:
    T& variable_;
    T before_;
};

struct HeapUse {
    bool byLibrary = false;
    int failAfter = -1;  // how many allocations succeed until one fails; negative: none fails
};
inline HeapUse heapUse;

// While a call of the library runs. A client that is called back steps out of it again.
struct LibraryHeap : Temporarily<HeapUse> {
    explicit LibraryHeap(int failAfter) noexcept : Temporarily(heapUse, {true, failAfter}) {}
};
struct ClientHeap : Temporarily<HeapUse> {
    ClientHeap() noexcept : Temporarily(heapUse, {}) {}
};

// Looks at the canaries of all live blocks and of all freed ones that are still kept; aborts with a message when one is
// hurt.
void CheckHeap() noexcept;

}  // namespace orlix::fuzz
