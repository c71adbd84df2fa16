#include "platform/memory_probe.hpp"

#include <windows.h>

#include <cstdint>

namespace orlix {
namespace {

constexpr DWORD kWritable = PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
constexpr DWORD kReadable = kWritable | PAGE_READONLY | PAGE_EXECUTE_READ;

// Checks page protections, region by region. The system's older functions touch the memory under an exception
// handler: they race with other threads and use up guard pages.
bool Accessible(const void* memory, size_t size, DWORD allowed) {
    if (size == 0) return true;
    uintptr_t next = reinterpret_cast<uintptr_t>(memory);
    if (!memory || next + (size - 1) < next) return false;
    const uintptr_t last = next + (size - 1);
    for (;;) {
        MEMORY_BASIC_INFORMATION region;
        if (VirtualQuery(reinterpret_cast<const void*>(next), &region, sizeof region) == 0) return false;
        if (region.State != MEM_COMMIT || !(region.Protect & allowed) || (region.Protect & PAGE_GUARD)) return false;
        const uintptr_t regionLast = reinterpret_cast<uintptr_t>(region.BaseAddress) + (region.RegionSize - 1);
        if (regionLast >= last) return true;
        next = regionLast + 1;
    }
}

}  // namespace

bool IsReadable(const void* memory, size_t size) { return Accessible(memory, size, kReadable); }
bool IsWritable(const void* memory, size_t size) { return Accessible(memory, size, kWritable); }

}  // namespace orlix
