#include "pictures/memory_picture.hpp"

#include <cstdint>
#include <cstdlib>

#include "display/memory_surface.hpp"
#include "pictures/rendering.hpp"

namespace orlix {

namespace {

MemorySurface SurfaceOf(const SPictureMemory* memory) {
    Require(memory), Require(memory->m_pPixels);
    if (memory->m_lWidth <= 0 || memory->m_lHeight <= 0) throw Failure("IPictureMemory: the memory has no pixels.");
    if (std::abs(int64_t{memory->m_lStride}) < memory->m_lWidth)
        throw Failure("IPictureMemory: the stride is shorter than a row.");
    if (memory->m_lScaling != RS_Smooth && memory->m_lScaling != RS_Nearest)
        throw Failure("IPictureMemory: no such scaling.");
    return {RasterSurface(memory->m_pPixels, memory->m_lStride, memory->m_lWidth, memory->m_lHeight),
            memory->m_lScaling == RS_Nearest ? Scaling::Nearest : Scaling::Smooth};
}

}  // namespace

HRESULT MemoryPicture::RenderInMemory(SPictureMemory* memory, const Rectangle& dest, const RenderKind& kind) {
    MemorySurface surface = SurfaceOf(memory);
    const auto drawing = DrawingOf(picture().Source().get(), kind, dest, picture().surround, picture().view);
    return drawing && drawing->DrawOn(surface) ? S_OK : S_FALSE;
}

STDMETHODIMP MemoryPicture::RenderToMemory(SPictureMemory* memory, LONG x, LONG y, LONG width, LONG height) noexcept {
    return Guarded([&] {
        return RenderInMemory(memory, {x, y, width, height}, Fit(picture().zoom, Placing::Centred));
    });
}

STDMETHODIMP MemoryPicture::RenderTopLeftToMemory(SPictureMemory* memory, LONG x, LONG y, LONG width,
                                                  LONG height) noexcept {
    return Guarded([&] {
        return RenderInMemory(memory, {x, y, width, height}, Fit(picture().zoom, Placing::TopLeft));
    });
}

STDMETHODIMP MemoryPicture::RenderBltToMemory(SPictureMemory* memory, LONG x, LONG y, LONG width, LONG height,
                                              LONG sourceX, LONG sourceY) noexcept {
    return Guarded([&] { return RenderInMemory(memory, {x, y, width, height}, Blt(sourceX, sourceY)); });
}

STDMETHODIMP MemoryPicture::RenderStretchToMemory(SPictureMemory* memory, LONG x, LONG y, LONG width, LONG height,
                                                  LONG sourceX, LONG sourceY, LONG sourceWidth,
                                                  LONG sourceHeight) noexcept {
    return Guarded([&] {
        return RenderInMemory(memory, {x, y, width, height}, Stretch({sourceX, sourceY, sourceWidth, sourceHeight}));
    });
}

}  // namespace orlix
