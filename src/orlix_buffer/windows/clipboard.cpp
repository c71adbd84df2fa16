#include "orlix_buffer/clipboard.hpp"

#include <windows.h>

#include <cstring>
#include <memory>
#include <new>

#include "component/failure.hpp"

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
using GlobalMemory = std::unique_ptr<void, FreeGlobal>;

GlobalMemory CopyOf(std::span<const uint8_t> bytes) {
    GlobalMemory memory(GlobalAlloc(GMEM_MOVEABLE, bytes.size()));
    void* const copy = memory ? GlobalLock(memory.get()) : nullptr;
    if (!copy) throw std::bad_alloc();
    std::memcpy(copy, bytes.data(), bytes.size());
    GlobalUnlock(memory.get());
    return memory;
}

UINT NumberOf(ClipboardFormat format) {
    switch (format) {
        case ClipboardFormat::Bitmap:
            return CF_DIB;
        case ClipboardFormat::Text:
            return CF_UNICODETEXT;
        case ClipboardFormat::Png:
            break;
    }
    const UINT number = RegisterClipboardFormatW(L"PNG");
    if (!number) throw FailedResult(E_FAIL);
    return number;
}

}  // namespace

std::optional<std::vector<uint8_t>> FromClipboard(ClipboardFormat format) {
    const OpenedClipboard clipboard;
    const HANDLE memory = GetClipboardData(NumberOf(format));
    if (!memory) return std::nullopt;
    const auto* const bytes = static_cast<const uint8_t*>(GlobalLock(memory));
    if (!bytes) throw FailedResult(E_FAIL);
    const std::unique_ptr<void, decltype(&GlobalUnlock)> unlock(memory, &GlobalUnlock);
    return std::vector<uint8_t>(bytes, bytes + GlobalSize(memory));
}

void ToClipboard(std::span<const ClipboardItem> items) {
    std::vector<GlobalMemory> copies;
    for (const ClipboardItem& item : items) copies.push_back(CopyOf(item.bytes));
    const OpenedClipboard clipboard;
    if (!EmptyClipboard()) throw FailedResult(E_FAIL);
    for (size_t i = 0; i < items.size(); ++i) {
        if (!SetClipboardData(NumberOf(items[i].format), copies[i].get())) throw FailedResult(E_FAIL);
        (void)copies[i].release();  // the system's now
    }
}

}  // namespace orlix
