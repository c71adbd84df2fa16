#include "binary/orlix_bitmap.hpp"

#include <cmath>

#include "component/error_report.hpp"

using namespace orlix;

namespace {

constexpr char kLeftAboveRight[] = "IBitmapProcess::DrawHorizontalLine: left cannot be larger than right.";

}  // namespace

// Every empty span has reported itself, and later rows do not take that back: the text stands although the drawing
// succeeds.
HRESULT OrlixBitmap::ResultOf(Drawing drawing) noexcept {
    if (drawing == Drawing::WithEmptySpans) ReportError(__uuidof(OrlixBitmap), kLeftAboveRight);
    return drawing == Drawing::Missed ? S_FALSE : S_OK;
}

// For reading: the row is not marked.
uint8_t* OrlixBitmap::RequireRow(LONG row) {
    if (!store_.ContainsRow(row)) throw Failure("IBitmapProcess::GetRowPtr: row is out of bounds");
    return static_cast<uint8_t*>(store_.record().bmBits) + row * store_.rowBytes();
}

uint8_t* OrlixBitmap::RequirePixel(LONG x, LONG y) {
    if (!store_.ContainsRow(y)) throw Failure("IBitmapProcess::GetPixelPtr: Y is out of bounds");
    if (!store_.Contains(x, y)) throw Failure("IBitmapProcess::GetPixelPtr: X is out of bounds");
    return RequireRow(y) + x / 8;
}

STDMETHODIMP OrlixBitmap::get_Width(LONG* hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = store_.width();
    });
}

STDMETHODIMP OrlixBitmap::get_Height(LONG* hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = store_.height();
    });
}

STDMETHODIMP OrlixBitmap::Create(LONG Width, LONG Height, LONG bZero) noexcept {
    return Guarded([&] { store_.Create(Width, Height, bZero != 0); });
}

STDMETHODIMP OrlixBitmap::CreateFromBitmap(IBitmap* Bitmap) noexcept {
    return Guarded([&] {
        Require(Bitmap);
        if (IsSelf(Bitmap)) return S_FALSE;
        BITMAP source = {};
        Demand(Bitmap->get_Bitmap(&source));
        store_.CopyFrom(source);
        return S_OK;
    });
}

STDMETHODIMP OrlixBitmap::Zero() noexcept {
    return Guarded([&] { store_.Fill(0x00); });
}

STDMETHODIMP OrlixBitmap::One() noexcept {
    return Guarded([&] { store_.Fill(0xff); });
}

STDMETHODIMP OrlixBitmap::DrawHorizontalLine(LONG Row, LONG Left, LONG Right, DrawType How) noexcept {
    return Guarded([&] {
        if (Left > Right) throw Failure(kLeftAboveRight, DISP_E_EXCEPTION);
        return ResultOf(DrawRow(store_, Row, {Left, Right}, How));
    });
}

STDMETHODIMP OrlixBitmap::DrawRectangle(LONG Left, LONG Top, LONG Right, LONG Bottom, DrawType How) noexcept {
    return Guarded([&] { return ResultOf(orlix::DrawRectangle(store_, Left, Top, Right, Bottom, How)); });
}

STDMETHODIMP OrlixBitmap::DrawDisk(double XCenter, double YCenter, double Radius, DrawType How) noexcept {
    return Guarded([&] { return ResultOf(orlix::DrawDisk(store_, {XCenter, YCenter, Radius}, How)); });
}

STDMETHODIMP OrlixBitmap::DrawLine(double X1, double Y1, double X2, double Y2, DrawType How) noexcept {
    return Guarded([&] {
        if (std::isnan(X1) || std::isnan(Y1) || std::isnan(X2) || std::isnan(Y2)) return;
        orlix::DrawLine(store_, Line::BetweenRounded(X1, Y1, X2, Y2), How);
    });
}

STDMETHODIMP OrlixBitmap::get_Bitmap(BITMAP* hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = store_.record();
    });
}

STDMETHODIMP OrlixBitmap::GetRowPtr(LONG Row, unsigned char** hRow) noexcept {
    return Guarded([&] {
        Require(hRow);
        *hRow = nullptr;
        *hRow = RequireRow(Row);
    });
}

STDMETHODIMP OrlixBitmap::GetPixelPtr(LONG X, LONG Y, unsigned char** hRow, unsigned char* Mask) noexcept {
    return Guarded([&] {
        Require(hRow);
        Require(Mask);
        *hRow = nullptr;
        *Mask = 0;
        *hRow = RequirePixel(X, Y);
        *Mask = BitmapStore::MaskOf(X);
    });
}

STDMETHODIMP OrlixBitmap::get_Bit(LONG X, LONG Y, LONG* hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = 0;
        if (!store_.Contains(X, Y)) return S_FALSE;
        *hVal = (*RequirePixel(X, Y) & BitmapStore::MaskOf(X)) != 0;
        return S_OK;
    });
}

STDMETHODIMP OrlixBitmap::put_Bit(LONG X, LONG Y, LONG newVal) noexcept {
    return Guarded([&] {
        uint8_t& target = *RequirePixel(X, Y);
        store_.MarkModified(Y);
        const uint8_t mask = BitmapStore::MaskOf(X);
        target = static_cast<uint8_t>(newVal != 0 ? target | mask : target & ~mask);
    });
}

STDMETHODIMP OrlixBitmap::GetWriteRowPtr(LONG Row, unsigned char** hRow) noexcept {
    return Guarded([&] {
        Require(hRow);
        *hRow = nullptr;
        *hRow = RequireRow(Row);
        store_.MarkModified(Row);
    });
}

STDMETHODIMP OrlixBitmap::GetWritePixelPtr(LONG X, LONG Y, unsigned char** hRow, unsigned char* Mask) noexcept {
    return Guarded([&] {
        Require(hRow);
        Require(Mask);
        *hRow = nullptr;
        *Mask = 0;
        *hRow = RequirePixel(X, Y);
        store_.MarkModified(Y);
        *Mask = BitmapStore::MaskOf(X);
    });
}
