#include "orlix_buffer/device_bitmaps.hpp"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "component/failure.hpp"
#include "dib/dib_memory.hpp"

namespace orlix {
namespace {

// The clipboard, open for the lifetime of this object. A window must own what is put there.
class OpenedClipboard {
public:
    OpenedClipboard()
        : window_(CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr)) {
        if (window_ && OpenClipboard(window_)) return;
        if (window_) DestroyWindow(window_);
        throw MethodFailure("the clipboard is in use.");
    }
    ~OpenedClipboard() {
        CloseClipboard();
        DestroyWindow(window_);
    }
    OpenedClipboard(const OpenedClipboard&) = delete;
    OpenedClipboard& operator=(const OpenedClipboard&) = delete;

private:
    HWND window_;
};

struct FreeGlobal {
    void operator()(void* memory) const { GlobalFree(memory); }
};

}  // namespace

std::optional<std::vector<uint8_t>> PackedSystemBitmap(void* bitmap) {
    BITMAP found = {};
    const auto handle = static_cast<HBITMAP>(bitmap);
    if (GetObjectType(handle) != OBJ_BITMAP || !GetObjectW(handle, sizeof found, &found)) return std::nullopt;
    if (found.bmWidth <= 0 || found.bmHeight == 0 || found.bmHeight == INT32_MIN) return std::nullopt;
    constexpr uint32_t kDepths[] = {1, 4, 8, 16, 24};
    const auto bits = static_cast<uint32_t>(found.bmPlanes) * static_cast<uint32_t>(found.bmBitsPixel);
    const auto* const fits =
        std::find_if(std::begin(kDepths), std::end(kDepths), [&](uint32_t d) { return d >= bits; });
    const int32_t height = found.bmHeight < 0 ? -found.bmHeight : found.bmHeight;
    const DibLayout layout = PlainDibLayout(found.bmWidth, height, false, fits == std::end(kDepths) ? 32 : *fits);
    if (!DibMemory::HoldsPixels(layout)) throw FailedResult(E_FAIL);
    std::vector<uint8_t> packed = MakeDibHeader(layout, GreyDibEntries(layout.bits));
    const size_t start = packed.size();
    packed.resize(start + static_cast<size_t>(layout.stride) * static_cast<size_t>(height));
    const HDC screen = GetDC(nullptr);
    const int rows = GetDIBits(screen, handle, 0, static_cast<UINT>(height), packed.data() + start,
                               reinterpret_cast<BITMAPINFO*>(packed.data()), DIB_RGB_COLORS);
    ReleaseDC(nullptr, screen);
    if (rows != height) throw FailedResult(E_FAIL);
    return packed;
}

std::optional<std::vector<uint8_t>> PackedClipboardBitmap() {
    const OpenedClipboard clipboard;
    const HANDLE memory = GetClipboardData(CF_DIB);
    if (!memory) return std::nullopt;
    const auto* const bytes = static_cast<const uint8_t*>(GlobalLock(memory));
    if (!bytes) throw FailedResult(E_FAIL);
    const std::unique_ptr<void, decltype(&GlobalUnlock)> unlock(memory, &GlobalUnlock);
    return std::vector<uint8_t>(bytes, bytes + GlobalSize(memory));
}

void PutOnClipboard(std::span<const uint8_t> packed) {
    std::unique_ptr<void, FreeGlobal> memory(GlobalAlloc(GMEM_MOVEABLE, packed.size()));
    void* const bytes = memory ? GlobalLock(memory.get()) : nullptr;
    if (!bytes) throw std::bad_alloc();
    std::memcpy(bytes, packed.data(), packed.size());
    GlobalUnlock(memory.get());
    const OpenedClipboard clipboard;
    if (!EmptyClipboard() || !SetClipboardData(CF_DIB, memory.get())) throw FailedResult(E_FAIL);
    memory.release();  // the system's now
}

}  // namespace orlix
