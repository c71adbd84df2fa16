// The bitmap of the buffer object: creation, palette, packed copies, files, and bitmaps of the system.
#pragma once

#include <span>

#include "orlix_buffer/buffer_core.hpp"

namespace orlix {

class BufferBitmap : public BufferPart<IDIBImage> {
public:
    STDMETHODIMP Create(LONG width, LONG height, LONG bitsPerPixel) noexcept override;
    STDMETHODIMP Attach(void* header, void* bits) noexcept override;
    STDMETHODIMP CreateFromImage(IImageVPA* image) noexcept override;
    STDMETHODIMP CreateImage(IImageVPAEx** image) noexcept override;
    STDMETHODIMP GetFormat(LONG* width, LONG* height, LONG* bitsPerPixel) noexcept override;
    STDMETHODIMP get_Header(void** header) noexcept override;
    STDMETHODIMP GetBits(void** bits, LONG* rowStride) noexcept override;
    STDMETHODIMP get_NumberOfColors(LONG* number) noexcept override;
    STDMETHODIMP get_ColorTable(LONG entry, OLE_COLOR* color) noexcept override;
    STDMETHODIMP put_ColorTable(LONG entry, OLE_COLOR color) noexcept override;
    STDMETHODIMP GetMicronsPerPixel(double* x, double* y) noexcept override;
    STDMETHODIMP PutMicronsPerPixel(double x, double y) noexcept override;
    STDMETHODIMP GetPacked(LONG headerSize, LONG size, BYTE* bytes, LONG* needed) noexcept override;
    STDMETHODIMP PutPacked(LONG size, BYTE* bytes) noexcept override;
    STDMETHODIMP LoadFromFile(BSTR fileName) noexcept override;
    STDMETHODIMP SaveToFile(BSTR fileName) noexcept override;
    STDMETHODIMP CreateFromHBITMAP(void* bitmap) noexcept override;
    STDMETHODIMP CreateFromClipboard() noexcept override;
    STDMETHODIMP CopyToClipboard() noexcept override;

private:
    // The blue of an entry of the palette.
    uint8_t* Entry(LONG entry);
    // Replaces the bitmap by a copy. `read` gives a view or raises DibFailure.
    template <class Read>
    void Copy(const Read& read);
    void CopyPacked(std::span<const uint8_t> bytes);
};

}  // namespace orlix
