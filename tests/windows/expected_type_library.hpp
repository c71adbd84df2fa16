// What the type library is to say, interface by interface in the order of the slots; by it the library, the C++ header and
// this list are held against each other.
#pragma once

#include <orlix/orlix.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

namespace orlix::testing {

struct ExpectedMethod {
    const char* name;
    INVOKEKIND kind;
    size_t offset;           // in the table of virtual functions, from the C++ header
    const char* parameters;  // the value that a put takes has no name in a library
};
struct ExpectedInterface {
    const char* name;
    const char* parent;
    const char* iid;
    IID headerIid;
    std::vector<ExpectedMethod> methods;  // its own
};
struct ExpectedField {
    const char* name;
    size_t offset;  // from the C++ header
    const char* type;
};
struct ExpectedRecord {
    const char* name;
    size_t size;
    std::vector<ExpectedField> fields;
};
struct ExpectedEnumeration {
    const char* name;
    std::vector<std::pair<const char*, long>> values;
};
struct ExpectedCoclass {
    const char* name;
    std::vector<const char*> interfaces;  // [default] and [source] before the name
};

// A pointer to a virtual member function holds its offset in the table plus 1.
template <class Method>
size_t OffsetInTable(Method method) {
    size_t first = 0;
    std::memcpy(&first, &method, sizeof first);
    return first - 1;
}

// clang-format off
#define METHOD(name, parameters) {#name, INVOKE_FUNC, OffsetInTable(&Self::name), parameters}
#define GET(name, parameters) {#name, INVOKE_PROPERTYGET, OffsetInTable(&Self::get_##name), parameters}
#define PUT(name, parameters) {#name, INVOKE_PROPERTYPUT, OffsetInTable(&Self::put_##name), parameters}
#define CONTRACT(name, parent, iid, ...)                 \
    {#name, #parent, iid, __uuidof(name), [] {            \
         using Self [[maybe_unused]] = name;              \
         return std::vector<ExpectedMethod>{__VA_ARGS__}; \
     }()}
#define FIELD(name, type) {#name, offsetof(Self, name), type}
#define RECORD(name, ...)                                 \
    {#name, sizeof(name), [] {                            \
         using Self = name;                               \
         return std::vector<ExpectedField>{__VA_ARGS__};  \
     }()}
// clang-format on

