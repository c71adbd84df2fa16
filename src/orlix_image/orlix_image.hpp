// The image object: owns one typed image and forwards to it.
#pragma once

#include <orlix/orlix.h>

#include <functional>
#include <memory>

#include "component/connection_point.hpp"
#include "component/object.hpp"
#include "display/device_renderer.hpp"
#include "display/displayed_image.hpp"
#include "display/graphics_use.hpp"
#include "display/view_geometry.hpp"
#include "display/zoom_state.hpp"
#include "files/sample_limit.hpp"
#include "image/source_image.hpp"

namespace orlix {
struct RenderKind;
}

// Its methods stand in one file per group of interfaces: orlix_image.cpp (pixels and creation), orlix_image_file.cpp,
// orlix_image_entries.cpp, orlix_image_stream.cpp,
// orlix_image_process.cpp, orlix_image_surfaces.cpp, orlix_image_hemispheres.cpp,
// orlix_image_robust.cpp, orlix_image_display.cpp, orlix_image_picture.cpp, windows/orlix_image_dispatch.cpp,
// orlix_image_pending.cpp (what is not built yet) and orlix_image_module.cpp.
class OrlixImage final
    : public orlix::Object<OrlixImage, orlix::Answers<IImageVPAExPlus, IImageVPAEx, IImageVPA>, IImageFile,
                           IImageEntries, orlix::Answers<IPersistStreamInitEx, IPersistStreamInit, IPersist>,
                           orlix::Answers<IOrlixImageProcess, IImageProcess, IImageProcessBase>, IDisplayProcess,
                           orlix::Answers<IPictureExZoom, IPictureEx>, IPictureMemory, IConnectionPointContainer,
#ifdef _WIN32  // scripts
                           orlix::Answers<IPictureExZoomDisp, IDispatch>,
