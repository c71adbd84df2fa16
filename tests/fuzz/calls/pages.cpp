#include "fuzz/calls/pages.hpp"

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/mman.h>
#endif

#include <cstdint>
#include <iterator>

namespace orlix::fuzz {
namespace {

constexpr size_t kPage = 4096;

// Four pages: readable and writable, neither, readable, neither. Null where the system gives none.
uint8_t* MakePages() {
#ifdef _WIN32
    auto* const pages =
        static_cast<uint8_t*>(VirtualAlloc(nullptr, 4 * kPage, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    DWORD before = 0;
    if (!pages || !VirtualProtect(pages + kPage, kPage, PAGE_NOACCESS, &before) ||
        !VirtualProtect(pages + 2 * kPage, kPage, PAGE_READONLY, &before) ||
        !VirtualProtect(pages + 3 * kPage, kPage, PAGE_NOACCESS, &before))
        return nullptr;
    return pages;
#else
    void* const mapped = mmap(nullptr, 4 * kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED) return nullptr;
    auto* const pages = static_cast<uint8_t*>(mapped);
    if (mprotect(pages + kPage, kPage, PROT_NONE) != 0 || mprotect(pages + 2 * kPage, kPage, PROT_READ) != 0 ||
        mprotect(pages + 3 * kPage, kPage, PROT_NONE) != 0)
        return nullptr;
    return pages;
#endif
}

}  // namespace

void* HostileAddress(unsigned which) {
    static uint8_t* const pages = MakePages();
    void* const addresses[] = {nullptr,
                               reinterpret_cast<void*>(uintptr_t{8}),
                               reinterpret_cast<void*>(UINTPTR_MAX - 15),
                               pages + kPage,
                               pages + 2 * kPage,
                               pages + kPage - 16,
                               pages + kPage - 3,
                               pages};
    return addresses[which % std::size(addresses)];
}

}  // namespace orlix::fuzz