inline std::vector<ExpectedInterface> ExpectedInterfaces() {
    return {
        CONTRACT(IImageVPA, IUnknown, "{CD1B0330-B898-406C-879A-F9ACDDBA5F55}",
                 METHOD(Dimensions, "[out] long* Bands, [out] long* Width, [out] long* Height"),
                 METHOD(DataType, "[in] long BandIndex, [out] long* DataType"),
                 METHOD(VPA, "[in] long BandIndex, [out] void** hBase, [out] VPAEntry** hVPA"),
                 METHOD(GetCoords, "[out] TCoordinateMap* CoordinateMap"),
                 METHOD(SetCoords, "[in] TCoordinateMap CoordinateMap")),
        CONTRACT(IImageVPAEx, IImageVPA, "{CA4CF0A4-2A5F-462E-89A4-F86A3F8A35D1}"),
        CONTRACT(
            IImageVPAExPlus, IImageVPAEx, "{F7AA9C93-839B-4C96-9CBD-BD0EFC09C235}",
            GET(Description, "[in, out] BSTR* hVal"), PUT(Description, "[in] BSTR"),
            METHOD(Create, "[in] long Width, [in] long Height, [in] long Bands, [in] long DataType, [in] long Zero"),
            METHOD(CreateFromImage, "[in] IImageVPA* Image, [in] long BandIndex"),
            METHOD(CreateFromSubImage,
                   "[in] IImageVPA* Image, [in] long BandIndex, [in] long Left, [in] long Top, [in] long Right, [in] "
                   "long Bottom"),
            METHOD(CreateFromFile, "[in] BSTR FileName"),
            METHOD(AttachBuffer,
                   "[in] void* pBuffer, [in] long Width, [in] long Height, [in] long Bands, [in] long DataType, [in] "
                   "long Zero")),
        CONTRACT(IImageFile, IUnknown, "{DADE9363-84F7-4ECB-B68F-534B9D51E5DC}",
                 METHOD(SaveToFile, "[in] BSTR FileName, [in] ImageFileFormat Format"),
                 METHOD(GetMicronsPerPixel, "[out] double* X, [out] double* Y"),
                 METHOD(PutMicronsPerPixel, "[in] double X, [in] double Y"),
                 GET(SampleLimit, "[out, retval] long* hVal"), PUT(SampleLimit, "[in] long")),
        CONTRACT(
            IImageEntries, IUnknown, "{EA41B692-EA17-4AAD-AFE0-F80368EC9549}",
            GET(NumberOfTextEntries, "[out, retval] long* hVal"),
            METHOD(GetTextEntry, "[in] long Index, [out] BSTR* Keyword, [out] BSTR* Text"),
            METHOD(PutTextEntry, "[in] BSTR Keyword, [in] BSTR Text"), METHOD(RemoveTextEntry, "[in] long Index"),
            GET(NumberOfBinaryEntries, "[out, retval] long* hVal"),
            METHOD(GetBinaryEntry, "[in] long Index, [out] BSTR* Keyword, [out] long* Size"),
            METHOD(ReadBinaryEntry, "[in] long Index, [in] long Offset, [in] long Size, [out] unsigned char* Bytes"),
            METHOD(PutBinaryEntry, "[in] BSTR Keyword, [in] long Size, [in] unsigned char* Bytes"),
            METHOD(RemoveBinaryEntry, "[in] long Index")),
        CONTRACT(
            IHistogram, IUnknown, "{398FF9D8-EFFF-4D4B-9B58-32A70913438C}",
            METHOD(Create, "[in] long NumberOfBins, [in] double Left, [in] double Right"),
            METHOD(CreateFromHistogram, "[in] IHistogram* Histogram"), METHOD(Zero, ""),
            GET(NumberOfBins, "[out, retval] long* hVal"), GET(Left, "[out, retval] double* hVal"),
            GET(Right, "[out, retval] double* hVal"), GET(Bins, "[out, retval] long** hVal"),
            METHOD(AutoThresholdMinimizeVariance,
                   "[in] double MinimumProbabilityLeft, [in] double MinimumProbabilityRight, [out] double* Threshold"),
            METHOD(AutoThresholdTrim,
                   "[in] double TrimLeft, [out] double* Left, [in] double TrimRight, [out] double* Right"),
            METHOD(AutoThresholdSearchForMinimum,
                   "[in] double TrimLeft, [in] double TrimRight, [out] double* Threshold"),
            METHOD(AutoThresholdGaussianMixture,
                   "[in] double MinimumProbabilityLeft, [in] double MinimumProbabilityRight, [out] double* Threshold"),
            METHOD(AutoThresholdMaximizeEntropy,
                   "[in] double MinimumProbabilityLeft, [in] double MinimumProbabilityRight, [out] double* Threshold"),
            METHOD(AutoThresholdExponential, "[in] double TrimRight, [out] double* Threshold"),
            GET(Entropy, "[out, retval] double* hVal"), GET(Skew, "[out, retval] double* hVal"),
            GET(Kurtosis, "[out, retval] double* hVal"), GET(MaximumCount, "[out, retval] long* hVal"),
            GET(Mean, "[out, retval] double* hVal"), GET(Median, "[out, retval] double* hVal"),
            GET(Mode, "[out, retval] double* hVal"), GET(Variance, "[out, retval] double* hVal"),
            GET(Minimum, "[out, retval] double* hVal"), GET(Maximum, "[out, retval] double* hVal"),
            METHOD(GetTrimmedStatistics, "[in] double Trim, [out] double* Mean, [out] double* StandardDeviation"),
            METHOD(GetMedianStatistics, "[out] double* Median, [out] double* MedianAbsoluteDeviation"),
            METHOD(BinToLocation, "[in] double Bin, [out] double* Location"),
            METHOD(LocationToBin, "[in] double dLocation, [out] double* Bin"),
            METHOD(GetBinToLocationMapping, "[out] double* A, [out] double* B"), METHOD(Smooth3, ""),
            METHOD(Smooth5, ""), METHOD(Smooth7, ""), METHOD(Smooth9, ""), METHOD(Trim, "[in] double Trim"),
            METHOD(Decompose, ""), GET(DetailBins, "[out, retval] long** hVal"),
            GET(SmoothBins, "[out, retval] long** hVal")),
        CONTRACT(IBitmap, IUnknown, "{AE6999A0-D64B-4593-9D8D-FA914CD4FA65}", GET(Width, "[out, retval] long* hVal"),
                 GET(Height, "[out, retval] long* hVal"),
                 METHOD(Create, "[in] long Width, [in] long Height, [in] long bZero"),
                 METHOD(CreateFromBitmap, "[in] IBitmap* Bitmap"), METHOD(Zero, ""), METHOD(One, ""),
                 METHOD(DrawHorizontalLine, "[in] long Row, [in] long Left, [in] long Right, [in] DrawType How"),
                 METHOD(DrawRectangle,
                        "[in] long Left, [in] long Top, [in] long Right, [in] long Bottom, [in] DrawType How"),
                 METHOD(DrawDisk, "[in] double XCenter, [in] double YCenter, [in] double Radius, [in] DrawType How"),
                 METHOD(DrawLine, "[in] double X1, [in] double Y1, [in] double X2, [in] double Y2, [in] DrawType How"),
                 GET(Bitmap, "[out, retval] tagBITMAP* hVal"),
                 METHOD(GetRowPtr, "[in] long Row, [out, retval] unsigned char** hRow"),
                 METHOD(GetPixelPtr, "[in] long X, [in] long Y, [out] unsigned char** hRow, [out] unsigned char* Mask"),
                 GET(Bit, "[in] long X, [in] long Y, [out, retval] long* hVal"),
                 PUT(Bit, "[in] long X, [in] long Y, [in] long")),
        CONTRACT(IBitmapProcess, IBitmap, "{467413E9-0F32-4FE5-A3F4-DA7A3A33CF7A}",
                 METHOD(GetWriteRowPtr, "[in] long Row, [out, retval] unsigned char** hRow"),
                 METHOD(GetWritePixelPtr,
                        "[in] long X, [in] long Y, [out] unsigned char** hRow, [out] unsigned char* Mask")),
        CONTRACT(IRegionOfInterest, IUnknown, "{350245B0-5145-4CF4-998F-DFD8D4A5D8A5}",
                 GET(Width, "[out, retval] long* hVal"), GET(Height, "[out, retval] long* hVal"),
                 GET(BoundingBox, "[out, retval] tagRECT* hVal"),
                 METHOD(GetRowRuns, "[in] long Row, [out] SRun** hBegin, [out] SRun** hEnd")),
        CONTRACT(
            IShapeRegionOfInterest, IRegionOfInterest, "{43459E62-5618-470B-968B-3211A82AFCCE}",
            METHOD(CreateRectangle,
                   "[in] long ImageWidth, [in] long ImageHeight, [in] long lLeft, [in] long lTop, [in] long lRight, "
                   "[in] long lBottom"),
            METHOD(
                CreateOrientedRectangle,
                "[in] long ImageWidth, [in] long ImageHeight, [in] double RectangleWidth, [in] double RectangleHeight, "
                "[in] double RectangleOrientation, [in] double RectangleXCenter, [in] double RectangleYCenter"),
            METHOD(CreateOrientedRectangleFromCenterLine,
                   "[in] long ImageWidth, [in] long ImageHeight, [in] double X1, [in] double Y1, [in] double X2, [in] "
                   "double Y2, [in] double RectangleWidth"),
            METHOD(CreateCircle,
                   "[in] long ImageWidth, [in] long ImageHeight, [in] double XCenter, [in] double YCenter, [in] double "
                   "Radius"),
            GET(Polarity, "[out, retval] PolarityType* hVal"), PUT(Polarity, "[in] PolarityType")),
        CONTRACT(
            IPictureEx, IUnknown, "{FA5A4954-FB40-44C5-9C5B-60410843D9CE}",
            GET(DestToPixelCoords, "[out, retval] TCoordinateMap* hVal"),
            GET(PixelToDestCoords, "[out, retval] TCoordinateMap* hVal"), GET(Width, "[out, retval] long* hVal"),
            GET(Height, "[out, retval] long* hVal"), GET(DestRect, "[out, retval] tagRECT* hVal"),
            GET(Surround, "[out, retval] unsigned long* hVal"), PUT(Surround, "[in] unsigned long"),
            METHOD(Render,
                   "[in] void* hdcDest, [in] long DestX, [in] long DestY, [in] long DestWidth, [in] long DestHeight"),
            METHOD(RenderTopLeft,
                   "[in] void* hdcDest, [in] long DestX, [in] long DestY, [in] long DestWidth, [in] long DestHeight"),
            METHOD(RenderBlt,
                   "[in] void* hdcDest, [in] long DestX, [in] long DestY, [in] long DestWidth, [in] long DestHeight, "
                   "[in] long SourceX, [in] long SourceY"),
            METHOD(RenderStretch,
                   "[in] void* hdcDest, [in] long DestX, [in] long DestY, [in] long DestWidth, [in] long DestHeight, "
                   "[in] long SourceX, [in] long SourceY, [in] long SourceWidth, [in] long SourceHeight"),
            METHOD(CreateHBITMAP, "[in] void* hdc, [out, retval] void** hVal"),
            METHOD(CreateDIBSection, "[out] void** Bits, [out, retval] void** hVal"),
            METHOD(AttachBuffer, "[in] void* pBuffer, [in] long Width, [in] long Height, [in] long BitsPerPixel"),
            METHOD(GetPixelInfo,
                   "[in] long DestX, [in] long DestY, [out] double* X, [out] double* Y, [out] double* Value, [out] "
                   "unsigned long* Color")),
        CONTRACT(
            IPictureMemory, IUnknown, "{BED32293-5360-4620-9C09-EFC3D5923CC4}",
            METHOD(RenderToMemory,
                   "[in] SPictureMemory* Memory, [in] long DestX, [in] long DestY, [in] long DestWidth, [in] long "
                   "DestHeight"),
            METHOD(RenderTopLeftToMemory,
                   "[in] SPictureMemory* Memory, [in] long DestX, [in] long DestY, [in] long DestWidth, [in] long "
                   "DestHeight"),
            METHOD(RenderBltToMemory,
                   "[in] SPictureMemory* Memory, [in] long DestX, [in] long DestY, [in] long DestWidth, [in] long "
                   "DestHeight, [in] long SourceX, [in] long SourceY"),
            METHOD(RenderStretchToMemory,
                   "[in] SPictureMemory* Memory, [in] long DestX, [in] long DestY, [in] long DestWidth, [in] long "
                   "DestHeight, [in] long SourceX, [in] long SourceY, [in] long SourceWidth, [in] long SourceHeight")),
        CONTRACT(
            IPictureExZoom, IPictureEx, "{814CD6D8-6D66-4E3E-8455-A534A65F1B2E}",
            GET(ZoomFactor, "[out, retval] double* hVal"), PUT(ZoomFactor, "[in] double"),
            GET(ZoomCenterX, "[out, retval] double* hVal"), PUT(ZoomCenterX, "[in] double"),
            GET(ZoomCenterY, "[out, retval] double* hVal"), PUT(ZoomCenterY, "[in] double"), METHOD(ResetZoom, ""),
            METHOD(ZoomInFromPoint, "[in] long DestX, [in] long DestY"),
            METHOD(ZoomOutFromPoint, "[in] long DestX, [in] long DestY"),
            METHOD(ZoomFromRectangle, "[in] long DestX, [in] long DestY, [in] long DestWidth, [in] long DestHeight"),
            METHOD(ZoomIn, ""), METHOD(ZoomOut, ""), METHOD(PanLeft, ""), METHOD(PanRight, ""), METHOD(ScrollUp, ""),
            METHOD(ScrollDown, ""),
            METHOD(PanScrollFromPoints,
                   "[in] long FirstDestX, [in] long FirstDestY, [in] long SecondDestX, [in] long SecondDestY")),
        CONTRACT(IPictureExEvents, IUnknown, "{13264FD2-890C-4D65-A9C1-E6A23AFE1887}",
                 METHOD(OnRender, "[in] IPictureEx* Picture, [in] void* hdcDest, [in] RenderSourceType SourceType")),
        CONTRACT(IGraphicOverlay, IUnknown, "{44F6C88F-D9B8-4F31-BD5B-0856E14C42CE}",
                 METHOD(Render, "[in] IPictureEx* Picture, [in] void* hdcDest"),
                 GET(Color, "[out, retval] unsigned long* hVal"), PUT(Color, "[in] unsigned long"),
                 GET(Description, "[out, retval] BSTR* hVal"), PUT(Description, "[in] BSTR")),
        CONTRACT(
            IImageProcessBase, IUnknown, "{B1F2D7FC-2986-467E-9A0E-82189C1AC2BA}",
            GET(BandToProcess, "[out, retval] long* hVal"), PUT(BandToProcess, "[in] long"),
            GET(RegionOfInterest, "[out, retval] IRegionOfInterest** hVal"),
            PUT(RegionOfInterest, "[in] IRegionOfInterest*"),
            METHOD(GetLuminanceRange, "[out] double* Lower, [out] double* Upper"),
            GET(NumberOfBins, "[out, retval] long* hVal"),
            METHOD(Threshold, "[in] double Lower, [in] double Upper, [in] long bInside, [out, retval] IBitmap** hVal"),
            GET(Histogram, "[out, retval] IHistogram** hVal"),
            GET(GrayMeasurements, "[in] GrayExtractMeasurementType Desired, [in, out] SGrayMeasurements* Measure")),
        CONTRACT(
            IImageProcess, IImageProcessBase, "{8421327C-DC10-459F-B986-F9F9F9AF5FA1}", PUT(NumberOfBins, "[in] long"),
            METHOD(PutLuminanceRange, "[in] double Lower, [in] double Upper"),
            METHOD(SnapLuminanceRange, "[in] double TrimLower, [in] double TrimUpper, [in] long RoundOut"),
            GET(LocalMaxima, "[out, retval] IBitmap** hVal"), GET(LocalMinima, "[out, retval] IBitmap** hVal"),
            GET(Table, "[in] long Entry, [out, retval] double* hVal"), PUT(Table, "[in] long Entry, [in] double"),
            METHOD(EqualizeTable, "[in] EqualizationType Type"), METHOD(LUT, ""), METHOD(Invert, ""),
            METHOD(LocalBackgroundCorrect, ""), METHOD(ScalarEquals, "[in] double Value"),
            METHOD(ScalarDivideEquals, "[in] double Value"), METHOD(ScalarPlusEquals, "[in] double Value"),
            METHOD(CastEquals, "[in] IImageVPA* Source, [in] long SourceBandToProcess"),
            METHOD(PlusEquals, "[in] IImageVPA* Source, [in] long SourceBandToProcess"),
            METHOD(Sobel, "[in] IImageVPA* Source, [in] long SourceBandToProcess"),
            METHOD(Laplacian, "[in] IImageVPA* Source, [in] long SourceBandToProcess"),
            METHOD(SharpenLow, "[in] IImageVPA* Source, [in] long SourceBandToProcess"),
            METHOD(SharpenMedium, "[in] IImageVPA* Source, [in] long SourceBandToProcess"),
            METHOD(Gaussian3x3, "[in] IImageVPA* Source, [in] long SourceBandToProcess"),
            METHOD(Gaussian5x5, "[in] IImageVPA* Source, [in] long SourceBandToProcess"),
            METHOD(ExtremumSharpening, "[in] long HalfSize, [in] IImageVPA* Source, [in] long SourceBandToProcess"),
            METHOD(Median3x3, "[in] IImageVPA* Source, [in] long SourceBandToProcess")),
        CONTRACT(
            IOrlixImageProcess, IImageProcess, "{D1BABAE8-ED51-4F06-AB58-27DB44EC519A}",
            GET(RobustPlanarFit, "[in] double GoodPixelProbability, [in, out] SPlanarFit* Fit"),
            GET(PlanarFit, "[in, out] SPlanarFit* Fit"), METHOD(CorrectPlanar, "[in] SPlanarFit* Fit"),
            METHOD(RobustCorrectPlanar, "[in] double GoodPixelProbability"),
            GET(RobustBiquadraticFit, "[in] double GoodPixelProbability, [in, out] SBiquadraticFit* Fit"),
            GET(BiquadraticFit, "[in, out] SBiquadraticFit* Fit"),
            METHOD(CorrectBiquadratic, "[in] SBiquadraticFit* Fit"),
            METHOD(RobustCorrectBiquadratic, "[in] double GoodPixelProbability"),
            GET(RobustBicubicFit, "[in] double GoodPixelProbability, [in, out] SBicubicFit* Fit"),
            GET(BicubicFit, "[in, out] SBicubicFit* Fit"), METHOD(CorrectBicubic, "[in] SBicubicFit* Fit"),
            METHOD(RobustCorrectBicubic, "[in] double GoodPixelProbability"),
            GET(RobustHemisphereFit, "[in] double GoodPixelProbability, [in, out] SHemisphereFit* Fit"),
            GET(HemisphereFit, "[in, out] SHemisphereFit* Fit"), METHOD(CorrectHemisphere, "[in] SHemisphereFit* Fit"),
            METHOD(RobustCorrectHemisphere, "[in] double GoodPixelProbability"),
            GET(RobustAngledHemisphereFit, "[in] double GoodPixelProbability, [in, out] SAngledHemisphereFit* Fit"),
            GET(AngledHemisphereFit, "[in, out] SAngledHemisphereFit* Fit"),
            METHOD(CorrectAngledHemisphere, "[in] SAngledHemisphereFit* Fit"),
            METHOD(RobustCorrectAngledHemisphere, "[in] double GoodPixelProbability")),
        CONTRACT(IDisplayProcess, IUnknown, "{5E395B79-DCDA-41BE-A3AE-26E7FC0C609B}",
                 GET(BandToDisplay, "[out, retval] long* hVal"), PUT(BandToDisplay, "[in] long"),
                 GET(DisplayDirty, "[out, retval] long* hVal"), PUT(DisplayDirty, "[in] long"),
                 GET(ColorTable, "[in] long Entry, [out, retval] unsigned long* hVal"),
                 PUT(ColorTable, "[in] long Entry, [in] unsigned long"), METHOD(EqualizeColorTable, ""),
                 METHOD(GetDisplayRange, "[out] double* Lower, [out] double* Upper"),
                 METHOD(PutDisplayRange, "[in] double Lower, [in] double Upper"),
                 METHOD(SnapDisplayRange, "[in] double TrimLeft, [in] double TrimRight, [in] long bRoundOut")),
        CONTRACT(IModuleInformation, IUnknown, "{421066D7-A5E1-4D31-9B61-7C241F7691E7}",
                 GET(Version, "[out, retval] BSTR* hVal"), GET(ModulePath, "[out, retval] BSTR* hVal"),
                 GET(NumberOfKernels, "[out, retval] long* hVal"),
                 METHOD(GetKernel, "[in] long Index, [out] BSTR* Kernel, [out] BSTR* Variant")),
        CONTRACT(
            IPolygon, IUnknown, "{01B9F7CB-AABE-453B-AAE9-6FB7516C999D}",
            METHOD(Create, "[in] long lNumberOfVertices, [in] SVertice* Vertices"),
            METHOD(Smooth, "[in] double Tolerance, [out, retval] IPolygon** hVal"),
            GET(NumberOfVertices, "[out, retval] long* hVal"), GET(Vertices, "[out, retval] SVertice** hVal"),
            GET(Area, "[out, retval] double* hVal"), GET(Perimeter, "[out, retval] double* hVal"),
            GET(PerimeterEquivalentRadius, "[out, retval] double* hVal"), GET(Diameter, "[out, retval] double* hVal"),
            GET(Circularity, "[out, retval] double* hVal"),
            GET(DistanceFromPoint, "[in] double XReference, [in] double YReference, [out, retval] double* hVal"),
            GET(SubtendedAngle, "[in] double XReference, [in] double YReference, [out, retval] double* hVal"),
            METHOD(GetCentroid, "[out] double* XCentroid, [out] double* YCentroid"),
            METHOD(GetDiameter,
                   "[out] double* X1, [out] double* Y1, [out] double* X2, [out] double* Y2, [out] double* Diameter"),
            METHOD(GetDistancesFromPoint,
                   "[in] double XReference, [in] double YReference, [out] double* XNearest, [out] double* YNearest, "
                   "[out] double* NearestDistance, [out] double* XFarthest, [out] double* YFarthest, [out] double* "
                   "FarthestDistance"),
            METHOD(RobustCircleFit,
                   "[in] double GoodVerticeProbability, [out] double* XCenter, [out] double* YCenter, [out] double* "
                   "Radius"),
            METHOD(ConvexHull, "[out, retval] IPolygon** hVal"),
            METHOD(GetBounds, "[out] double* Left, [out] double* Top, [out] double* Right, [out] double* Bottom")),
        CONTRACT(IStructuringElement, IUnknown, "{AF4CB52C-E250-4E41-9531-1624E7E2CBA1}",
                 METHOD(AddElement, "[in] long X, [in] long Y"), GET(NumberOfElements, "[out, retval] long* hVal"),
                 METHOD(ResetElements, ""), GET(Elements, "[out, retval] SElement** hVal"), METHOD(Reflect, ""),
                 METHOD(Translate, "[in] long X, [in] long Y"),
                 METHOD(GetExtent, "[out] long* Left, [out] long* Top, [out] long* Right, [out] long* Bottom"),
                 METHOD(CreateDisk, "[in] double Radius"),
                 GET(BinaryElements, "[in] long lBit, [out] SElement** hBegin, [out] SElement** hEnd")),
        CONTRACT(ILineGraphicOverlay, IGraphicOverlay, "{AC6239FD-350E-4FF0-845E-2C639E5B62AE}"),
        CONTRACT(ICircleGraphicOverlay, IGraphicOverlay, "{2DCD674C-8F2A-4E33-9EB4-93C94F9D0078}"),
        CONTRACT(ITextGraphicOverlay, IGraphicOverlay, "{1308AE7D-BD0A-46C5-B65E-C5CF62251797}"),
        CONTRACT(IDIBImage, IUnknown, "{5DB69631-7B1A-481A-AAEF-380113828DD8}"),
        CONTRACT(ISplineImage, IUnknown, "{1CC42ABB-1F60-40B9-A4DE-1DA89D85341F}"),
        CONTRACT(IVBHelper, IUnknown, "{AB13B9E0-D78D-40AD-9A27-CC82A8A736F6}"),
        CONTRACT(IHistogramDialog, IUnknown, "{3F465CC3-A580-4097-A039-A37E4CCA840E}"),
        CONTRACT(IHistogramDialogEvents, IUnknown, "{F6694E07-B1AE-407B-B44E-4EC08E6D66A7}"),
    };
}

