// The component class of binary images. The contract documents the interfaces.
#pragma once

#include <orlix/orlix.h>

#include "binary/bitmap_store.hpp"
#include "binary/drawing.hpp"
#include "component/object.hpp"

class OrlixBitmap final : public orlix::Object<OrlixBitmap, orlix::Answers<IBitmapProcess, IBitmap>> {
public:
    // For the library's own code, which creates and writes without going through the interface.
    orlix::BitmapStore& store() { return store_; }

    STDMETHODIMP get_Width(LONG* value) noexcept override;
    STDMETHODIMP get_Height(LONG* value) noexcept override;
    STDMETHODIMP Create(LONG width, LONG height, LONG zero) noexcept override;
    STDMETHODIMP CreateFromBitmap(IBitmap* bitmap) noexcept override;
    STDMETHODIMP Zero() noexcept override;
    STDMETHODIMP One() noexcept override;
    STDMETHODIMP DrawHorizontalLine(LONG row, LONG left, LONG right, DrawType how) noexcept override;
    STDMETHODIMP DrawRectangle(LONG left, LONG top, LONG right, LONG bottom, DrawType how) noexcept override;
    STDMETHODIMP DrawDisk(double xCenter, double yCenter, double radius, DrawType how) noexcept override;
    STDMETHODIMP DrawLine(double x1, double y1, double x2, double y2, DrawType how) noexcept override;
    STDMETHODIMP get_Bitmap(BITMAP* value) noexcept override;
    STDMETHODIMP GetRowPtr(LONG row, unsigned char** pointer) noexcept override;
    STDMETHODIMP GetPixelPtr(LONG x, LONG y, unsigned char** pointer, unsigned char* mask) noexcept override;
    STDMETHODIMP get_Bit(LONG x, LONG y, LONG* value) noexcept override;
    STDMETHODIMP put_Bit(LONG x, LONG y, LONG value) noexcept override;
    STDMETHODIMP GetWriteRowPtr(LONG row, unsigned char** pointer) noexcept override;
    STDMETHODIMP GetWritePixelPtr(LONG x, LONG y, unsigned char** pointer, unsigned char* mask) noexcept override;

private:
    HRESULT ResultOf(orlix::Drawing drawing) noexcept;
    uint8_t* RequireRow(LONG row);
    uint8_t* RequirePixel(LONG x, LONG y);

    orlix::BitmapStore store_;
};
