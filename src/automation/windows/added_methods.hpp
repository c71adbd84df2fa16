// Methods that exist for scripts only, in place of those of the contract that use memory. What they do is said in
// idl/scripts.idl.
#pragma once

#include <orlix/orlix.h>

#include "automation/windows/contract_rows.hpp"
#include "automation/windows/pixel_arrays.hpp"

namespace orlix::automation {

// A count or an index that was left out: all of them.
inline constexpr LONG kAll = INT32_MIN;

// The functions of an interface, by the names that methods have in C++. Those that get arrays throw BadValue.
template <class I>
struct Added;

template <>
struct Added<IHistogram> {
    static HRESULT get_Bins(IHistogram* histogram, LONG index, VARIANT* counts);
    static HRESULT get_DetailBins(IHistogram* histogram, LONG index, VARIANT* counts);
    static HRESULT get_SmoothBins(IHistogram* histogram, LONG index, VARIANT* counts);
};

template <>
struct Added<IPolygon> {
    static HRESULT Create(IPolygon* polygon, const GivenValue* vertices);
    static HRESULT get_Vertices(IPolygon* polygon, VARIANT* vertices);
    static HRESULT GetVertex(IPolygon* polygon, LONG index, double* x, double* y);
};

template <>
struct Added<IStructuringElement> {
    static HRESULT get_Elements(IStructuringElement* element, VARIANT* elements);
};

template <>
struct Added<IRegionOfInterest> {
    static HRESULT GetRowRuns(IRegionOfInterest* region, LONG row, VARIANT* runs);
};

template <>
struct Added<IImageEntries> {
    static HRESULT ReadBinaryEntry(IImageEntries* entries, LONG index, LONG offset, LONG size, VARIANT* bytes);
    static HRESULT PutBinaryEntry(IImageEntries* entries, BSTR keyword, const GivenValue* bytes);
};

template <>
struct Added<IDIBImage> {
    static HRESULT GetPacked(IDIBImage* bitmap, LONG headerSize, VARIANT* bytes);
    static HRESULT PutPacked(IDIBImage* bitmap, const GivenValue* bytes);
};

template <>
struct Added<IBitmapProcess> {
    static HRESULT ApplyTable(IBitmapProcess* bitmap, const GivenValue* table, LONG times, LONG* passes);
    static constexpr auto PutPixels = &PutBitmapPixels;
    static constexpr auto put_Pixel = &PutBitmapPixel;
};

template <>
struct Added<IBitmap> {
    static constexpr auto GetPixels = &GetBitmapPixels;
    static constexpr auto get_Pixel = &GetBitmapPixel;
};

template <>
struct Added<IImageVPA> {
    static constexpr auto GetPixels = &GetImagePixels;
    static constexpr auto PutPixels = &PutImagePixels;
    static constexpr auto get_Pixel = &GetImagePixel;
    static constexpr auto put_Pixel = &PutImagePixel;
};

template <>
struct Added<IPersistStreamInitEx> {
    static HRESULT Save(IPersistStreamInitEx* image, IStream* stream, LONG clearDirty);
    static HRESULT Load(IPersistStreamInitEx* image, IStream* stream);
};

template <>
struct Added<IImageFrames> {
    static HRESULT CreateFromFrame(IImageFrames* image, const GivenValue* bytes, LONG width, LONG height,
                                   LONG pixelFormat, LONG rowPitch, LONG bottomUp, LONG mosaic);
};

template <>
struct Added<IBlobs> {
    static HRESULT GetValues(IBlobs* blobs, SingleMeasurementType type, LONG first, LONG count, VARIANT* values);
    static HRESULT GetBinaryMeasurements(IBlobs* blobs, LONG desired, LONG first, LONG count, VARIANT* records);
    static HRESULT GetGrayMeasurements(IBlobs* blobs, LONG first, LONG count, VARIANT* records);
    static HRESULT GetLevelMeasurements(IBlobs* blobs, IImageVPA* image, LONG band, double level, LONG first,
                                        LONG count, VARIANT* records);
    static HRESULT get_Item(IBlobs* blobs, LONG index, VARIANT* record);
    static HRESULT get__NewEnum(IBlobs* blobs, VARIANT* items);
};

}  // namespace orlix::automation