inline std::vector<ExpectedEnumeration> ExpectedEnumerations() {
    return {
        {"DataType",
         {{"DT_BYTE", 8},
          {"DT_UnsignedChar", 8},
          {"DT_WORD", 16},
          {"DT_UnsignedShort", 16},
          {"DT_DWORD", 32},
          {"DT_UnsignedLong", 32},
          {"DT_Char", 0x208},
          {"DT_Short", 0x210},
          {"DT_Long", 0x220},
          {"DT_Float", 0x420},
          {"DT_Double", 0x440}}},
        {"BandIndexType", {{"BI_AllBands", -1}}},
        {"DrawType", {{"DT_On", 0}, {"DT_Off", 1}, {"DT_Xor", 2}}},
        {"PolarityType", {{"PT_Inside", 0}, {"PT_Outside", 1}, {"PT_Frame", 2}}},
        {"RenderSourceType",
         {{"RST_Display", 3}, {"RST_Metafile", 4}, {"RST_Memory", 10}, {"RST_EnhancedMetafile", 12}}},
        {"RasterScaling", {{"RS_Smooth", 0}, {"RS_Nearest", 1}}},
        {"GrayExtractMeasurementType", {{"GEMT_GrayLocation", 1}, {"GEMT_GrayStatistics", 2}}},
        {"EqualizationType", {{"ET_Uniform", 1}, {"ET_UpperTriangular", 2}}},
        {"ImageFileFormat",
         {{"IFF_ByExtension", 0},
          {"IFF_PNG", 1},
          {"IFF_PGM", 2},
          {"IFF_PlainPGM", 3},
          {"IFF_PPM", 4},
          {"IFF_PlainPPM", 5},
          {"IFF_BMP", 6}}},
    };
}