#endif
                           IModuleInformation, IPixelAccess> {
public:
    // IImageVPA
    STDMETHODIMP Dimensions(LONG* bands, LONG* width, LONG* height) noexcept override;
    STDMETHODIMP DataType(LONG bandIndex, LONG* dataType) noexcept override;
    STDMETHODIMP VPA(LONG bandIndex, void** base, VPAEntry** table) noexcept override;
    STDMETHODIMP GetCoords(TCoordinateMap* coordinateMap) noexcept override;
    STDMETHODIMP SetCoords(TCoordinateMap coordinateMap) noexcept override;

    // IImageVPAExPlus
    STDMETHODIMP get_Description(BSTR* description) noexcept override;
    STDMETHODIMP put_Description(BSTR description) noexcept override;
    STDMETHODIMP Create(LONG width, LONG height, LONG bands, LONG dataType, LONG zero) noexcept override;
    STDMETHODIMP CreateFromImage(IImageVPA* image, LONG bandIndex) noexcept override;
    STDMETHODIMP CreateFromSubImage(IImageVPA* image, LONG bandIndex, LONG left, LONG top, LONG right,
                                    LONG bottom) noexcept override;
    STDMETHODIMP CreateFromFile(BSTR fileName) noexcept override;
    STDMETHODIMP AttachBuffer(void* buffer, LONG width, LONG height, LONG bands, LONG dataType,
                              LONG zero) noexcept override;

    // IImageFile
    STDMETHODIMP SaveToFile(BSTR fileName, ImageFileFormat format) noexcept override;
    STDMETHODIMP GetMicronsPerPixel(double* x, double* y) noexcept override;
    STDMETHODIMP PutMicronsPerPixel(double x, double y) noexcept override;
    STDMETHODIMP get_SampleLimit(LONG* limit) noexcept override;
    STDMETHODIMP put_SampleLimit(LONG limit) noexcept override;

    // IImageEntries
    STDMETHODIMP get_NumberOfTextEntries(LONG* number) noexcept override;
    STDMETHODIMP GetTextEntry(LONG index, BSTR* keyword, BSTR* text) noexcept override;
    STDMETHODIMP PutTextEntry(BSTR keyword, BSTR text) noexcept override;
    STDMETHODIMP RemoveTextEntry(LONG index) noexcept override;
    STDMETHODIMP get_NumberOfBinaryEntries(LONG* number) noexcept override;
    STDMETHODIMP GetBinaryEntry(LONG index, BSTR* keyword, LONG* size) noexcept override;
    STDMETHODIMP ReadBinaryEntry(LONG index, LONG offset, LONG size, unsigned char* bytes) noexcept override;
    STDMETHODIMP PutBinaryEntry(BSTR keyword, LONG size, unsigned char* bytes) noexcept override;
    STDMETHODIMP RemoveBinaryEntry(LONG index) noexcept override;

    // IPersistStreamInitEx
    STDMETHODIMP GetClassID(CLSID* clsid) noexcept override;
    STDMETHODIMP IsDirty() noexcept override;
    STDMETHODIMP Load(IStream* stream) noexcept override;
    STDMETHODIMP Save(IStream* stream, BOOL clearDirty) noexcept override;
    STDMETHODIMP GetSizeMax(ULARGE_INTEGER* size) noexcept override;
    STDMETHODIMP InitNew() noexcept override;
    STDMETHODIMP ReLoad(IStream* stream) noexcept override;

    // IImageProcessBase
    STDMETHODIMP get_BandToProcess(LONG* band) noexcept override;
    STDMETHODIMP put_BandToProcess(LONG band) noexcept override;
    STDMETHODIMP get_RegionOfInterest(IRegionOfInterest** region) noexcept override;
    STDMETHODIMP put_RegionOfInterest(IRegionOfInterest* region) noexcept override;
    STDMETHODIMP GetLuminanceRange(double* lower, double* upper) noexcept override;
    STDMETHODIMP get_NumberOfBins(LONG* bins) noexcept override;
    STDMETHODIMP Threshold(double lower, double upper, LONG inside, IBitmap** bitmap) noexcept override;
    STDMETHODIMP get_Histogram(IHistogram** histogram) noexcept override;
    STDMETHODIMP get_GrayMeasurements(GrayExtractMeasurementType desired, SGrayMeasurements* measure) noexcept override;

    // IImageProcess
    STDMETHODIMP put_NumberOfBins(LONG bins) noexcept override;
    STDMETHODIMP PutLuminanceRange(double lower, double upper) noexcept override;
    STDMETHODIMP SnapLuminanceRange(double trimLower, double trimUpper, LONG roundOut) noexcept override;
    STDMETHODIMP get_LocalMaxima(IBitmap** bitmap) noexcept override;
    STDMETHODIMP get_LocalMinima(IBitmap** bitmap) noexcept override;
    STDMETHODIMP get_Table(LONG entry, double* value) noexcept override;
    STDMETHODIMP put_Table(LONG entry, double value) noexcept override;
    STDMETHODIMP EqualizeTable(EqualizationType type) noexcept override;
    STDMETHODIMP LUT() noexcept override;
    STDMETHODIMP Invert() noexcept override;
    STDMETHODIMP LocalBackgroundCorrect() noexcept override;
    STDMETHODIMP ScalarEquals(double value) noexcept override;
    STDMETHODIMP ScalarDivideEquals(double value) noexcept override;
    STDMETHODIMP ScalarPlusEquals(double value) noexcept override;
    STDMETHODIMP CastEquals(IImageVPA* source, LONG band) noexcept override;
    STDMETHODIMP PlusEquals(IImageVPA* source, LONG band) noexcept override;
    STDMETHODIMP Sobel(IImageVPA* source, LONG band) noexcept override;
    STDMETHODIMP Laplacian(IImageVPA* source, LONG band) noexcept override;
    STDMETHODIMP SharpenLow(IImageVPA* source, LONG band) noexcept override;
    STDMETHODIMP SharpenMedium(IImageVPA* source, LONG band) noexcept override;
    STDMETHODIMP Gaussian3x3(IImageVPA* source, LONG band) noexcept override;
    STDMETHODIMP Gaussian5x5(IImageVPA* source, LONG band) noexcept override;
    STDMETHODIMP ExtremumSharpening(LONG halfSize, IImageVPA* source, LONG band) noexcept override;
    STDMETHODIMP Median3x3(IImageVPA* source, LONG band) noexcept override;

    // IOrlixImageProcess
    STDMETHODIMP get_RobustPlanarFit(double probability, SPlanarFit* fit) noexcept override;
    STDMETHODIMP get_PlanarFit(SPlanarFit* fit) noexcept override;
    STDMETHODIMP CorrectPlanar(SPlanarFit* fit) noexcept override;
    STDMETHODIMP RobustCorrectPlanar(double probability) noexcept override;
    STDMETHODIMP get_RobustBiquadraticFit(double probability, SBiquadraticFit* fit) noexcept override;
    STDMETHODIMP get_BiquadraticFit(SBiquadraticFit* fit) noexcept override;
    STDMETHODIMP CorrectBiquadratic(SBiquadraticFit* fit) noexcept override;
    STDMETHODIMP RobustCorrectBiquadratic(double probability) noexcept override;
    STDMETHODIMP get_RobustBicubicFit(double probability, SBicubicFit* fit) noexcept override;
    STDMETHODIMP get_BicubicFit(SBicubicFit* fit) noexcept override;
    STDMETHODIMP CorrectBicubic(SBicubicFit* fit) noexcept override;
    STDMETHODIMP RobustCorrectBicubic(double probability) noexcept override;
    STDMETHODIMP get_RobustHemisphereFit(double probability, SHemisphereFit* fit) noexcept override;
    STDMETHODIMP get_HemisphereFit(SHemisphereFit* fit) noexcept override;
    STDMETHODIMP CorrectHemisphere(SHemisphereFit* fit) noexcept override;
    STDMETHODIMP RobustCorrectHemisphere(double probability) noexcept override;
    STDMETHODIMP get_RobustAngledHemisphereFit(double probability, SAngledHemisphereFit* fit) noexcept override;
    STDMETHODIMP get_AngledHemisphereFit(SAngledHemisphereFit* fit) noexcept override;
    STDMETHODIMP CorrectAngledHemisphere(SAngledHemisphereFit* fit) noexcept override;
    STDMETHODIMP RobustCorrectAngledHemisphere(double probability) noexcept override;

    // IDisplayProcess
    STDMETHODIMP get_BandToDisplay(LONG* band) noexcept override;
    STDMETHODIMP put_BandToDisplay(LONG band) noexcept override;
    STDMETHODIMP get_DisplayDirty(LONG* dirty) noexcept override;
    STDMETHODIMP put_DisplayDirty(LONG dirty) noexcept override;
    STDMETHODIMP get_ColorTable(LONG entry, OLE_COLOR* color) noexcept override;
    STDMETHODIMP put_ColorTable(LONG entry, OLE_COLOR color) noexcept override;
    STDMETHODIMP EqualizeColorTable() noexcept override;
    STDMETHODIMP GetDisplayRange(double* lower, double* upper) noexcept override;
    STDMETHODIMP PutDisplayRange(double lower, double upper) noexcept override;
    STDMETHODIMP SnapDisplayRange(double trimLeft, double trimRight, LONG roundOut) noexcept override;

    // IPictureEx
    STDMETHODIMP get_DestToPixelCoords(TCoordinateMap* map) noexcept override;
    STDMETHODIMP get_PixelToDestCoords(TCoordinateMap* map) noexcept override;
    STDMETHODIMP get_Width(LONG* width) noexcept override;
    STDMETHODIMP get_Height(LONG* height) noexcept override;
    STDMETHODIMP get_DestRect(RECT* rectangle) noexcept override;
    STDMETHODIMP get_Surround(OLE_COLOR* color) noexcept override;
    STDMETHODIMP put_Surround(OLE_COLOR color) noexcept override;
    STDMETHODIMP Render(void* hdcDest, LONG x, LONG y, LONG width, LONG height) noexcept override;
    STDMETHODIMP RenderTopLeft(void* hdcDest, LONG x, LONG y, LONG width, LONG height) noexcept override;
    STDMETHODIMP RenderBlt(void* hdcDest, LONG x, LONG y, LONG width, LONG height, LONG sourceX,
                           LONG sourceY) noexcept override;
    STDMETHODIMP RenderStretch(void* hdcDest, LONG x, LONG y, LONG width, LONG height, LONG sourceX, LONG sourceY,
                               LONG sourceWidth, LONG sourceHeight) noexcept override;
    STDMETHODIMP CreateHBITMAP(void* hdc, void** bitmap) noexcept override;
    STDMETHODIMP CreateDIBSection(void** bits, void** bitmap) noexcept override;
    STDMETHODIMP AttachBuffer(void* buffer, LONG width, LONG height, LONG bitsPerPixel) noexcept override;
    STDMETHODIMP GetPixelInfo(LONG destX, LONG destY, double* x, double* y, double* value,
                              OLE_COLOR* color) noexcept override;

    // IPictureExZoom
    STDMETHODIMP get_ZoomFactor(double* factor) noexcept override;
    STDMETHODIMP put_ZoomFactor(double factor) noexcept override;
    STDMETHODIMP get_ZoomCenterX(double* x) noexcept override;
    STDMETHODIMP put_ZoomCenterX(double x) noexcept override;
    STDMETHODIMP get_ZoomCenterY(double* y) noexcept override;
    STDMETHODIMP put_ZoomCenterY(double y) noexcept override;
    STDMETHODIMP ResetZoom() noexcept override;
    STDMETHODIMP ZoomInFromPoint(LONG x, LONG y) noexcept override;
    STDMETHODIMP ZoomOutFromPoint(LONG x, LONG y) noexcept override;
    STDMETHODIMP ZoomFromRectangle(LONG x, LONG y, LONG width, LONG height) noexcept override;
    STDMETHODIMP ZoomIn() noexcept override;
    STDMETHODIMP ZoomOut() noexcept override;
    STDMETHODIMP PanLeft() noexcept override;
    STDMETHODIMP PanRight() noexcept override;
    STDMETHODIMP ScrollUp() noexcept override;
    STDMETHODIMP ScrollDown() noexcept override;
    STDMETHODIMP PanScrollFromPoints(LONG x1, LONG y1, LONG x2, LONG y2) noexcept override;

    // IPictureMemory
    STDMETHODIMP RenderToMemory(SPictureMemory* memory, LONG x, LONG y, LONG width, LONG height) noexcept override;
    STDMETHODIMP RenderTopLeftToMemory(SPictureMemory* memory, LONG x, LONG y, LONG width,
                                       LONG height) noexcept override;
    STDMETHODIMP RenderBltToMemory(SPictureMemory* memory, LONG x, LONG y, LONG width, LONG height, LONG sourceX,
                                   LONG sourceY) noexcept override;
    STDMETHODIMP RenderStretchToMemory(SPictureMemory* memory, LONG x, LONG y, LONG width, LONG height, LONG sourceX,
                                       LONG sourceY, LONG sourceWidth, LONG sourceHeight) noexcept override;

    // IConnectionPointContainer
    STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints** points) noexcept override;
    STDMETHODIMP FindConnectionPoint(REFIID iid, IConnectionPoint** point) noexcept override;

