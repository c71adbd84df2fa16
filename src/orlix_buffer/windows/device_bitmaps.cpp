#include "orlix_buffer/device_bitmaps.hpp"

#include <windows.h>

#include <algorithm>
#include <iterator>

#include "component/failure.hpp"
#include "dib/dib_memory.hpp"

namespace orlix {

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

}  // namespace orlix