inline std::vector<ExpectedRecord> ExpectedRecords() {
    return {
        RECORD(VPAEntry, FIELD(XEntry, "long"), FIELD(YEntry, "long")),
        RECORD(TMatrix, FIELD(A11, "double"), FIELD(A12, "double"), FIELD(A21, "double"), FIELD(A22, "double")),
        RECORD(TCoordinateMap, FIELD(OrgX, "double"), FIELD(OrgY, "double"), FIELD(Matrix, "TMatrix")),
        RECORD(SRun, FIELD(m_lStart, "long"), FIELD(m_lStop, "long"), FIELD(m_lLabel, "long"),
               FIELD(m_pRightBridge, "SRun*"), FIELD(m_pLeftOverpass, "SRun*"), FIELD(m_pLeftParent, "SRun*"),
               FIELD(m_pRightChild, "SRun*")),
        RECORD(SVertice, FIELD(m_dX, "double"), FIELD(m_dY, "double")),
        RECORD(SElement, FIELD(m_lX, "long"), FIELD(m_lY, "long"), FIELD(m_lOffset, "long"),
               FIELD(m_yValue, "unsigned char")),
        RECORD(SPictureMemory, FIELD(m_pPixels, "unsigned int*"), FIELD(m_lWidth, "long"), FIELD(m_lHeight, "long"),
               FIELD(m_lStride, "long"), FIELD(m_lScaling, "long")),
        RECORD(SGrayMeasurements, FIELD(m_lSize, "long"), FIELD(m_lPixelCount, "long"),
               FIELD(m_dGrayXCentroid, "double"), FIELD(m_dGrayYCentroid, "double"), FIELD(m_dGrayAverage, "double"),
               FIELD(m_dGrayStandardDeviation, "double")),
        RECORD(SPlanarFit, FIELD(m_lSize, "long"), FIELD(m_dAverage, "double"), FIELD(m_dAlpha, "double"),
               FIELD(m_dBeta, "double"), FIELD(m_dGamma, "double")),
        RECORD(SBiquadraticFit, FIELD(m_lSize, "long"), FIELD(m_dAverage, "double"), FIELD(m_dK0, "double"),
               FIELD(m_dK1, "double"), FIELD(m_dK2, "double"), FIELD(m_dK3, "double"), FIELD(m_dK4, "double"),
               FIELD(m_dK5, "double")),
        RECORD(SBicubicFit, FIELD(m_lSize, "long"), FIELD(m_dAverage, "double"), FIELD(m_dK0, "double"),
               FIELD(m_dK1, "double"), FIELD(m_dK2, "double"), FIELD(m_dK3, "double"), FIELD(m_dK4, "double"),
               FIELD(m_dK5, "double"), FIELD(m_dK6, "double"), FIELD(m_dK7, "double"), FIELD(m_dK8, "double"),
               FIELD(m_dK9, "double")),
        RECORD(SHemisphereFit, FIELD(m_lSize, "long"), FIELD(m_dAverage, "double"), FIELD(m_dXCenter, "double"),
               FIELD(m_dYCenter, "double"), FIELD(m_dZCenter, "double"), FIELD(m_dZScale, "double"),
               FIELD(m_dRadius, "double")),
        RECORD(SAngledHemisphereFit, FIELD(m_lSize, "long"), FIELD(m_dAverage, "double"), FIELD(m_dXCenter, "double"),
               FIELD(m_dYCenter, "double"), FIELD(m_dZCenter, "double"), FIELD(m_dZScale, "double"),
               FIELD(m_dRadius, "double"), FIELD(m_dAlpha, "double"), FIELD(m_dBeta, "double")),
        // The system's record. A library spells a name everywhere as it did first, so these follow the histogram's Left.
        {"tagRECT",
         sizeof(RECT),
         {{"Left", offsetof(RECT, left), "long"},
          {"Top", offsetof(RECT, top), "long"},
          {"Right", offsetof(RECT, right), "long"},
          {"Bottom", offsetof(RECT, bottom), "long"}}},
        RECORD(tagBITMAP, FIELD(bmType, "long"), FIELD(bmWidth, "long"), FIELD(bmHeight, "long"),
               FIELD(bmWidthBytes, "long"), FIELD(bmPlanes, "unsigned short"), FIELD(bmBitsPixel, "unsigned short"),
               FIELD(bmBits, "void*")),
    };
}