#ifdef _WIN32
    // IDispatch of IPictureExZoomDisp
    STDMETHODIMP GetTypeInfoCount(UINT* count) noexcept override;
    STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) noexcept override;
    STDMETHODIMP GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) noexcept override;
    STDMETHODIMP Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                        EXCEPINFO* exception, UINT* badArgument) noexcept override;
#endif

    // IPixelAccess
    STDMETHODIMP Accessible() noexcept override;

    // IModuleInformation
    STDMETHODIMP get_Version(BSTR* version) noexcept override;
    STDMETHODIMP get_ModulePath(BSTR* path) noexcept override;
    STDMETHODIMP get_NumberOfKernels(LONG* number) noexcept override;
    STDMETHODIMP GetKernel(LONG index, BSTR* kernel, BSTR* variant) noexcept override;

    // For Object.
    void LetGo() noexcept;

private:
    // The typed image, or NoImage. Shared: a client's region or source may call back and
    // make this object take another typed image while the one it had is at work.
    std::shared_ptr<orlix::DisplayedImage> Typed();

    // The typed image from now on, whose size is the picture's. May be null. The former one goes last: its region may
    // be given back with it, and call.
    void Take(std::shared_ptr<orlix::DisplayedImage> typed);

    // Runs a creation of an image of the type. Where the type changes, the creation is tried on a new typed image. A
    // failure with a text (a refused argument) then leaves that one, empty, in the place of the old image; one without
    // (no memory) leaves the old image.
    void CreateTyped(LONG dataType, const std::function<void(orlix::ImageStore&)>& creation);

    // Puts a copy of a rectangle of the source in the place of the image.
    void Copy(IImageVPA* image, LONG bandIndex, const RECT* rectangle);

    // Puts what a stream holds in the place of the image; a failure leaves everything as it was.
    void LoadFrom(IStream* stream);

    // What all renderings share: surfaces and views differ.
    HRESULT RenderOnDevice(void* hdcDest, const orlix::Rectangle& dest, const orlix::RenderKind& kind);
    HRESULT RenderInMemory(SPictureMemory* memory, const orlix::Rectangle& dest, const orlix::RenderKind& kind);

    std::shared_ptr<orlix::DisplayedImage> typed_;
    orlix::ZoomState zoom_;
    orlix::View view_;  // of the last rendering
    OLE_COLOR surround_ = 0;
    orlix::DeviceRenderer renderer_;
    orlix::ConnectionPoint events_{*this, __uuidof(IPictureExEvents)};
    orlix::GraphicsShare graphics_;
    LONG sampleLimit_ = orlix::SampleLimit::kInitially;  // of what is loaded, see files/sample_limit.hpp
    bool modified_ = false;     // by a creation or a change of what a stream keeps; the typed image knows of pixels
    bool initialised_ = false;  // by Load, ReLoad or InitNew
};
