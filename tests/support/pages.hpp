// Pages of the process's own, whose protection can be changed one by one.
#pragma once

#include <cstddef>
#include <cstdint>

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/mman.h>
#endif

namespace orlix {

enum class Access { None, Read, Write };

class Pages {
public:
    static constexpr size_t kSize = 4096;

    // Readable and writable.
    explicit Pages(size_t count) : bytes_(count * kSize) {
#ifdef _WIN32
        memory_ = static_cast<uint8_t*>(VirtualAlloc(nullptr, bytes_, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE));
#else
        void* const mapped = mmap(nullptr, bytes_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        memory_ = mapped == MAP_FAILED ? nullptr : static_cast<uint8_t*>(mapped);
#endif
    }
    ~Pages() {
#ifdef _WIN32
        VirtualFree(memory_, 0, MEM_RELEASE);
#else
        munmap(memory_, bytes_);
#endif
    }
    Pages(const Pages&) = delete;
    Pages& operator=(const Pages&) = delete;

    bool Protect(size_t page, Access access) {
#ifdef _WIN32
        DWORD old = 0;
        const DWORD flags[] = {PAGE_NOACCESS, PAGE_READONLY, PAGE_READWRITE};
        return VirtualProtect(at(page * kSize), kSize, flags[static_cast<int>(access)], &old) != 0;
#else
        const int flags[] = {PROT_NONE, PROT_READ, PROT_READ | PROT_WRITE};
        return mprotect(at(page * kSize), kSize, flags[static_cast<int>(access)]) == 0;
#endif
    }
    uint8_t* at(size_t offset) const { return memory_ + offset; }

private:
    size_t bytes_;
    uint8_t* memory_ = nullptr;
};

}  // namespace orlix