inline std::vector<ExpectedCoclass> ExpectedCoclasses() {
    return {
        {"OrlixPolygon", {"[default] IPolygon"}},
        {"OrlixHistogram", {"[default] IHistogram"}},
        {"OrlixBitmap", {"[default] IBitmap", "IBitmapProcess"}},
        {"OrlixImage",
         {"[default] IImageVPAEx", "IImageVPAExPlus", "IImageFile", "IImageEntries", "IImageProcess",
          "IOrlixImageProcess", "IDisplayProcess", "IPictureExZoom", "IPictureMemory", "IPictureExZoomDisp",
          "IModuleInformation", "[default] [source] IPictureExEvents"}},
        {"OrlixStructuringElement", {"[default] IStructuringElement"}},
        {"OrlixLineGraphicOverlay", {"[default] ILineGraphicOverlay"}},
        {"OrlixCircleGraphicOverlay", {"[default] ICircleGraphicOverlay"}},
        {"OrlixBuffer", {"[default] IDIBImage", "[default] [source] IPictureExEvents"}},
        {"OrlixSplineImage", {"[default] ISplineImage"}},
        {"OrlixShapeRegionOfInterest", {"[default] IShapeRegionOfInterest", "IGraphicOverlay"}},
        {"OrlixVBHelper", {"[default] IVBHelper"}},
        {"OrlixImageView", {"[default] IImageViewDisp", "[default] [source] IImageViewEventsDisp"}},
        {"OrlixTextGraphicOverlay", {"[default] ITextGraphicOverlay"}},
        {"OrlixHistogramDialog", {"[default] IHistogramDialog", "[default] [source] IHistogramDialogEvents"}},
    };
}

struct ExpectedDispatchInterface {
    const char* name;
    const char* iid;
    std::vector<const char*> members;  // "ID: KIND NAME RESULT(PARAMETERS)", the value that a put takes without a name
};
inline std::vector<ExpectedDispatchInterface> ExpectedDispatchInterfaces() {
    return {
        {"IPictureExZoomDisp",
         "{9BFF7F4E-10DC-47A1-989C-B53CBA2FBA6B}",
         {"1: get Width long()", "2: get Height long()", "3: get ZoomFactor double()", "3: put ZoomFactor void(double)",
          "4: get ZoomCenterX double()", "4: put ZoomCenterX void(double)", "5: get ZoomCenterY double()",
          "5: put ZoomCenterY void(double)"}},
        {"IImageViewDisp", "{E40F3B84-EC19-4AB2-8849-DB88568EFB83}", {}},
        {"IImageViewEventsDisp", "{F25ED9D9-BB5D-416D-AFDC-5E1BAA4B2F08}", {}},
    };
}

#undef METHOD
#undef GET
#undef PUT
#undef CONTRACT
#undef FIELD
#undef RECORD

}  // namespace orlix::testing
