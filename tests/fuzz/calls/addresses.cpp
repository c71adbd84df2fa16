#include "fuzz/calls/addresses.hpp"

#include <iterator>

#include "support/pages.hpp"

#ifdef _WIN32
#include <windows.h>
#endif

namespace orlix::fuzz {

void* HostileAddress(unsigned which) {
    // Readable and writable, neither, readable, neither.
    static Pages pages(4);
    [[maybe_unused]] static const bool done =
        pages.Protect(1, Access::None) && pages.Protect(2, Access::Read) && pages.Protect(3, Access::None);
    constexpr size_t kPage = Pages::kSize;
    void* const addresses[] = {nullptr,
                               reinterpret_cast<void*>(uintptr_t{8}),
                               reinterpret_cast<void*>(UINTPTR_MAX - 15),
                               pages.at(kPage),
                               pages.at(2 * kPage),
                               pages.at(kPage - 16),
                               pages.at(kPage - 3),
                               pages.at(0)};
    return addresses[which % std::size(addresses)];
}

#ifdef _WIN32

namespace {

HDC MakeContext() {
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = info.bmiHeader.biHeight = 32;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    const HDC context = CreateCompatibleDC(nullptr);
    if (const HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0))
        SelectObject(context, bitmap);
    return context;
}

}  // namespace

void* DeviceContext(uint8_t choice) {
    static HDC context = MakeContext();
    static void* none = nullptr;
    if (choice < 160) return context;
    if (choice < 208) return &context;  // the contract allows the address of one
    void* const others[] = {nullptr, &none, reinterpret_cast<void*>(uintptr_t{0x12345678})};
    return others[choice % 3];
}

void DeleteBitmap(void* bitmap) {
    if (bitmap) DeleteObject(bitmap);
}

#else

void* DeviceContext(uint8_t choice) { return choice < 128 ? nullptr : reinterpret_cast<void*>(uintptr_t{8}); }
void DeleteBitmap(void*) {}

#endif

}  // namespace orlix::fuzz
