#include <orlix/orlix.h>

#include <cstdlib>
#include <cstring>

// A BSTR points at its first unit; the four bytes before it hold the length in bytes, a terminator follows the last
// unit.
namespace {

constexpr size_t kPrefix = 8;  // keeps an alignment of 8 bytes; the length is its last four bytes
constexpr UINT kMaximumLength = 0x7ffffff0u / sizeof(OLECHAR);

UINT LengthOf(const OLECHAR* text) {
    size_t length = 0;
    while (text[length]) ++length;
    return length > kMaximumLength ? kMaximumLength + 1 : static_cast<UINT>(length);
}

}  // namespace

BSTR SysAllocStringLen(const OLECHAR* text, UINT length) {
    if (length > kMaximumLength) return nullptr;
    const uint32_t bytes = length * static_cast<uint32_t>(sizeof(OLECHAR));
    auto* memory = static_cast<unsigned char*>(std::malloc(kPrefix + bytes + sizeof(OLECHAR)));
    if (!memory) return nullptr;
    std::memcpy(memory + kPrefix - sizeof bytes, &bytes, sizeof bytes);
    auto* units = reinterpret_cast<OLECHAR*>(memory + kPrefix);
    if (text && bytes) std::memcpy(units, text, bytes);
    units[length] = 0;
    return units;
}

BSTR SysAllocString(const OLECHAR* text) { return text ? SysAllocStringLen(text, LengthOf(text)) : nullptr; }

void SysFreeString(BSTR text) {
    if (text) std::free(reinterpret_cast<unsigned char*>(text) - kPrefix);
}

UINT SysStringLen(BSTR text) {
    if (!text) return 0;
    uint32_t bytes = 0;
    std::memcpy(&bytes, reinterpret_cast<const unsigned char*>(text) - sizeof bytes, sizeof bytes);
    return bytes / static_cast<uint32_t>(sizeof(OLECHAR));
}

void* CoTaskMemAlloc(size_t size) { return std::malloc(size ? size : 1); }
void CoTaskMemFree(void* memory) { std::free(memory); }
