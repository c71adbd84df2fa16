#include "contract/support.hpp"

#include <algorithm>
#include <cstdlib>
#include <optional>

namespace orlix::testing {
namespace {

// The thread of the tests is an apartment from the first test to the last.
class TestApartment : public ::testing::Environment {
public:
    void SetUp() override { apartment_.emplace(); }
    void TearDown() override { apartment_.reset(); }

private:
    std::optional<Apartment> apartment_;
};
[[maybe_unused]] ::testing::Environment* const environment = ::testing::AddGlobalTestEnvironment(new TestApartment);

}  // namespace

std::string TakeReportedText() { return TakeErrorReport().value_or(ErrorReport{}).description; }

::testing::AssertionResult Fails(HRESULT result, const std::string& text, const char* source, HRESULT expected) {
    const ErrorReport report = TakeErrorReport().value_or(ErrorReport{});
    if (result == expected && report.description == text && report.source == source)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "result 0x" << std::hex << static_cast<uint32_t>(result) << ", text \""
                                         << report.description << "\", source \"" << report.source << "\"";
}

::testing::AssertionResult Raises(HRESULT result, const std::string& text, const char* source) {
    return Fails(result, text, source, DISP_E_EXCEPTION);
}

::testing::AssertionResult FailsSilently(HRESULT result, HRESULT expected) { return Fails(result, "", "", expected); }

Image::Image(const ComPtr<IImageVPAExPlus>& image)
    : ComPtr<IImageVPAExPlus>(image),
      process(Cast<IOrlixImageProcess>(image)),
      display(Cast<IDisplayProcess>(image)),
      zoom(Cast<IPictureExZoom>(image)),
      memory(Cast<IPictureMemory>(image)),
      file(Cast<IImageFile>(image)),
      entries(Cast<IImageEntries>(image)),
      persist(Cast<IPersistStreamInitEx>(image)) {}

std::pair<double, double> Image::LuminanceRange() const {
    const auto [lower, upper] = Get(process, &IImageProcessBase::GetLuminanceRange);
    return {lower, upper};
}

std::pair<double, double> Image::DisplayRange() const {
    const auto [lower, upper] = Get(display, &IDisplayProcess::GetDisplayRange);
    return {lower, upper};
}

ComPtr<IShapeRegionOfInterest> NewRegion() {
    return CreateObject<IShapeRegionOfInterest>("Orlix.ShapeRegionOfInterest");
}

ComPtr<IShapeRegionOfInterest> RectangleOf(LONG width, LONG height, LONG left, LONG top, LONG right, LONG bottom) {
    auto region = NewRegion();
    Check(region->CreateRectangle(width, height, left, top, right, bottom), region);
    return region;
}

ComPtr<IShapeRegionOfInterest> CircleOf(LONG width, LONG height, double x, double y, double radius) {
    auto region = NewRegion();
    Check(region->CreateCircle(width, height, x, y, radius), region);
    return region;
}

ComPtr<IBitmapProcess> NewBitmap(LONG width, LONG height) {
    auto bitmap = CreateObject<IBitmapProcess>("Orlix.Bitmap");
    Check(bitmap->Create(width, height, 1), bitmap);
    return bitmap;
}

std::vector<uint8_t> BytesOf(IBitmap* bitmap) {
    const BITMAP record = Get(ComPtr<IBitmap>(bitmap), &IBitmap::get_Bitmap);
    const auto* first = static_cast<const uint8_t*>(record.bmBits);
    return {first, first + record.bmWidthBytes * record.bmHeight};
}

std::string RowsOf(IBitmap* bitmap) {
    const ComPtr<IBitmap> object(bitmap);
    const LONG width = Get(object, &IBitmap::get_Width), height = Get(object, &IBitmap::get_Height);
    std::string rows;
    for (LONG y = 0; y < height; ++y) {
        if (y > 0) rows += '/';
        for (LONG x = 0; x < width; ++x) rows += Get(object, &IBitmap::get_Bit, x, y) == 1 ? '#' : '.';
    }
    return rows;
}

ComPtr<IHistogram> HistogramOf(const std::vector<LONG>& counts, double left, double right) {
    auto histogram = CreateObject<IHistogram>("Orlix.Histogram");
    Check(histogram->Create(static_cast<LONG>(counts.size()), left, right), histogram);
    std::copy(counts.begin(), counts.end(), Get(histogram, &IHistogram::get_Bins));
    return histogram;
}

std::vector<LONG> CountsOf(const ComPtr<IHistogram>& histogram) {
    LONG* const bins = Get(histogram, &IHistogram::get_Bins);
    return {bins, bins + Get(histogram, &IHistogram::get_NumberOfBins)};
}

ComPtr<ForeignImage> ForeignImage::Of(LONG width, LONG height, LONG type, void* samples) {
    auto image = MakeCounted<ForeignImage>();
    image->width = width;
    image->height = height;
    image->type = type;
    image->base = samples;
    image->SetOffsets([](LONG x) { return x; }, [=](LONG y) { return width * y; });
    return image;
}

void ForeignImage::SetOffsets(const std::function<LONG(LONG)>& column, const std::function<LONG(LONG)>& row) {
    const auto inside = [](LONG i, LONG length) {
        if (length == 1) return LONG{0};
        const LONG folded = std::abs(i) % (2 * (length - 1));
        return std::min(folded, 2 * (length - 1) - folded);
    };
    const LONG longer = std::max(width, height);
    table.clear();
    for (LONG i = -200; i < longer + 200; ++i) table.push_back({column(inside(i, width)), row(inside(i, height))});
}

HRESULT ForeignImage::Dimensions(LONG* outBands, LONG* outWidth, LONG* outHeight) noexcept {
    *outBands = bands;
    *outWidth = width;
    *outHeight = height;
    return S_OK;
}

HRESULT ForeignImage::VPA(LONG, void** outBase, VPAEntry** outTable) noexcept {
    *outBase = base;
    *outTable = otherTable ? otherTable : table.empty() ? nullptr : table.data() + 200;
    if (onVpa) onVpa();
    return S_OK;
}

HRESULT ForeignRegion::GetRowRuns(LONG row, SRun** begin, SRun** end) noexcept {
    if (onRuns) onRuns();
    *begin = runs.data();
    *end = runs.data() + runs.size();
    return row == failingRow ? runsResult : S_OK;
}

ULONG Sink::AddRef() noexcept {
    const ULONG references = CountedObject::AddRef();
    if (const auto call = std::exchange(onAddRef, nullptr)) call();
    return references;
}

HRESULT Sink::OnRender(IPictureEx* picture, void* context, RenderSourceType type) noexcept {
    ++calls;
    if (onRender) onRender(picture, context, type);
    return E_FAIL;  // of no account
}

ULONG Holder::AddRef() noexcept {
    const ULONG references = CountedObject::AddRef();
    if (const auto call = std::exchange(onAddRef, nullptr)) call();
    return references;
}

}  // namespace orlix::testing
