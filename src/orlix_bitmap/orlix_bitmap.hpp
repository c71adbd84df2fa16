// The component class of binary images. The contract documents the interfaces.
#pragma once

#include <orlix/orlix.h>

#include <orlix/com_ptr.hpp>

#include "binary/bitmap_store.hpp"
#include "binary/drawing.hpp"
#include "binary/logic.hpp"
#include "binary/morphology.hpp"
#include "component/object.hpp"
#include "geometry/region_rows.hpp"

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

    // Binary morphology: bitmap_operations.cpp.
    STDMETHODIMP get_RegionOfInterest(IRegionOfInterest** value) noexcept override;
    STDMETHODIMP put_RegionOfInterest(IRegionOfInterest* value) noexcept override;
    STDMETHODIMP get_PixelCount(LONG* value) noexcept override;
    STDMETHODIMP Invert() noexcept override;
    STDMETHODIMP AndEquals(IBitmap* bitmap) noexcept override;
    STDMETHODIMP OrEquals(IBitmap* bitmap) noexcept override;
    STDMETHODIMP XorEquals(IBitmap* bitmap) noexcept override;
    STDMETHODIMP AndNotEquals(IBitmap* bitmap) noexcept override;
    STDMETHODIMP ShiftEquals(LONG x, LONG y) noexcept override;
    STDMETHODIMP Erode(ConnectivityType connectivity, LONG times) noexcept override;
    STDMETHODIMP Dilate(ConnectivityType connectivity, LONG times) noexcept override;
    STDMETHODIMP Open(ConnectivityType connectivity, LONG times) noexcept override;
    STDMETHODIMP Close(ConnectivityType connectivity, LONG times) noexcept override;
    STDMETHODIMP ErodeRectangle(LONG width, LONG height) noexcept override;
    STDMETHODIMP DilateRectangle(LONG width, LONG height) noexcept override;
    STDMETHODIMP OpenRectangle(LONG width, LONG height) noexcept override;
    STDMETHODIMP CloseRectangle(LONG width, LONG height) noexcept override;
    STDMETHODIMP ErodeDisk(double radius) noexcept override;
    STDMETHODIMP DilateDisk(double radius) noexcept override;
    STDMETHODIMP OpenDisk(double radius) noexcept override;
    STDMETHODIMP CloseDisk(double radius) noexcept override;
    STDMETHODIMP ErodeElement(IStructuringElement* element) noexcept override;
    STDMETHODIMP DilateElement(IStructuringElement* element) noexcept override;
    STDMETHODIMP OpenElement(IStructuringElement* element) noexcept override;
    STDMETHODIMP CloseElement(IStructuringElement* element) noexcept override;
    STDMETHODIMP ApplyTable(unsigned char* table, LONG times, LONG* passes) noexcept override;
    STDMETHODIMP HitOrMiss(IStructuringElement* hit, IStructuringElement* miss) noexcept override;
    STDMETHODIMP Boundary(BoundaryType side, ConnectivityType connectivity) noexcept override;
    STDMETHODIMP Thin(ConnectivityType connectivity, LONG times) noexcept override;
    STDMETHODIMP Skeleton(ConnectivityType connectivity) noexcept override;
    STDMETHODIMP Prune(ConnectivityType connectivity, LONG length) noexcept override;
    STDMETHODIMP Thicken(ConnectivityType connectivity, LONG times) noexcept override;
    STDMETHODIMP ConvexHulls(ConnectivityType connectivity) noexcept override;
    STDMETHODIMP UltimatePoints(ConnectivityType connectivity) noexcept override;
    STDMETHODIMP Reconstruct(IBitmap* seeds, ConnectivityType connectivity) noexcept override;
    STDMETHODIMP FillHoles(LONG maximumArea, ConnectivityType connectivity) noexcept override;
    STDMETHODIMP ClearBorder(ConnectivityType connectivity) noexcept override;
    STDMETHODIMP KeepArea(LONG minimum, LONG maximum, ConnectivityType connectivity) noexcept override;
    STDMETHODIMP Split(double minimumDepth, double minimumShare, ConnectivityType connectivity) noexcept override;
    STDMETHODIMP get_DistanceMap(IImageVPA** value) noexcept override;
    STDMETHODIMP FindBlobs(ConnectivityType connectivity, IBlobs** value) noexcept override;
    STDMETHODIMP ThresholdLocally(IImageVPA* image, LONG band, LONG radius, double contrast, double offset,
                                  LONG bright) noexcept override;

    // The region is a client's.
    void LetGo() noexcept { region_ = nullptr; }

private:
    // See bitmap_operations.cpp.
    orlix::RegionRows AskRegion(int32_t width, int32_t height);
    void RequireSize(int32_t width, int32_t height) const;
    LONG PixelsIn(const orlix::RegionRows& region) const;
    template <class Prepare, class Operation>
    HRESULT InPlace(const Prepare& prepare, const Operation& operation, const char* method) noexcept;
    template <class Operation>
    HRESULT InPlace(const Operation& operation, const char* method) noexcept;
    template <class Operation>
    HRESULT InPlaceWith(IBitmap* other, const Operation& operation, const char* method) noexcept;
    HRESULT Combine(IBitmap* other, orlix::BitLogic how, const char* method) noexcept;
    template <class Operation>
    HRESULT Change(const Operation& operation, const char* method = __builtin_FUNCTION()) noexcept;
    HRESULT ApplySquare(orlix::Morphology operation, ConnectivityType neighbours, LONG times,
                        const char* method = __builtin_FUNCTION()) noexcept;
    HRESULT ApplyRectangle(orlix::Morphology operation, LONG width, LONG height,
                           const char* method = __builtin_FUNCTION()) noexcept;
    HRESULT ApplyDisk(orlix::Morphology operation, double radius, const char* method = __builtin_FUNCTION()) noexcept;
    HRESULT ApplyElement(orlix::Morphology operation, IStructuringElement* element,
                         const char* method = __builtin_FUNCTION()) noexcept;

    HRESULT ResultOf(orlix::Drawing drawing) noexcept;
    uint8_t* RequireRow(LONG row);
    uint8_t* RequirePixel(LONG x, LONG y);

    orlix::BitmapStore store_;
    orlix::ComPtr<IRegionOfInterest> region_;
};
