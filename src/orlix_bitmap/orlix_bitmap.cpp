#include "orlix_bitmap/orlix_bitmap.hpp"

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

STDMETHODIMP OrlixBitmap::get_Width(LONG* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = store_.width();
    });
}

STDMETHODIMP OrlixBitmap::get_Height(LONG* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = store_.height();
    });
}

STDMETHODIMP OrlixBitmap::Create(LONG width, LONG height, LONG zero) noexcept {
    return Guarded([&] { store_.Create(width, height, zero != 0); });
}

STDMETHODIMP OrlixBitmap::CreateFromBitmap(IBitmap* bitmap) noexcept {
    return Guarded([&] {
        Require(bitmap);
        const ComPtr<IBitmap> alive(bitmap);  // its own methods may let go of it
        if (IsSelf(bitmap)) return S_FALSE;
        BITMAP source = {};
        Demand(bitmap->get_Bitmap(&source));
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

STDMETHODIMP OrlixBitmap::DrawHorizontalLine(LONG row, LONG left, LONG right, DrawType how) noexcept {
    return Guarded([&] {
        if (left > right) throw Failure(kLeftAboveRight, DISP_E_EXCEPTION);
        return ResultOf(DrawRow(store_, row, {left, right}, how));
    });
}

STDMETHODIMP OrlixBitmap::DrawRectangle(LONG left, LONG top, LONG right, LONG bottom, DrawType how) noexcept {
    return Guarded([&] { return ResultOf(orlix::DrawRectangle(store_, left, top, right, bottom, how)); });
}

STDMETHODIMP OrlixBitmap::DrawDisk(double xCenter, double yCenter, double radius, DrawType how) noexcept {
    return Guarded([&] { return ResultOf(orlix::DrawDisk(store_, {xCenter, yCenter, radius}, how)); });
}

STDMETHODIMP OrlixBitmap::DrawLine(double x1, double y1, double x2, double y2, DrawType how) noexcept {
    return Guarded([&] {
        if (std::isnan(x1) || std::isnan(y1) || std::isnan(x2) || std::isnan(y2)) return;
        orlix::DrawLine(store_, Line::BetweenRounded(x1, y1, x2, y2), how);
    });
}

STDMETHODIMP OrlixBitmap::get_Bitmap(BITMAP* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = store_.record();
    });
}

STDMETHODIMP OrlixBitmap::GetRowPtr(LONG row, unsigned char** pointer) noexcept {
    return Guarded([&] {
        Require(pointer);
        *pointer = nullptr;
        *pointer = RequireRow(row);
    });
}

STDMETHODIMP OrlixBitmap::GetPixelPtr(LONG x, LONG y, unsigned char** pointer, unsigned char* mask) noexcept {
    return Guarded([&] {
        Require(pointer);
        Require(mask);
        *pointer = nullptr;
        *mask = 0;
        *pointer = RequirePixel(x, y);
        *mask = BitmapStore::MaskOf(x);
    });
}

STDMETHODIMP OrlixBitmap::get_Bit(LONG x, LONG y, LONG* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = 0;
        if (!store_.Contains(x, y)) return S_FALSE;
        *value = store_.Bit(x, y);
        return S_OK;
    });
}

STDMETHODIMP OrlixBitmap::put_Bit(LONG x, LONG y, LONG value) noexcept {
    return Guarded([&] {
        RequirePixel(x, y);
        store_.SetBit(x, y, value != 0);
    });
}

STDMETHODIMP OrlixBitmap::GetWriteRowPtr(LONG row, unsigned char** pointer) noexcept {
    return Guarded([&] {
        Require(pointer);
        *pointer = nullptr;
        uint8_t* const first = RequireRow(row);
        store_.Lend(row);
        *pointer = first;
    });
}

STDMETHODIMP OrlixBitmap::GetWritePixelPtr(LONG x, LONG y, unsigned char** pointer, unsigned char* mask) noexcept {
    return Guarded([&] {
        Require(pointer);
        Require(mask);
        *pointer = nullptr;
        *mask = 0;
        uint8_t* const found = RequirePixel(x, y);
        store_.Lend(y);
        *pointer = found;
        *mask = BitmapStore::MaskOf(x);
    });
}
