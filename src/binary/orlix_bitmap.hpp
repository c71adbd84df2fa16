// The component class of binary images. The interfaces are documented in the contract.
#pragma once

#include <orlix/orlix.h>

#include "binary/bitmap_store.hpp"
#include "binary/drawing.hpp"
#include "component/object.hpp"

class OrlixBitmap final : public orlix::Object<OrlixBitmap, orlix::Answers<IBitmapProcess, IBitmap>> {
public:
    // For the library's own code, which creates and writes without going through the interface.
    orlix::BitmapStore& store() { return store_; }

    STDMETHODIMP get_Width(LONG* hVal) noexcept override;
    STDMETHODIMP get_Height(LONG* hVal) noexcept override;
    STDMETHODIMP Create(LONG Width, LONG Height, LONG bZero) noexcept override;
    STDMETHODIMP CreateFromBitmap(IBitmap* Bitmap) noexcept override;
    STDMETHODIMP Zero() noexcept override;
    STDMETHODIMP One() noexcept override;
    STDMETHODIMP DrawHorizontalLine(LONG Row, LONG Left, LONG Right, DrawType How) noexcept override;
    STDMETHODIMP DrawRectangle(LONG Left, LONG Top, LONG Right, LONG Bottom, DrawType How) noexcept override;
    STDMETHODIMP DrawDisk(double XCenter, double YCenter, double Radius, DrawType How) noexcept override;
    STDMETHODIMP DrawLine(double X1, double Y1, double X2, double Y2, DrawType How) noexcept override;
    STDMETHODIMP get_Bitmap(BITMAP* hVal) noexcept override;
    STDMETHODIMP GetRowPtr(LONG Row, unsigned char** hRow) noexcept override;
    STDMETHODIMP GetPixelPtr(LONG X, LONG Y, unsigned char** hRow, unsigned char* Mask) noexcept override;
    STDMETHODIMP get_Bit(LONG X, LONG Y, LONG* hVal) noexcept override;
    STDMETHODIMP put_Bit(LONG X, LONG Y, LONG newVal) noexcept override;
    STDMETHODIMP GetWriteRowPtr(LONG Row, unsigned char** hRow) noexcept override;
    STDMETHODIMP GetWritePixelPtr(LONG X, LONG Y, unsigned char** hRow, unsigned char* Mask) noexcept override;

private:
    HRESULT ResultOf(orlix::Drawing drawing) noexcept;
    uint8_t* RequireRow(LONG row);
    uint8_t* RequirePixel(LONG x, LONG y);

    orlix::BitmapStore store_;
};
