// Rules that hold for many methods: what they say of an image that has no pixels (filters say it too: filter_test.cpp),
// and that they refuse null pointers.
#include "contract/support.hpp"

namespace orlix::testing {
namespace {

// Where pointers among the arguments lead.
struct Place {
    alignas(16) std::array<unsigned char, 512> bytes = {};
    Text text{"text"};
    TypedImage<uint8_t> image = NewImage<uint8_t>(1, 1);
};

// A method that can be called with any arguments: all numbers are the given one, and one pointer may be null.
struct Method {
    const char* name;
    std::vector<size_t> pointers;  // positions of those that may not be null
    std::function<HRESULT(const ComPtr<IUnknown>&, double number, Place&, size_t nullAt)> call;
};

template <class Parameter>
constexpr bool kIsText = std::is_same_v<Parameter, BSTR>;
template <class Parameter>
constexpr bool kIsSource = std::is_same_v<Parameter, IImageVPA*>;

template <class Parameter>
Parameter AnyArgument(double number, Place& place, bool null) {
    if constexpr (std::is_pointer_v<Parameter>) {
        if constexpr (kIsText<Parameter>)
            return place.text;
        else if constexpr (kIsSource<Parameter>)
            return null ? nullptr : place.image.get();
        else
            return null ? nullptr : reinterpret_cast<Parameter>(place.bytes.data());
    } else if constexpr (std::is_arithmetic_v<Parameter> || std::is_enum_v<Parameter>) {
        return static_cast<Parameter>(number);
    } else {
        return {};
    }
}

template <class I, class... Parameters>
Method MethodOf(const char* name, HRESULT (STDMETHODCALLTYPE I::*method)(Parameters...)) {
    return [&]<size_t... i>(std::index_sequence<i...>) {
        Method result{
            name, {}, [method](const auto& object, [[maybe_unused]] double number, Place& place, size_t nullAt) {
                return (Cast<I>(object).get()->*method)(AnyArgument<Parameters>(number, place, i == nullAt)...);
            }};
        ((std::is_pointer_v<Parameters> && !kIsText<Parameters> ? result.pointers.push_back(i) : void()), ...);
        return result;
    }
    (std::index_sequence_for<Parameters...>());
}

template <class... Each>
std::vector<Method> List(const Each&... each) {
    return {each...};
}

#define ORLIX_METHOD(name) MethodOf(#name, &name)

void ExpectNoImage(const Image& image, const std::vector<Method>& methods) {
    for (const Method& method : methods) {
        Place place;
        EXPECT_TRUE(
            Fails(method.call(Cast<IUnknown>(image), 0.5, place, SIZE_MAX), std::string(method.name) + ": no image."));
    }
}

TEST(NoImage, IsNamedByEachMethodThatNeedsOne) {
    // Methods of a typed image, which may have no pixels.
    const auto typed =
        List(ORLIX_METHOD(IImageFile::GetMicronsPerPixel), ORLIX_METHOD(IImageFile::PutMicronsPerPixel),
             ORLIX_METHOD(IImageEntries::get_NumberOfTextEntries), ORLIX_METHOD(IImageEntries::GetTextEntry),
             ORLIX_METHOD(IImageEntries::PutTextEntry), ORLIX_METHOD(IImageEntries::RemoveTextEntry),
             ORLIX_METHOD(IImageEntries::get_NumberOfBinaryEntries), ORLIX_METHOD(IImageEntries::GetBinaryEntry),
             ORLIX_METHOD(IImageEntries::ReadBinaryEntry), ORLIX_METHOD(IImageEntries::PutBinaryEntry),
             ORLIX_METHOD(IImageEntries::RemoveBinaryEntry), ORLIX_METHOD(IImageProcessBase::get_BandToProcess),
             ORLIX_METHOD(IImageProcessBase::put_BandToProcess), ORLIX_METHOD(IImageProcessBase::get_RegionOfInterest),
             ORLIX_METHOD(IImageProcessBase::put_RegionOfInterest), ORLIX_METHOD(IImageProcessBase::GetLuminanceRange),
             ORLIX_METHOD(IImageProcessBase::get_NumberOfBins), ORLIX_METHOD(IImageProcess::put_NumberOfBins),
             ORLIX_METHOD(IImageProcess::PutLuminanceRange), ORLIX_METHOD(IImageProcess::get_Table),
             ORLIX_METHOD(IImageProcess::put_Table));
    const auto pixels = List(
        ORLIX_METHOD(IImageProcessBase::Threshold), ORLIX_METHOD(IImageProcessBase::get_Histogram),
        ORLIX_METHOD(IImageProcessBase::get_GrayMeasurements), ORLIX_METHOD(IImageProcess::SnapLuminanceRange),
        ORLIX_METHOD(IImageProcess::EqualizeTable), ORLIX_METHOD(IImageProcess::LUT),
        ORLIX_METHOD(IImageProcess::Invert), ORLIX_METHOD(IImageProcess::ScalarEquals),
        ORLIX_METHOD(IImageProcess::ScalarDivideEquals), ORLIX_METHOD(IImageProcess::ScalarPlusEquals),
        ORLIX_METHOD(IImageProcess::CastEquals), ORLIX_METHOD(IImageProcess::PlusEquals),
        ORLIX_METHOD(IOrlixImageProcess::get_PlanarFit), ORLIX_METHOD(IOrlixImageProcess::CorrectPlanar),
        ORLIX_METHOD(IOrlixImageProcess::get_RobustPlanarFit), ORLIX_METHOD(IOrlixImageProcess::RobustCorrectPlanar),
        ORLIX_METHOD(IOrlixImageProcess::get_BiquadraticFit), ORLIX_METHOD(IOrlixImageProcess::CorrectBiquadratic),
        ORLIX_METHOD(IOrlixImageProcess::get_RobustBiquadraticFit),
        ORLIX_METHOD(IOrlixImageProcess::RobustCorrectBiquadratic), ORLIX_METHOD(IOrlixImageProcess::get_BicubicFit),
        ORLIX_METHOD(IOrlixImageProcess::CorrectBicubic), ORLIX_METHOD(IOrlixImageProcess::get_RobustBicubicFit),
        ORLIX_METHOD(IOrlixImageProcess::RobustCorrectBicubic), ORLIX_METHOD(IOrlixImageProcess::get_HemisphereFit),
        ORLIX_METHOD(IOrlixImageProcess::CorrectHemisphere), ORLIX_METHOD(IOrlixImageProcess::get_RobustHemisphereFit),
        ORLIX_METHOD(IOrlixImageProcess::RobustCorrectHemisphere),
        ORLIX_METHOD(IOrlixImageProcess::get_AngledHemisphereFit),
        ORLIX_METHOD(IOrlixImageProcess::CorrectAngledHemisphere),
        ORLIX_METHOD(IOrlixImageProcess::get_RobustAngledHemisphereFit),
        ORLIX_METHOD(IOrlixImageProcess::RobustCorrectAngledHemisphere));
    const Image image;
    ExpectNoImage(image, typed);
    ExpectNoImage(image, pixels);
    EXPECT_TRUE(FailsSilently(image->Create(2, 2, 1, DT_Double, 0))) << "empties the image";
    ExpectNoImage(image, typed);
    ExpectNoImage(image, pixels);

    EXPECT_EQ(DISP_E_EXCEPTION, image->Create(0, 2, 1, DT_WORD, 0)) << "a typed image without pixels";
    ExpectNoImage(image, pixels);
    EXPECT_EQ(E_FAIL, image->AttachBuffer(reinterpret_cast<void*>(8), 2, 2, 1, DT_WORD, 0));
    ExpectNoImage(image, pixels);
}

// Before any other test, and nothing is written.
TEST(NullPointers, AreRefusedOneByOne) {
    const struct {
        ComPtr<IUnknown> object;
        std::vector<Method> methods;
    } cases[] = {
        {Cast<IUnknown>(NewImage<uint8_t>(2, 2)),
         List(ORLIX_METHOD(IImageVPA::Dimensions), ORLIX_METHOD(IImageVPA::DataType), ORLIX_METHOD(IImageVPA::VPA),
              ORLIX_METHOD(IImageVPA::GetCoords), ORLIX_METHOD(IImageVPAExPlus::get_Description),
              ORLIX_METHOD(IImageVPAExPlus::CreateFromImage), ORLIX_METHOD(IImageVPAExPlus::CreateFromSubImage),
              ORLIX_METHOD(IImageFile::GetMicronsPerPixel), ORLIX_METHOD(IImageFile::get_SampleLimit),
              ORLIX_METHOD(IImageEntries::get_NumberOfTextEntries), ORLIX_METHOD(IImageEntries::GetTextEntry),
              ORLIX_METHOD(IImageEntries::get_NumberOfBinaryEntries), ORLIX_METHOD(IImageEntries::GetBinaryEntry),
              ORLIX_METHOD(IImageEntries::ReadBinaryEntry), ORLIX_METHOD(IImageEntries::PutBinaryEntry),
              ORLIX_METHOD(IPersistStreamInitEx::GetClassID), ORLIX_METHOD(IPersistStreamInitEx::Load),
              ORLIX_METHOD(IPersistStreamInitEx::Save), ORLIX_METHOD(IPersistStreamInitEx::GetSizeMax),
              ORLIX_METHOD(IPersistStreamInitEx::ReLoad), ORLIX_METHOD(IImageProcess::get_BandToProcess),
              ORLIX_METHOD(IImageProcess::get_RegionOfInterest), ORLIX_METHOD(IImageProcess::GetLuminanceRange),
              ORLIX_METHOD(IImageProcess::get_NumberOfBins), ORLIX_METHOD(IImageProcess::Threshold),
              ORLIX_METHOD(IImageProcess::get_Histogram), ORLIX_METHOD(IImageProcess::get_GrayMeasurements),
              ORLIX_METHOD(IImageProcess::get_Table), ORLIX_METHOD(IImageProcess::CastEquals),
              ORLIX_METHOD(IImageProcess::PlusEquals), ORLIX_METHOD(IOrlixImageProcess::get_PlanarFit),
              ORLIX_METHOD(IOrlixImageProcess::CorrectPlanar), ORLIX_METHOD(IOrlixImageProcess::get_BiquadraticFit),
              ORLIX_METHOD(IOrlixImageProcess::CorrectBiquadratic), ORLIX_METHOD(IOrlixImageProcess::get_BicubicFit),
              ORLIX_METHOD(IOrlixImageProcess::CorrectBicubic), ORLIX_METHOD(IOrlixImageProcess::get_HemisphereFit),
              ORLIX_METHOD(IOrlixImageProcess::CorrectHemisphere),
              ORLIX_METHOD(IOrlixImageProcess::get_AngledHemisphereFit),
              ORLIX_METHOD(IOrlixImageProcess::CorrectAngledHemisphere),
              ORLIX_METHOD(IOrlixImageProcess::get_RobustPlanarFit),
              ORLIX_METHOD(IOrlixImageProcess::get_RobustBiquadraticFit),
              ORLIX_METHOD(IOrlixImageProcess::get_RobustBicubicFit),
              ORLIX_METHOD(IOrlixImageProcess::get_RobustHemisphereFit),
              ORLIX_METHOD(IOrlixImageProcess::get_RobustAngledHemisphereFit),
              ORLIX_METHOD(IDisplayProcess::get_BandToDisplay), ORLIX_METHOD(IDisplayProcess::get_DisplayDirty),
              ORLIX_METHOD(IDisplayProcess::get_ColorTable), ORLIX_METHOD(IDisplayProcess::GetDisplayRange),
              ORLIX_METHOD(IPictureExZoom::GetPixelInfo), ORLIX_METHOD(IPictureMemory::RenderToMemory))},
        {Cast<IUnknown>(HistogramOf({1, 2, 3}, 0, 2)),
         List(ORLIX_METHOD(IHistogram::CreateFromHistogram), ORLIX_METHOD(IHistogram::get_NumberOfBins),
              ORLIX_METHOD(IHistogram::get_Left), ORLIX_METHOD(IHistogram::get_Right),
              ORLIX_METHOD(IHistogram::get_Bins), ORLIX_METHOD(IHistogram::AutoThresholdMinimizeVariance),
              ORLIX_METHOD(IHistogram::AutoThresholdTrim), ORLIX_METHOD(IHistogram::AutoThresholdSearchForMinimum),
              ORLIX_METHOD(IHistogram::AutoThresholdGaussianMixture),
              ORLIX_METHOD(IHistogram::AutoThresholdExponential),
              ORLIX_METHOD(IHistogram::AutoThresholdMaximizeEntropy), ORLIX_METHOD(IHistogram::get_Entropy),
              ORLIX_METHOD(IHistogram::get_Skew), ORLIX_METHOD(IHistogram::get_Kurtosis),
              ORLIX_METHOD(IHistogram::get_MaximumCount), ORLIX_METHOD(IHistogram::get_Mean),
              ORLIX_METHOD(IHistogram::get_Median), ORLIX_METHOD(IHistogram::get_Mode),
              ORLIX_METHOD(IHistogram::get_Variance), ORLIX_METHOD(IHistogram::get_Minimum),
              ORLIX_METHOD(IHistogram::get_Maximum), ORLIX_METHOD(IHistogram::GetTrimmedStatistics),
              ORLIX_METHOD(IHistogram::GetMedianStatistics), ORLIX_METHOD(IHistogram::BinToLocation),
              ORLIX_METHOD(IHistogram::LocationToBin), ORLIX_METHOD(IHistogram::GetBinToLocationMapping),
              ORLIX_METHOD(IHistogram::get_DetailBins), ORLIX_METHOD(IHistogram::get_SmoothBins))},
        {Cast<IUnknown>(NewBitmap(9, 4)),
         List(ORLIX_METHOD(IBitmap::get_Width), ORLIX_METHOD(IBitmap::get_Height),
              ORLIX_METHOD(IBitmap::CreateFromBitmap), ORLIX_METHOD(IBitmap::get_Bitmap),
              ORLIX_METHOD(IBitmap::GetRowPtr), ORLIX_METHOD(IBitmap::GetPixelPtr),
              ORLIX_METHOD(IBitmapProcess::GetWriteRowPtr), ORLIX_METHOD(IBitmapProcess::GetWritePixelPtr),
              ORLIX_METHOD(IBitmap::get_Bit))},
        {Cast<IUnknown>(NewRegion()),
         List(ORLIX_METHOD(IRegionOfInterest::get_Width), ORLIX_METHOD(IRegionOfInterest::get_Height),
              ORLIX_METHOD(IRegionOfInterest::get_BoundingBox), ORLIX_METHOD(IRegionOfInterest::GetRowRuns),
              ORLIX_METHOD(IShapeRegionOfInterest::get_Polarity), ORLIX_METHOD(IGraphicOverlay::get_Color),
              ORLIX_METHOD(IGraphicOverlay::get_Description))},
        {CreateObject<IUnknown>("orlix.StructuringElement"),
         List(ORLIX_METHOD(IStructuringElement::get_NumberOfElements), ORLIX_METHOD(IStructuringElement::get_Elements),
              ORLIX_METHOD(IStructuringElement::GetExtent), ORLIX_METHOD(IStructuringElement::get_BinaryElements))},
        {CreateObject<IUnknown>("Orlix.Polygon"),
         List(ORLIX_METHOD(IPolygon::get_Area), ORLIX_METHOD(IPolygon::GetCentroid), ORLIX_METHOD(IPolygon::GetBounds),
              ORLIX_METHOD(IPolygon::GetDiameter), ORLIX_METHOD(IPolygon::RobustCircleFit),
              ORLIX_METHOD(IPolygon::ConvexHull), ORLIX_METHOD(IPolygon::Smooth),
              ORLIX_METHOD(IPolygon::get_NumberOfVertices))},
    };
    for (const auto& [object, methods] : cases)
        for (const Method& method : methods) {
            EXPECT_FALSE(method.pointers.empty()) << method.name;
            for (const size_t position : method.pointers) {
                Place place;
                place.bytes.fill(0xa5);
                const auto before = place.bytes;
                EXPECT_TRUE(FailsSilently(method.call(object, 4711, place, position), E_POINTER))
                    << method.name << ", argument " << position;
                EXPECT_EQ(before, place.bytes) << method.name;
            }
            EXPECT_EQ(1u, ReferencesOf(object.get()));
        }
}

#undef ORLIX_METHOD

}  // namespace
}  // namespace orlix::testing
