// Pixels, one by one and as arrays of two dimensions. Of these the first index is the column, the second the row, as
// the contract names pixels (x, y). In memory the first index runs fastest: a row of the array is a row of the image.
#pragma once

#include <orlix/orlix.h>

#include "automation/windows/contract_rows.hpp"

namespace orlix::automation {

// A band: VT_UI1, VT_UI2, VT_UI4 or VT_R4, by the type of the pixels. S_FALSE and an array without elements for an
// image without pixels. Memory that the system does not let this process read gives E_FAIL, as do types of pixels that
// OrlixImage does not create.
HRESULT GetImagePixels(IImageVPA* image, LONG band, VARIANT* pixels);
// Writes a band. The array has the size of the image and either that type or numbers that are converted (BadValue with
// DISP_E_OVERFLOW where one is out of range; nothing is written then). The picture of an image is told of the change.
HRESULT PutImagePixels(IImageVPA* image, LONG band, const GivenValue* pixels);
// A single pixel, by the same rules. DISP_E_BADINDEX beyond the image.
HRESULT GetImagePixel(IImageVPA* image, LONG x, LONG y, LONG band, double* value);
HRESULT PutImagePixel(IImageVPA* image, LONG x, LONG y, LONG band, double value);

// VT_UI1, 0 and 1.
HRESULT GetBitmapPixels(IBitmap* bitmap, VARIANT* pixels);
// Every number but 0 sets the pixel.
HRESULT PutBitmapPixels(IBitmapProcess* bitmap, const GivenValue* pixels);
HRESULT GetBitmapPixel(IBitmap* bitmap, LONG x, LONG y, LONG* value);
HRESULT PutBitmapPixel(IBitmapProcess* bitmap, LONG x, LONG y, LONG value);

}  // namespace orlix::automation
